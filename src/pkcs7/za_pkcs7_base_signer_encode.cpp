// From the signer context to DER, by way of the functions that digest and sign.
#include "names/za_low_algorithm.hpp"
#include "names/za_low_oid.hpp"
#include "pkcs7/za_pkcs7_base_signer.hpp"
#include "pkcs7/za_pkcs7_digest_info.hpp"

#include <utility>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_base", {za::pkcs7::kArrow}};

}  // namespace

namespace za::pkcs7 {

using asn1::Builder;

Status digest_of(const SignerInfo &signer, Bytes in, Secret &out) {
    Secret digest;
    ZA_TRY_AS("------>Func", run(trace, signer.digest, in, 0, Status::digest, digest));
    if (digest.value.empty()) {
        return trace.fail(Status::digest);
    }
    out = std::move(digest);
    return Status::ok;
}

Status write_attribute_set(const SignerInfo &signer, const Replacement *replacement, Octets &out) {
    Builder set;
    set.wrapped(ZA_DER_ID_SET,
                [&] { write_attributes(signer.fields.attributes.list, replacement, set); });
    ZA_TRY(ZI_PKCS7_EncodeAttributes, set.finish(out));
    return Status::ok;
}

namespace {

Status check_fields(const SignerFields &fields) {
    if (!fields.has_version) {
        return trace.fail(Status::general, "------>Signer version is null");
    }
    if (!fields.who.complete()) {
        return trace.fail(Status::general, "------>IssuerAndSerialNumber is null");
    }
    if (fields.digest_algorithm.empty()) {
        return trace.fail(Status::general, "------>Signer digestAlgorithm is null");
    }
    if (fields.encryption_algorithm.empty()) {
        return trace.fail(Status::general, "------>Signer digestEncryptionAlgorithm is null");
    }
    return Status::ok;
}

// Something must be there to be signed. What is no plain data must have a place for its type, which
// is an attribute.
Status check_content(const SignerFields &fields, Bytes content) {
    if (fields.attributes.present) {
        return fields.attributes.list.empty()
                   ? trace.fail(Status::general, "------>Attributes NULL")
                   : Status::ok;
    }
    if (!equal(fields.content_type.bytes(), oid::kData)) {
        return trace.fail(Status::general, "------>Content and attributes error");
    }
    if (content.empty()) {
        return trace.fail(Status::general, "------>ContentLen or Attributes NULL");
    }
    return Status::ok;
}

Status check_functions(const SignerInfo &signer) {
    if (!signer.digest.installed()) {
        return trace.fail(Status::invalid_item, "------>Func == NULL");
    }
    return signer.crypt.installed() ? Status::ok : trace.fail(Status::sign_function_not_set);
}

Status sign(const SignerInfo &signer, Bytes digest, Octets &signature) {
    Octets info;
    Secret made;
    ZA_TRY(ZI_MakeDigestInfo,
           make_digest_info(signer.fields.digest_algorithm.bytes(), digest, info));
    ZA_TRY_AS("------>Func",
              run(trace, signer.crypt, info.bytes(), 0, Status::invalid_signature_length, made));
    if (made.value.empty()) {
        return trace.fail(Status::invalid_signature_length);
    }
    signature = std::move(made.value);
    return Status::ok;
}

// The attributes are signed with the digest of the content among them. It goes into what is written
// alone: the caller's list stays as it was set.
Status sign_attributes(const SignerInfo &signer, Bytes content_digest, Octets &set,
                       Octets &signature) {
    Builder value;
    Octets message_digest;
    Secret digest;
    value.octet_string(content_digest);
    ZA_PASS(value.finish(message_digest));
    const Replacement replacement{oid::kMessageDigest, message_digest.bytes()};
    ZA_PASS(write_attribute_set(signer, content_digest.empty() ? nullptr : &replacement, set));
    ZA_PASS(digest_of(signer, set.bytes(), digest));
    return sign(signer, digest.bytes(), signature);
}

// authenticatedAttributes [0] IMPLICIT Attributes OPTIONAL: digested as a SET, written with its tag.
// What is digested for the signature is the SET, or the content.
Status write_signed_part(const SignerInfo &signer, Bytes content_digest, Octets &signature,
                         Builder &out) {
    constexpr uint8_t kAuthenticated = 0xA0;
    if (!signer.fields.attributes.present) {
        return sign(signer, content_digest, signature);
    }
    Octets set;
    ZA_PASS(sign_attributes(signer, content_digest, set, signature));
    *set.data() = kAuthenticated;
    out.raw(set.bytes());
    return Status::ok;
}

Status write_signer_info(SignerInfo &signer, Bytes content_digest, Octets &signature,
                         Builder &out) {
    constexpr uint8_t kUnauthenticated = 0xA1;
    SignerFields &fields = signer.fields;
    return out.sequence([&] {
        // version INTEGER
        out.integer(fields.version);
        // issuerAndSerialNumber IssuerAndSerialNumber
        ZA_PASS(write_issuer_and_serial(fields.who, out));
        // digestAlgorithm AlgorithmIdentifier
        names::write_algorithm(fields.digest_algorithm.bytes(), out);
        ZA_PASS(write_signed_part(signer, content_digest, signature, out));
        // digestEncryptionAlgorithm AlgorithmIdentifier
        names::write_algorithm(fields.encryption_algorithm.bytes(), out);
        // encryptedDigest OCTET STRING
        out.octet_string(signature.bytes());
        // unauthenticatedAttributes [1] IMPLICIT Attributes OPTIONAL
        if (!fields.unauthenticated.list.empty()) {
            out.wrapped(kUnauthenticated,
                        [&] { write_attributes(fields.unauthenticated.list, nullptr, out); });
        }
        return Status::ok;
    });
}

struct Source {
    Bytes content;
    bool put = false;
};

Status sign_and_keep(SignerInfo &signer, const Source &source, Secret &content_digest) {
    Builder written;
    Octets signature;
    Octets der;
    ZA_PASS(write_signer_info(signer, content_digest.bytes(), signature, written));
    ZA_PASS(written.finish(der));
    SignerFields &fields = signer.fields;
    fields.signature.take(std::move(signature));
    fields.encoded.made(std::move(der));
    fields.put_content = source.put;
    fields.put_len = source.content.size();
    fields.put_digest.take(std::move(content_digest.value));
    return Status::ok;
}

// The content of the put form is not kept. That it is the one that was signed is told by its length
// and its digest.
bool is_same_put(const SignerFields &fields, const Source &source, Bytes content_digest) {
    return source.put && !fields.encoded.empty() && fields.put_content &&
           fields.put_len == source.content.size() &&
           equal(fields.put_digest.bytes(), content_digest);
}

bool is_kept_for(const SignerFields &fields, const Source &source) {
    const KeptEncoding &kept = fields.encoded;
    return !kept.empty() && (kept.was_decoded() || (!source.put && !fields.put_content));
}

Status encode(SignerInfo &signer, const Source &source, Bytes &out) {
    SignerFields &fields = signer.fields;
    if (!is_kept_for(fields, source)) {
        Secret digest;
        ZA_PASS(check_fields(fields));
        ZA_PASS(check_content(fields, source.content));
        ZA_PASS(check_functions(signer));
        if (!source.content.empty()) {
            ZA_PASS(digest_of(signer, source.content, digest));
        }
        if (!is_same_put(fields, source, digest.bytes())) {
            ZA_PASS(sign_and_keep(signer, source, digest));
        }
    }
    out = fields.encoded.bytes();
    return Status::ok;
}

Status encode_stored(SignerInfo &signer, Bytes &out) {
    return encode(signer, {signer.fields.content.bytes(), false}, out);
}

Status encode_put(SignerInfo &signer, Bytes content, Bytes &out) {
    return encode(signer, {content, true}, out);
}

}  // namespace

Status encode_signer_info(SignerInfo &signer, Bytes &out) {
    return trace.announced([&] { return encode_stored(signer, out); }, "ZA_PKCS7_EncodeSignerInfo");
}

Status encode_signer_info_put(SignerInfo &signer, Bytes content, Bytes &out) {
    return trace.announced([&] { return encode_put(signer, content, out); },
                           "ZA_PKCS7_EncodeSignerInfoPutdata");
}

}  // namespace za::pkcs7

using za::Bytes;
using za::Status;
using za::pkcs7::SignerInfo;

uint32_t ZA_PKCS7_EncodeSignerInfo(void *ctx, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        Bytes der;
        ZA_PASS(za::pkcs7::encode_stored(*static_cast<SignerInfo *>(ctx), der));
        za::hand_out(der, out, outLen);
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_EncodeSignerInfoPutdata(void *ctx, const uint8_t *content, uint32_t contentLen,
                                          uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        Bytes octets;
        Bytes der;
        ZA_PASS(za::pkcs7::view_content(content, contentLen, octets));
        ZA_PASS(za::pkcs7::encode_put(*static_cast<SignerInfo *>(ctx), octets, der));
        za::hand_out(der, out, outLen);
        return Status::ok;
    });
}
