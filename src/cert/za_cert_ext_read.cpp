// The decoders of extensions (RFC 5280, 4.2).
#include "cert/za_cert_decode.hpp"
#include "names/za_low_general_name.hpp"
#include "names/za_low_oid.hpp"
#include "runtime/trace.hpp"

#include <algorithm>
#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_cert"};

}  // namespace

namespace za::cert {
namespace {

using asn1::Children;
using asn1::Content;
using asn1::Element;
using asn1::Implicit;

constexpr Walk kWalk{trace, Status::certificate_not_end};

Status open_extension(Children elements, Extension &out) {
    return cert::open_extension(kWalk, elements, out);
}

// An extension whose value is a SEQUENCE.
Status open_sequence(Children elements, Extension &extension, Children &fields) {
    ZA_PASS(open_extension(elements, extension));
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(Element(extension.value), fields));
    return Status::ok;
}

void mark_decoded(ExtensionState &state, const Extension &extension) {
    state.decoded = true;
    state.critical = extension.critical;
}

// Purposes 1.3.6.1.5.5.7.3.1 to .8 have bits 0x40 to 0x2000 of the selection.
uint32_t purpose_bit(Bytes purpose) {
    constexpr uint32_t kFirstBit = 0x40;
    constexpr uint8_t kMostSelectable = 8;
    const Bytes arc(oid::kKeyPurpose);
    if (purpose.size() != arc.size() + 1 || !equal(purpose.first(arc.size()), arc)) {
        return 0;
    }
    const uint8_t last = purpose.back();
    return last >= 1 && last <= kMostSelectable ? kFirstBit << (last - 1) : 0;
}

Status decode_alternative_name(AlternativeName &name, Children elements) {
    Extension extension;
    ZA_PASS(open_extension(elements, extension));
    names::GeneralNames forms;
    bool found = false;
    ZA_TRY(ZI_DecodeGeneralNameS,
           names::decode_general_names(Element(extension.value), forms, found));
    name.rfc822_name.refer(forms.rfc822_name);
    name.dns_name.refer(forms.dns_name);
    name.uri.refer(forms.uri);
    name.ip_address.refer(forms.ip_address);
    name.directory.swap(forms.directory);
    mark_decoded(name.state, extension);
    return Status::ok;
}

template <auto Extension>
ExtensionState &state_of(Certificate &cert) {
    return (cert.*Extension).state;
}

struct KnownExtension {
    uint8_t last_arc;  // below 2.5.29
    ExtensionState &(*state)(Certificate &);
    ExtensionDecoder decode;
    const char *failure;
};

constexpr std::array kKnownExtensions{
    KnownExtension{19, state_of<&Certificate::basic_constraints>, decode_basic_constraints,
                   "------>ZI_Cert_DecodeExtension_BasicConstraint"},
    KnownExtension{35, state_of<&Certificate::authority_key_identifier>,
                   decode_authority_key_identifier,
                   "------>ZI_Cert_DecodeExtension_AuthorityKeyIdentifyer"},
    KnownExtension{14, state_of<&Certificate::subject_key_identifier>,
                   decode_subject_key_identifier,
                   "------>ZI_Cert_DecodeExtension_SubjectKeyIdentifier"},
    KnownExtension{15, state_of<&Certificate::key_usage>, decode_key_usage,
                   "------>ZI_Cert_DecodeExtension_KeyUsage"},
    KnownExtension{37, state_of<&Certificate::extended_key_usage>, decode_extended_key_usage,
                   "------>ZI_Cert_DecodeExtension_ExtKeyUsage"},
    KnownExtension{31, state_of<&Certificate::distribution_points>, decode_distribution_points,
                   "------>ZI_Cert_DecodeExtension_CrlDistributionPoint"},
    KnownExtension{17, state_of<&Certificate::subject_alternative_name>,
                   decode_subject_alternative_name,
                   "------>ZI_Cert_DecodeExtension_SubjectAltName"},
    KnownExtension{18, state_of<&Certificate::issuer_alternative_name>,
                   decode_issuer_alternative_name, "------>ZI_Cert_DecodeExtension_IssuerAltName"},
};

const KnownExtension *find_known(Bytes oid) {
    constexpr std::array<uint8_t, 2> kCertificateExtensions{0x55, 0x1D};
    if (oid.size() != 3 || !equal(oid.first(2), kCertificateExtensions)) {
        return nullptr;
    }
    const auto row = std::find_if(kKnownExtensions.begin(), kKnownExtensions.end(),
                                  [&](const auto &known) { return known.last_arc == oid[2]; });
    return row == kKnownExtensions.end() ? nullptr : &*row;
}

Status dispatch_extension(Certificate &cert, const Element &extension) {
    Children elements;
    Element identifier;
    Bytes oid;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(extension, elements));
    Children rest = elements;
    ZA_PASS(take_field(rest, identifier));
    ZA_TRY(ZAsn1_ReadObjectId, asn1::read_object_id(identifier, oid));
    const KnownExtension *known = find_known(oid);
    if (known == nullptr) {
        // The text is another decoder's; readers of logs know it so.
        ZA_TRY(ZI_Cert_DecodeExtension_KeyUsage, decode_private(cert, elements));
    } else if (!known->state(cert).decoded) {
        ZA_TRY_AS(known->failure, known->decode(cert, elements));
    }
    return Status::ok;
}

}  // namespace

Status decode_extensions(Certificate &cert, const Element &wrapper) {
    bool found = false;
    Children extensions;
    ZA_PASS(open_extensions(kWalk, wrapper, found, extensions));
    for (Element extension; extensions.next(extension);) {
        ZA_PASS(dispatch_extension(cert, extension));
    }
    if (found) {
        trace.note("======>ZI_Cert_DecodeExtensions");
    }
    return Status::ok;
}

// BasicConstraints ::= SEQUENCE { cA BOOLEAN DEFAULT FALSE, pathLenConstraint INTEGER OPTIONAL }
Status decode_basic_constraints(Certificate &cert, Children elements) {
    Extension extension;
    Children fields;
    ZA_PASS(open_sequence(elements, extension, fields));
    uint8_t authority = 0;
    Content path_length;
    Element field;
    bool more = fields.next(field);
    if (more && field.type == asn1::kBoolean) {
        ZA_TRY(ZAsn1_ReadBoolean, asn1::read_boolean(field, authority));
        more = fields.next(field);
    }
    if (more && field.type == asn1::kInteger) {
        ZA_TRY(ZAsn1_ReadIntegerArray, asn1::read_integer_array(field, path_length));
    }
    cert.basic_constraints.authority = authority;
    cert.basic_constraints.path_length.refer(path_length.octets);
    mark_decoded(cert.basic_constraints.state, extension);
    return Status::ok;
}

// AuthorityKeyIdentifier ::= SEQUENCE { keyIdentifier [0], authorityCertIssuer [1] GeneralNames,
//     authorityCertSerialNumber [2] }
Status decode_authority_key_identifier(Certificate &cert, Children elements) {
    AuthorityKeyIdentifier &out = cert.authority_key_identifier;
    Extension extension;
    Children fields;
    Implicit field;
    bool found = false;
    ZA_PASS(open_sequence(elements, extension, fields));
    ZA_PASS(find_implicit(kWalk, fields, asn1::constructed(1), found, field));
    for (Element name; found && field.children.next(name);) {
        if (name.type == asn1::constructed(4)) {
            Element inner;
            uint32_t tag = 0;
            ZA_TRY(ZAsn1_ReadExplicit, asn1::read_explicit(name, inner, tag));
            ZA_TRY(ZI_DecodeIssuerSubject, names::decode_issuer_subject(inner, out.issuer));
        }
    }
    ZA_PASS(find_implicit(kWalk, fields, asn1::primitive(2), found, field));
    if (found) {
        out.serial.refer(field.content.octets);
    }
    ZA_PASS(find_implicit(kWalk, fields, asn1::primitive(0), found, field));
    if (found) {
        out.value.refer(field.content.octets);
    }
    mark_decoded(out.state, extension);
    return Status::ok;
}

// SubjectKeyIdentifier ::= OCTET STRING
Status decode_subject_key_identifier(Certificate &cert, Children elements) {
    Extension extension;
    Content identifier;
    ZA_PASS(open_extension(elements, extension));
    ZA_TRY(ZAsn1_ReadOctetString, asn1::read_string(Element(extension.value), identifier));
    cert.subject_key_identifier.value.refer(identifier.octets);
    mark_decoded(cert.subject_key_identifier.state, extension);
    return Status::ok;
}

// KeyUsage ::= BIT STRING
Status decode_key_usage(Certificate &cert, Children elements) {
    Extension extension;
    Content bits;
    ZA_PASS(open_extension(elements, extension));
    ZA_TRY(ZAsn1_ReadBitString, asn1::read_bit_string(Element(extension.value), bits));
    cert.key_usage.value.refer(bits.octets);
    mark_decoded(cert.key_usage.state, extension);
    return Status::ok;
}

// ExtKeyUsageSyntax ::= SEQUENCE OF OBJECT IDENTIFIER
Status decode_extended_key_usage(Certificate &cert, Children elements) {
    ExtendedKeyUsage &out = cert.extended_key_usage;
    Extension extension;
    Children purposes;
    ZA_PASS(open_sequence(elements, extension, purposes));
    uint32_t mask = 0;
    for (Element element; purposes.next(element);) {
        Bytes purpose;
        ZA_TRY(ZAsn1_ReadObjectId, asn1::read_object_id(element, purpose));
        const uint32_t bit = purpose_bit(purpose);
        mask |= bit;
        if (bit == 0) {
            Field further;
            further.refer(purpose);
            ZA_PASS(out.purposes.append(trace, std::move(further)));
        }
    }
    for (size_t i = 0; i < out.decoded_mask.size(); ++i) {
        out.decoded_mask[i] = static_cast<uint8_t>(mask >> (8 * i));
    }
    out.value.refer(out.decoded_mask);
    mark_decoded(out.state, extension);
    return Status::ok;
}

// CRLDistributionPoints ::= SEQUENCE OF DistributionPoint
Status decode_distribution_points(Certificate &cert, Children elements) {
    Extension extension;
    Children points;
    ZA_PASS(open_sequence(elements, extension, points));
    for (Element point; points.next(point);) {
        bool found = false;
        Bytes octets;
        ZA_PASS(find_uri(kWalk, point, found, octets));
        if (found) {
            Field uri;
            uri.refer(octets);
            ZA_PASS(cert.distribution_points.uris.append(trace, std::move(uri)));
        }
    }
    mark_decoded(cert.distribution_points.state, extension);
    return Status::ok;
}

// SubjectAltName ::= GeneralNames
Status decode_subject_alternative_name(Certificate &cert, Children elements) {
    return decode_alternative_name(cert.subject_alternative_name, elements);
}

// IssuerAltName ::= GeneralNames
Status decode_issuer_alternative_name(Certificate &cert, Children elements) {
    return decode_alternative_name(cert.issuer_alternative_name, elements);
}

// Whatever has no decoder of its own keeps its identifier, criticality and octets.
Status decode_private(Certificate &cert, Children elements) {
    Extension extension;
    ZA_PASS(open_extension(elements, extension));
    PrivateExtension kept;
    kept.oid.refer(extension.oid);
    kept.critical = extension.critical;
    kept.value.refer(extension.value);
    return cert.private_extensions.append(trace, std::move(kept));
}

}  // namespace za::cert
