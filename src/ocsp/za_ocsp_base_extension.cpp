// Extensions of requests and responses.
//
//   Extension ::= SEQUENCE { extnID OBJECT IDENTIFIER, critical BOOLEAN DEFAULT FALSE,
//       extnValue OCTET STRING }
#include <zacert.h>

#include "asn1/za_asn2_writer.hpp"
#include "names/za_low_oid_catalogue.hpp"
#include "ocsp/za_ocsp_base.hpp"

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_ocsp_base", za::kLongStyle};

}  // namespace

namespace za::ocsp {

using asn1::Builder;
using asn1::Children;
using asn1::Element;

void clear(ZA_OCSP_EXTENSION &record) {
    for (Anybuf *value :
         {&record.nonceOid, &record.nonce, &record.crlId.oid, &record.crlId.url,
          &record.acceptableOid, &record.cutoffOid, &record.crlEntryOid, &record.crlEntry,
          &record.serviceOid, &record.serviceIssuer, &record.serviceLocator}) {
        za::clear(*value);
    }
    ZI_FreeAnybuf(record.acceptable);
    record = {};
}

namespace {

// A flag without identifier or value is an extension that somebody forgot to set.
template <class Value>
Status write_extension(const Anybuf &oid, bool has_value, uint8_t critical, const Value &value,
                       Builder &out) {
    if (bytes_of(oid).empty() || !has_value) {
        return trace.fail(Status::invalid_item, "------------>The ObjectId is invalid Item");
    }
    return out.sequence([&] {
        out.object_id(bytes_of(oid));
        if (critical != 0) {
            out.boolean(true);
        }
        return out.wrapped(ZA_DER_ID_OCTETSTRING, value);
    });
}

// AcceptableResponses ::= SEQUENCE OF OBJECT IDENTIFIER
Status write_acceptable(const ZA_OCSP_EXTENSION &record, Builder &out) {
    const auto types = [&] {
        for (const Anybuf *type = record.acceptable; type != nullptr; type = type->next) {
            out.object_id(bytes_of(*type));
        }
    };
    const auto value = [&] {
        out.sequence(types);
        return Status::ok;
    };
    return write_extension(record.acceptableOid, record.acceptable != nullptr,
                           record.acceptableCritical, value, out);
}

// ArchiveCutoff ::= GeneralizedTime
Status write_cutoff(const ZA_OCSP_EXTENSION &record, Builder &out) {
    const auto value = [&] { return write_time(trace, record.cutoff, out); };
    return write_extension(record.cutoffOid, true, record.cutoffCritical, value, out);
}

// Nonce: the octets themselves, without an OCTET STRING of their own
Status write_nonce(const ZA_OCSP_EXTENSION &record, Builder &out) {
    const Bytes nonce = bytes_of(record.nonce);
    const auto value = [&] {
        out.raw(nonce);
        return Status::ok;
    };
    return write_extension(record.nonceOid, !nonce.empty(), record.nonceCritical, value, out);
}

Status write_crl_entry(const ZA_OCSP_EXTENSION &record, Builder &out) {
    const Bytes entry = bytes_of(record.crlEntry);
    const auto value = [&] {
        out.raw(entry);
        return Status::ok;
    };
    return write_extension(record.crlEntryOid, !entry.empty(), record.crlEntryCritical, value, out);
}

// ServiceLocator ::= SEQUENCE { issuer Name, locator AuthorityInfoAccessSyntax }
Status write_service_locator(const ZA_OCSP_EXTENSION &record, Builder &out) {
    const Bytes issuer = bytes_of(record.serviceIssuer);
    const Bytes locator = bytes_of(record.serviceLocator);
    const auto value = [&] {
        out.sequence([&] {
            out.raw(issuer);
            out.raw(locator);
        });
        return Status::ok;
    };
    return write_extension(record.serviceOid, !issuer.empty() || !locator.empty(),
                           record.serviceCritical, value, out);
}

// CrlID ::= SEQUENCE { crlUrl [0] EXPLICIT IA5String OPTIONAL,
//     crlNum [1] EXPLICIT INTEGER OPTIONAL, crlTime [2] EXPLICIT GeneralizedTime OPTIONAL }
Status write_crl_fields(const ZA_OCSP_CRLID &record, Builder &out) {
    if (record.urlFlag == 1) {
        out.wrapped(context_tag(0),
                    [&] { out.element(ZA_DER_ID_IA5STRING, bytes_of(record.url)); });
    }
    if (record.numFlag == 1) {
        out.wrapped(context_tag(1), [&] { out.integer(record.num); });
    }
    if (record.timeFlag == 1) {
        return out.wrapped(context_tag(2), [&] { return write_time(trace, record.time, out); });
    }
    return Status::ok;
}

Status write_crl_reference(const ZA_OCSP_CRLID &record, Builder &out) {
    const bool any = record.urlFlag == 1 || record.numFlag == 1 || record.timeFlag == 1;
    if (!bytes_of(record.oid).empty() && !any) {
        return trace.fail(Status::invalid_item, "------------>The input item is invalid");
    }
    const auto value = [&] { return out.sequence([&] { return write_crl_fields(record, out); }); };
    return write_extension(record.oid, any, record.critical, value, out);
}

// Those that RFC 6960 has, in the order that readers know.
Status write_all(const ZA_OCSP_EXTENSION &record, Builder &out) {
    ZA_PASS(record.acceptableFlag == 1 ? write_acceptable(record, out) : Status::ok);
    ZA_PASS(record.cutoffFlag == 1 ? write_cutoff(record, out) : Status::ok);
    ZA_PASS(record.crlIdFlag == 1 ? ZA_BODY(ZI_EncodeOCSPCrlId, write_crl_id(record.crlId, out))
                                  : Status::ok);
    ZA_PASS(record.nonceFlag == 1 ? write_nonce(record, out) : Status::ok);
    ZA_PASS(record.crlEntryFlag == 1 ? write_crl_entry(record, out) : Status::ok);
    return record.serviceFlag == 1 ? write_service_locator(record, out) : Status::ok;
}

struct Extension {
    Bytes oid;
    bool critical = false;
    Element value;
    Bytes octets;  // inside the value
};

Status read_extension(const Element &in, Extension &out) {
    Children fields;
    Element critical;
    asn1::Content content;
    uint8_t flag = 0;
    ZA_PASS(open_sequence(trace, in, fields));
    ZA_PASS(take_object_id(trace, fields, out.oid));
    if (take_optional(fields, ZA_DER_ID_BOOLEAN, critical)) {
        ZA_PASS(ZA_BODY(ZAsn1_ReadBoolean, read_boolean(critical, flag)));
    }
    out.critical = flag != 0;
    if (!fields.next(out.value)) {
        return trace.fail(Status::invalid_item);
    }
    ZA_PASS(ZA_BODY(ZAsn1_ReadOctetString, read_string(out.value, content)));
    out.octets = content.octets;
    return end_of(trace, fields);
}

// The value of an extension as an element: inside its OCTET STRING, or bare.
Element value_of(const Extension &extension) {
    return extension.value.type == asn1::kOctetString ? Element(extension.octets) : extension.value;
}

Status read_url(Children &fields, ZA_OCSP_CRLID &record) {
    Element url;
    asn1::Content content;
    ZA_PASS(take_explicit(trace, fields, context_tag(0), url));
    if (url.octets.empty()) {
        return Status::ok;
    }
    ZA_PASS(ZA_BODY(ZAsn1_ReadIa5String, read_string(url, content)));
    ZA_PASS(replace_value(record.url, content.octets));
    record.urlFlag = 1;
    return Status::ok;
}

Status read_crl_fields(const Element &in, ZA_OCSP_CRLID &record) {
    Children fields;
    Element number;
    Element time;
    ZA_PASS(open_sequence(trace, in, fields));
    ZA_PASS(read_url(fields, record));
    ZA_PASS(take_explicit(trace, fields, context_tag(1), number));
    if (!number.octets.empty()) {
        ZA_PASS(ZA_BODY(ZAsn1_ReadInteger, read_integer(number, record.num)));
        record.numFlag = 1;
    }
    ZA_PASS(take_explicit(trace, fields, context_tag(2), time));
    if (!time.octets.empty()) {
        ZA_PASS(read_time(trace, time, record.time));
        record.timeFlag = 1;
    }
    return end_of(trace, fields);
}

Status read_crl_reference(const Element &in, ZA_OCSP_CRLID &record) {
    Extension extension;
    ZA_PASS(read_extension(in, extension));
    ZA_PASS(replace_value(record.oid, extension.oid));
    record.critical = extension.critical ? 1 : 0;
    return read_crl_fields(value_of(extension), record);
}

Status take_nonce(const Extension &in, ZA_OCSP_EXTENSION &record) {
    ZA_PASS(replace_value(record.nonceOid, in.oid));
    ZA_PASS(replace_value(record.nonce, in.octets));
    record.nonceCritical = in.critical ? 1 : 0;
    record.nonceFlag = 1;
    return Status::ok;
}

Status take_acceptable(const Extension &in, ZA_OCSP_EXTENSION &record) {
    Children types;
    Chain chain;
    ZA_PASS(open_sequence(trace, value_of(in), types));
    while (!types.empty()) {
        Bytes type;
        ZA_PASS(take_object_id(trace, types, type));
        ZA_PASS(asn1::to_record({type, asn1::kObjectId}, chain));
    }
    ZA_PASS(replace_value(record.acceptableOid, in.oid));
    ZI_FreeAnybuf(record.acceptable);
    record.acceptable = chain.release();
    record.acceptableCritical = in.critical ? 1 : 0;
    record.acceptableFlag = 1;
    return Status::ok;
}

Status take_cutoff(const Extension &in, ZA_OCSP_EXTENSION &record) {
    ZA_PASS(read_time(trace, value_of(in), record.cutoff));
    ZA_PASS(replace_value(record.cutoffOid, in.oid));
    record.cutoffCritical = in.critical ? 1 : 0;
    record.cutoffFlag = 1;
    return Status::ok;
}

Status take_crl_entry(const Extension &in, ZA_OCSP_EXTENSION &record) {
    ZA_PASS(replace_value(record.crlEntryOid, in.oid));
    ZA_PASS(replace_value(record.crlEntry, value_of(in).octets));
    record.crlEntryCritical = in.critical ? 1 : 0;
    record.crlEntryFlag = 1;
    return Status::ok;
}

Status take_service_locator(const Extension &in, ZA_OCSP_EXTENSION &record) {
    Children fields;
    Element issuer;
    Element locator;
    ZA_PASS(open_sequence(trace, value_of(in), fields));
    fields.next(issuer);
    fields.next(locator);
    ZA_PASS(replace_value(record.serviceOid, in.oid));
    ZA_PASS(replace_value(record.serviceIssuer, issuer.octets));
    ZA_PASS(replace_value(record.serviceLocator, locator.octets));
    record.serviceCritical = in.critical ? 1 : 0;
    record.serviceFlag = 1;
    return end_of(trace, fields);
}

struct Known {
    Bytes oid;
    Status (*take)(const Extension &, ZA_OCSP_EXTENSION &);
};

constexpr std::array kKnown{
    Known{oid::kOcspNonce, take_nonce},
    Known{oid::kOcspResponse, take_acceptable},
    Known{oid::kOcspArchiveCutoff, take_cutoff},
    Known{oid::kOcspServiceLocator, take_service_locator},
    Known{oid::kReasonCode, take_crl_entry},
};

// Those that are not known are passed over.
Status take_extension(const Element &in, ZA_OCSP_EXTENSION &record) {
    Extension extension;
    ZA_PASS(read_extension(in, extension));
    if (equal(extension.oid, oid::kOcspCrl)) {
        record.crlIdFlag = 1;
        return ZA_BODY(ZI_DecodeOCSPCrlId, read_crl_id(in, record.crlId));
    }
    for (const Known &known : kKnown) {
        if (equal(known.oid, extension.oid)) {
            return known.take(extension, record);
        }
    }
    return Status::ok;
}

Status read_all(const Element &in, ZA_OCSP_EXTENSION &record) {
    Children extensions;
    Element extension;
    ZA_PASS(open_sequence(trace, in, extensions));
    while (extensions.next(extension)) {
        ZA_PASS(take_extension(extension, record));
    }
    return Status::ok;
}

}  // namespace

Status write_crl_id(const ZA_OCSP_CRLID &record, Builder &out) {
    return trace.announced([&] { return write_crl_reference(record, out); }, "ZI_EncodeOCSPCrlId");
}

Status read_crl_id(const Element &in, ZA_OCSP_CRLID &record) {
    return trace.announced([&] { return read_crl_reference(in, record); }, "ZI_DecodeOCSPCrlId");
}

Status write_extensions(const ZA_OCSP_EXTENSION &record, Builder &out) {
    const auto all = [&] { return out.sequence([&] { return write_all(record, out); }); };
    return trace.announced(all, "ZI_EncodeOCSPExtension");
}

Status read_extensions(const Element &in, ZA_OCSP_EXTENSION &record) {
    return trace.announced([&] { return read_all(in, record); }, "ZI_DecodeOCSPExtension");
}

}  // namespace za::ocsp

using za::Status;
using za::asn1::Builder;
using za::asn1::Element;
using za::ocsp::with_record;

uint32_t ZI_EncodeOCSPCrlId(ZA_OCSP_CRLID *record, Anybuf **out) {
    return with_record(trace, record, out, [&] {
        return za::asn1::hand_out_built(
            out, [&](Builder &built) { return za::ocsp::write_crl_id(*record, built); });
    });
}

uint32_t ZI_DecodeOCSPCrlId(ZA_OCSP_CRLID *record, Anybuf *in) {
    return with_record(trace, record, in,
                       [&] { return za::ocsp::read_crl_id(Element(*in), *record); });
}

uint32_t ZI_InitOCSPExtension(ZA_OCSP_EXTENSION *record) {
    return trace.exported([&] {
        ZA_PASS(trace.need(record));
        *record = {};
        return Status::ok;
    });
}

uint32_t ZI_FreeOCSPExtension(ZA_OCSP_EXTENSION *record) {
    return trace.exported([&] {
        ZA_PASS(trace.need(record));
        za::ocsp::clear(*record);
        return Status::ok;
    });
}

uint32_t ZI_EncodeOCSPExtension(ZA_OCSP_EXTENSION *record, Anybuf **out) {
    return with_record(trace, record, out, [&] {
        return za::asn1::hand_out_built(
            out, [&](Builder &built) { return za::ocsp::write_extensions(*record, built); });
    });
}

uint32_t ZI_DecodeOCSPExtension(ZA_OCSP_EXTENSION *record, Anybuf *in) {
    return with_record(trace, record, in,
                       [&] { return za::ocsp::read_extensions(Element(*in), *record); });
}
