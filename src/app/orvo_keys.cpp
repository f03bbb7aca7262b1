#include "app/orvo_keys.hpp"

#include "runtime/trace.hpp"

#include <array>
#include <cstdio>
#include <memory>

namespace {

constexpr za::TraceSource trace{".\\src\\orvo"};

}  // namespace

namespace za::app {
namespace {

// Another code than that of the function that failed.
Status replaced(uint32_t result, Status status, const char *text,
                uint32_t line = __builtin_LINE()) {
    return result == 0 ? Status::ok : trace.fail(status, text, line);
}

template <auto kDestroy>
struct Destroy {
    void operator()(void *context) const { kDestroy(context); }
};
template <auto kDestroy>
using Context = std::unique_ptr<void, Destroy<kDestroy>>;

// What of a file is looked at. Behind it stand zeros, so that a header can be measured even if the
// file ends within it.
struct Beginning {
    std::array<uint8_t, 5000> octets{};
    size_t size = 0;
};

struct Close {
    void operator()(FILE *file) const { std::fclose(file); }
};

struct FileTexts {
    const char *not_opened;
    const char *empty;
};

Status read_beginning(const char *path, const FileTexts &texts, Beginning &out) {
    const std::unique_ptr<FILE, Close> file(path != nullptr ? std::fopen(path, "rbe") : nullptr);
    if (file == nullptr) {
        return trace.fail(kNoFile, texts.not_opened);
    }
    out.size = std::fread(out.octets.data(), 1, out.octets.size(), file.get());
    if (out.size == 0) {
        return trace.fail(kEmptyFile, texts.empty);
    }
    return Status::ok;
}

// The record of the functions that compute is the decoder's behind a length in bits.
template <class Numbers, class Record>
void fill(uint32_t bits, const Numbers &numbers, Record &out) {
    constexpr size_t kBehindBits = offsetof(Record, modulus);
    static_assert(kBehindBits + sizeof numbers == sizeof out);
    out.bits = bits;
    std::memcpy(reinterpret_cast<uint8_t *>(&out) + kBehindBits, &numbers, sizeof numbers);
}

// Keys of certificates are told by the size of their encoding.
uint32_t bits_of(size_t encoded) {
    if (encoded >= 131 && encoded <= 149) {
        return 1024;
    }
    return encoded >= 261 && encoded <= 279 ? 2048 : 0;
}

bool all_zero(Bytes octets) {
    return std::ranges::all_of(octets, [](uint8_t octet) { return octet == 0; });
}

uint32_t bits_of(const ZA_RSAPrivateKey &key) {
    return all_zero(Bytes(key.modulus).first(sizeof key.modulus / 2)) ? 1024 : 2048;
}

Status public_key_of(const Beginning &file, Octets &out) {
    // The decoder believes the header and not the length it is given.
    uint32_t total = 0;
    ZA_TRY(ZAsn1_GetCertLength, result_of(ZAsn1_GetCertLength(file.octets.data(), &total)));
    if (total > file.size) {
        return trace.fail(Status::length_not_equal);
    }
    void *handle = nullptr;
    ZA_TRY(ZACert_CreateCertDecodeCtx, result_of(ZACert_CreateCertDecodeCtx(&handle)));
    const Context<ZACert_DestroyCertDecodeCtx> cert(handle);
    ZA_TRY(ZACert_DecodeCert, result_of(ZACert_DecodeCert(handle, file.octets.data(), total)));
    const auto get = [&](uint8_t *key, uint32_t &len) {
        return result_of(ZACert_GetCertAttributeChar(handle, CERT_SUBJECTPUBLICKEYINFO, key, &len));
    };
    uint32_t len = 0;
    ZA_TRY(ZACert_GetCertAttributeChar, get(nullptr, len));
    ZA_PASS(out.allocate(len));
    ZA_TRY(ZACert_GetCertAttributeChar, get(out.data(), len));
    return Status::ok;
}

Status private_key_of(const Beginning &file, const Input<char> &password, Secret &out) {
    void *handle = nullptr;
    ZA_PASS(replaced(ZA_PKCS12_CreateDecodePfx(&handle), kNoPfxContext,
                     "------>GetRSAPriKeyFromPfx call ZA_PKCS12_CreateDecodePfx  Err"));
    const Context<ZA_PKCS12_DestroyDecodePFX> pfx(handle);
    // Nobody asks for the verdict on the MAC: files without one have always been taken.
    uint32_t mac_result = 0;
    ZA_PASS(replaced(
        ZA_PKCS12_DecodePFX(handle, reinterpret_cast<const uint8_t *>(password.first), password.len,
                            file.octets.data(), to_u32(file.size), &mac_result),
        kPfxNotOpened, "------>GetRSAPriKeyFromPfx call ZA_PKCS12_DecodePFX  Err"));
    const auto get = [&](uint8_t *key, uint32_t &len) {
        return replaced(ZA_PKCS12_GetPrivateKey(handle, key, &len), kNoPrivateKey,
                        "------>GetRSAPriKeyFromPfx call ZA_PKCS12_GetPrivateKey  Err");
    };
    uint32_t len = 0;
    ZA_PASS(get(nullptr, len));
    ZA_PASS(out.value.allocate(len));
    return get(out.value.data(), len);
}

}  // namespace

Status key_of_certificate(const char *path, ZA_RSArefPublicKey &out) {
    constexpr FileTexts kTexts{"------>GetRSAPubKeyFromCert fopen certPath  Err",
                               "------>GetRSAPubKeyFromCert fread certBuf  Err"};
    Beginning file;
    ZA_PASS(read_beginning(path, kTexts, file));
    Octets der;
    if (public_key_of(file, der) != Status::ok) {
        return trace.fail(kNoCertificate,
                          "------>GetRSAPubKeyFromCert Call  GetPubKeyFromCert  Err");
    }
    const uint32_t bits = bits_of(der.size());
    if (bits == 0) {
        return trace.fail(kPublicKeySize, "------>GetRSAPubKeyFromCert derPubkeyLen  Err");
    }
    ZA_RSAPublicKey key;
    ZA_PASS(replaced(ZA_Decode_PublicKey(&key, der.data(), static_cast<int32_t>(der.size())),
                     kPublicKeyMalformed,
                     "------>GetRSAPubKeyFromCert Call  ZA_Decode_PublicKey  Err"));
    fill(bits, key, out);
    return Status::ok;
}

Status key_of_pfx(const char *path, const Input<char> &password, ZA_RSArefPrivateKey &out) {
    constexpr FileTexts kTexts{"------>GetRSAPriKeyFromPfx fopen certPath  Err",
                               "------>GetRSAPriKeyFromPfx fread certBuf  Err"};
    Beginning file;
    ZA_PASS(read_beginning(path, kTexts, file));
    Secret der;
    ZA_PASS(private_key_of(file, password, der));
    Wiped<ZA_RSAPrivateKey> key;
    ZA_PASS(replaced(
        ZA_Decode_PrivateKey(&key.value, der.value.data(), static_cast<int32_t>(der.value.size())),
        kPrivateKeyMalformed, "------>GetRSAPriKeyFromPfx call ZA_Decode_PrivateKey  Err"));
    if (all_zero(key.value.modulus)) {
        return trace.fail(kNoKeyInside,
                          "------>GetRSAPriKeyFromPfx call ZK_PRIVATEKEY2RSArefPrivateKey  Err");
    }
    fill(bits_of(key.value), key.value, out);
    return Status::ok;
}

}  // namespace za::app
