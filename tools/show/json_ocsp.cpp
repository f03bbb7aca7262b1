#include "base/der.hpp"
#include "objects/names.hpp"
#include "objects/oid_names.hpp"
#include "show/json.hpp"

namespace tool {

namespace {

Json certificate_id_json(const CertificateId &id) {
    return {{"hash_algorithm", identifier_json(id.hash_algorithm)},
            {"issuer_name_hash", hex(id.name_hash)},
            {"issuer_key_hash", hex(id.key_hash)},
            {"serial", id.serial.hex()}};
}

Json answer_json(const OcspAnswer &answer) {
    Json json = certificate_id_json(answer.certificate);
    json["status"] = status_name(answer.status);
    if (answer.revoked) {
        json["revocation_date"] = instant_json(*answer.revoked);
    }
    if (!answer.reason.empty()) {
        json["reason"] = answer.reason;
    }
    if (!answer.about.empty()) {
        json["about"] = hex(answer.about);
    }
    json["this_update"] = instant_json(answer.this_update);
    if (answer.next_update) {
        json["next_update"] = instant_json(*answer.next_update);
    }
    json["extensions"] = extensions_json(answer.extensions);
    return json;
}

void add_body(const OcspBody &body, Json &json) {
    json["type"] = identifier_json(body.type);
    if (!body.responder_name.empty()) {
        json["responder_name"] = name_json(read_name(record_of(body.responder_name)));
    }
    if (!body.responder_key.empty()) {
        json["responder_key_hash"] = hex(body.responder_key);
    }
    json["produced"] = instant_json(body.produced);
    json["answers"] = Json::array();
    for (const OcspAnswer &answer : body.answers) {
        json["answers"].push_back(answer_json(answer));
    }
    json["extensions"] = extensions_json(body.extensions);
    json["certificates"] = Json::array();
    for (const Octets &certificate : body.certificates) {
        json["certificates"].push_back(certificate_brief_json(certificate));
    }
    json["signature_algorithm"] = identifier_json(named(body.signature_algorithm));
    json["signature"] = hex(body.signature);
}

}  // namespace

Json ocsp_request_json(const OcspRequest &request) {
    Json json{{"file", file_json(request.file)},
              {"index", request.index},
              {"kind", "ocsp_request"},
              {"version", request.version}};
    if (request.requestor) {
        json["requestor"] = name_json(*request.requestor);
    }
    json["certificates"] = Json::array();
    for (const CertificateId &id : request.certificates) {
        json["certificates"].push_back(certificate_id_json(id));
    }
    json["extensions"] = extensions_json(request.extensions);
    json["signed"] = request.is_signed;
    return json;
}

Json ocsp_response_json(const OcspResponse &response) {
    Json json{{"file", file_json(response.file)},
              {"index", response.index},
              {"kind", "ocsp_response"},
              {"status", response.status},
              {"status_name", response_status_name(response.status)}};
    if (response.body) {
        add_body(*response.body, json);
    }
    return json;
}

}  // namespace tool
