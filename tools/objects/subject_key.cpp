#include "objects/subject_key.hpp"

#include <zacert.h>

#include "base/der.hpp"
#include "base/elements.hpp"
#include "base/failure.hpp"

#include <array>

namespace tool {

namespace {

class Taken {
  public:
    explicit Taken(View spki) {
        const Anybuf record = record_of(spki);
        check(ZI_DecodePubKey(&record, &key));
    }
    Taken(const Taken &) = delete;
    Taken &operator=(const Taken &) = delete;
    ~Taken() {
        for (Anybuf *record : {&key.algorithm, &key.parameters, &key.keyBits, &key.rawBits}) {
            ZI_ClearAnybuf(record);
        }
    }

    ZI_PubKey key{};
};

Octets copied(const Anybuf &record) {
    const View octets = octets_of(record);
    return {octets.begin(), octets.end()};
}

KeyKind kind_of(const Taken &taken) {
    constexpr uint32_t kNamedCurve = 12;
    const std::string algorithm = object_id_text(octets_of(taken.key.algorithm));
    if (algorithm == "1.2.840.113549.1.1.1") {
        return KeyKind::rsa;
    }
    if (algorithm != "1.2.840.10045.2.1" || taken.key.keyKind != kNamedCurve ||
        taken.key.hasEcc == 0) {
        return KeyKind::other;
    }
    const std::string curve = object_id_text(octets_of(taken.key.parameters));
    return curve == "1.2.840.10045.3.1.7"   ? KeyKind::p256
           : curve == "1.2.156.10197.1.301" ? KeyKind::sm2
                                            : KeyKind::other;
}

}  // namespace

SubjectKey subject_key(View spki) {
    const Taken taken(spki);
    return {kind_of(taken), copied(taken.key.algorithm), copied(taken.key.parameters),
            copied(taken.key.keyBits), copied(taken.key.rawBits)};
}

Octets sha1(View octets) {
    constexpr int32_t kSha1 = 7;
    std::array<uint8_t, 64> digest{};
    uint32_t length = digest.size();
    check(ZA_PKCS7_DigestMessage(kSha1, octets.data(), static_cast<int32_t>(octets.size()),
                                 digest.data(), &length));
    return {digest.begin(), digest.begin() + length};
}

Octets key_identifier(const SubjectKey &key) {
    return sha1(key.bits);
}

size_t rsa_bits(const SubjectKey &key) {
    if (key.kind != KeyKind::rsa) {
        return 0;
    }
    // RSAPublicKey ::= SEQUENCE { modulus INTEGER, publicExponent INTEGER }
    Elements numbers(only_element(key.bits, ZA_DER_ID_SEQUENCE).content);
    return Integer(numbers.required(ZA_DER_ID_INTEGER).content).bits();
}

void require_issuable(const SubjectKey &key) {
    constexpr size_t kLeastRsaBits = 1024;
    if (key.kind == KeyKind::other) {
        throw Failure("expected a key that is RSA, or on P-256 or SM2 as a named curve");
    }
    if (key.kind == KeyKind::rsa && rsa_bits(key) < kLeastRsaBits) {
        throw Failure("expected an RSA key of 1024 bits or more");
    }
}

}  // namespace tool
