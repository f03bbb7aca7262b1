// The attributes of responses by number.
#include <zacert/ocsp.h>

#include "ocsp/za_ocsp_standard_response.hpp"

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_ocsp_standard", za::kLongStyle};

}  // namespace

namespace za::ocsp {
namespace {

using Row = AttributeRow<Response>;

ZA_OCSP_RESPONDERID &responder(Response &response) {
    return response.basic->data.responderId;
}

void set_version(Response &response, int32_t value) {
    response.basic->data.version = static_cast<uint32_t>(value);
    response.basic->data.versionFlag = 1;
}

Status get_version(const Response &response, uint32_t &out) {
    out = response.basic->data.version;
    return Status::ok;
}

void set_produced_at(Response &response, int32_t value) {
    response.basic->data.producedAt = {value, 0};
}

Status get_produced_at(const Response &response, uint32_t &out) {
    out = static_cast<uint32_t>(response.basic->data.producedAt.value);
    return Status::ok;
}

template <Field Response::*member>
Status set_field(Response &response, const Row &, Bytes value) {
    return (response.*member).assign(value);
}

template <Field Response::*member>
Status get_field(Response &response, const Row &, Bytes &out) {
    out = (response.*member).bytes();
    return Status::ok;
}

// Every identifier of the responder makes a body of the response.
Status set_name_der(Response &response, const Row &, Bytes value) {
    ZA_PASS(replace_value(responder(response).nameDer, value));
    responder(response).nameDerFlag = 1;
    response.has_body = true;
    return Status::ok;
}

Status get_name_der(Response &response, const Row &, Bytes &out) {
    out = bytes_of(responder(response).nameDer);
    return Status::ok;
}

Status add_name(Response &response, const Row &row, Bytes value) {
    if (responder(response).nameDerFlag == 1) {
        return trace.fail(Status::invalid_item, "------------>The DN already exsist");
    }
    ZA_PASS(response.name.append(row.kind, value));
    responder(response).nameRecordFlag = 1;
    response.has_body = true;
    return Status::ok;
}

Status get_name(Response &response, const Row &row, Bytes &out) {
    out = names::first_of_kind(response.name, row.kind);
    return Status::ok;
}

Status set_public_key(Response &response, const Row &, Bytes value) {
    ZA_PASS(response.public_key.assign(value));
    responder(response).keyHashComputeFlag = 1;
    response.has_body = true;
    return Status::ok;
}

Status set_key_hash(Response &response, const Row &, Bytes value) {
    ZA_PASS(replace_value(responder(response).keyHash, value));
    responder(response).keyHashGivenFlag = 1;
    response.has_body = true;
    return Status::ok;
}

Status get_key_hash(Response &response, const Row &, Bytes &out) {
    out = bytes_of(responder(response).keyHash);
    return Status::ok;
}

Status set_algorithm(Response &response, const Row &, Bytes value) {
    return replace_value(response.basic->algorithm, value);
}

Status get_algorithm(Response &response, const Row &, Bytes &out) {
    out = bytes_of(response.basic->algorithm);
    return Status::ok;
}

Status add_certificate(Response &response, const Row &, Bytes value) {
    Octets both;
    ZA_PASS(join(bytes_of(response.basic->certs), value, both));
    ZA_PASS(replace_value(response.basic->certs, both.bytes()));
    response.basic->certsFlag = 1;
    return Status::ok;
}

Status get_certificates(Response &response, const Row &, Bytes &out) {
    out = bytes_of(response.basic->certs);
    return Status::ok;
}

#define ROW(identifier, ...)                                   \
    Row {                                                      \
        identifier, ZA_OCSP_ATTRIBUTE(identifier), __VA_ARGS__ \
    }

constexpr const char *kSetHashKey = "============>Set OCSP_RESPONSE_RESPONDERID_HASHKEY";
constexpr const char *kGetHashKey = "============>Get OCSP_RESPONSE_RESPONDERID_HASHKEY";

constexpr std::array kRows{
    ROW(OCSP_RESPONSE_VERSION, nullptr, nullptr, 0, set_version, get_version),
    ROW(OCSP_RESPONSE_PRODUCEDAT, nullptr, nullptr, 0, set_produced_at, get_produced_at),
    ROW(OCSP_RESPONSE_STATUS, set_field<&Response::status>, get_field<&Response::status>),
    ROW(OCSP_RESPONSE_RESPONDERID_DN, set_name_der, get_name_der),
    ROW(OCSP_RESPONSE_RESPONDERID_COUNTRY, add_name, get_name, names::kCountry),
    ROW(OCSP_RESPONSE_RESPONDERID_STATEORPROVINCE, add_name, get_name, names::kState),
    ROW(OCSP_RESPONSE_RESPONDERID_LOCALITY, add_name, get_name, names::kLocality),
    ROW(OCSP_RESPONSE_RESPONDERID_ORGANIZATION, add_name, get_name, names::kOrganization),
    ROW(OCSP_RESPONSE_RESPONDERID_ORGANIZATIONALUNIT, add_name, get_name,
        names::kOrganizationalUnit),
    ROW(OCSP_RESPONSE_RESPONDERID_COMMONNAME, add_name, get_name, names::kCommonName),
    // The log has no names for these two.
    Row{OCSP_RESPONSE_RESPONDERID_EMAIL, ZA_ATTRIBUTE_UNLOGGED(OCSP_RESPONSE_RESPONDERID_EMAIL),
        add_name, get_name, names::kEmail},
    Row{OCSP_RESPONSE_RESPONDERID_POSTALADDRESS,
        ZA_ATTRIBUTE_UNLOGGED(OCSP_RESPONSE_RESPONDERID_POSTALADDRESS), add_name, get_name,
        names::kPostalAddress},
    // The log has one name for both.
    Row{OCSP_RESPONSE_RESPONDERID_HASHKEY_COMPUTE,
        {"OCSP_RESPONSE_RESPONDERID_HASHKEY_COMPUTE", kSetHashKey, kGetHashKey, kGetHashKey},
        set_public_key,
        get_field<&Response::public_key>},
    Row{OCSP_RESPONSE_RESPONDERID_HASHKEY,
        {"OCSP_RESPONSE_RESPONDERID_HASHKEY", kSetHashKey, kGetHashKey, kGetHashKey},
        set_key_hash,
        get_key_hash},
    ROW(OCSP_RESPONSE_SIGNALGO, set_algorithm, get_algorithm),
    ROW(OCSP_RESPONSE_PARAM, set_field<&Response::parameter>, get_field<&Response::parameter>),
    ROW(OCSP_RESPONSE_CERTS, add_certificate, get_certificates),
    ROW(OCSP_RESPONSETYPE, set_field<&Response::type>, get_field<&Response::type>),
};

#undef ROW

constexpr const char *kNotSupported = "------------>The OCSPAttribute Type not support";

constexpr AttributeTable<Response> kAttributes{
    kRows, {kNotSupported, kNotSupported, kInvalidNumber, kInvalidNumber, Status::invalid_item}};
static_assert(kAttributes.ascending());

}  // namespace

const AttributeTable<Response> &response_attributes() {
    return kAttributes;
}

}  // namespace za::ocsp
