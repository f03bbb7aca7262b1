// Requests between their context and DER, and what callers do with them.
#include "ocsp/za_ocsp_standard_request.hpp"

#include <zacert/ocsp.h>

#include "names/za_low_oid_catalogue.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_ocsp_standard", za::kLongStyle};

}  // namespace

namespace za::ocsp {

using asn1::Builder;
using asn1::Children;
using asn1::Element;

namespace {

Status write_version(const Request &request, Builder &out) {
    if (!request.has_version) {
        return Status::ok;
    }
    if (request.version < 0) {
        return trace.fail(Status::invalid_item, "------------>The Version is InvalidItem");
    }
    out.wrapped(context_tag(0), [&] { out.integer(static_cast<uint32_t>(request.version)); });
    return Status::ok;
}

// requestorName [1] EXPLICIT Name: without the tag of a GeneralName's choice
Status write_requestor(Request &request, Builder &out) {
    constexpr const char *kInvalidName = "------------>The issuer name is invalid";
    if (!request.requestor_der.empty()) {
        out.wrapped(context_tag(1), [&] { out.raw(request.requestor_der.bytes()); });
        return Status::ok;
    }
    if (request.requestor.empty()) {
        return Status::ok;
    }
    const Status status = out.wrapped(context_tag(1), [&] {
        return names::write_cert_issuer_suject(*request.requestor.holder(), nullptr, out);
    });
    if (status == Status::ok) {
        return status;
    }
    return trace.fail(status == Status::memory ? status : Status::invalid_item, kInvalidName);
}

// The identifiers of those extensions that have a value. A mark without one stays without both,
// which is refused when it is written.
Status name_extensions(ZA_OCSP_EXTENSION &record, bool has_cutoff) {
    struct Named {
        bool has_value;
        Anybuf &oid;
        Bytes identifier;
    };
    const ZA_OCSP_CRLID &crl = record.crlId;
    const bool has_crl = crl.urlFlag == 1 || crl.numFlag == 1 || crl.timeFlag == 1;
    const bool has_service = record.serviceIssuer.dataLen > 0 || record.serviceLocator.dataLen > 0;
    const Named all[] = {
        {record.nonce.dataLen > 0, record.nonceOid, oid::kOcspNonce},
        {has_crl, record.crlId.oid, oid::kOcspCrl},
        {record.acceptable != nullptr, record.acceptableOid, oid::kOcspResponse},
        {has_cutoff, record.cutoffOid, oid::kOcspArchiveCutoff},
        {record.crlEntry.dataLen > 0, record.crlEntryOid, oid::kReasonCode},
        {has_service, record.serviceOid, oid::kOcspServiceLocator},
    };
    for (const Named &extension : all) {
        if (extension.has_value && bytes_of(extension.oid).empty()) {
            ZA_PASS(replace_value(extension.oid, extension.identifier));
        }
    }
    return Status::ok;
}

bool has_extensions(const ZA_OCSP_EXTENSION &record) {
    return record.nonceFlag == 1 || record.crlIdFlag == 1 || record.acceptableFlag == 1 ||
           record.cutoffFlag == 1 || record.crlEntryFlag == 1 || record.serviceFlag == 1;
}

Status write_request_extensions(Request &request, Builder &out) {
    if (!has_extensions(*request.extensions)) {
        return Status::ok;
    }
    ZA_PASS(name_extensions(*request.extensions, request.has_cutoff));
    return out.wrapped(context_tag(2), [&] {
        return ZA_BODY(ZI_EncodeOCSPExtension, write_extensions(*request.extensions, out));
    });
}

Status write_signed_fields(Request &request, Builder &out) {
    ZA_PASS(write_version(request, out));
    ZA_PASS(write_requestor(request, out));
    out.sequence([&] {
        for (const Field &entry : request.entries) {
            out.raw(entry.bytes());
        }
    });
    return write_request_extensions(request, out);
}

// Signature ::= SEQUENCE { signatureAlgorithm, signature,
//     certs [0] EXPLICIT SEQUENCE OF Certificate OPTIONAL }
Status write_optional_signature(Request &request, Bytes to_sign, Builder &out) {
    Secret signature;
    const Signer signer{request.algorithm.bytes(), request.sign, !request.certificates.empty(),
                        request.certificates.bytes(), "------------>The function error"};
    ZA_PASS(out.wrapped(context_tag(0), [&] {
        return ZA_BODY(ZI_EncodeOCSPSignature,
                       write_signature_block(signer, to_sign, signature, out));
    }));
    request.signature.take(std::move(signature.value));
    return Status::ok;
}

Status read_version(Children &fields, Request &out) {
    Element version;
    uint32_t number = 0;
    ZA_PASS(take_explicit(trace, fields, context_tag(0), version));
    if (version.octets.empty()) {
        return Status::ok;
    }
    ZA_PASS(ZA_BODY(ZAsn1_ReadInteger, read_integer(version, number)));
    out.version = static_cast<int32_t>(number);
    out.has_version = true;
    return Status::ok;
}

// The Name itself, or as others write it: directoryName [4] of a GeneralName.
Status read_requestor(Children &fields, Request &out) {
    constexpr uint8_t kDirectoryName = 0xA4;
    Element name;
    ZA_PASS(take_explicit(trace, fields, context_tag(1), name));
    if (name.octets.empty()) {
        return Status::ok;
    }
    if (name.octets[0] == kDirectoryName) {
        Children inside;
        ZA_PASS(read_elements(trace, name, inside));
        inside.next(name);
    }
    out.requestor_der.refer(name.octets);
    if (name.octets[0] == ZA_DER_ID_SEQUENCE) {
        ZA_TRY_AS("------------>The issuer name is invalid",
                  names::decode_issuer_subject(name, out.requestor));
    }
    return Status::ok;
}

Status add_entry(Request &request, Bytes der) {
    Field entry;
    ZA_PASS(entry.assign(der));
    return request.entries.append(trace, std::move(entry));
}

Status read_entries(Children &fields, Request &out) {
    Element sequence;
    Children entries;
    Element entry;
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SEQUENCE, sequence));
    ZA_PASS(open_sequence(trace, sequence, entries));
    while (entries.next(entry)) {
        ZA_PASS(add_entry(out, entry.octets));
    }
    return Status::ok;
}

Status read_signed_fields(const Element &in, Request &out) {
    Children fields;
    Element extensions;
    ZA_PASS(open_sequence(trace, in, fields));
    ZA_PASS(read_version(fields, out));
    ZA_PASS(read_requestor(fields, out));
    ZA_PASS(read_entries(fields, out));
    ZA_PASS(take_explicit(trace, fields, context_tag(2), extensions));
    if (!extensions.octets.empty()) {
        ZA_PASS(ZA_BODY(ZI_DecodeOCSPExtension, read_extensions(extensions, *out.extensions)));
    }
    return end_of(trace, fields);
}

Status read_optional_signature(Children &fields, Request &out) {
    Element block;
    Children inside;
    Signature signature;
    ZA_PASS(take_explicit(trace, fields, context_tag(0), block));
    if (block.octets.empty()) {
        return Status::ok;
    }
    ZA_PASS(open_sequence(trace, block, inside));
    ZA_PASS(read_signature(trace, inside, signature));
    out.algorithm.refer(signature.algorithm);
    out.signature.refer(signature.signature);
    out.certificates.refer(signature.certificates);
    return Status::ok;
}

}  // namespace

Status write(Request &request, Builder &out) {
    Builder built;
    Octets to_sign;
    ZA_PASS(built.sequence([&] { return write_signed_fields(request, built); }));
    ZA_PASS(built.finish(to_sign));
    request.signed_octets.take(std::move(to_sign));
    const Bytes octets = request.signed_octets.bytes();
    return out.sequence([&] {
        out.raw(octets);
        return request.sign.installed() ? write_optional_signature(request, octets, out)
                                        : Status::ok;
    });
}

Status read(Bytes in, Request &out) {
    Request fresh;
    Children fields;
    Element to_sign;
    ZA_PASS(fresh.encoded.assign(in));
    ZA_PASS(open_sequence(trace, Element(fresh.encoded.bytes()), fields));
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SEQUENCE, to_sign));
    fresh.signed_octets.refer(to_sign.octets);
    ZA_PASS(read_signed_fields(to_sign, fresh));
    ZA_PASS(read_optional_signature(fields, fresh));
    ZA_PASS(end_of(trace, fields));
    out = std::move(fresh);
    return Status::ok;
}

}  // namespace za::ocsp

using za::Status;
using za::ocsp::Request;

namespace {

constexpr const char *kInvalid = "------------>The input is invalid ";

constexpr za::ocsp::Frames<Request> kFrames{
    trace, za::ocsp::request_attributes, {kInvalid, kInvalid, kInvalid}};

za::CryptSlot &sign_of(Request &request) {
    return request.sign;
}

}  // namespace

uint32_t ZA_OCSP_CreateEncodeRequest(void **ctx) {
    return kFrames.create(ctx);
}

uint32_t ZA_OCSP_SetRequestAttributeInt(void *ctx, int32_t id, int32_t value) {
    return kFrames.set_int(ctx, id, value);
}

uint32_t ZA_OCSP_SetRequestAttributeChar(void *ctx, int32_t id, const uint8_t *data, uint32_t len) {
    return kFrames.set(ctx, id, data, len);
}

uint32_t ZA_OCSP_SetRequestSingleRequest(void *ctx, const uint8_t *der, uint32_t derLen) {
    return kFrames.run(ctx, [&](Request &request) {
        ZA_PASS(za::ocsp::check_octets(trace, der, derLen, kInvalid));
        return za::ocsp::add_entry(request, {der, derLen});
    });
}

uint32_t ZA_OCSP_SetRequestSignFunc(void *ctx, ZA_CryptFunc signFunc, const uint8_t *arg,
                                    uint32_t argLen) {
    return kFrames.install(ctx, sign_of, signFunc, arg, argLen);
}

uint32_t ZA_OCSP_SetRequestPrivateAttribute(void) {
    return trace.exported([] { return Status::ok; });
}

uint32_t ZA_OCSP_GetRequestPrivateAttribute(void) {
    return trace.exported([] { return Status::ok; });
}

uint32_t ZA_OCSP_EncodeRequest(void *ctx, uint8_t *out, uint32_t *outLen) {
    return kFrames.run(ctx, [&](Request &request) {
        ZA_PASS(trace.need(outLen));
        return za::ocsp::hand_out_encoded(request, out, outLen);
    });
}

uint32_t ZA_OCSP_DestoryEncodeRequest(void *ctx) {
    return kFrames.destroy(ctx);
}

uint32_t ZA_OCSP_CreateDecodeRequest(void **ctx) {
    return kFrames.create(ctx);
}

uint32_t ZA_OCSP_DecodeRequest(void *ctx, const uint8_t *der, uint32_t derLen) {
    return kFrames.decode(ctx, der, derLen);
}

uint32_t ZA_OCSP_DestoryDecodeRequest(void *ctx) {
    return kFrames.destroy(ctx);
}

uint32_t ZA_OCSP_GetRequestAttributeInt(void *ctx, int32_t id, int32_t *value) {
    return kFrames.get_int(ctx, id, value);
}

uint32_t ZA_OCSP_GetRequestAttributeChar(void *ctx, int32_t id, uint8_t *out, uint32_t *outLen) {
    return kFrames.get(ctx, id, out, outLen);
}

uint32_t ZA_OCSP_GetRequestSingleRequestNum(void *ctx, uint32_t *num) {
    return kFrames.run(ctx, [&](const Request &request) {
        ZA_PASS(trace.need(num));
        *num = za::to_u32(request.entries.size());
        return Status::ok;
    });
}

uint32_t ZA_OCSP_GetRequestSingleRequest(void *ctx, uint8_t *out, uint32_t *outLen,
                                         uint32_t number) {
    return kFrames.run(ctx, [&](const Request &request) {
        ZA_PASS(trace.need(outLen));
        const za::Field *entry = request.entries.item(number);
        if (entry == nullptr) {
            return trace.fail(Status::invalid_item);
        }
        za::hand_out(entry->bytes(), out, outLen);
        return Status::ok;
    });
}
