#include "request/za_crl_decode.hpp"

#include "cert/za_cert_part_decode.hpp"
#include "names/za_low_oid.hpp"
#include "runtime/trace.hpp"

#include <algorithm>
#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_crl"};

}  // namespace

namespace za::request {
namespace {

using asn1::Children;
using asn1::Content;
using asn1::Element;

constexpr cert::Walk kWalk{trace, Status::crl_not_end};

// version INTEGER OPTIONAL, signature AlgorithmIdentifier
Status decode_version_and_algorithm(Children &fields, Crl &crl) {
    Element field;
    Children algorithm;
    ZA_PASS(cert::take_field(kWalk, fields, field));
    if (field.type == asn1::kInteger) {
        ZA_TRY(ZAsn1_ReadInteger, asn1::read_integer(field, crl.version));
        ZA_PASS(cert::take_field(kWalk, fields, field));
    }
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(field, algorithm));
    return cert::decode_algorithm(kWalk, algorithm, crl.inner_algorithm);
}

bool is_time(const Element &field) {
    return field.type == asn1::kUtcTime || field.type == asn1::kGeneralizedTime;
}

// nextUpdate Time OPTIONAL, revokedCertificates SEQUENCE OF OPTIONAL, crlExtensions [0] OPTIONAL
Status decode_optional_fields(Children fields, Crl &crl) {
    Element field;
    bool more = fields.next(field);
    if (more && is_time(field)) {
        ZA_PASS(cert::decode_time(kWalk, field, crl.next_update));
        crl.has_next_update = true;
        more = fields.next(field);
    }
    if (more && field.type == asn1::kSequence) {
        ZA_TRY(ZI_CRL_DecodeRevokedCerts, crl.revoked.refer(field));
        more = fields.next(field);
    }
    if (more && field.type == asn1::constructed(0)) {
        ZA_TRY(ZI_Crl_DecodeExtensions, decode_crl_extensions(crl, field));
    }
    return Status::ok;
}

// CRLNumber and BaseCRLNumber ::= INTEGER
Status decode_number(const Element &value, Bytes &out) {
    Content number;
    ZA_TRY(ZAsn1_ReadIntegerArray, asn1::read_integer_array(value, number));
    out = number.octets;
    return Status::ok;
}

// AuthorityKeyIdentifier ::= SEQUENCE { keyIdentifier [0], ... }
Status decode_key_identifier(const Element &value, Bytes &out) {
    Children fields;
    asn1::Implicit field;
    bool found = false;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(value, fields));
    ZA_PASS(cert::find_implicit(kWalk, fields, asn1::primitive(0), found, field));
    out = field.content.octets;
    return Status::ok;
}

// IssuingDistributionPoint ::= SEQUENCE { distributionPoint [0] DistributionPointName, ... }
Status decode_distribution_point(const Element &value, Bytes &out) {
    bool found = false;
    return cert::find_uri(kWalk, value, found, out);
}

struct KnownExtension {
    Bytes oid;
    CrlExtension Crl::*place;
    Status (*decode)(const Element &value, Bytes &out);
};

constexpr std::array kKnownExtensions{
    KnownExtension{oid::kCrlNumber, &Crl::crl_number, decode_number},
    KnownExtension{oid::kDeltaCrlIndicator, &Crl::delta_indicator, decode_number},
    KnownExtension{oid::kAuthorityKeyIdentifier, &Crl::authority_key_identifier,
                   decode_key_identifier},
    KnownExtension{oid::kIssuingDistributionPoint, &Crl::distribution_point,
                   decode_distribution_point},
};

// The first occurrence counts; what is not known is passed over, critical or not.
Status decode_extension(Crl &crl, const Element &element) {
    Children fields;
    cert::Extension extension;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(element, fields));
    ZA_PASS(cert::open_extension(kWalk, fields, extension));
    const auto known = std::ranges::find_if(
        kKnownExtensions, [&](const auto &row) { return equal(row.oid, extension.oid); });
    if (known == kKnownExtensions.end() || (crl.*known->place).state.decoded) {
        return Status::ok;
    }
    Bytes value;
    ZA_PASS(known->decode(Element(extension.value), value));
    CrlExtension &place = crl.*known->place;
    place.value.refer(value);
    place.state.critical = extension.critical;
    place.state.decoded = true;
    return Status::ok;
}

}  // namespace

Status keep_crl(Crl &crl, Bytes in) {
    Bytes whole;
    ZA_PASS(cert::keep_object(kWalk, in, crl.kept, whole));
    crl.whole.refer(whole);
    return Status::ok;
}

// CertificateList ::= SEQUENCE { tbsCertList, signatureAlgorithm, signatureValue }
Status decode_crl(Crl &crl, Bytes in) {
    ZA_TRY(setCRL2Context, keep_crl(crl, in));
    Children fields;
    Element tbs;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(Element(crl.whole.bytes()), fields));
    if (!fields.next(tbs)) {
        return Status::ok;
    }
    ZA_TRY(ZI_CRL_DecodeTBS, decode_crl_tbs(crl, tbs));
    return cert::decode_signature(kWalk, fields, "------>ZAsn1_ReadSequence", crl.outer_algorithm,
                                  crl.signature);
}

// TBSCertList ::= SEQUENCE { version OPTIONAL, signature, issuer, thisUpdate, nextUpdate OPTIONAL,
//     revokedCertificates OPTIONAL, crlExtensions [0] EXPLICIT OPTIONAL }
Status decode_crl_tbs(Crl &crl, const Element &tbs) {
    crl.tbs.refer(tbs.octets);
    crl.version = 0;
    Children fields;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(tbs, fields));
    if (fields.empty()) {
        return Status::ok;
    }
    Element field;
    ZA_PASS(decode_version_and_algorithm(fields, crl));
    ZA_PASS(cert::take_field(kWalk, fields, field));
    ZA_PASS(cert::decode_name(kWalk, field, crl.issuer));
    ZA_PASS(cert::take_field(kWalk, fields, field));
    ZA_PASS(cert::decode_time(kWalk, field, crl.this_update));
    ZA_PASS(decode_optional_fields(fields, crl));
    trace.note("======>ZI_CRL_DecodeTBS");
    return Status::ok;
}

Status decode_crl_extensions(Crl &crl, const Element &wrapper) {
    bool found = false;
    Children extensions;
    ZA_PASS(cert::open_extensions(kWalk, wrapper, found, extensions));
    for (Element extension; extensions.next(extension);) {
        ZA_PASS(decode_extension(crl, extension));
    }
    if (found) {
        trace.note("======>ZI_Crl_DecodeExtensions");
    }
    return Status::ok;
}

}  // namespace za::request

using za::Bytes;
using za::Status;
using za::asn1::Element;
using za::cert::decode_kept;
using za::request::Crl;
using za::request::kWalk;

uint32_t ZACert_DecodeCrl(void *ctx, const uint8_t *der, uint32_t derLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, der));
        return za::request::decode_crl(*static_cast<Crl *>(ctx), {der, derLen});
    });
}

uint32_t setCRL2Context(void *ctx, const uint8_t *der, uint32_t derLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, der));
        return za::request::keep_crl(*static_cast<Crl *>(ctx), {der, derLen});
    });
}

uint32_t ZI_CRL_DecodeTBS(void *ctx, Anybuf *tbs) {
    return trace.exported(
        [&] { return decode_kept<Crl>(kWalk, ctx, tbs, za::request::decode_crl_tbs); });
}

uint32_t ZI_CRL_DecodeRevokedCerts(void *ctx, Anybuf *revoked) {
    return trace.exported([&] {
        return decode_kept<Crl>(kWalk, ctx, revoked, [](Crl &crl, const Element &element) {
            return crl.revoked.refer(element);
        });
    });
}

uint32_t ZI_Crl_DecodeExtensions(Anybuf *wrapper, void *ctx) {
    return trace.exported(
        [&] { return decode_kept<Crl>(kWalk, ctx, wrapper, za::request::decode_crl_extensions); });
}
