// ResponseData and BasicOCSPResponse.
#include <zacert.h>

#include "asn1/za_asn2_writer.hpp"
#include "ocsp/za_ocsp_base.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_ocsp_base", za::kLongStyle};

}  // namespace

namespace za::ocsp {

using asn1::Builder;
using asn1::Children;
using asn1::Element;

namespace {

// ResponseData ::= SEQUENCE { version [0] EXPLICIT INTEGER OPTIONAL, responderID ResponderID,
//     producedAt GeneralizedTime, responses SEQUENCE OF SingleResponse,
//     responseExtensions [1] EXPLICIT Extensions OPTIONAL }
Status write_data_fields(ZA_OCSP_RESPONSEDATA &record, const CryptSlot &function, Builder &out) {
    if (record.versionFlag == 1) {
        out.wrapped(context_tag(0), [&] { out.integer(record.version); });
    }
    ZA_PASS(ZA_BODY(ZI_EncodeResponseId, write_responder_id(record.responderId, function, out)));
    ZA_PASS(write_time(trace, record.producedAt, out));
    out.sequence([&] {
        for (const Anybuf *response = record.responses; response != nullptr;
             response = response->next) {
            out.raw(bytes_of(*response));
        }
    });
    if (record.extensionsFlag != 1) {
        return Status::ok;
    }
    return out.wrapped(context_tag(1), [&] {
        return ZA_BODY(ZI_EncodeOCSPExtension, write_extensions(record.extensions, out));
    });
}

Status read_version(Children &fields, ZA_OCSP_RESPONSEDATA &record) {
    Element version;
    ZA_PASS(take_explicit(trace, fields, context_tag(0), version));
    if (version.octets.empty()) {
        return Status::ok;
    }
    ZA_PASS(ZA_BODY(ZAsn1_ReadInteger, read_integer(version, record.version)));
    record.versionFlag = 1;
    return Status::ok;
}

Status read_responses(Children &fields, ZA_OCSP_RESPONSEDATA &record) {
    Element sequence;
    Children responses;
    Element response;
    Chain chain;
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SEQUENCE, sequence,
                       "------------>The responses is null"));
    ZA_PASS(open_sequence(trace, sequence, responses));
    while (responses.next(response)) {
        ZA_PASS(asn1::to_record({response.octets, response.type}, chain));
    }
    ZI_FreeAnybuf(record.responses);
    record.responses = chain.release();
    return Status::ok;
}

Status read_response_extensions(Children &fields, ZA_OCSP_RESPONSEDATA &record) {
    Element extensions;
    ZA_PASS(take_explicit(trace, fields, context_tag(1), extensions));
    if (!extensions.octets.empty()) {
        ZA_PASS(ZA_BODY(ZI_DecodeOCSPExtension, read_extensions(extensions, record.extensions)));
        record.extensionsFlag = 1;
    }
    return end_of(trace, fields);
}

Status read_data_fields(const Element &in, ZA_OCSP_RESPONSEDATA &record, names::NameList &name) {
    Children fields;
    Element responder;
    Element time;
    ZA_PASS(open_sequence(trace, in, fields));
    ZA_PASS(read_version(fields, record));
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SEQUENCE, responder,
                       "------------>The pResponse id is null"));
    ZA_PASS(ZA_BODY(ZI_DecodeResponseId, read_responder_id(responder, record.responderId, name)));
    if (!fields.next(time)) {
        return trace.fail(Status::invalid_item, "------------>The produceAt is null");
    }
    ZA_PASS(read_time(trace, time, record.producedAt));
    ZA_PASS(read_responses(fields, record));
    return read_response_extensions(fields, record);
}

// BasicOCSPResponse ::= SEQUENCE { tbsResponseData ResponseData, signatureAlgorithm, signature,
//     certs [0] EXPLICIT SEQUENCE OF Certificate OPTIONAL }
Status write_basic_fields(ZA_OCSP_BASICRESPONSE &record, const CryptSlot &hash_function,
                          const CryptSlot &sign_function, Builder &out) {
    Builder built;
    Octets data;
    Secret signature;
    ZA_PASS(ZA_BODY(ZI_EncodeResponseData, write_response_data(record.data, hash_function, built)));
    ZA_PASS(built.finish(data));
    if (bytes_of(record.algorithm).empty()) {
        return trace.fail(Status::invalid_item, "------------>The signature algorithm is null");
    }
    if (!sign_function.installed()) {
        return trace.fail(Status::invalid_item, "------------>The function is null");
    }
    const Signer signer{bytes_of(record.algorithm), sign_function, record.certsFlag == 1,
                        bytes_of(record.certs), "------------>The function is error"};
    out.raw(data.bytes());
    ZA_PASS(write_signature(trace, signer, data.bytes(), signature, out));
    return replace_value(record.signature, signature.bytes());
}

Status read_basic_fields(const Element &in, ZA_OCSP_BASICRESPONSE &record, names::NameList &name) {
    Children fields;
    Element data;
    Signature signature;
    ZA_PASS(replace_value(record.der, in.octets));
    ZA_PASS(open_sequence(trace, in, fields));
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SEQUENCE, data));
    ZA_PASS(ZA_BODY(ZI_DecodeResponseData, read_response_data(data, record.data, name)));
    ZA_PASS(read_signature(trace, fields, signature));
    ZA_PASS(replace_value(record.algorithm, signature.algorithm));
    ZA_PASS(replace_value(record.signature, signature.signature));
    ZA_PASS(replace_value(record.certs, signature.certificates));
    record.certsFlag = signature.has_certificates ? 1 : 0;
    return Status::ok;
}

}  // namespace

Status write_response_data(ZA_OCSP_RESPONSEDATA &record, const CryptSlot &function, Builder &out) {
    const auto fields = [&] { return write_data_fields(record, function, out); };
    return trace.announced([&] { return out.sequence(fields); }, "ZI_EncodeResponseData");
}

Status read_response_data(const Element &in, ZA_OCSP_RESPONSEDATA &record, names::NameList &name) {
    return trace.announced([&] { return read_data_fields(in, record, name); },
                           "ZI_DecodeResponseData");
}

Status write_basic_response(ZA_OCSP_BASICRESPONSE &record, const CryptSlot &hash_function,
                            const CryptSlot &sign_function, Builder &out) {
    const auto fields = [&] {
        return write_basic_fields(record, hash_function, sign_function, out);
    };
    return trace.announced([&] { return out.sequence(fields); }, "ZI_EncodeBasicResponse");
}

Status read_basic_response(const Element &in, ZA_OCSP_BASICRESPONSE &record,
                           names::NameList &name) {
    return trace.announced([&] { return read_basic_fields(in, record, name); },
                           "ZI_DecodeBasicResponse");
}

}  // namespace za::ocsp

using za::Chain;
using za::CryptSlot;
using za::Status;
using za::asn1::Builder;
using za::asn1::Element;
using za::names::NameList;
using za::ocsp::with_record;

namespace {

Status install(const ZA_OCSP_RESPONDERID &record, CryptSlot &out) {
    return out.install(trace, record.hashFunc, record.hashArg.data, record.hashArg.dataLen);
}

}  // namespace

uint32_t ZI_EncodeResponseData(ZA_OCSP_RESPONSEDATA *record, Anybuf **out) {
    return with_record(trace, record, out, [&] {
        CryptSlot function;
        ZA_PASS(install(record->responderId, function));
        return za::asn1::hand_out_built(out, [&](Builder &built) {
            return za::ocsp::write_response_data(*record, function, built);
        });
    });
}

uint32_t ZI_DecodeResponseData(ZA_OCSP_RESPONSEDATA *record, Anybuf *in) {
    return with_record(trace, record, in, [&] {
        return za::ocsp::read_with_name(record->responderId.name, [&](NameList &name) {
            return za::ocsp::read_response_data(Element(*in), *record, name);
        });
    });
}

uint32_t ZI_EncodeBasicResponse(ZA_OCSP_BASICRESPONSE *record, Anybuf **out) {
    return with_record(trace, record, out, [&] {
        CryptSlot hash_function;
        CryptSlot sign_function;
        ZA_PASS(install(record->data.responderId, hash_function));
        ZA_PASS(sign_function.install(trace, record->signFunc, record->signArg.data,
                                      record->signArg.dataLen));
        return za::asn1::hand_out_built(out, [&](Builder &built) {
            return za::ocsp::write_basic_response(*record, hash_function, sign_function, built);
        });
    });
}

uint32_t ZI_DecodeBasicResponse(ZA_OCSP_BASICRESPONSE *record, Anybuf *in) {
    return with_record(trace, record, in, [&] {
        return za::ocsp::read_with_name(record->data.responderId.name, [&](NameList &name) {
            return za::ocsp::read_basic_response(Element(*in), *record, name);
        });
    });
}
