#include "keys/za_ext_public_key.hpp"

#include <zacert.h>

#include "keys/za_ext_curves.hpp"
#include "keys/za_ext_ecc_key.hpp"
#include "keys/za_ext_number.hpp"
#include "names/za_low_oid_catalogue.hpp"
#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_ext"};

}  // namespace

namespace za::keys {
namespace {

// How the parameters of a key are kept; 1 to 7 are the values of an INTEGER.
constexpr uint32_t kKindOther = 0;
constexpr uint32_t kMostIntegerKind = 7;
constexpr uint32_t kKindExplicit = 11;
constexpr uint32_t kKindObjectId = 12;

uint32_t kind_of_integer(Bytes content) {
    const Bytes value = significant(content);
    return value.size() == 1 && value[0] <= kMostIntegerKind ? value[0] : kKindOther;
}

Status read_parameters(const asn1::Element &in, PublicKeyInfo &out) {
    switch (in.type) {
        case asn1::kNull:
            return Status::ok;
        case asn1::kObjectId:
            ZA_TRY(ZAsn1_ReadObjectId, asn1::read_object_id(in, out.parameters));
            out.kind = kKindObjectId;
            return Status::ok;
        case asn1::kInteger: {
            asn1::Content number;
            ZA_TRY(ZAsn1_ReadIntegerArray, asn1::read_integer_array(in, number));
            out.kind = kind_of_integer(number.octets);
            break;
        }
        case asn1::kSequence:
            out.kind = kKindExplicit;
            break;
        default:
            break;
    }
    out.parameters = in.octets;
    return Status::ok;
}

// AlgorithmIdentifier ::= SEQUENCE { algorithm OBJECT IDENTIFIER, parameters ANY OPTIONAL }
Status read_algorithm(const asn1::Element &in, PublicKeyInfo &out) {
    asn1::Children fields;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(in, fields));
    asn1::Element field;
    if (!fields.next(field)) {
        return trace.fail(Status::item_missing);
    }
    ZA_TRY(ZAsn1_ReadObjectId, asn1::read_object_id(field, out.algorithm));
    return fields.next(field) ? read_parameters(field, out) : Status::ok;
}

// Fills the record of a key of 256 bits. Whatever the library does not know about the curve is left
// out, because those who verify need the point above all.
void fill_ecc(PublicKeyInfo &info) {
    if (info.raw_bits.size() != kPoint) {
        return;
    }
    ZACERT_EccCurve curve;
    const bool is_curve = find_curve(info.algorithm, curve);
    if (!is_curve && !equal(info.algorithm, oid::kEcPublicKey)) {
        return;
    }
    info.has_ecc = read_point(info.raw_bits, info.ecc.x, info.ecc.y);
    if (!info.has_ecc) {
        return;
    }
    if (info.kind == kKindObjectId) {
        find_curve(info.parameters, curve);
    } else if (info.kind == kKindExplicit) {
        read_explicit_curve(asn1::Element(info.parameters), curve);
    }
    info.ecc.curve = curve;
}

void give(Octets &octets, uint32_t type, Anybuf &out) {
    out.dataLen = to_u32(octets.size());
    out.data = octets.release();
    out.dataType = type;
}

Status keep(const PublicKeyInfo &info, ZI_PubKey &out) {
    Octets algorithm;
    Octets parameters;
    Octets key_bits;
    Octets raw_bits;
    ZA_PASS(algorithm.assign(info.algorithm));
    ZA_PASS(parameters.assign(info.parameters));
    ZA_PASS(raw_bits.assign(info.raw_bits));
    if (info.has_ecc) {
        ZA_TRY(ZACERT_EncodeEccPubKey, encode_ecc_public_key(info.ecc, key_bits));
    } else {
        ZA_PASS(key_bits.assign(info.raw_bits));
    }
    const uint32_t parameters_type =
        info.kind == kKindObjectId ? asn1::kObjectId : asn1::Element(info.parameters).type;

    ZI_PubKey key{};
    key.tag = asn1::kSequence;
    key.keyKind = info.kind;
    key.hasEcc = info.has_ecc ? 1 : 0;
    key.ecc = info.ecc;
    give(algorithm, asn1::kObjectId, key.algorithm);
    give(parameters, parameters_type, key.parameters);
    // Without the tag of a BIT STRING: readers would take their first octet for its unused bits.
    give(key_bits, 0, key.keyBits);
    give(raw_bits, 0, key.rawBits);
    key.rawBits.unusedBits = info.unused_bits;
    out = key;
    return Status::ok;
}

}  // namespace

// SubjectPublicKeyInfo ::= SEQUENCE { algorithm AlgorithmIdentifier, subjectPublicKey BIT STRING }
Status decode_public_key_info(const asn1::Element &spki, PublicKeyInfo &out) {
    asn1::Children fields;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(spki, fields));
    asn1::Element algorithm;
    asn1::Element key;
    if (!fields.next(algorithm) || !fields.next(key)) {
        return trace.fail(Status::item_missing);
    }
    PublicKeyInfo info;
    ZA_PASS(read_algorithm(algorithm, info));
    asn1::Content bits;
    ZA_TRY(ZAsn1_ReadBitString, asn1::read_bit_string(key, bits));
    info.raw_bits = bits.octets;
    info.unused_bits = bits.unused_bits;
    fill_ecc(info);
    out = info;
    return Status::ok;
}

}  // namespace za::keys

uint32_t ZI_DecodePubKey(const Anybuf *spki, ZI_PubKey *out) {
    return trace.exported([&] {
        ZA_PASS(trace.need(spki, out));
        za::keys::PublicKeyInfo info;
        ZA_PASS(za::keys::decode_public_key_info(za::asn1::Element(*spki), info));
        return za::keys::keep(info, *out);
    });
}
