#include "cert/za_cert_decode.hpp"

#include "asn1/za_asn2_writer.hpp"
#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_cert"};

}  // namespace

namespace za::cert {
namespace {

using asn1::Children;
using asn1::Element;

constexpr Walk kWalk{trace, Status::certificate_not_end};

// Validity ::= SEQUENCE { notBefore Time, notAfter Time }
Status decode_validity(const Element &validity, Certificate &cert) {
    Children times;
    Element time;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(validity, times));
    ZA_PASS(take_field(times, time));
    ZA_PASS(decode_time(kWalk, time, cert.not_before));
    ZA_PASS(take_field(times, time));
    return decode_time(kWalk, time, cert.not_after);
}

// version [0] EXPLICIT INTEGER DEFAULT v1, serialNumber INTEGER
Status decode_version_and_serial(Children &fields, Certificate &cert) {
    Element field;
    Element inner;
    uint32_t tag = 0;
    ZA_PASS(take_field(fields, field));
    ZA_TRY(ZAsn1_ReadExplicit, asn1::read_explicit(field, inner, tag));
    cert.has_version = tag == asn1::constructed(0);
    cert.version = 0;
    if (cert.has_version) {
        ZA_TRY(ZAsn1_ReadInteger, asn1::read_integer(inner, cert.version));
        ZA_PASS(take_field(fields, field));
    }
    asn1::Content serial;
    ZA_TRY(ZAsn1_ReadIntegerArray, asn1::read_integer_array(field, serial));
    cert.serial.refer(serial.octets);
    return Status::ok;
}

}  // namespace

Status take_field(Children &fields, Element &out) {
    return take_field(kWalk, fields, out);
}

// Certificate ::= SEQUENCE { tbsCertificate, signatureAlgorithm, signatureValue }
Status decode_certificate(Certificate &cert, Bytes in) {
    Bytes whole;
    ZA_PASS(keep_object(kWalk, in, cert.kept, whole));
    cert.whole.refer(whole);

    Children fields;
    Element tbs;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(Element(whole), fields));
    if (!fields.next(tbs)) {
        return Status::ok;
    }
    ZA_TRY(ZI_Cert_DecodeTBS, decode_tbs(cert, tbs));
    // The text names another function; readers of logs know it so.
    return decode_signature(kWalk, fields, "------>ZI_Cert_DecodeTBS", cert.outer_algorithm,
                            cert.signature);
}

// TBSCertificate ::= SEQUENCE { version, serialNumber, signature, issuer, validity, subject,
//     subjectPublicKeyInfo, extensions [3] EXPLICIT OPTIONAL }
Status decode_tbs(Certificate &cert, const Element &tbs) {
    cert.tbs.refer(tbs.octets);
    cert.has_version = false;
    Children fields;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(tbs, fields));
    if (fields.empty()) {
        return Status::ok;
    }
    ZA_PASS(decode_version_and_serial(fields, cert));

    Element field;
    Children algorithm;
    ZA_PASS(take_field(fields, field));
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(field, algorithm));
    ZA_PASS(decode_algorithm(kWalk, algorithm, cert.inner_algorithm));
    ZA_PASS(take_field(fields, field));
    ZA_PASS(decode_name(kWalk, field, cert.issuer));
    ZA_PASS(take_field(fields, field));
    ZA_PASS(decode_validity(field, cert));
    ZA_PASS(take_field(fields, field));
    ZA_PASS(decode_name(kWalk, field, cert.subject));
    ZA_PASS(take_field(fields, field));
    ZA_PASS(decode_public_key(kWalk, field, cert.key));

    // Unique identifiers are not known here: what follows the key is taken for the extensions.
    if (fields.next(field)) {
        cert.extensions_present = true;
        ZA_TRY(ZI_Cert_DecodeExtensions, decode_extensions(cert, field));
    }
    trace.note("======>ZI_Cert_DecodeTBS");
    return Status::ok;
}

}  // namespace za::cert

using za::Bytes;
using za::Status;
using za::asn1::Children;
using za::asn1::Element;
using za::cert::Certificate;
using za::cert::decode_kept;
using za::cert::kWalk;

namespace {

// The same for the chain of an extension's elements.
Status decode_extension(void *ctx, const Anybuf *elements, za::cert::ExtensionDecoder decode) {
    za::Chain sequence;
    ZA_TRY(ZAsn1_WriteSequence, za::asn1::write_sequence(elements, sequence));
    return decode_kept<Certificate>(
        kWalk, ctx, sequence.head(), [&](Certificate &cert, const Element &extension) {
            Children children;
            ZA_TRY(ZAsn1_ReadSequence, za::asn1::read_sequence(extension, children));
            return decode(cert, children);
        });
}

}  // namespace

uint32_t ZACert_DecodeCert(void *ctx, const uint8_t *der, uint32_t derLen) {
    return trace.exported([&] {
        // The header decides, not the argument; but what it may add is bounded.
        constexpr uint32_t kMostBeyondArgument = 65536;
        ZA_PASS(trace.need(ctx, der));
        uint32_t total = 0;
        ZA_TRY(ZAsn1_GetCertLength, za::asn1::element_length(der, total));
        if (total > derLen && total > kMostBeyondArgument) {
            return trace.fail(Status::length);
        }
        return za::cert::decode_certificate(*static_cast<Certificate *>(ctx), {der, total});
    });
}

uint32_t ZI_Cert_DecodeTBS(void *ctx, Anybuf *tbs) {
    return trace.exported(
        [&] { return decode_kept<Certificate>(kWalk, ctx, tbs, za::cert::decode_tbs); });
}

uint32_t ZI_Cert_DecodeExtensions(Anybuf *wrapper, void *extBlock) {
    return trace.exported([&] {
        return decode_kept<Certificate>(kWalk, extBlock, wrapper, za::cert::decode_extensions);
    });
}

uint32_t ZI_Cert_DecodeExtension_BasicConstraint(Anybuf *elements, void *extBlock) {
    return trace.exported(
        [&] { return decode_extension(extBlock, elements, za::cert::decode_basic_constraints); });
}

uint32_t ZI_Cert_DecodeExtension_AuthorityKeyIdentifyer(Anybuf *elements, void *extBlock) {
    return trace.exported([&] {
        return decode_extension(extBlock, elements, za::cert::decode_authority_key_identifier);
    });
}

uint32_t ZI_Cert_DecodeExtension_SubjectKeyIdentifier(Anybuf *elements, void *extBlock) {
    return trace.exported([&] {
        return decode_extension(extBlock, elements, za::cert::decode_subject_key_identifier);
    });
}

uint32_t ZI_Cert_DecodeExtension_KeyUsage(Anybuf *elements, void *extBlock) {
    return trace.exported(
        [&] { return decode_extension(extBlock, elements, za::cert::decode_key_usage); });
}

uint32_t ZI_Cert_DecodeExtension_ExtKeyUsage(Anybuf *elements, void *extBlock) {
    return trace.exported(
        [&] { return decode_extension(extBlock, elements, za::cert::decode_extended_key_usage); });
}

uint32_t ZI_Cert_DecodeExtension_CrlDistributionPoint(Anybuf *elements, void *extBlock) {
    return trace.exported(
        [&] { return decode_extension(extBlock, elements, za::cert::decode_distribution_points); });
}

uint32_t ZI_Cert_DecodeExtension_SubjectAltName(Anybuf *elements, void *extBlock) {
    return trace.exported([&] {
        return decode_extension(extBlock, elements, za::cert::decode_subject_alternative_name);
    });
}

uint32_t ZI_Cert_DecodeExtension_IssuerAltName(Anybuf *elements, void *extBlock) {
    return trace.exported([&] {
        return decode_extension(extBlock, elements, za::cert::decode_issuer_alternative_name);
    });
}

uint32_t ZI_Cert_DecodeExtension_Private(Anybuf *elements, void *extBlock) {
    return trace.exported(
        [&] { return decode_extension(extBlock, elements, za::cert::decode_private); });
}
