// The attributes of requests by number.
#include <zacert/ocsp.h>

#include "asn1/za_asn2_writer.hpp"
#include "names/za_low_oid_catalogue.hpp"
#include "ocsp/za_ocsp_standard_request.hpp"

#include <array>

namespace za::ocsp {
namespace {

using Row = AttributeRow<Request>;
using Record = ZA_OCSP_EXTENSION;

// The flags of one extension.
template <uint8_t Record::*present, uint8_t Record::*critical>
Status set_critical(Request &request, const Row &, Bytes value) {
    (*request.extensions).*critical = value[0] != 0 ? 1 : 0;
    (*request.extensions).*present = 1;
    return Status::ok;
}

Bytes flag_octet(bool present, const uint8_t &flag) {
    return present ? Bytes(&flag, 1) : Bytes();
}

template <uint8_t Record::*present, uint8_t Record::*critical>
Status get_critical(Request &request, const Row &, Bytes &out) {
    out = flag_octet((*request.extensions).*present == 1, (*request.extensions).*critical);
    return Status::ok;
}

Status set_crl_critical(Request &request, const Row &, Bytes value) {
    request.extensions->crlId.critical = value[0] != 0 ? 1 : 0;
    request.extensions->crlIdFlag = 1;
    return Status::ok;
}

Status get_crl_critical(Request &request, const Row &, Bytes &out) {
    const Record &record = *request.extensions;
    out = flag_octet(record.crlIdFlag == 1, record.crlId.critical);
    return Status::ok;
}

// The value of one extension.
template <uint8_t Record::*present, Anybuf Record::*member>
Status set_extension(Request &request, const Row &, Bytes value) {
    ZA_PASS(replace_value((*request.extensions).*member, value));
    (*request.extensions).*present = 1;
    return Status::ok;
}

template <Anybuf Record::*member>
Status get_extension(Request &request, const Row &, Bytes &out) {
    out = bytes_of((*request.extensions).*member);
    return Status::ok;
}

void set_crl_number(Request &request, int32_t value) {
    request.extensions->crlId.num = static_cast<uint32_t>(value);
    request.extensions->crlId.numFlag = 1;
    request.extensions->crlIdFlag = 1;
}

Status get_crl_number(const Request &request, uint32_t &out) {
    out = request.extensions->crlId.num;
    return Status::ok;
}

void set_crl_time(Request &request, int32_t value) {
    request.extensions->crlId.time = {value, 0};
    request.extensions->crlId.timeFlag = 1;
    request.extensions->crlIdFlag = 1;
}

Status get_crl_time(const Request &request, uint32_t &out) {
    out = static_cast<uint32_t>(request.extensions->crlId.time.value);
    return Status::ok;
}

Status set_crl_url(Request &request, const Row &, Bytes value) {
    ZA_PASS(replace_value(request.extensions->crlId.url, value));
    request.extensions->crlId.urlFlag = 1;
    request.extensions->crlIdFlag = 1;
    return Status::ok;
}

Status get_crl_url(Request &request, const Row &, Bytes &out) {
    out = bytes_of(request.extensions->crlId.url);
    return Status::ok;
}

Status add_acceptable(Request &request, const Row &, Bytes value) {
    Chain chain;
    ZA_PASS(asn1::to_record({value, asn1::kObjectId}, chain));
    Anybuf **last = &request.extensions->acceptable;
    while (*last != nullptr) {
        last = &(*last)->next;
    }
    *last = chain.release();
    request.extensions->acceptableFlag = 1;
    return Status::ok;
}

Status get_acceptable(Request &request, const Row &, Bytes &out) {
    const Anybuf *first = request.extensions->acceptable;
    out = first == nullptr ? Bytes() : bytes_of(*first);
    return Status::ok;
}

void set_cutoff(Request &request, int32_t value) {
    request.extensions->cutoff = {value, 0};
    request.extensions->cutoffFlag = 1;
    request.has_cutoff = true;
}

Status get_cutoff(const Request &request, uint32_t &out) {
    out = static_cast<uint32_t>(request.extensions->cutoff.value);
    return Status::ok;
}

void set_version(Request &request, int32_t value) {
    request.version = value;
    request.has_version = true;
}

Status get_version(const Request &request, uint32_t &out) {
    out = static_cast<uint32_t>(request.version);
    return Status::ok;
}

template <Field Request::*member>
Status set_field(Request &request, const Row &, Bytes value) {
    return (request.*member).assign(value);
}

template <Field Request::*member>
Status get_field(Request &request, const Row &, Bytes &out) {
    out = (request.*member).bytes();
    return Status::ok;
}

Status add_name(Request &request, const Row &row, Bytes value) {
    return request.requestor.append(row.kind, value);
}

Status get_name(Request &request, const Row &row, Bytes &out) {
    out = names::first_of_kind(request.requestor, row.kind);
    return Status::ok;
}

Status add_certificate(Request &request, const Row &, Bytes value) {
    Octets both;
    ZA_PASS(join(request.certificates.bytes(), value, both));
    request.certificates.take(std::move(both));
    return Status::ok;
}

#define ROW(identifier, ...)                                   \
    Row {                                                      \
        identifier, ZA_OCSP_ATTRIBUTE(identifier), __VA_ARGS__ \
    }

constexpr std::array kRows{
    ROW(OCSP_EXT_NONCE_CRITICAL, set_critical<&Record::nonceFlag, &Record::nonceCritical>,
        get_critical<&Record::nonceFlag, &Record::nonceCritical>),
    ROW(OCSP_EXT_NONCE, set_extension<&Record::nonceFlag, &Record::nonce>,
        get_extension<&Record::nonce>),
    ROW(OCSP_EXT_CRLID_CRITICAL, set_crl_critical, get_crl_critical),
    ROW(OCSP_EXT_CRL_NUM, nullptr, nullptr, 0, set_crl_number, get_crl_number),
    ROW(OCSP_EXT_CRL_TIME, nullptr, nullptr, 0, set_crl_time, get_crl_time),
    ROW(OCSP_EXT_CRL_URL, set_crl_url, get_crl_url),
    ROW(OCSP_EXT_ACCEPTABLERESON_CRITICAL,
        set_critical<&Record::acceptableFlag, &Record::acceptableCritical>,
        get_critical<&Record::acceptableFlag, &Record::acceptableCritical>),
    ROW(OCSP_EXT_ACCEPTABLERESON, add_acceptable, get_acceptable),
    ROW(OCSP_EXT_ARCHIVECUTOFF_CRITICAL, set_critical<&Record::cutoffFlag, &Record::cutoffCritical>,
        get_critical<&Record::cutoffFlag, &Record::cutoffCritical>),
    ROW(OCSP_EXT_ARCHIVECUTOFF, nullptr, nullptr, 0, set_cutoff, get_cutoff),
    ROW(OCSP_EXT_CRLENTRY_CRITICAL, set_critical<&Record::crlEntryFlag, &Record::crlEntryCritical>,
        get_critical<&Record::crlEntryFlag, &Record::crlEntryCritical>),
    ROW(OCSP_EXT_CRLENTRY, set_extension<&Record::crlEntryFlag, &Record::crlEntry>,
        get_extension<&Record::crlEntry>),
    ROW(OCSP_EXT_SERVICELOCATOR_CRITICAL,
        set_critical<&Record::serviceFlag, &Record::serviceCritical>,
        get_critical<&Record::serviceFlag, &Record::serviceCritical>),
    ROW(OCSP_EXT_SERVICELOCATOR_ISSUERNAME,
        set_extension<&Record::serviceFlag, &Record::serviceIssuer>,
        get_extension<&Record::serviceIssuer>),
    ROW(OCSP_EXT_SERVICELOCATOR_LOCATOR,
        set_extension<&Record::serviceFlag, &Record::serviceLocator>,
        get_extension<&Record::serviceLocator>),
    ROW(OCSP_REQUEST_VERSION, nullptr, nullptr, 0, set_version, get_version),
    ROW(OCSP_REQUEST_REQUESTOR_DN, set_field<&Request::requestor_der>,
        get_field<&Request::requestor_der>),
    ROW(OCSP_REQUEST_REQUESTOR_COUNTRY, add_name, get_name, names::kCountry),
    ROW(OCSP_REQUEST_REQUESTOR_STATEORPROVINCE, add_name, get_name, names::kState),
    ROW(OCSP_REQUEST_REQUESTOR_LOCALITY, add_name, get_name, names::kLocality),
    ROW(OCSP_REQUEST_REQUESTOR_ORGANIZATION, add_name, get_name, names::kOrganization),
    ROW(OCSP_REQUEST_REQUESTOR_ORGANIZATIONALUNIT, add_name, get_name, names::kOrganizationalUnit),
    ROW(OCSP_REQUEST_REQUESTOR_COMMONNAME, add_name, get_name, names::kCommonName),
    ROW(OCSP_REQUEST_REQUESTOR_EMAIL, add_name, get_name, names::kEmail),
    ROW(OCSP_REQUEST_REQUESTOR_POSTALADDRESS, add_name, get_name, names::kPostalAddress),
    ROW(OCSP_REQUEST_REQUESTOR_SIGNALGO, set_field<&Request::algorithm>,
        get_field<&Request::algorithm>),
    ROW(OCSP_REQUEST_REQUESTOR_PARAM, set_field<&Request::parameter>,
        get_field<&Request::parameter>),
    ROW(OCSP_REQUEST_REQUESTOR_CERTS, add_certificate, get_field<&Request::certificates>),
};

#undef ROW

constexpr const char *kInvalidValue = "------------>The OCSPAttributeValue InvalidItem";

constexpr AttributeTable<Request> kAttributes{
    kRows, {kInvalidValue, kInvalidValue, kInvalidValue, kInvalidValue, Status::invalid_item}};
static_assert(kAttributes.ascending());

}  // namespace

const AttributeTable<Request> &request_attributes() {
    return kAttributes;
}

}  // namespace za::ocsp
