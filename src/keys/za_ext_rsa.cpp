#include "keys/za_ext_rsa.hpp"

#include <zacert.h>

#include "keys/za_ext_der.hpp"
#include "names/za_low_oid_catalogue.hpp"
#include "runtime/trace.hpp"

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_ext"};

constexpr const char *kDecodePrivateKey = "======>Decode PrivateKey;";

}  // namespace

namespace za::keys {
namespace {

static_assert(sizeof(ZA_RSAPublicKey) == 512);
static_assert(sizeof(ZA_RSAPrivateKey) == 1408);

template <class Octet, size_t N>
using Fields = std::array<std::span<Octet>, N>;

// RSAPublicKey ::= SEQUENCE { modulus INTEGER, publicExponent INTEGER }
template <class Key>
auto public_fields(Key &key) {
    using Octet = std::remove_reference_t<decltype(*key.modulus)>;
    return Fields<Octet, 2>{key.modulus, key.exponent};
}

// RSAPrivateKey ::= SEQUENCE { version INTEGER, modulus INTEGER, publicExponent INTEGER,
//     privateExponent INTEGER, prime1 INTEGER, prime2 INTEGER, exponent1 INTEGER,
//     exponent2 INTEGER, coefficient INTEGER }
template <class Key>
auto private_fields(Key &key) {
    using Octet = std::remove_reference_t<decltype(*key.modulus)>;
    return Fields<Octet, 8>{key.modulus, key.publicExponent, key.exponent,       key.prime1,
                            key.prime2,  key.primeExponent1, key.primeExponent2, key.coefficient};
}

// The line of a missing record is written with the code of missing memory: callers know it so.
Status need_record(const void *key) {
    return key != nullptr ? Status::ok : trace.fail(Status::memory, "------>Pointer is NULL");
}

}  // namespace

Status encode_public_key(const ZA_RSAPublicKey &key, Octets &out) {
    const auto structure = [&](DerWriter &der) {
        der.wrapped(ZA_DER_ID_SEQUENCE, [&](DerWriter &sequence) {
            for (const Bytes field : public_fields(key)) {
                sequence.number(field);
            }
        });
    };
    ZA_TRY_AS("------>ZACERT_MemoryErr", write_der(structure, out));
    return Status::ok;
}

Status decode_public_key(Bytes der, ZA_RSAPublicKey &out) {
    if (der.empty()) {
        return trace.fail(Status::length, "------>derPublicKeyLen <= 0");
    }
    asn1::Children fields;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(asn1::Element(der), fields));
    ZA_RSAPublicKey key{};
    for (const std::span<uint8_t> field : public_fields(key)) {
        ZA_PASS(read_number(fields, field));
    }
    out = key;
    return Status::ok;
}

Status encode_private_key(const ZA_RSAPrivateKey &key, Octets &out) {
    const auto structure = [&](DerWriter &der) {
        der.wrapped(ZA_DER_ID_SEQUENCE, [&](DerWriter &sequence) {
            sequence.integer(0);
            for (const Bytes field : private_fields(key)) {
                sequence.number(field);
            }
        });
    };
    ZA_TRY_AS("------>ZACERT_MemoryErr", write_der(structure, out));
    return Status::ok;
}

Status decode_private_key(Bytes der, ZA_RSAPrivateKey &out) {
    trace.note(kDecodePrivateKey);
    if (der.empty()) {
        return trace.fail(Status::length, "------>derPrivateKeyLen <= 0");
    }
    asn1::Children fields;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(asn1::Element(der), fields));
    asn1::Element version;
    if (!fields.next(version)) {
        return trace.fail(Status::item_missing);
    }
    Wiped<ZA_RSAPrivateKey> key;
    for (const std::span<uint8_t> field : private_fields(key.value)) {
        ZA_PASS(read_number(fields, field));
    }
    out = key.value;
    return Status::ok;
}

Status pkcs1_to_8(Bytes pkcs1, Octets &out) {
    // What is put around the key must not carry the whole beyond 32 bits.
    constexpr size_t kMostKeyOctets = std::numeric_limits<uint32_t>::max() - 64;
    if (pkcs1.empty()) {
        return trace.fail(Status::general);
    }
    if (pkcs1.size() > kMostKeyOctets) {
        return trace.fail(Status::length);
    }
    asn1::Children fields;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(asn1::Element(pkcs1), fields));
    constexpr size_t kFieldsOfPrivateKey = 9;
    bool begins_with_numbers = true;
    for (size_t i = 0; i < kFieldsOfPrivateKey; ++i) {
        asn1::Element field;
        if (!fields.next(field)) {
            return trace.fail(Status::item_missing);
        }
        begins_with_numbers = begins_with_numbers && (i >= 2 || field.type == asn1::kInteger);
    }
    if (!begins_with_numbers) {
        return trace.fail(Status::type);
    }

    // PrivateKeyInfo ::= SEQUENCE { version INTEGER,
    //     privateKeyAlgorithm SEQUENCE { algorithm OBJECT IDENTIFIER, parameters NULL },
    //     privateKey OCTET STRING }
    const auto structure = [&](DerWriter &der) {
        der.wrapped(ZA_DER_ID_SEQUENCE, [&](DerWriter &sequence) {
            sequence.integer(0);
            sequence.wrapped(ZA_DER_ID_SEQUENCE, [](DerWriter &algorithm) {
                algorithm.element(ZA_DER_ID_OBJECTID, oid::kRsaEncryption);
                algorithm.element(ZA_DER_ID_NULL, {});
            });
            sequence.element(ZA_DER_ID_OCTETSTRING, pkcs1);
        });
    };
    return write_der(structure, out);
}

}  // namespace za::keys

using za::Status;

uint32_t ZA_Encode_PublicKey(const ZA_RSAPublicKey *key, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(za::keys::need_record(key));
        ZA_PASS(trace.need(outLen));
        za::Octets der;
        ZA_PASS(za::keys::encode_public_key(*key, der));
        za::hand_out(der.bytes(), out, outLen);
        return Status::ok;
    });
}

uint32_t ZA_Encode_PrivateKey(const ZA_RSAPrivateKey *key, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(za::keys::need_record(key));
        ZA_PASS(trace.need(outLen));
        za::Wiped<za::Octets> der;
        ZA_PASS(za::keys::encode_private_key(*key, der.value));
        za::hand_out(der.value.bytes(), out, outLen);
        return Status::ok;
    });
}

uint32_t ZA_Decode_PublicKey(ZA_RSAPublicKey *key, const uint8_t *der, int32_t derLen) {
    return trace.exported([&] {
        ZA_PASS(za::keys::need_record(key));
        if (derLen > 0) {
            ZA_PASS(trace.need(der));
        }
        return za::keys::decode_public_key(za::keys::view(der, derLen), *key);
    });
}

uint32_t ZA_Decode_PrivateKey(ZA_RSAPrivateKey *key, const uint8_t *der, int32_t derLen) {
    return trace.exported([&] {
        if (key == nullptr || (derLen > 0 && der == nullptr)) {
            trace.note(kDecodePrivateKey);
            ZA_PASS(za::keys::need_record(key));
            return trace.need(der);
        }
        return za::keys::decode_private_key(za::keys::view(der, derLen), *key);
    });
}

uint32_t ZI_PKCS1to8KEY(const uint8_t *pkcs1, uint32_t pkcs1Len, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(pkcs1, outLen));
        za::Wiped<za::Octets> der;
        ZA_PASS(za::keys::pkcs1_to_8({pkcs1, pkcs1Len}, der.value));
        za::hand_out(der.value.bytes(), out, outLen);
        return Status::ok;
    });
}
