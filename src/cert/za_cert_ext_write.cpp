// The encoders of extensions (RFC 5280, 4.2), and the order in which certificates have them.
#include "asn1/za_asn2_writer.hpp"
#include "cert/za_cert_encode.hpp"
#include "names/za_low_general_name.hpp"
#include "names/za_low_oid_catalogue.hpp"
#include "runtime/trace.hpp"

#include <algorithm>
#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_cert"};

}  // namespace

namespace za::cert {
namespace {

using asn1::Builder;

constexpr uint8_t kUriTag = 0x86;  // uniformResourceIdentifier [6] IA5String

// Extension ::= SEQUENCE { extnID OBJECT IDENTIFIER, critical BOOLEAN DEFAULT FALSE,
//     extnValue OCTET STRING }
template <class Value>
Status write_extension(Bytes oid, uint8_t critical, bool critical_always, const Value &value,
                       Builder &out) {
    const Status written = out.sequence([&] {
        out.object_id(oid);
        if (critical != 0 || critical_always) {
            out.boolean(critical != 0);
        }
        return out.wrapped(ZA_DER_ID_OCTETSTRING, value);
    });
    ZA_PASS(written);
    return out.status();
}

// authorityCertIssuer [1] GeneralNames, of which there is one
Status write_authority_issuer(names::NameList &issuer, Chain &out) {
    ZI_GeneralName record{};
    record.present[names::kDirectoryName] = 1;
    record.directoryName = *issuer.holder();
    Chain names;
    ZA_TRY(ZI_EncodeGeneralNameS, names::encode_general_names(record, names));
    ZA_TRY(ZAsn1_WriteImplicit, asn1::write_implicit(*names.head(), 1, out));
    return Status::ok;
}

// authorityCertSerialNumber [2] INTEGER. A leading 00 goes with the tag, as with every number that
// is tagged implicitly here.
Status write_authority_serial(Bytes serial, Chain &out) {
    Chain number;
    ZA_TRY(ZAsn1_WriteIntegerArray, asn1::write_integer_array(serial, number));
    ZA_TRY(ZAsn1_WriteImplicit, asn1::write_implicit(*number.head(), 2, out));
    return Status::ok;
}

// AuthorityKeyIdentifier ::= SEQUENCE { keyIdentifier [0] OCTET STRING, authorityCertIssuer [1]
//     GeneralNames, authorityCertSerialNumber [2] INTEGER }, all OPTIONAL
Status write_authority_key_identifier(Certificate &cert, Builder &out) {
    constexpr uint8_t kKeyIdentifier = 0x80;
    AuthorityKeyIdentifier &identifier = cert.authority_key_identifier;
    return out.sequence([&] {
        if (!identifier.value.empty()) {
            out.element(kKeyIdentifier, identifier.value.bytes());
        }
        Chain issuer;
        if (!identifier.issuer.empty()) {
            ZA_PASS(write_authority_issuer(identifier.issuer, issuer));
            out.raw(bytes_of(*issuer.head()));
        }
        Chain serial;
        if (!identifier.serial.empty()) {
            ZA_PASS(write_authority_serial(identifier.serial.bytes(), serial));
            out.raw(bytes_of(*serial.head()));
        }
        return Status::ok;
    });
}

// SubjectKeyIdentifier ::= OCTET STRING
Status write_subject_key_identifier(Certificate &cert, Builder &out) {
    out.octet_string(cert.subject_key_identifier.value.bytes());
    return Status::ok;
}

// PolicyQualifierInfo ::= SEQUENCE { policyQualifierId id-qt-cps, qualifier IA5String }
void write_cps(const Field &uri, Builder &out) {
    out.sequence([&] {
        out.object_id(oid::kCps);
        out.element(ZA_DER_ID_IA5STRING, uri.bytes());
    });
}

// SEQUENCE OF PolicyInformation, of which there is one:
// SEQUENCE { policyIdentifier OBJECT IDENTIFIER, policyQualifiers SEQUENCE OF OPTIONAL }
Status write_policies(Certificate &cert, Builder &out) {
    const CertificatePolicies &policies = cert.policies;
    out.sequence([&] {
        out.sequence([&] {
            out.object_id(policies.policy.bytes());
            if (policies.cps_uris.empty()) {
                trace.note("------>NO CPS INFO");
                return;
            }
            out.sequence([&] {
                for (const Field &uri : policies.cps_uris) {
                    write_cps(uri, out);
                }
            });
        });
    });
    return Status::ok;
}

// The encoder of GeneralNames reads its record and leaves the octets alone.
Anybuf borrowed(const Field &field) {
    Anybuf record{};
    record.data = const_cast<uint8_t *>(field.bytes().data());
    record.dataLen = to_u32(field.bytes().size());
    return record;
}

ZI_GeneralName record_of(AlternativeName &name) {
    ZI_GeneralName record{};
    const Bytes type = name.other_name_type.bytes();
    record.present[names::kOtherName] = !type.empty() && !name.other_name_value.empty();
    record.present[names::kRfc822Name] = !name.rfc822_name.empty();
    record.present[names::kDnsName] = !name.dns_name.empty();
    record.present[names::kDirectoryName] = !name.directory.empty();
    record.present[names::kUri] = !name.uri.empty();
    record.present[names::kIpAddress] = !name.ip_address.empty();
    record.otherNameType = name.other_name_tag;
    record.otherNameOid = text_of(type).data();
    record.otherNameOidLen = to_u32(type.size());
    record.otherNameValue = borrowed(name.other_name_value);
    record.rfc822Name = borrowed(name.rfc822_name);
    record.dNSName = borrowed(name.dns_name);
    record.directoryName = *name.directory.holder();
    record.uniformResourceIdentifier = borrowed(name.uri);
    record.iPAddress = borrowed(name.ip_address);
    return record;
}

// SubjectAltName, IssuerAltName ::= GeneralNames
template <auto Which>
Status write_alternative_name(Certificate &cert, Builder &out) {
    ZI_GeneralName record = record_of(cert.*Which);
    Chain names;
    ZA_TRY(ZI_EncodeGeneralNameS, names::encode_general_names(record, names));
    out.raw(bytes_of(*names.head()));
    return Status::ok;
}

// SEQUENCE { cA BOOLEAN DEFAULT FALSE, pathLenConstraint INTEGER OPTIONAL }; a flag that was set is
// written, FALSE too.
Status write_basic_constraints(Certificate &cert, Builder &out) {
    const BasicConstraints &constraints = cert.basic_constraints;
    const Bytes path_length = constraints.path_length.bytes();
    out.sequence([&] {
        if (constraints.authority_set) {
            out.boolean(constraints.authority != 0);
        }
        if (!path_length.empty()) {
            out.integer(uint32_t{path_length[0]});
        }
    });
    return Status::ok;
}

// KeyUsage ::= BIT STRING
Status write_key_usage(Certificate &cert, Builder &out) {
    out.bit_string(cert.key_usage.value.bytes(), cert.key_usage.unused_bits);
    trace.note("======>ZI_Cert_EncodeExtension_KeyUsage");
    return Status::ok;
}

// Little-endian; a shorter value fills the most significant octets, a longer one selects nothing.
uint32_t selection_of(Bytes value) {
    constexpr size_t kOctets = 4;
    uint32_t selection = 0;
    for (size_t i = 0; value.size() <= kOctets && i < value.size(); ++i) {
        selection |= uint32_t{value[i]} << (8 * (kOctets - value.size() + i));
    }
    return selection;
}

constexpr std::array<const oid::Oid *, 8> kSelectable{
    &oid::kServerAuth,     &oid::kClientAuth,  &oid::kCodeSigning, &oid::kEmailProtection,
    &oid::kIpsecEndSystem, &oid::kIpsecTunnel, &oid::kIpsecUser,   &oid::kTimeStamping};

// ExtKeyUsageSyntax ::= SEQUENCE OF OBJECT IDENTIFIER
Status write_extended_key_usage(Certificate &cert, Builder &out) {
    constexpr uint32_t kFirstBit = 0x40;
    const uint32_t selection = selection_of(cert.extended_key_usage.value.bytes());
    out.sequence([&] {
        for (size_t i = 0; i < kSelectable.size(); ++i) {
            if ((selection & kFirstBit << i) != 0) {
                out.object_id(*kSelectable[i]);
            }
        }
        for (const Field &purpose : cert.extended_key_usage.purposes) {
            out.object_id(purpose.bytes());
        }
    });
    return Status::ok;
}

// DistributionPoint ::= SEQUENCE { distributionPoint [0] { fullName [0] GeneralNames } }
void write_point(Bytes uri, Builder &out) {
    constexpr uint8_t kDistributionPoint = 0xA0;
    constexpr uint8_t kFullName = 0xA0;
    out.sequence([&] {
        out.wrapped(kDistributionPoint,
                    [&] { out.wrapped(kFullName, [&] { out.element(kUriTag, uri); }); });
    });
}

// CRLDistributionPoints ::= SEQUENCE OF DistributionPoint
Status write_distribution_points(Certificate &cert, Builder &out) {
    out.sequence([&] {
        for (const Field &uri : cert.distribution_points.uris) {
            write_point(uri.bytes(), out);
        }
    });
    return Status::ok;
}

Status write_information_access(Certificate &cert, Builder &out) {
    return write_access_descriptions(cert.information_access.descriptions, out);
}

template <auto Which>
ExtensionState &state_of(Certificate &cert) {
    return (cert.*Which).state;
}

struct ExtensionRow {
    const oid::Oid &oid;
    ExtensionState &(*state)(Certificate &);
    Status (*write_value)(Certificate &, Builder &);
    const char *failure;
    bool critical_always = false;
};

using C = Certificate;

// Certificates have their extensions in this order. The text of extended key usage is another
// encoder's; readers of logs know it so. Basic constraints say always whether they are critical, a
// FALSE that DER would leave out, because issued certificates have it.
constexpr std::array kOrder{
    ExtensionRow{oid::kAuthorityKeyIdentifier, state_of<&C::authority_key_identifier>,
                 write_authority_key_identifier,
                 "------>ZI_Cert_EncodeExtension_AuthorityKeyIdentifyer"},
    ExtensionRow{oid::kSubjectKeyIdentifier, state_of<&C::subject_key_identifier>,
                 write_subject_key_identifier,
                 "------>ZI_Cert_EncodeExtension_SubjectKeyIdentifier"},
    ExtensionRow{oid::kCertificatePolicies, state_of<&C::policies>, write_policies,
                 "------>ZI_Cert_EncodeExtension_CertPolicy"},
    ExtensionRow{oid::kIssuerAltName, state_of<&C::issuer_alternative_name>,
                 write_alternative_name<&C::issuer_alternative_name>,
                 "------>ZI_Cert_EncodeExtension_IssuerAltName"},
    ExtensionRow{oid::kSubjectAltName, state_of<&C::subject_alternative_name>,
                 write_alternative_name<&C::subject_alternative_name>,
                 "------>ZI_Cert_EncodeExtension_SubjectAltName"},
    ExtensionRow{oid::kBasicConstraints, state_of<&C::basic_constraints>, write_basic_constraints,
                 "------>ZI_Cert_EncodeExtension_BasicConstraint", true},
    ExtensionRow{oid::kKeyUsage, state_of<&C::key_usage>, write_key_usage,
                 "------>ZI_Cert_EncodeExtension_KeyUsage"},
    ExtensionRow{oid::kExtKeyUsage, state_of<&C::extended_key_usage>, write_extended_key_usage,
                 "------>ZI_Cert_EncodeExtension_KeyUsage"},
    ExtensionRow{oid::kCrlDistributionPoints, state_of<&C::distribution_points>,
                 write_distribution_points, "------>ZI_Cert_EncodeExtension_CrlDistributionPoint"},
    ExtensionRow{oid::kAuthorityInfoAccess, state_of<&C::information_access>,
                 write_information_access, "------>ZI_Cert_EncodeExtension_AuthorityInfoAccess"},
};

Status write_in_order(Certificate &cert, Builder &out) {
    for (const ExtensionRow &row : kOrder) {
        const ExtensionState &state = row.state(cert);
        if (state.set) {
            const auto value = [&] { return row.write_value(cert, out); };
            ZA_TRY_AS(row.failure,
                      write_extension(row.oid, state.critical, row.critical_always, value, out));
        }
    }
    for (const PrivateExtension &extension : cert.private_extensions) {
        ZA_TRY_AS("------>ZI_Cert_EncodeExtension_Unknown", write_private(extension, out));
    }
    return Status::ok;
}

bool any_set(Certificate &cert) {
    return !cert.private_extensions.empty() ||
           std::ranges::any_of(kOrder, [&](const auto &row) { return row.state(cert).set; });
}

}  // namespace

Status write_private(const PrivateExtension &extension, Builder &out) {
    return write_extension(
        extension.oid.bytes(), extension.critical, false,
        [&] {
            out.raw(extension.value.bytes());
            return Status::ok;
        },
        out);
}

// SEQUENCE OF AccessDescription ::= SEQUENCE { accessMethod OBJECT IDENTIFIER,
//     accessLocation GeneralName }
Status write_access_descriptions(const List<AccessDescription> &list, Builder &out) {
    out.sequence([&] {
        for (const AccessDescription &description : list) {
            out.sequence([&] {
                const bool ocsp = description.method == AccessMethod::ocsp;
                out.object_id(ocsp ? oid::kOcsp : oid::kCaIssuers);
                out.element(kUriTag, description.uri.bytes());
            });
        }
    });
    return out.status();
}

// extensions [3] EXPLICIT SEQUENCE OF Extension
Status write_extensions(Certificate &cert, Builder &out) {
    constexpr uint8_t kExtensions = 0xA3;
    if (!cert.extensions_changed || !any_set(cert)) {
        return Status::ok;
    }
    const auto sequence = [&] { return out.sequence([&] { return write_in_order(cert, out); }); };
    ZA_PASS(out.wrapped(kExtensions, sequence));
    trace.note("======>ZI_Cert_EncodeExtensions");
    return Status::ok;
}

}  // namespace za::cert
