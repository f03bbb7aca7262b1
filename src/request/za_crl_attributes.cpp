// One row per attribute.
#include "request/za_crl_attributes.hpp"

#include "cert/za_cert_part_accessors.hpp"
#include "runtime/trace.hpp"

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_crl"};

}  // namespace

namespace za::request {

Status need_entry(const Crl &crl) {
    if (crl.revoked.added().empty()) {
        return trace.fail(Status::memory, "======>Please Set Revoke Certificate First!");
    }
    return Status::ok;
}

namespace {

using Row = AttributeRow<Crl>;
using cert::add_entry;
using cert::get_entry;
using cert::get_field;
using cert::get_time;
using cert::set_field;

void set_version(Crl &crl, int32_t value) {
    crl.version = static_cast<uint32_t>(value);
}

Status get_version(const Crl &crl, uint32_t &out) {
    out = crl.version;
    return Status::ok;
}

void set_next_update(Crl &crl, int32_t value) {
    crl.has_next_update = true;
    crl.next_update.set(value);
}

// ---- Entries

Status add_revoked(Crl &crl, const Row &, Bytes serial) {
    return crl.revoked.added().add(serial);
}

Status get_serial(Crl &crl, const Row &, Bytes &out) {
    bool found = false;
    RevokedEntry entry;
    ZA_PASS(crl.revoked.current(found, entry));
    out = found ? entry.serial : Bytes{};
    return Status::ok;
}

void set_revocation_date(Crl &crl, int32_t value) {
    crl.revoked.added().set_date(value);
}

Status get_revocation_date(const Crl &crl, uint32_t &out) {
    bool found = false;
    RevokedEntry entry;
    int32_t seconds = 0;
    ZA_PASS(crl.revoked.current(found, entry));
    if (found) {
        ZA_PASS(entry.date.utc(seconds));
    }
    out = static_cast<uint32_t>(seconds);
    return Status::ok;
}

// One octet tells that there is a next entry.
Status move_to_next(Crl &crl, const Row &, Bytes &out) {
    static constexpr uint8_t kThereIsOne[] = {1};
    out = crl.revoked.move() ? Bytes(kThereIsOne) : Bytes{};
    return Status::ok;
}

Status set_reason(Crl &crl, const Row &, Bytes reason) {
    ZA_PASS(need_entry(crl));
    return crl.revoked.added().set_reason(reason);
}

// Behind the last entry there is no reason to be had: there it is the whole list.
Status get_reason(Crl &crl, const Row &, Bytes &out) {
    bool found = false;
    RevokedEntry entry;
    ZA_PASS(crl.revoked.current(found, entry));
    if (found) {
        out = entry.reason;
        return Status::ok;
    }
    trace.note("======>Get CRL_RevokedCertificates_DER");
    out = crl.revoked.decoded();
    return Status::ok;
}

// ---- Extensions

template <auto Which>
Status set_critical(Crl &crl, const Row &, Bytes value) {
    (crl.*Which).state.critical = value[0];
    return Status::ok;
}

template <auto Which>
Status set_extension(Crl &crl, const Row &, Bytes value) {
    ZA_PASS((crl.*Which).value.assign(value));
    (crl.*Which).state.set = true;
    return Status::ok;
}

// As in certificates, the criticality counts when it is set after the value.
Status set_authority_key_identifier(Crl &crl, const Row &row, Bytes value) {
    ZA_PASS(set_extension<&Crl::authority_key_identifier>(crl, row, value));
    crl.authority_key_identifier.state.critical = 0;
    return Status::ok;
}

#define ROW(identifier, ...)                                    \
    Row {                                                       \
        identifier, ZA_ATTRIBUTE_TEXTS(identifier), __VA_ARGS__ \
    }
#define FIELD(identifier, member) ROW(identifier, set_field<member>, get_field<member>)
#define ENTRY(identifier, kind) ROW(identifier, add_entry<kIssuer>, get_entry<kIssuer>, kind)

constexpr auto kIssuer = &Crl::issuer;
constexpr auto kValue = &CrlExtension::value;

constexpr std::array kRows{
    ROW(CRL_TBS_CERTLIST, nullptr, get_field<&Crl::tbs>),
    FIELD(CRL_OUTER_SIGNATUREALGORITHM, &Crl::outer_algorithm),
    FIELD(CRL_CA_SIGNATURE, &Crl::signature),
    ROW(CRL_VERSION, nullptr, nullptr, 0, set_version, get_version),
    FIELD(CRL_INNER_SIGNATUREALGORITHM, &Crl::inner_algorithm),

    ROW(CRL_ISSUER_DN, nullptr, cert::get_text<kIssuer>),
    ENTRY(CRL_ISSUER_COUNTRYNAME, names::kCountry),
    ENTRY(CRL_ISSUER_STATEORPROVINCENAME, names::kState),
    ENTRY(CRL_ISSUER_LOCALITYNAME, names::kLocality),
    ENTRY(CRL_ISSUER_ORGANIZATIONNAME, names::kOrganization),
    ROW(CRL_ISSUER_ORGANIZATIONALUNITNAME, add_entry<kIssuer>, cert::get_units<kIssuer>,
        names::kOrganizationalUnit),
    ENTRY(CRL_ISSUER_COMMONNAME, names::kCommonName),
    ENTRY(CRL_ISSUER_EMAIL, names::kEmail),
    ENTRY(CRL_ISSUER_POSTALADDRESS, names::kPostalAddress),
    ENTRY(CRL_ISSUER_POSTALCODE, names::kPostalCode),
    ENTRY(CRL_ISSUER_TELEPHONE, names::kTelephone),

    ROW(CRL_THISUPDATE, nullptr, nullptr, 0, cert::set_time<&Crl::this_update>,
        get_time<&Crl::this_update>),
    ROW(CRL_NEXTUPDATE, nullptr, nullptr, 0, set_next_update, get_time<&Crl::next_update>),

    ROW(CRL_CERT_SERIALNUMBER, add_revoked, get_serial),
    Row{CRL_REVOCATIONDATE,
        {"CRL_REVOCATIONDATE", "======>Set CRL_REVOCATIONDATE",
         "======>Get CRL_CERT_REVOCATIONDATE", nullptr},
        nullptr,
        nullptr,
        0,
        set_revocation_date,
        get_revocation_date},
    Row{CRL_CERT_NEXT,
        {"CRL_CERT_NEXT", nullptr, "======>Get CRL_CERT_NEXT", "======>Get CRL_CERT_NEXT"},
        nullptr,
        move_to_next},

    Row{CRLEX_AUTHORITY_KEYIDENTIFIER_CRITICAL,
        {"CRLEX_AUTHORITY_KEYIDENTIFIER_CRITICAL", "======>Set CERTEX_AUTHORITY_KEYIDENTIFIER",
         nullptr, nullptr},
        set_critical<&Crl::authority_key_identifier>},
    ROW(CRLEX_AUTHORITY_KEYIDENTIFIER, set_authority_key_identifier),
    ROW(CRLEX_CRLNUMBER_CRITICAL, set_critical<&Crl::crl_number>),
    ROW(CRLEX_CRLNUMBER, set_extension<&Crl::crl_number>, get_field<&Crl::crl_number, kValue>),
    ROW(CRLEX_DELTACRLINDICATOR_CRITICAL, set_critical<&Crl::delta_indicator>),
    ROW(CRLEX_DELTACRLINDICATOR, set_extension<&Crl::delta_indicator>,
        get_field<&Crl::delta_indicator, kValue>),
    ROW(CRLEX_ISSUINGDIST_CRITICAL, set_critical<&Crl::distribution_point>),
    ROW(CRLEX_ISSUINGDIST_FULLNAME, set_extension<&Crl::distribution_point>),
    ROW(CRLEX_CRLREASON, set_reason, get_reason),
};

#undef ENTRY
#undef FIELD
#undef ROW

constexpr AttributeTable<Crl> kAttributes{kRows};
static_assert(kAttributes.ascending());

}  // namespace

const AttributeTable<Crl> &crl_attributes() {
    return kAttributes;
}

Status set_crl_attribute(Crl &crl, int32_t type, Bytes value) {
    if (value.empty()) {
        return trace.fail(Status::length);
    }
    return kAttributes.set(trace, crl, type, value);
}

}  // namespace za::request
