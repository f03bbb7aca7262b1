// The identifier of a responder, and the status of a certificate.
#include <zacert.h>

#include "ocsp/za_ocsp_base.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_ocsp_base", za::kLongStyle};

}  // namespace

namespace za::ocsp {

using asn1::Builder;
using asn1::Children;
using asn1::Element;

namespace {

bool has_name(const ZA_OCSP_RESPONDERID &record) {
    return record.nameRecordFlag == 1 || record.nameDerFlag == 1;
}

bool has_key_hash(const ZA_OCSP_RESPONDERID &record) {
    return record.keyHashComputeFlag == 1 || record.keyHashGivenFlag == 1;
}

Status check(const ZA_OCSP_RESPONDERID &record, const CryptSlot &function) {
    if (!has_name(record) && !has_key_hash(record)) {
        return trace.fail(Status::invalid_item, "------------>The name and the key are null");
    }
    if (record.nameRecordFlag == 1 && record.nameDerFlag == 1) {
        return trace.fail(Status::general);
    }
    const bool both = record.keyHashComputeFlag == 1 && record.keyHashGivenFlag == 1;
    const bool no_function = record.keyHashComputeFlag == 1 && !function.installed();
    return both || no_function ? trace.fail(Status::invalid_item) : Status::ok;
}

Status write_name(ZA_OCSP_RESPONDERID &record, Builder &out) {
    if (record.nameDerFlag == 1) {
        out.raw(bytes_of(record.nameDer));
    } else if (record.nameRecordFlag == 1) {
        ZA_PASS(ZA_BODY(ZI_EncodeIssuerSuject,
                        names::write_cert_issuer_suject(record.name, nullptr, out)));
    }
    return Status::ok;
}

Status write_key_hash(const ZA_OCSP_RESPONDERID &record, const CryptSlot &function, Builder &out) {
    if (record.keyHashGivenFlag == 1) {
        out.octet_string(bytes_of(record.keyHash));
    } else if (record.keyHashComputeFlag == 1) {
        const Bytes key(record.publicKey, record.publicKey == nullptr ? 0 : record.publicKeyLen);
        Secret made;
        ZA_PASS(hash(trace, function, key, record.hashBufLen,
                     "------------>The hash function is error", made));
        out.octet_string(made.bytes());
    }
    return Status::ok;
}

// SEQUENCE { Name OPTIONAL, KeyHash OCTET STRING OPTIONAL }, where RFC 6960 has a CHOICE
Status write_both(ZA_OCSP_RESPONDERID &record, const CryptSlot &function, Builder &out) {
    ZA_PASS(check(record, function));
    return out.sequence([&] {
        ZA_PASS(write_name(record, out));
        return write_key_hash(record, function, out);
    });
}

// Kept in both forms.
Status take_name(Children &fields, ZA_OCSP_RESPONDERID &record, names::NameList &name) {
    Element der;
    names::NameList fresh;
    if (!take_optional(fields, ZA_DER_ID_SEQUENCE, der)) {
        return Status::ok;
    }
    ZA_PASS(ZA_BODY(ZI_DecodeIssuerSubject, names::decode_issuer_subject(der, fresh)));
    ZA_PASS(replace_value(record.nameDer, der.octets));
    name = std::move(fresh);
    record.nameRecordFlag = 1;
    record.nameDerFlag = 1;
    return Status::ok;
}

Status read_both(const Element &in, ZA_OCSP_RESPONDERID &record, names::NameList &name) {
    Children fields;
    Bytes key_hash;
    ZA_PASS(open_sequence(trace, in, fields));
    ZA_PASS(take_name(fields, record, name));
    if (record.nameDerFlag == 1 && fields.empty()) {
        return Status::ok;
    }
    ZA_PASS(take_octets(trace, fields, key_hash));
    ZA_PASS(replace_value(record.keyHash, key_hash));
    record.keyHashGivenFlag = 1;
    return end_of(trace, fields);
}

// revocationReason [0] EXPLICIT CRLReason OPTIONAL
Status read_reason(Children &fields, ZA_OCSP_CERTSTATUS &record) {
    Element reason;
    asn1::Content content;
    ZA_PASS(take_explicit(trace, fields, context_tag(0), reason));
    if (reason.octets.empty()) {
        return end_of(trace, fields);
    }
    ZA_PASS(ZA_BODY(ZAsn1_ReadEnumerated, read_string(reason, content)));
    ZA_PASS(replace_value(record.reason, content.octets));
    record.reasonFlag = 1;
    return end_of(trace, fields);
}

// revoked [1] IMPLICIT RevokedInfo; some write the SEQUENCE inside the tag as well
Status read_revoked(const Element &in, ZA_OCSP_CERTSTATUS &record) {
    Children fields;
    Element inner;
    ZA_PASS(read_elements(trace, in, fields));
    if (take_optional(fields, ZA_DER_ID_SEQUENCE, inner)) {
        ZA_PASS(end_of(trace, fields));
        ZA_PASS(open_sequence(trace, inner, fields));
    }
    // revocationTime GeneralizedTime
    Element time;
    if (!fields.next(time)) {
        return trace.fail(Status::invalid_item);
    }
    ZA_PASS(read_time(trace, time, record.revocationTime));
    record.revokedFlag = 1;
    return read_reason(fields, record);
}

Status read_good(const Element &in, ZA_OCSP_CERTSTATUS &record) {
    asn1::Implicit found;
    ZA_PASS(ZA_BODY(ZAsn1_ReadImplicit, read_implicit(in, found)));
    record.goodFlag = 1;
    return Status::ok;
}

Status read_unknown(const Element &in, ZA_OCSP_CERTSTATUS &record) {
    asn1::Content content;
    ZA_PASS(ZA_BODY(ZAsn1_ReadOctetString, read_string(in, content)));
    ZA_PASS(replace_value(record.unknown, content.octets));
    record.unknownFlag = 1;
    return Status::ok;
}

// Whether constructed or not.
Status read_choice(const Element &in, ZA_OCSP_CERTSTATUS &record) {
    const uint8_t identifier = in.octets.empty() ? 0 : in.octets[0];
    switch (identifier & ~uint32_t{asn1::kConstructed}) {
        case kGood:
            return read_good(in, record);
        case kRevoked & ~uint32_t{asn1::kConstructed}:
            return read_revoked(in, record);
        case kUnknown:
            return read_unknown(in, record);
        default:
            return trace.fail(Status::invalid_item,
                              "-------------->The certStatus is invalid item");
    }
}

Status read_status(const Element &in, ZA_OCSP_CERTSTATUS &record) {
    if (in.type != asn1::kSequence) {
        return read_choice(in, record);
    }
    Children inside;
    Element choice;
    ZA_PASS(open_sequence(trace, in, inside));
    inside.next(choice);
    return read_choice(choice, record);
}

}  // namespace

void clear(ZA_OCSP_CERTSTATUS &record) {
    za::clear(record.reason);
    za::clear(record.unknown);
    record = {};
}

Status write_responder_id(ZA_OCSP_RESPONDERID &record, const CryptSlot &function, Builder &out) {
    return trace.announced([&] { return write_both(record, function, out); },
                           "ZI_EncodeResponseId");
}

Status read_responder_id(const Element &in, ZA_OCSP_RESPONDERID &record, names::NameList &name) {
    return trace.announced([&] { return read_both(in, record, name); }, "ZI_DecodeResponseId");
}

Status hand_over(const names::NameList &name, ZI_Name &record) {
    names::CallerEntries entries;
    ZA_PASS(entries.copy(name));
    ZI_FreeName(record.first);
    record.first = entries.release();
    return Status::ok;
}

Status read_cert_status(const Element &in, ZA_OCSP_CERTSTATUS &record) {
    return trace.announced([&] { return read_status(in, record); }, "ZI_DecodeCertStatus");
}

}  // namespace za::ocsp

using za::Status;
using za::asn1::Element;
using za::ocsp::with_record;

uint32_t ZI_EncodeResponseId(ZA_OCSP_RESPONDERID *record, Anybuf **out) {
    return with_record(trace, record, out, [&] {
        za::CryptSlot function;
        ZA_PASS(function.install(trace, record->hashFunc, record->hashArg.data,
                                 record->hashArg.dataLen));
        return za::asn1::hand_out_built(out, [&](za::asn1::Builder &built) {
            return za::ocsp::write_responder_id(*record, function, built);
        });
    });
}

uint32_t ZI_DecodeResponseId(ZA_OCSP_RESPONDERID *record, Anybuf *in) {
    return with_record(trace, record, in, [&] {
        return za::ocsp::read_with_name(record->name, [&](za::names::NameList &name) {
            return za::ocsp::read_responder_id(Element(*in), *record, name);
        });
    });
}

// Statuses are written with the entries that they stand in.
uint32_t ZI_EncodeCertStatus(ZA_OCSP_CERTSTATUS * /*record*/, Anybuf ** /*out*/) {
    return trace.exported([] { return trace.fail(Status::invalid_item); });
}

uint32_t ZI_DecodeCertStatus(ZA_OCSP_CERTSTATUS *record, Anybuf *in) {
    return with_record(trace, record, in,
                       [&] { return za::ocsp::read_cert_status(Element(*in), *record); });
}
