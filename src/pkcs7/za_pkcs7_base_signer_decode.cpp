// From DER to the signer context.
#include "pkcs7/za_pkcs7_base_signer.hpp"
#include "pkcs7/za_pkcs7_content_info.hpp"

#include <utility>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_base", {za::pkcs7::kArrow}};

}  // namespace

namespace za::pkcs7 {

using asn1::Children;
using asn1::Element;

namespace {

// [n] IMPLICIT Attributes OPTIONAL
Status take_attributes(Children &fields, uint8_t identifier, AttributeList &out) {
    Element set;
    Children elements;
    if (!take_optional(fields, identifier, set)) {
        return Status::ok;
    }
    ZA_PASS(read_elements(trace, set, elements));
    ZA_TRY(ZI_PKCS7_DecodeAttributes, read_attributes(elements, out));
    return Status::ok;
}

Status read_signer_info(const Element &in, SignerFields &out) {
    Children fields;
    Element who;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(in, fields));
    // version INTEGER
    ZA_PASS(take_version(trace, fields, out.version));
    out.has_version = true;
    // issuerAndSerialNumber IssuerAndSerialNumber: a signer told by a key identifier is none of
    // PKCS#7's
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SEQUENCE, who));
    ZA_PASS(read_issuer_and_serial(who, out.who));
    // digestAlgorithm AlgorithmIdentifier
    ZA_PASS(take_algorithm(trace, fields, out.digest_algorithm));
    // authenticatedAttributes [0] IMPLICIT Attributes OPTIONAL
    ZA_PASS(take_attributes(fields, 0xA0, out.attributes));
    // digestEncryptionAlgorithm AlgorithmIdentifier
    ZA_PASS(take_algorithm(trace, fields, out.encryption_algorithm));
    // encryptedDigest OCTET STRING
    ZA_PASS(take_octets(trace, fields, out.signature));
    // unauthenticatedAttributes [1] IMPLICIT Attributes OPTIONAL
    ZA_PASS(take_attributes(fields, 0xA1, out.unauthenticated));
    if (!fields.empty()) {
        return trace.fail(Status::type);
    }
    out.encoded.decoded(in.octets);
    return Status::ok;
}

// What was decoded before stays where decoding fails.
Status decode_copy(SignerInfo &signer, Bytes in) {
    SignerFields fields;
    ZA_PASS(take_der(trace, in, fields.kept));
    ZA_PASS(read_signer_info(Element(fields.kept.bytes()), fields));
    signer.fields = std::move(fields);
    return Status::ok;
}

}  // namespace

Status decode_signer_info(const Element &in, SignerInfo &signer) {
    const auto decode = [&] {
        SignerFields fields;
        ZA_PASS(read_signer_info(in, fields));
        signer.fields = std::move(fields);
        return Status::ok;
    };
    return trace.announced(decode, "ZA_PKCS7_DecodeSignerInfo");
}

}  // namespace za::pkcs7

using za::Status;

uint32_t ZA_PKCS7_DecodeSignerInfo(void *ctx, const uint8_t *der, uint32_t derLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, der));
        return za::pkcs7::decode_copy(*static_cast<za::pkcs7::SignerInfo *>(ctx), {der, derLen});
    });
}
