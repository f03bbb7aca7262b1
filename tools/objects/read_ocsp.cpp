#include "base/context.hpp"
#include "base/der.hpp"
#include "base/der_writer.hpp"
#include "base/elements.hpp"
#include "base/times.hpp"
#include "objects/extension_values.hpp"
#include "objects/extensions.hpp"
#include "objects/loading.hpp"
#include "objects/names.hpp"
#include "objects/ocsp.hpp"
#include "objects/oid_names.hpp"

#include <array>

namespace tool {

namespace {

using RequestContext =
    Decoded<ZA_OCSP_CreateDecodeRequest, ZA_OCSP_DecodeRequest, ZA_OCSP_DestoryDecodeRequest>;
using ResponseContext =
    Decoded<ZA_OCSP_CreateDecodeResponse, ZA_OCSP_DecodeResponse, ZA_OCSP_DestoryDecodeResponse>;
using AnswerContext = Decoded<ZA_OCSP_CreateDecodeResponseList, ZA_OCSP_DecodeResponseList,
                              ZA_OCSP_DestroyDecodeResponseList>;

// Records of the library that release what they hold.
struct BasicRecord {
    ZA_OCSP_BASICRESPONSE value{};

    BasicRecord() = default;
    BasicRecord(const BasicRecord &) = delete;
    BasicRecord &operator=(const BasicRecord &) = delete;
    ~BasicRecord() {
        ZA_OCSP_RESPONDERID &responder = value.data.responderId;
        for (Anybuf *octets : {&responder.nameDer, &responder.keyHash, &value.algorithm,
                               &value.signature, &value.certs, &value.der}) {
            ZI_ClearAnybuf(octets);
        }
        ZI_FreeName(responder.name.first);
        ZI_FreeAnybuf(value.data.responses);
        ZI_FreeOCSPExtension(&value.data.extensions);
    }
};

struct StatusRecord {
    ZA_OCSP_CERTSTATUS value{};

    StatusRecord() = default;
    StatusRecord(const StatusRecord &) = delete;
    StatusRecord &operator=(const StatusRecord &) = delete;
    ~StatusRecord() {
        ZI_ClearAnybuf(&value.reason);
        ZI_ClearAnybuf(&value.unknown);
    }
};

Octets copied(View octets) {
    return {octets.begin(), octets.end()};
}

std::chrono::sys_seconds time_of(const ZA_OCSP_TIME &time) {
    return std::chrono::sys_seconds(std::chrono::seconds(time.value));
}

// The first of the fields with this tag, if any, holds Extensions.
std::vector<Extension> extensions_behind(Elements fields, uint8_t identifier) {
    while (!fields.at_end()) {
        const Element field = fields.next();
        if (field.identifier == identifier) {
            return read_extensions(field.content);
        }
    }
    return {};
}

CertificateId certificate_id(View der) {
    // CertID ::= SEQUENCE { hashAlgorithm AlgorithmIdentifier, issuerNameHash OCTET STRING,
    //     issuerKeyHash OCTET STRING, serialNumber INTEGER }
    Elements fields(only_element(der, ZA_DER_ID_SEQUENCE).content);
    Elements algorithm(fields.required(ZA_DER_ID_SEQUENCE).content);
    CertificateId id;
    id.hash_algorithm = named(object_id_text(algorithm.required(ZA_DER_ID_OBJECTID).content));
    id.name_hash = copied(fields.required(ZA_DER_ID_OCTETSTRING).content);
    id.key_hash = copied(fields.required(ZA_DER_ID_OCTETSTRING).content);
    id.serial = Integer(fields.required(ZA_DER_ID_INTEGER).content);
    id.der = copied(der);
    return id;
}

CertificateId requested_certificate(const RequestContext &context, uint32_t number) {
    using Entry = Decoded<ZA_OCSP_CreateDecodeRequestList, ZA_OCSP_DecodeRequestList,
                          ZA_OCSP_DestroyDecodeRequestList>;
    const Entry entry(fetched([&](uint8_t *out, uint32_t *length) {
        return ZA_OCSP_GetRequestSingleRequest(context.get(), out, length, number);
    }));
    return certificate_id(fetched([&](uint8_t *out, uint32_t *length) {
        return ZA_OCSP_GetRequestListAttributeChar(entry.get(), OCSP_REQUESTLIST_CERTID, out,
                                                   length);
    }));
}

std::optional<Name> requestor_of(const RequestContext &context) {
    const Octets der = fetched([&](uint8_t *out, uint32_t *length) {
        return ZA_OCSP_GetRequestAttributeChar(context.get(), OCSP_REQUEST_REQUESTOR_DN, out,
                                               length);
    });
    return der.empty() || der.front() != ZA_DER_ID_SEQUENCE
               ? std::nullopt
               : std::optional(read_name(record_of(der)));
}

OcspRequest decoded_request(View der) {
    const RequestContext context(der);
    OcspRequest request;
    int32_t version = 0;
    uint32_t count = 0;
    check(ZA_OCSP_GetRequestAttributeInt(context.get(), OCSP_REQUEST_VERSION, &version));
    check(ZA_OCSP_GetRequestSingleRequestNum(context.get(), &count));
    request.version = static_cast<uint32_t>(version) + uint64_t{1};
    request.requestor = requestor_of(context);
    for (uint32_t number = 1; number <= count; ++number) {
        request.certificates.push_back(requested_certificate(context, number));
    }
    // OCSPRequest ::= SEQUENCE { tbsRequest, optionalSignature [0] OPTIONAL }
    Elements parts(only_element(der, ZA_DER_ID_SEQUENCE).content);
    request.extensions =
        extensions_behind(Elements(parts.required(ZA_DER_ID_SEQUENCE).content), constructed(2));
    request.is_signed = !parts.at_end();
    return request;
}

void read_status(View element, OcspAnswer &answer) {
    StatusRecord record;
    Anybuf field = record_of(element);
    check(ZI_DecodeCertStatus(&record.value, &field));
    if (record.value.revokedFlag == 1) {
        answer.revoked = time_of(record.value.revocationTime);
    }
    if (record.value.reasonFlag == 1) {
        const Octets reason = der(ZA_DER_ID_ENUMERATED, {octets_of(record.value.reason)});
        answer.reason = std::get<Reason>(read_reason(reason)).name;
    }
    answer.about = copied(octets_of(record.value.unknown));
}

OcspAnswer answer_in(View der) {
    // SingleResponse ::= SEQUENCE { certID, certStatus, thisUpdate, nextUpdate [0] OPTIONAL,
    //     singleExtensions [1] OPTIONAL }
    const AnswerContext context(der);
    OcspAnswer answer;
    uint32_t status = 0;
    check(ZA_OCSP_GetResponseListCertSatus(context.get(), &status));
    answer.status = static_cast<OcspStatus>(status);
    Elements fields(only_element(der, ZA_DER_ID_SEQUENCE).content);
    answer.certificate = certificate_id(fields.required(ZA_DER_ID_SEQUENCE).whole);
    read_status(fields.next().whole, answer);
    answer.this_update = read_time(fields.next());
    if (const auto next = fields.optional(constructed(0))) {
        answer.next_update = read_time(Elements(next->content).next());
    }
    answer.extensions = extensions_behind(fields, constructed(1));
    return answer;
}

// responseBytes [0] EXPLICIT SEQUENCE { responseType OBJECT IDENTIFIER, response OCTET STRING }:
// the content of the last.
std::optional<View> response_octets(View der) {
    Elements fields(only_element(der, ZA_DER_ID_SEQUENCE).content);
    fields.required(ZA_DER_ID_ENUMERATED);
    const auto wrapper = fields.optional(constructed(0));
    if (!wrapper) {
        return std::nullopt;
    }
    Elements bytes(only_element(wrapper->content, ZA_DER_ID_SEQUENCE).content);
    bytes.required(ZA_DER_ID_OBJECTID);
    return bytes.required(ZA_DER_ID_OCTETSTRING).content;
}

// The octets that were signed stand first in what the record keeps of its input.
OcspBody body_in(View octets) {
    BasicRecord record;
    Anybuf in = record_of(octets);
    check(ZI_DecodeBasicResponse(&record.value, &in));
    const ZA_OCSP_RESPONSEDATA &data = record.value.data;
    OcspBody body;
    body.responder_name = copied(octets_of(data.responderId.nameDer));
    body.responder_key = copied(octets_of(data.responderId.keyHash));
    body.produced = time_of(data.producedAt);
    for (const Anybuf *answer = data.responses; answer != nullptr; answer = answer->next) {
        body.answers.push_back(answer_in(octets_of(*answer)));
    }
    body.signature_algorithm = object_id_text(octets_of(record.value.algorithm));
    body.signature = copied(octets_of(record.value.signature));
    Elements parts(only_element(octets_of(record.value.der), ZA_DER_ID_SEQUENCE).content);
    const Element signed_part = parts.required(ZA_DER_ID_SEQUENCE);
    body.signed_part = copied(signed_part.whole);
    body.extensions = extensions_behind(Elements(signed_part.content), constructed(1));
    for (Elements list(octets_of(record.value.certs)); !list.at_end();) {
        body.certificates.push_back(copied(list.next().whole));
    }
    return body;
}

OcspResponse decoded_response(View der) {
    const ResponseContext context(der);
    const auto attribute = [&context](int32_t id) {
        return fetched([&](uint8_t *out, uint32_t *length) {
            return ZA_OCSP_GetResponseAttributeChar(context.get(), id, out, length);
        });
    };
    OcspResponse response;
    response.status = number(attribute(OCSP_RESPONSE_STATUS));
    if (const auto octets = response_octets(der)) {
        response.body = body_in(*octets);
        response.body->type = named(object_id_text(attribute(OCSP_RESPONSETYPE)));
    }
    return response;
}

// AlgorithmIdentifier, a SEQUENCE, where the library has a bare OBJECT IDENTIFIER.
bool has_standard_signature(View der) {
    Elements parts(only_element(der, ZA_DER_ID_SEQUENCE).content);
    parts.required(ZA_DER_ID_SEQUENCE);
    const Element wrapper = parts.required(constructed(0));
    return Elements(only_element(wrapper.content, ZA_DER_ID_SEQUENCE).content).identifier() ==
           ZA_DER_ID_SEQUENCE;
}

// ResponderID ::= CHOICE { byName [1], byKey [2] }, where the library has a SEQUENCE.
bool has_standard_responder(View der) {
    Elements basic(only_element(response_octets(der).value_or(View()), ZA_DER_ID_SEQUENCE).content);
    Elements data(basic.required(ZA_DER_ID_SEQUENCE).content);
    data.optional(constructed(0));
    return data.identifier() == constructed(1) || data.identifier() == constructed(2);
}

bool holds(bool (*form)(View der), View der) {
    try {
        return form(der);
    } catch (const LibraryError &) {
        return false;
    }
}

}  // namespace

std::string_view status_name(OcspStatus status) {
    return status == OcspStatus::good      ? "good"
           : status == OcspStatus::revoked ? "revoked"
                                           : "unknown";
}

// 4 is not used.
std::string_view response_status_name(uint64_t status) {
    constexpr auto kNames =
        std::to_array<std::string_view>({"successful", "malformedRequest", "internalError",
                                         "tryLater", "", "sigRequired", "unauthorized"});
    return status < kNames.size() ? kNames[status] : std::string_view();
}

std::string response_status(uint64_t status) {
    const std::string_view name = response_status_name(status);
    return std::string(name.empty() ? "no known status" : name) + " (" + std::to_string(status) +
           ")";
}

OcspRequest read_ocsp_request(View der) {
    try {
        return decoded_request(der);
    } catch (const LibraryError &) {
        if (holds(has_standard_signature, der)) {
            throw Failure(
                "expected an OCSP request without a signature: this one is signed as RFC 6960 has "
                "it, which the library does not read");
        }
        throw;
    }
}

OcspResponse read_ocsp_response(View der) {
    try {
        return decoded_response(der);
    } catch (const LibraryError &) {
        if (holds(has_standard_responder, der)) {
            throw Failure(
                "expected an OCSP response in the library's own form: this one is of RFC 6960, "
                "which the library does not read");
        }
        throw;
    }
}

std::optional<View> nonce_in(const std::vector<Extension> &extensions) {
    const Extension *nonce = find_extension(extensions, ocsp::kNonce);
    return nonce == nullptr ? std::nullopt : std::optional<View>(nonce->octets);
}

}  // namespace tool
