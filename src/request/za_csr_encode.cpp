// From the request context to DER.
#include <zacert.h>

#include "asn1/za_asn2_builder.hpp"
#include "cert/za_cert_part_encode.hpp"
#include "request/za_csr_attributes.hpp"
#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_csr"};

}  // namespace

namespace za::request {
namespace {

using asn1::Builder;

constexpr uint8_t kAttributesTag = 0xA0;

// Attribute ::= SEQUENCE { type OBJECT IDENTIFIER, values SET { OCTET STRING } }
void write_attribute(const RequestAttribute &attribute, Builder &out) {
    out.sequence([&] {
        out.object_id(attribute.oid.bytes());
        out.wrapped(ZA_DER_ID_SET, [&] { out.octet_string(attribute.value.bytes()); });
    });
}

// attributes [0] IMPLICIT SET OF Attribute, in the order of the calls that added them: whoever
// wants the order of DER adds them in it. Without any the element is empty, but there.
void write_attributes(const Csr &csr, Builder &out) {
    out.wrapped(kAttributesTag, [&] {
        for (const RequestAttribute &attribute : csr.attributes) {
            write_attribute(attribute, out);
        }
    });
}

// CertificationRequestInfo ::= SEQUENCE { version INTEGER, subject Name, subjectPKInfo,
//     attributes [0] }
Status encode_info(Csr &csr, Octets &out) {
    Builder info;
    const auto content = [&] {
        info.integer(csr.version);
        ZA_PASS(cert::write_entries(trace, csr.subject, csr.subject.string_types.data(), info));
        ZA_PASS(cert::write_public_key(trace, csr.key, info));
        write_attributes(csr, info);
        return Status::ok;
    };
    ZA_PASS(info.sequence(content));
    return info.finish(out);
}

// The signature is stored as callers would store it, and refused where theirs would be.
Status encode_csr(Csr &csr) {
    Octets info;
    Octets signature;
    Octets whole;
    ZA_PASS(encode_info(csr, info));
    ZA_PASS(csr.signer.sign_list(trace, info.bytes(), signature));
    ZA_PASS(
        cert::write_signed(info.bytes(), csr.outer_algorithm.bytes(), signature.bytes(), whole));
    ZA_TRY(ZACert_SetCsrAttributeChar,
           set_csr_attribute(csr, CSR_SELF_SIGNATURE, signature.bytes()));
    csr.tbs.take(std::move(info));
    csr.whole.take(std::move(whole));
    return Status::ok;
}

}  // namespace
}  // namespace za::request

using za::Status;
using za::request::Csr;

uint32_t ZACert_SetCsrSignFunc(void *ctx, ZACertSignFunc func, const uint8_t *key, int32_t keyLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        return static_cast<Csr *>(ctx)->signer.install(trace, func, key, keyLen);
    });
}

uint32_t ZACert_EncodeCsr(void *ctx, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        auto &csr = *static_cast<Csr *>(ctx);
        if (csr.whole.empty()) {
            ZA_PASS(za::request::encode_csr(csr));
        }
        za::hand_out(csr.whole.bytes(), out, outLen);
        return Status::ok;
    });
}

uint32_t ZI_Csr_EncodeAttributes(void *ctx, Anybuf **out) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, out));
        return za::asn1::hand_out_built(out, [&](za::asn1::Builder &to) {
            za::request::write_attributes(*static_cast<Csr *>(ctx), to);
            return Status::ok;
        });
    });
}
