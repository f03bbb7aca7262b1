#include "pfx/pfx_file.hpp"

#include <zacert.h>

#include "base/callback.hpp"
#include "base/context.hpp"
#include "base/der.hpp"
#include "base/der_writer.hpp"
#include "base/elements.hpp"
#include "base/failure.hpp"
#include "objects/oid_names.hpp"
#include "objects/pkcs7_contexts.hpp"

#include <algorithm>
#include <array>
#include <openssl/err.h>

namespace tool {

namespace {

using DecodedFile =
    Decoded<ZA_PKCS12_CreateDecodeAuthSafeOfDataType, ZA_PKCS12_DecodeAuthSafeOfDataType,
            ZA_PKCS12_DestoryDecodeAuthSafeOfDataType>;
using DecodedSignedFile =
    Decoded<ZA_PKCS12_CreateDecodeAuthSafeOfSignedType, ZA_PKCS12_DecodeAuthSafeOfSignedType,
            ZA_PKCS12_DestoryDecodeAuthSafeOfSignedType>;
using DecodedPlain =
    Decoded<ZA_PKCS12_CreateDecodeContentInfoOfDataType, ZA_PKCS12_DecodeContentInfoOfDataType,
            ZA_PKCS12_DestoryDecodeContentInfoOfDataType>;
using DecodedEncrypted = Decoded<ZA_PKCS12_CreateDecodeContentInfoOfEncryptedType,
                                 ZA_PKCS12_DecodeContentInfoOfEncryptedType,
                                 ZA_PKCS12_DestoryDecodeContentInfoOfEncryptedType>;
using DecodedBags = Decoded<ZA_PKCS12_CreateDecodeSafeContents, ZA_PKCS12_DecodeSafeContents,
                            ZA_PKCS12_DestoryDecodeSafeContents>;
using DecodedBag =
    Decoded<ZA_PKCS12_CreateDecodeSafeBag, ZA_PKCS12_DecodeSafeBag, ZA_PKCS12_DestoryDecodeSafeBag>;

struct MacDigest {
    std::string_view oid;
    int32_t number;
    size_t key_size;
};

constexpr auto kMacDigests = std::to_array<MacDigest>({
    {"1.3.14.3.2.26", 7, 20},
    {"1.2.840.113549.2.5", 5, 16},
    {"1.2.840.113549.2.2", 3, 16},
});

const MacDigest *digest_of(const PfxMac &mac) {
    const auto *row = std::find_if(kMacDigests.begin(), kMacDigests.end(),
                                   [&](const MacDigest &r) { return r.oid == mac.digest.oid; });
    return row == kMacDigests.end() ? nullptr : row;
}

uint32_t size_of(View octets) {
    return static_cast<uint32_t>(octets.size());
}

NamedId id_of(View content) {
    return named(object_id_text(content));
}

template <class Getter>
Secret fetched_secret(const Getter &getter) {
    uint32_t length = 0;
    check(getter(nullptr, &length));
    Secret octets(length);
    if (length > 0) {
        check(getter(octets.data(), &length));
    }
    return octets;
}

// ---- Encryption --------------------------------------------------------------------------------

// PBES2-params ::= SEQUENCE { keyDerivationFunc AlgorithmIdentifier, encryptionScheme
// AlgorithmIdentifier }
NamedId cipher_of_pbes2(View parameters) {
    Elements schemes(only_element(parameters, ZA_DER_ID_SEQUENCE).content);
    schemes.required(ZA_DER_ID_SEQUENCE);
    Elements scheme(schemes.required(ZA_DER_ID_SEQUENCE).content);
    return id_of(scheme.required(ZA_DER_ID_OBJECTID).content);
}

PbeUse pbe_use(View algorithm, View parameters) {
    constexpr std::string_view kPbes2 = "1.2.840.113549.1.5.13";
    PbeUse use;
    use.id = id_of(algorithm);
    if (use.id.oid == kPbes2) {
        use.cipher = cipher_of_pbes2(parameters);
    }
    if (use.is_known()) {
        use.salt = fetched([&](uint8_t *out, uint32_t *length) {
            return ZA_PKCS12_DecodeParameter(parameters.data(), size_of(parameters), out, length,
                                             &use.iterations);
        });
    }
    return use;
}

// The count comes with the file, and nothing but it limits the time that a password takes.
void require_bearable(uint32_t iterations) {
    constexpr uint32_t kMost = 5'000'000;
    if (iterations > kMost) {
        throw Failure("expected at most 5000000 iterations, found " + std::to_string(iterations));
    }
}

// What the library's functions take. Points to octets of the others.
ZA_PBE_RECORD pbe_record(const PbeUse &use, View algorithm, const Secret &password) {
    require_bearable(use.iterations);
    return {algorithm.data(), size_of(algorithm), password.view().data(), size_of(password.view()),
            use.salt.data(),  size_of(use.salt),  use.iterations};
}

Secret decrypted(View cipher, const PbeUse &use, const Secret &password) {
    const Octets algorithm = object_id_octets(use.id.oid);
    ZA_PBE_RECORD record = pbe_record(use, algorithm, password);
    Secret plain(cipher.size());
    uint32_t length = size_of(cipher);
    check(static_cast<uint32_t>(
        ZA_DecryptFunc_Ref(cipher.data(), size_of(cipher), plain.data(), &length, &record)));
    return Secret(plain.view().first(length));
}

// ---- Bags --------------------------------------------------------------------------------------

// SET OF AttributeValue; what others write without the SET is kept as it is.
Octets values_in(const Octets &value) {
    if (value.empty() || value.front() != ZA_DER_ID_SET) {
        return value;
    }
    const View content = only_element(value, ZA_DER_ID_SET).content;
    return {content.begin(), content.end()};
}

MessageAttribute attribute_at(void *bag, uint32_t number) {
    uint32_t type_length = 0;
    uint32_t length = 0;
    const auto get = [&](uint8_t *type, uint8_t *value) {
        check(ZA_PKCS12_GetSafeBagAttribute(bag, type, &type_length, value, &length, number));
    };
    get(nullptr, nullptr);
    Octets type(type_length);
    Octets value(length);
    get(type.data(), value.data());
    return {id_of(type), values_in(value)};
}

using Parse = uint32_t (*)(const uint8_t *, uint32_t, uint8_t *, uint32_t *, uint8_t *, uint32_t *);

Parse parser_of(const PfxBag &bag) {
    return bag.is(pfx::kCertificate) ? ZA_PKCS12_ParseCertBag
           : bag.is(pfx::kCrl)       ? ZA_PKCS12_ParseCrlBag
           : bag.is(pfx::kSecret)    ? ZA_PKCS12_ParseSecretContentsBag
                                     : nullptr;
}

void read_typed(Parse parse, View der, PfxBag &out) {
    uint32_t length = 0;
    uint32_t type_length = 0;
    check(parse(der.data(), size_of(der), nullptr, &length, nullptr, &type_length));
    Secret content(length);
    Octets type(type_length);
    check(parse(der.data(), size_of(der), content.data(), &length, type.data(), &type_length));
    out.content_type = id_of(type);
    out.content = std::move(content);
}

void read_encrypted_key(View der, const Secret *password, PfxBag &out) {
    uint32_t length = 0;
    uint32_t algorithm_length = 0;
    uint32_t parameters_length = 0;
    const auto parse = [&](uint8_t *key, uint8_t *algorithm, uint8_t *parameters) {
        check(ZA_PKCS12_ParseEncKeyBag(der.data(), size_of(der), key, &length, algorithm,
                                       &algorithm_length, parameters, &parameters_length));
    };
    parse(nullptr, nullptr, nullptr);
    Octets cipher(length);
    Octets algorithm(algorithm_length);
    Octets parameters(parameters_length);
    parse(cipher.data(), algorithm.data(), parameters.data());
    out.encryption = pbe_use(algorithm, parameters);
    if (password != nullptr && out.encryption->is_known()) {
        Secret key = decrypted(cipher, *out.encryption, *password);
        only_element(key.view(), ZA_DER_ID_SEQUENCE);
        out.content = std::move(key);
    }
}

std::vector<PfxBag> read_bags(View safe_contents, const Secret *password, size_t depth);

void read_content(View der, const Secret *password, size_t depth, PfxBag &out) {
    if (out.is(pfx::kKey)) {
        out.content = Secret(der);
    } else if (out.is(pfx::kEncryptedKey)) {
        read_encrypted_key(der, password, out);
    } else if (out.is(pfx::kBags)) {
        out.bags = read_bags(der, password, depth + 1);
    } else if (const Parse parse = parser_of(out)) {
        read_typed(parse, der, out);
    }
}

PfxBag read_bag(View der, const Secret *password, size_t depth) {
    const DecodedBag decoded(der);
    void *context = decoded.get();
    PfxBag bag;
    bag.type = id_of(fetched([&](uint8_t *out, uint32_t *length) {
        return ZA_PKCS12_GetSafeBagOID(context, out, length);
    }));
    uint32_t count = 0;
    check(ZA_PKCS12_GetSafeBagAttributeNum(context, &count));
    for (uint32_t number = 1; number <= count; ++number) {
        bag.attributes.push_back(attribute_at(context, number));
    }
    const Secret content = fetched_secret([&](uint8_t *out, uint32_t *length) {
        return ZA_PKCS12_GetSafeBagContent(context, out, length);
    });
    try {
        read_content(content.view(), password, depth, bag);
    } catch (const LibraryError &error) {
        bag.problem = error.what();
    }
    return bag;
}

std::vector<PfxBag> read_bags(View safe_contents, const Secret *password, size_t depth) {
    constexpr size_t kMaxDepth = 16;
    if (depth > kMaxDepth) {
        throw LibraryError(ZACERT_GeneralErr);
    }
    const DecodedBags decoded(safe_contents);
    uint32_t count = 0;
    check(ZA_PKCS12_GetSafeContents_SafeBagNum(decoded.get(), &count));
    std::vector<PfxBag> bags;
    for (uint32_t number = 1; number <= count; ++number) {
        const Secret bag = fetched_secret([&](uint8_t *out, uint32_t *length) {
            return ZA_PKCS12_GetSafeContents_SafeBag(decoded.get(), out, length, number);
        });
        bags.push_back(read_bag(bag.view(), password, depth));
    }
    return bags;
}

// ---- Containers --------------------------------------------------------------------------------

NamedId type_of(View info) {
    uint32_t length = 0;
    uint32_t content_length = 0;
    const auto get = [&](uint8_t *type) {
        check(ZA_PKCS7_DecodePKCS7DerTypeData(info.data(), size_of(info), type, &length, nullptr,
                                              &content_length));
    };
    get(nullptr);
    Octets type(length);
    get(type.data());
    return id_of(type);
}

// The library's own getter takes no other parameters than salt and iterations.
PbeUse encryption_of(View info) {
    const DecodedEncryptedData decoded(info);
    void *content = nullptr;
    check(ZA_PKCS7_GetEncrytpedData_EncryptedContent(decoded.get(), &content));
    const auto get = [content](int32_t id) {
        return fetched([=](uint8_t *out, uint32_t *length) {
            return ZA_PKCS7_GetEncryptedContentAttributeChar(content, id, out, length);
        });
    };
    return pbe_use(get(PKCS7_ENCRYPT_ALGO), get(PKCS7_ENCRYPT_PARAMETER));
}

Secret decrypted_container(View info, const PbeUse &use, const Secret &password) {
    const DecodedEncrypted decoded(info);
    const Octets algorithm = object_id_octets(use.id.oid);
    const Secret record = octets_of_record(pbe_record(use, algorithm, password));
    check(ZA_PKCS12_SetContentInfoOfEncryptedType_DecContentFunc(
        decoded.get(), ZA_DecryptFunc_Ref, record.view().data(), size_of(record.view())));
    // Every call decrypts, so the length is not asked for.
    Secret octets(info.size());
    uint32_t length = size_of(info);
    check(
        ZA_PKCS12_GetContentInfoOfEncryptedType_SafeContent(decoded.get(), octets.data(), &length));
    return Secret(octets.view().first(length));
}

PfxContainer read_container(View info, const Secret *password) {
    PfxContainer container;
    container.type = type_of(info);
    Secret content;
    if (container.type.oid == pkcs7::kData) {
        const DecodedPlain decoded(info);
        content = fetched_secret([&](uint8_t *out, uint32_t *length) {
            return ZA_PKCS12_GetContentInfoOfDataType_SafeContent(decoded.get(), out, length);
        });
        container.opened = true;
    } else if (container.type.oid == pkcs7::kEncryptedData) {
        container.encryption = encryption_of(info);
        if (password != nullptr && container.encryption->is_known()) {
            content = decrypted_container(info, *container.encryption, *password);
            container.opened = true;
        }
    }
    if (container.opened) {
        container.bags = read_bags(content.view(), password, 0);
    }
    return container;
}

std::optional<PfxMac> read_mac(void *file) {
    PfxMac mac;
    const Octets digest = fetched([&](uint8_t *out, uint32_t *length) {
        return ZA_PKCS12_GetAuthSafeOfDataType_DigestAlgorithm(file, out, length);
    });
    if (digest.empty()) {
        return std::nullopt;
    }
    mac.digest = id_of(digest);
    mac.salt = fetched([&](uint8_t *out, uint32_t *length) {
        return ZA_PKCS12_GetAuthSafeOfDataType_MacParameter(file, out, length, &mac.iterations);
    });
    return mac;
}

void refuse_signed(View der) {
    try {
        const DecodedSignedFile decoded(der);
    } catch (const LibraryError &) {
        return;
    }
    throw Failure("expected a PKCS#12 file under a password, found one that is signed");
}

// ---- Algorithms without a place in the library -------------------------------------------------

void add_unknown(const std::optional<PbeUse> &use, std::vector<std::string> &out) {
    if (use && !use->is_known()) {
        const std::string text = "encrypted with " + label(*use);
        if (std::find(out.begin(), out.end(), text) == out.end()) {
            out.push_back(text);
        }
    }
}

void add_unknown(const std::vector<PfxBag> &bags, std::vector<std::string> &out) {
    for (const PfxBag &bag : bags) {
        add_unknown(bag.encryption, out);
        add_unknown(bag.bags, out);
    }
}

EvpKey decoded_key(View der) {
    const uint8_t *at = der.data();
    EvpKey key(d2i_AutoPrivateKey(nullptr, &at, static_cast<long>(der.size())));
    ERR_clear_error();
    return key;
}

}  // namespace

// PBES1 has identifiers of its own, which the library reads in a form that nobody else writes.
bool PbeUse::is_known() const {
    constexpr std::string_view kArc = "1.2.840.113549.1.12.1.";
    return id.oid.size() == kArc.size() + 1 && id.oid.starts_with(kArc) && id.oid.back() >= '1' &&
           id.oid.back() <= '6';
}

bool PfxMac::is_known() const {
    return digest_of(*this) != nullptr;
}

std::string label(const PbeUse &use) {
    return label(use.id) + (use.cipher.oid.empty() ? "" : ", " + label(use.cipher));
}

Pfx read_pfx(View der, const Secret *password) {
    std::optional<DecodedFile> file;
    try {
        file.emplace(der);
    } catch (const LibraryError &) {
        refuse_signed(der);
        throw;
    }
    Pfx pfx;
    pfx.mac = read_mac(file->get());
    for (uint32_t number = 1;; ++number) {
        const Octets info = fetched([&](uint8_t *out, uint32_t *length) {
            return ZA_PKCS12_GetAuthSafeOfDataType_ContentInfo(file->get(), out, length, number);
        });
        if (info.empty()) {
            return pfx;
        }
        pfx.containers.push_back(read_container(info, password));
    }
}

uint32_t mac_verdict(View der, const PfxMac &mac, const Secret &password) {
    constexpr uint32_t kMacKey = 3;
    const MacDigest &digest = *digest_of(mac);
    require_bearable(mac.iterations);
    Secret key(digest.key_size);
    check(ZA_PKCS12_GenRandomFromPassword(static_cast<uint32_t>(digest.number),
                                          password.view().data(), size_of(password.view()),
                                          mac.salt.data(), size_of(mac.salt), kMacKey,
                                          mac.iterations, key.data(), size_of(key.view())));
    const Secret record =
        octets_of_record(ZA_HMAC_RECORD{digest.number, key.data(), size_of(key.view())});
    const DecodedFile file(der);
    check(ZA_PKCS12_SetAuthSafeOfDataType_ParseMacFunc(
        file.get(), ZA_HMACFunc_Ref, record.view().data(), size_of(record.view())));
    uint32_t verdict = 0;
    check(ZA_PKCS12_GetAuthSafeOfDataType_MACVerifyResult(file.get(), &verdict));
    return verdict;
}

std::string unknown_algorithms(const Pfx &pfx) {
    std::vector<std::string> unknown;
    if (pfx.mac && !pfx.mac->is_known()) {
        unknown.push_back("MAC over " + label(pfx.mac->digest));
    }
    for (const PfxContainer &container : pfx.containers) {
        add_unknown(container.encryption, unknown);
        add_unknown(container.bags, unknown);
    }
    std::string text;
    for (const std::string &entry : unknown) {
        text += (text.empty() ? "" : "; ") + entry;
    }
    return text;
}

EvpKey key_in(const PfxBag &bag) {
    EvpKey key = decoded_key(bag.content.view());
    if (key != nullptr) {
        return key;
    }
    // PrivateKeyInfo ::= SEQUENCE { version, privateKeyAlgorithm, privateKey OCTET STRING, ... }
    // The library writes the curve in the key alone.
    Elements fields(only_element(bag.content.view(), ZA_DER_ID_SEQUENCE).content);
    fields.required(ZA_DER_ID_INTEGER);
    fields.required(ZA_DER_ID_SEQUENCE);
    return decoded_key(fields.required(ZA_DER_ID_OCTETSTRING).content);
}

}  // namespace tool
