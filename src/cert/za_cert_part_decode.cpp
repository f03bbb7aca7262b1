#include "cert/za_cert_part_decode.hpp"

#include "keys/za_ext_ecc_key.hpp"
#include "keys/za_ext_public_key.hpp"

#include <array>

namespace za::cert {

using asn1::Children;
using asn1::Element;
using asn1::Implicit;

Status keep_object(const Walk &walk, Bytes in, Kept &kept, Bytes &whole) {
    const TraceSource &trace = walk.trace;
    if (in.data() == nullptr) {
        return trace.fail(Status::general);
    }
    asn1::Header header;
    ZA_TRY(ZAsn1_GetCertLength, asn1::read_header(in, header));
    if (header.total > in.size()) {
        return trace.fail(Status::length_not_equal);
    }
    return kept.keep(trace, in.first(header.total), whole);
}

Status take_field(const Walk &walk, Children &fields, Element &out) {
    if (!fields.next(out)) {
        return walk.trace.fail(walk.missing);
    }
    return Status::ok;
}

// AlgorithmIdentifier ::= SEQUENCE { algorithm OBJECT IDENTIFIER, parameters ANY OPTIONAL }
Status decode_algorithm(const Walk &walk, Children fields, Field &out) {
    const TraceSource &trace = walk.trace;
    Element algorithm;
    Bytes oid;
    ZA_PASS(take_field(walk, fields, algorithm));
    ZA_TRY(ZAsn1_ReadObjectId, asn1::read_object_id(algorithm, oid));
    out.refer(oid);
    return Status::ok;
}

Status decode_name(const Walk &walk, const Element &name, Name &out) {
    const TraceSource &trace = walk.trace;
    out.der.refer(name.octets);
    ZA_TRY(ZI_DecodeIssuerSubject, names::decode_issuer_subject(name, out.entries));
    return Status::ok;
}

// Time ::= CHOICE { utcTime UTCTime, generalTime GeneralizedTime }
Status decode_time(const Walk &walk, const Element &time, Time &out) {
    const TraceSource &trace = walk.trace;
    asn1::TimeFields fields;
    if (time.type == asn1::kGeneralizedTime &&
        asn1::read_generalized_time(time, fields) == Status::ok) {
        out.decoded(fields, false);
        return Status::ok;
    }
    ZA_TRY(ZAsn1_ReadUtcTime, asn1::read_utc_time(time, fields));
    out.decoded(fields, true);
    return Status::ok;
}

namespace {

// How long parameters say what they are. Thirty octets say nothing: that gap has always been there,
// and certificates were read by it.
uint32_t key_kind(const keys::PublicKeyInfo &key) {
    const size_t length = key.parameters.size();
    if (length >= 31) {
        return kExplicitCurve;
    }
    if (length >= 6 && length <= 29) {
        return kNamedCurve;
    }
    return key.kind;
}

}  // namespace

Status decode_public_key(const Walk &walk, const Element &info, PublicKey &out) {
    const TraceSource &trace = walk.trace;
    keys::PublicKeyInfo key;
    ZA_TRY(ZI_DecodePubKey, keys::decode_public_key_info(info, key));
    out.algorithm.refer(key.algorithm);
    out.parameters.refer(key.parameters.empty() ? Bytes{} : key.parameters);
    out.raw_bits.refer(key.raw_bits);
    out.kind = key_kind(key);
    if (!key.has_ecc) {
        out.bits.refer(key.raw_bits);
        return Status::ok;
    }
    Octets record;
    ZA_TRY(ZACERT_EncodeEccPubKey, keys::encode_ecc_public_key(key.ecc, record));
    out.bits.take(std::move(record));
    return Status::ok;
}

// signatureAlgorithm AlgorithmIdentifier, signatureValue BIT STRING
Status decode_signature(const Walk &walk, Children fields, const char *text, Field &algorithm,
                        Field &signature) {
    const TraceSource &trace = walk.trace;
    Element field;
    Children sequence;
    asn1::Content bits;
    if (!fields.next(field)) {
        return Status::ok;
    }
    ZA_TRY_AS(text, asn1::read_sequence(field, sequence));
    ZA_PASS(decode_algorithm(walk, sequence, algorithm));
    if (!fields.next(field)) {
        return Status::ok;
    }
    ZA_TRY(ZAsn1_ReadBitString, asn1::read_bit_string(field, bits));
    signature.refer(bits.octets);
    return Status::ok;
}

// [n] EXPLICIT SEQUENCE OF Extension
Status open_extensions(const Walk &walk, const Element &wrapper, bool &found, Children &out) {
    const TraceSource &trace = walk.trace;
    Element inner;
    uint32_t tag = 0;
    ZA_TRY(ZAsn1_ReadExplicit, asn1::read_explicit(wrapper, inner, tag));
    found = !inner.octets.empty();
    if (found) {
        ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(inner, out));
    }
    return Status::ok;
}

// Extension ::= SEQUENCE { extnID OBJECT IDENTIFIER, critical BOOLEAN DEFAULT FALSE,
//     extnValue OCTET STRING }
Status open_extension(const Walk &walk, Children elements, Extension &out) {
    const TraceSource &trace = walk.trace;
    Extension extension;
    Element field;
    asn1::Content value;
    ZA_PASS(take_field(walk, elements, field));
    ZA_TRY(ZAsn1_ReadObjectId, asn1::read_object_id(field, extension.oid));
    ZA_PASS(take_field(walk, elements, field));
    if (field.type == asn1::kBoolean) {
        ZA_TRY(ZAsn1_ReadBoolean, asn1::read_boolean(field, extension.critical));
        ZA_PASS(take_field(walk, elements, field));
    }
    ZA_TRY(ZAsn1_ReadOctetString, asn1::read_string(field, value));
    extension.value = value.octets;
    out = extension;
    return Status::ok;
}

Status find_implicit(const Walk &walk, Children children, uint32_t type, bool &found,
                     Implicit &out) {
    const TraceSource &trace = walk.trace;
    found = false;
    for (Element child; !found && children.next(child);) {
        if (child.type == type) {
            ZA_TRY(ZAsn1_ReadImplicit, asn1::read_implicit(child, out));
            found = true;
        }
    }
    return Status::ok;
}

// SEQUENCE { distributionPoint [0] { fullName [0] GeneralNames, ... }, ... }, of which the first
// URI, [6], counts.
Status find_uri(const Walk &walk, const Element &point, bool &found, Bytes &out) {
    constexpr std::array kPath{asn1::constructed(0), asn1::constructed(0), asn1::primitive(6)};
    const TraceSource &trace = walk.trace;
    Implicit opened;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(point, opened.children));
    for (const uint32_t type : kPath) {
        ZA_PASS(find_implicit(walk, opened.children, type, found, opened));
        if (!found) {
            return Status::ok;
        }
    }
    out = opened.content.octets;
    return Status::ok;
}

}  // namespace za::cert
