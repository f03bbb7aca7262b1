#include "cert/za_cert_encode.hpp"

#include "cert/za_cert_attributes.hpp"
#include "cert/za_cert_part_encode.hpp"
#include "names/za_low_algorithm.hpp"
#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_cert"};

}  // namespace

namespace za::cert {

using asn1::Builder;

// Validity ::= SEQUENCE { notBefore Time, notAfter Time }
Status write_validity(const Certificate &cert, Builder &out) {
    return out.sequence([&] {
        ZA_PASS(write_time(trace, cert.not_before, out));
        return write_time(trace, cert.not_after, out);
    });
}

namespace {

Status write_tbs_fields(Certificate &cert, Builder &out) {
    constexpr uint8_t kVersion = 0xA0;
    // version [0] EXPLICIT INTEGER, which DER leaves out for version 1 and this library never did
    out.wrapped(kVersion, [&] { out.integer(cert.version); });
    out.integer(cert.serial.bytes());
    names::write_algorithm(cert.inner_algorithm.bytes(), out);
    ZA_PASS(write_name(trace, cert.issuer, cert.issuer.string_types.data(), out));
    ZA_TRY(ZI_Cert_EncodeValidity, write_validity(cert, out));
    ZA_PASS(write_name(trace, cert.subject, cert.subject.string_types.data(), out));
    ZA_PASS(write_public_key(trace, cert.key, out));
    ZA_TRY(ZI_Cert_EncodeExtensions, write_extensions(cert, out));
    return Status::ok;
}

// TBSCertificate ::= SEQUENCE { version, serialNumber, signature, issuer, validity, subject,
//     subjectPublicKeyInfo, extensions [3] EXPLICIT OPTIONAL }
Status encode_tbs(Certificate &cert, Octets &out) {
    constexpr size_t kUsualSize = 1024;
    Builder tbs;
    tbs.reserve(kUsualSize);
    ZA_PASS(tbs.sequence([&] { return write_tbs_fields(cert, tbs); }, kUsualSize));
    return tbs.finish(out);
}

}  // namespace

Status encode_certificate(Certificate &cert) {
    if (!cert.whole.empty()) {
        return Status::ok;
    }
    Octets tbs;
    Octets signature;
    Octets whole;
    ZA_PASS(encode_tbs(cert, tbs));
    ZA_PASS(cert.signer.sign_certificate(trace, tbs.bytes(), signature));
    ZA_TRY(ZACert_SetCertAttributeChar, set_attribute(cert, CERT_CA_SIGNATURE, signature.bytes()));
    ZA_PASS(write_signed(tbs.bytes(), cert.outer_algorithm.bytes(), cert.signature.bytes(), whole));
    cert.whole.take(std::move(whole));
    return Status::ok;
}

}  // namespace za::cert

using za::Chain;
using za::Status;
using za::asn1::Builder;
using za::cert::Certificate;

namespace {

// Hands out what `write` writes from a context.
template <class Write>
Status hand_out_written(void *ctx, Anybuf **out, const Write &write) {
    ZA_PASS(trace.need(ctx, out));
    return za::asn1::hand_out_built(
        out, [&](Builder &to) { return write(*static_cast<Certificate *>(ctx), to); });
}

}  // namespace

uint32_t ZACert_SetCertSignFunc(void *ctx, ZACertSignFunc func, const uint8_t *key,
                                int32_t keyLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        return static_cast<Certificate *>(ctx)->signer.install(trace, func, key, keyLen);
    });
}

uint32_t ZACert_EncodeCert(void *ctx, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        auto &cert = *static_cast<Certificate *>(ctx);
        ZA_PASS(za::cert::encode_certificate(cert));
        za::hand_out(cert.whole.bytes(), out, outLen);
        return Status::ok;
    });
}

uint32_t ZI_Cert_EncodeValidity(void *ctx, Anybuf **out) {
    return trace.exported([&] { return hand_out_written(ctx, out, za::cert::write_validity); });
}

uint32_t ZI_Cert_EncodeExtensions(void *ctx, Anybuf **out) {
    return trace.exported([&] { return hand_out_written(ctx, out, za::cert::write_extensions); });
}

uint32_t ZI_CERT_EncodeDiscriptList(void *descriptionList, Anybuf **out) {
    return trace.exported([&] {
        return hand_out_written(descriptionList, out, [](Certificate &cert, Builder &built) {
            return za::cert::write_access_descriptions(cert.information_access.descriptions, built);
        });
    });
}

uint32_t ZI_Cert_EncodeExtension_Private(void *ctx, Anybuf **out) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, out));
        Chain extensions;
        for (const auto &extension : static_cast<Certificate *>(ctx)->private_extensions) {
            Builder built;
            ZA_PASS(za::cert::write_private(extension, built));
            ZA_PASS(built.finish(extensions));
        }
        *out = extensions.release();
        return Status::ok;
    });
}
