// Signing a large content against digesting it: all that may come on top is small.
#include <zacert.h>

#include "paired.hpp"

#include <array>

namespace {

constexpr size_t kMebibytes = 256;
constexpr int32_t kSha256 = 9;
constexpr auto kData = std::to_array<uint8_t>({0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 1, 7, 1});
constexpr auto kContentType = std::to_array<uint8_t>({0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 1, 9, 3});
constexpr auto kDataValue =
    std::to_array<uint8_t>({6, 9, 0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 1, 7, 1});
constexpr auto kSha256Id = std::to_array<uint8_t>({0x60, 0x86, 0x48, 1, 0x65, 3, 4, 2, 1});
constexpr auto kRsa = std::to_array<uint8_t>({0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 1, 1, 1});
constexpr std::array<uint8_t, 2> kIssuer{0x30, 0};
constexpr std::array<uint8_t, 1> kSerial{1};

const std::vector<uint8_t> &content() {
    static const std::vector<uint8_t> made(kMebibytes << 20, 0x5A);
    return made;
}

const ZA_RSArefPrivateKey &key() {
    static const ZA_RSArefPrivateKey made = [] {
        ZA_RSArefPublicKey pub;
        ZA_RSArefPrivateKey fresh;
        bench::check(ZA_PKCS7_GenRSAKeyPair_2048(&pub, &fresh) == 0, "a key");
        return fresh;
    }();
    return made;
}

template <class Record>
const uint8_t *octets_of(const Record &record) {
    return reinterpret_cast<const uint8_t *>(&record);
}

void *signer() {
    void *made = nullptr;
    bench::check(ZA_PKCS7_CreateEncodeSignerInfo(&made) == 0, "a signer");
    const auto set = [&](int32_t id, const auto &value) {
        const auto len = static_cast<uint32_t>(value.size());
        bench::check(ZA_PKCS7_SetSignerInfoAttributeChar(made, id, value.data(), len) == 0,
                     "an attribute of the signer");
    };
    set(PKCS7_SIGNER_DN, kIssuer);
    set(PKCS7_SIGNER_SERIAL, kSerial);
    set(PKCS7_SIGNER_DIGEST_ALGO, kSha256Id);
    set(PKCS7_SIGNER_DIGEST_ENC_ALG, kRsa);
    bench::check(ZA_PKCS7_SetSignerAttribute(made, kContentType.data(), kContentType.size(),
                                             kDataValue.data(), kDataValue.size()) == 0 &&
                     ZA_PKCS7_SetSignerInfoDigestFunc(made, ZA_DigestFunc_Ref, octets_of(kSha256),
                                                      sizeof kSha256) == 0 &&
                     ZA_PKCS7_SetSignerInfoEncSignFunc(made, ZA_PrivateKeyEncFunc_Ref,
                                                       octets_of(key()), sizeof key()) == 0,
                 "the functions of the signer");
    return made;
}

// One call, with room enough: a call that asks for the length digests the content as well.
void sign() {
    std::array<uint8_t, 4096> out;
    uint32_t len = 0;
    void *message = nullptr;
    bench::check(
        ZA_PKCS7_CreateSignedDataEncodeCtx(&message) == 0 &&
            ZA_PKCS7_SetSignedDataAttributeInt(message, PKCS7_SIGNEDDATA_VERSION, 1) == 0 &&
            ZA_PKCS7_SetSignedDataAttributeChar(message, PKCS7_SIGNEDDATA_DIGEST_ALGO,
                                                kSha256Id.data(), kSha256Id.size()) == 0 &&
            ZA_PKCS7_SetSignedDataAttributeChar(message, PKCS7_SIGNEDDATA_CONTENTTYPE, kData.data(),
                                                kData.size()) == 0 &&
            ZA_PKCS7_SetSignedData_SignerInfo(message, signer()) == 0 &&
            ZA_PKCS7_EncodePKCS7SignedDataPutData(message, content().data(),
                                                  static_cast<uint32_t>(content().size()),
                                                  out.data(), &len) == 0 &&
            len > 256 && ZA_PKCS7_DestroySignedDataEncodeCtx(message) == 0,
        "a message");
}

void digest() {
    std::array<uint8_t, 64> out;
    uint32_t len = out.size();
    int32_t selector = kSha256;
    bench::check(ZA_DigestFunc_Ref(content().data(), static_cast<uint32_t>(content().size()),
                                   out.data(), &len, &selector) == 0 &&
                     len == 32,
                 "ZA_DigestFunc_Ref");
    benchmark::DoNotOptimize(out);
}

void sign_against_digest(benchmark::State &state) {
    content();
    key();
    bench::compare(
        state, {1.1, "MiB", kMebibytes, "digest"}, [] { return bench::nanoseconds(sign); },
        [] { return bench::nanoseconds(digest); });
}

constexpr int kLongPairs = 21;
BENCHMARK(sign_against_digest)
    ->Iterations(kLongPairs)
    ->UseManualTime()
    ->Unit(benchmark::kNanosecond);

}  // namespace

int main(int argc, char **argv) {
    return bench::run(argc, argv);
}
