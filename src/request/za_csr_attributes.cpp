// One row per attribute.
#include "request/za_csr_attributes.hpp"

#include <zacert.h>

#include "cert/za_cert_part_accessors.hpp"
#include "runtime/trace.hpp"

#include <array>
#include <cstdio>

namespace {

constexpr za::TraceSource trace{".\\src\\za_csr"};

}  // namespace

namespace za::request {
namespace {

using cert::add_entry;
using cert::get_entry;
using cert::get_field;
using cert::get_units;
using cert::PublicKey;
using cert::set_field;
using Row = AttributeRow<Csr>;

void set_version(Csr &csr, int32_t value) {
    csr.version = static_cast<uint32_t>(value);
}

Status set_curve(Csr &csr, const Row &, Bytes value) {
    if (csr.key.parameters.holds_empty_storage()) {
        return trace.fail(Status::general, "--------->ZACsr_SetECCCertPublicKey Error");
    }
    ZA_PASS(csr.key.parameters.assign(value));
    csr.key.kind = cert::kNamedCurve;
    trace.note("======>ZACsr_SetECCCertPublicKey OID End");
    return Status::ok;
}

Status refuse_string_types(size_t size) {
    std::array<char, 128> text;
    constexpr const char *kFormat =
        "--------->CSR_DN_DER_ID_TAG:%d, certAttributeValueLen is %d, >255";
    const int length = std::snprintf(text.data(), text.size(), kFormat, CSR_DN_DER_ID_TAG,
                                     static_cast<int32_t>(size));
    return trace.fail(Status::general, {{text.data(), static_cast<size_t>(length)}, {}});
}

// One octet less than the table has: that of certificates may be filled.
Status set_string_types(Csr &csr, const Row &, Bytes value) {
    if (value.size() >= cert::kStringTypes) {
        return refuse_string_types(value.size());
    }
    return cert::replace_string_types(csr.subject, value);
}

#define ROW(identifier, ...)                                    \
    Row {                                                       \
        identifier, ZA_ATTRIBUTE_TEXTS(identifier), __VA_ARGS__ \
    }
#define FIELD(identifier, ...) ROW(identifier, set_field<__VA_ARGS__>, get_field<__VA_ARGS__>)
#define ENTRY(identifier, kind) ROW(identifier, add_entry<kSubject>, get_entry<kSubject>, kind)

constexpr auto kSubject = &Csr::subject;

constexpr std::array kRows{
    ROW(CSR_TBS_CSR, nullptr, get_field<&Csr::tbs>),
    FIELD(CSR_OUTER_SIGNATUREALGORITHM, &Csr::outer_algorithm),
    FIELD(CSR_SELF_SIGNATURE, &Csr::signature),
    ROW(CSR_VERSION, nullptr, nullptr, 0, set_version),

    ENTRY(CSR_SUBJECT_COUNTRYNAME, names::kCountry),
    ENTRY(CSR_SUBJECT_STATEORPROVINCENAME, names::kState),
    ENTRY(CSR_SUBJECT_LOCALITYNAME, names::kLocality),
    ENTRY(CSR_SUBJECT_ORGANIZATIONNAME, names::kOrganization),
    ROW(CSR_SUBJECT_ORGANIZATIONALUNITNAME, add_entry<kSubject>, get_units<kSubject>,
        names::kOrganizationalUnit),
    ENTRY(CSR_SUBJECT_COMMONNAME, names::kCommonName),
    ENTRY(CSR_SUBJECT_EMAIL, names::kEmail),
    ENTRY(CSR_SUBJECT_POSTALADDRESS, names::kPostalAddress),
    ENTRY(CSR_SUBJECT_POSTALCODE, names::kPostalCode),
    ENTRY(CSR_SUBJECT_TELEPHONE, names::kTelephone),

    FIELD(CSR_PUBLICKEY_ALGORITHM, &Csr::key, &PublicKey::algorithm),
    FIELD(CSR_SUBJECTPUBLICKEYINFO, &Csr::key, &PublicKey::bits),

    ROW(CSR_ECC_PUBLICKEY_OID, set_curve, get_field<&Csr::key, &PublicKey::parameters>),
    ROW(CSR_DN_DER_ID_TAG, set_string_types),
};

#undef ENTRY
#undef FIELD
#undef ROW

constexpr AttributeTable<Csr> kAttributes{kRows};
static_assert(kAttributes.ascending());

}  // namespace

const AttributeTable<Csr> &csr_attributes() {
    return kAttributes;
}

// A value that is missing is not the 101 of certificates: callers know requests by it.
Status set_csr_attribute(Csr &csr, int32_t type, Bytes value) {
    if (value.empty()) {
        return trace.fail(Status::memory, "------>certAttributeValueLen <= 0");
    }
    return kAttributes.set(trace, csr, type, value);
}

}  // namespace za::request
