#include "cert/za_cert_accessors.hpp"

#include "names/za_low_oid.hpp"
#include "runtime/trace.hpp"

#include <bit>

namespace {

constexpr za::TraceSource trace{".\\src\\za_cert"};

}  // namespace

namespace za::cert {

void set_version(Certificate &cert, int32_t value) {
    cert.has_version = true;
    cert.version = static_cast<uint32_t>(value);
}

Status get_version(const Certificate &cert, uint32_t &out) {
    out = cert.version;
    return Status::ok;
}

Status set_issuer_der(Certificate &cert, const Row &, Bytes value) {
    if (cert.issuer.der.holds_empty_storage()) {
        return trace.fail(Status::general);
    }
    return cert.issuer.der.assign(value);
}

Status set_curve(Certificate &cert, const Row &, Bytes value) {
    if (cert.key.parameters.holds_empty_storage()) {
        return trace.fail(Status::general, "--------->ZACert_SetECCCertPublicKey Error");
    }
    ZA_PASS(cert.key.parameters.assign(value));
    cert.key.kind = kNamedCurve;
    return Status::ok;
}

Status refuse_second_value(const Row &row) {
    if (row.id == CERT_SUBJECT_ALT_DNSNAME ||
        row.id == CERT_SUBJECT_ALT_UNIFORMRESOURCEIDENTIFIER) {
        return trace.fail(Status::attribute_already_set,
                          "------>CERT_SUBJECT_ALT_DNSNAME ZACERT_AttributeAlreadySet");
    }
    return trace.fail(Status::attribute_already_set);
}

namespace {

// Two octets hold nine bits; of one octet those below its lowest set bit are unused.
Status count_unused_bits(Bytes value, uint32_t &out) {
    if (value.empty() || value.size() > 2) {
        return trace.fail(Status::general, "------>CertTex_KeyUsage_SetUnuseBit  Err");
    }
    constexpr uint32_t kUnusedOfTwoOctets = 7;
    const uint32_t lowest = value[0] == 0 ? 0 : static_cast<uint32_t>(std::countr_zero(value[0]));
    out = value.size() == 2 ? kUnusedOfTwoOctets : lowest;
    return Status::ok;
}

}  // namespace

Status set_key_usage(Certificate &cert, const Row &row, Bytes value) {
    ZA_PASS((set_value_once<&Certificate::key_usage, &KeyUsage::value, Criticality::raised>(
        cert, row, value)));
    if (count_unused_bits(value, cert.key_usage.unused_bits) != Status::ok) {
        return trace.fail(Status::attribute_already_set, "----->Set CertTex_KeyUsage_SetUnuseBit");
    }
    return Status::ok;
}

Status add_purpose(Certificate &cert, const Row &, Bytes dotted) {
    Octets oid;
    const Status converted = names::oid_from_text(dotted, oid);
    if (converted == Status::memory) {
        return converted;
    }
    if (converted != Status::ok) {
        return trace.fail(Status::invalid_item,
                          "------>CERTEX_EXTKEY_USAGE_OID_DEFINE: input oid is invalid.");
    }
    Field purpose;
    purpose.take(std::move(oid));
    ZA_PASS(cert.extended_key_usage.purposes.append(trace, std::move(purpose)));
    mark_set<&Certificate::extended_key_usage>(cert);
    return Status::ok;
}

Status set_policy(Certificate &cert, const Row &row, Bytes oid) {
    if (cert.policies.state.set) {
        return Status::ok;
    }
    return set_value<&Certificate::policies, &CertificatePolicies::policy>(cert, row, oid);
}

Status add_cps_uri(Certificate &cert, const Row &, Bytes uri) {
    Field copy;
    ZA_PASS(copy.assign(uri));
    ZA_PASS(cert.policies.cps_uris.append(trace, std::move(copy)));
    cert.extensions_changed = true;
    return Status::ok;
}

Status set_other_name_tag(Certificate &cert, const Row &, Bytes value) {
    cert.subject_alternative_name.other_name_tag = value[0];
    mark_set<&Certificate::subject_alternative_name>(cert);
    return Status::ok;
}

Status set_basic_constraints_critical(Certificate &cert, const Row &, Bytes value) {
    mark_set<&Certificate::basic_constraints>(cert);
    cert.basic_constraints.state.critical = value[0];
    return Status::ok;
}

Status set_authority(Certificate &cert, const Row &, Bytes value) {
    cert.basic_constraints.authority = value[0];
    cert.basic_constraints.authority_set = true;
    mark_set<&Certificate::basic_constraints, Criticality::raised>(cert);
    return Status::ok;
}

Status get_authority(Certificate &cert, const Row &, Bytes &out) {
    const BasicConstraints &constraints = cert.basic_constraints;
    out = constraints.state.present() ? Bytes(&constraints.authority, 1) : Bytes{};
    return Status::ok;
}

Status add_distribution_point(Certificate &cert, const Row &, Bytes uri) {
    Field copy;
    ZA_PASS(copy.assign(uri));
    ZA_PASS(cert.distribution_points.uris.append(trace, std::move(copy)));
    mark_set<&Certificate::distribution_points, Criticality::cleared>(cert);
    return Status::ok;
}

Status get_distribution_point(Certificate &cert, const Row &, Bytes &out) {
    const List<Field> &uris = cert.distribution_points.uris;
    out = uris.empty() ? Bytes{} : uris.front().bytes();
    return Status::ok;
}

Status append_access(Certificate &cert, AccessMethod method, Bytes uri) {
    AccessDescription description{method, {}};
    ZA_PASS(description.uri.assign(uri));
    ZA_PASS(cert.information_access.descriptions.append(trace, std::move(description)));
    mark_set<&Certificate::information_access>(cert);
    return Status::ok;
}

Status add_authority_issuer_entry(Certificate &cert, const Row &row, Bytes value) {
    ZA_PASS(cert.authority_key_identifier.issuer.append(row.kind, value));
    mark_set<&Certificate::authority_key_identifier>(cert);
    return Status::ok;
}

}  // namespace za::cert
