// What the pieces have in common: times, fields, functions of callers, signatures.
#include "ocsp/za_ocsp_base.hpp"

#include <zacert.h>

#include "asn1/za_asn2_time.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_ocsp_base", za::kLongStyle};

}  // namespace

namespace za::ocsp {

using asn1::Builder;
using asn1::Children;
using asn1::Element;

void clear(ZA_OCSP_BASICRESPONSE &record) {
    clear(record.data.extensions);
    ZI_FreeAnybuf(record.data.responses);
    for (Anybuf *value : {&record.data.responderId.nameDer, &record.data.responderId.keyHash,
                          &record.data.responderId.hashArg, &record.algorithm, &record.signArg,
                          &record.signature, &record.certs, &record.der}) {
        za::clear(*value);
    }
    record = {};
}

Status replace_value(Anybuf &record, Bytes bytes) {
    Anybuf fresh{};
    ZA_PASS(set_value(fresh, bytes));
    za::clear(record);
    record = fresh;
    return Status::ok;
}

Status write_time(const TraceSource &source, const ZA_OCSP_TIME &time, Builder &out) {
    const Status status =
        time.utcFlag == 1 ? out.utc_time(time.value) : out.generalized_time(time.value);
    return status == Status::ok ? status : source.fail(status, "------------>ZAsn1_WriteTime");
}

Status read_time(const TraceSource &source, const Element &in, ZA_OCSP_TIME &out) {
    asn1::TimeFields fields;
    ZA_OCSP_TIME time{};
    time.utcFlag = in.type == asn1::kUtcTime ? 1 : 0;
    const Status status =
        time.utcFlag == 1 ? read_utc_time(in, fields) : read_generalized_time(in, fields);
    if (status != Status::ok) {
        return source.fail(status, time.utcFlag == 1 ? "------------>ZAsn1_ReadUtcTime"
                                                     : "------------>ZAsn1_ReadGeneralizedTime");
    }
    ZA_PASS(to_seconds(fields, time.value));
    out = time;
    return Status::ok;
}

Status open_sequence(const TraceSource &source, const Element &in, Children &out) {
    const Status status = read_sequence(in, out);
    return status == Status::ok ? status : source.fail(status, "------------>ZAsn1_ReadSequence");
}

Status take_explicit(const TraceSource &source, Children &fields, uint8_t identifier,
                     Element &out) {
    Element wrapper;
    Children inside;
    if (!take_optional(fields, identifier, wrapper)) {
        return Status::ok;
    }
    ZA_PASS(read_elements(source, wrapper, inside));
    if (!inside.next(out)) {
        return source.fail(Status::invalid_item);
    }
    return end_of(source, inside);
}

Status take_object_id(const TraceSource &source, Children &fields, Bytes &out,
                      const char *missing) {
    Element identifier;
    ZA_PASS(take_field(source, fields, ZA_DER_ID_OBJECTID, identifier, missing));
    const Status status = read_object_id(identifier, out);
    return status == Status::ok ? status : source.fail(status, "------------>ZAsn1_ReadObjectId");
}

Status take_octets(const TraceSource &source, Children &fields, Bytes &out, const char *missing) {
    Element octets;
    asn1::Content content;
    ZA_PASS(take_field(source, fields, ZA_DER_ID_OCTETSTRING, octets, missing));
    const Status status = read_string(octets, content);
    if (status != Status::ok) {
        return source.fail(status, "------------>ZAsn1_ReadOctetString");
    }
    out = content.octets;
    return Status::ok;
}

Status hash(const TraceSource &source, const CryptSlot &function, Bytes in, size_t room,
            const char *failed, Secret &out) {
    // Functions may write without looking at the room, so they are not called where there is none.
    if (room == 0) {
        return source.fail(Status::general, failed);
    }
    const Status status = call(source, function, in, room, Status::general, out);
    if (status != Status::ok) {
        return source.fail(status, failed);
    }
    return out.bytes().empty() ? source.fail(Status::general, failed) : Status::ok;
}

namespace {

Status sign(const TraceSource &source, const Signer &signer, Bytes to_sign, Secret &out) {
    constexpr size_t kRoom = 4096;
    constexpr Status kWrongLength = Status::invalid_signature_length;
    const Status status = call(source, signer.function, to_sign, kRoom, kWrongLength, out);
    if (status != Status::ok) {
        return source.fail(status, signer.failed);
    }
    return out.bytes().empty() ? source.fail(kWrongLength, signer.failed) : Status::ok;
}

}  // namespace

Status write_signature(const TraceSource &source, const Signer &signer, Bytes to_sign,
                       Secret &signature, Builder &out) {
    // signatureAlgorithm: the identifier alone, without the SEQUENCE of an AlgorithmIdentifier
    out.object_id(signer.algorithm);
    // signature: not a BIT STRING
    ZA_PASS(sign(source, signer, to_sign, signature));
    out.octet_string(signature.bytes());
    // certs [0] EXPLICIT SEQUENCE OF Certificate OPTIONAL
    const auto certificates = [&] { out.sequence([&] { out.raw(signer.certificates); }); };
    if (signer.has_certificates) {
        out.wrapped(context_tag(0), certificates);
    }
    return Status::ok;
}

Status read_signature(const TraceSource &source, Children &fields, Signature &out) {
    Element certificates;
    asn1::Content content;
    ZA_PASS(take_object_id(source, fields, out.algorithm,
                           "------------>The signature algorithm is null"));
    ZA_PASS(take_octets(source, fields, out.signature));
    ZA_PASS(take_explicit(source, fields, context_tag(0), certificates));
    out.has_certificates = !certificates.octets.empty();
    if (out.has_certificates) {
        Children inside;
        ZA_PASS(open_sequence(source, certificates, inside));
        ZA_PASS(read_string(certificates, content));
        out.certificates = content.octets;
    }
    return end_of(source, fields);
}

// The last line of this function has always been written so.
Status write_signature_block(const Signer &signer, Bytes to_sign, Secret &signature, Builder &out) {
    trace.note("============>ZI_EncodeOCSPSignature Begin");
    if (!signer.function.installed() || signer.algorithm.empty()) {
        return trace.fail(Status::invalid_item);
    }
    ZA_PASS(out.sequence([&] { return write_signature(trace, signer, to_sign, signature, out); }));
    trace.note("============>ZI_EncodeOCSPSugnature End");
    return Status::ok;
}

}  // namespace za::ocsp

using za::bytes_of;
using za::Chain;
using za::CryptSlot;
using za::Secret;
using za::Status;
using za::asn1::Builder;
using za::ocsp::Signer;
using za::ocsp::with_record;

uint32_t ZI_EncodeOCSPSignature(ZA_OCSP_SIGNATURE *record, Anybuf **out) {
    return with_record(trace, record, out, [&] {
        CryptSlot function;
        Builder built;
        Chain der;
        Secret signature;
        ZA_PASS(function.install(trace, record->signFunc, record->signArg.data,
                                 record->signArg.dataLen));
        const Signer signer{bytes_of(record->algorithm), function, record->certsFlag == 1,
                            bytes_of(record->certs), "------------>The Function is error"};
        ZA_PASS(write_signature_block(signer, bytes_of(record->toSign), signature, built));
        ZA_PASS(built.finish(der));
        ZA_PASS(za::ocsp::replace_value(record->signature, signature.bytes()));
        *out = der.release();
        return Status::ok;
    });
}
