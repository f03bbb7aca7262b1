// Whether the signature of a signer is good.
#include "names/za_low_oid.hpp"
#include "pkcs7/za_pkcs7_base_signer.hpp"
#include "pkcs7/za_pkcs7_digest_info.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_base", {za::pkcs7::kArrow}};

}  // namespace

namespace za::pkcs7 {
namespace {

constexpr uint32_t kGood = 200;
constexpr uint32_t kBad = 300;
constexpr uint32_t kNoFunctions = 100;
constexpr uint32_t kNoContext = 108;

bool is_sm2(const SignerInfo &signer) {
    return is_sm2_signature(signer.fields.digest_algorithm.bytes());
}

bool has_functions(const SignerInfo &signer) {
    return signer.digest.installed() &&
           (is_sm2(signer) ? signer.ec_verify.installed() : signer.crypt.installed());
}

// What is digested for the signature. `set` keeps what is not kept elsewhere.
Status signed_octets(const SignerInfo &signer, Bytes given, Octets &set, Bytes &out) {
    const SignerFields &fields = signer.fields;
    if (!given.empty()) {
        out = given;
        return Status::ok;
    }
    if (!fields.attributes.list.empty()) {
        ZA_PASS(write_attribute_set(signer, nullptr, set));
        out = set.bytes();
        return Status::ok;
    }
    // An empty element of attributes is no leave to take the content for what is signed.
    if (fields.attributes.present) {
        return trace.fail(Status::general, "------>Attributes NULL");
    }
    if (fields.content.empty()) {
        return trace.fail(Status::general, "------>Content is null && Attributes is null");
    }
    out = fields.content.bytes();
    return Status::ok;
}

// Whatever the function returns beside a verdict of 1 is a bad signature.
Status check_by_ec(const SignerInfo &signer, Bytes digest, bool &good) {
    const Bytes signature = signer.fields.signature.bytes();
    int32_t code = 0;
    uint32_t verdict = 0;
    ZA_PASS(signer.ec_verify.call([&](ZA_PKCS7_EcVerifyFunc function, void *block) {
        code = function(digest.data(), to_u32(digest.size()), signature.data(),
                        to_u32(signature.size()), &verdict, block);
        return 0;
    }));
    good = code == 0 && verdict == 1;
    trace.note(good ? "======>Func ECC VerifyOK" : "------>Func ECC VerifyErr");
    return Status::ok;
}

Status check_by_opening(const SignerInfo &signer, Bytes digest_info, bool &good) {
    const Bytes signature = signer.fields.signature.bytes();
    Secret opened;
    ZA_TRY_AS("------>Func RSA",
              run(trace, signer.crypt, signature, signature.size(), Status::crypt, opened));
    good = equal(opened.bytes(), digest_info);
    return Status::ok;
}

Status check_signature(const SignerInfo &signer, Bytes given, bool &good) {
    Octets set;
    Octets info;
    Secret digest;
    Bytes octets;
    ZA_PASS(signed_octets(signer, given, set, octets));
    ZA_PASS(digest_of(signer, octets, digest));
    ZA_TRY(ZI_MakeDigestInfo,
           make_digest_info(signer.fields.digest_algorithm.bytes(), digest.bytes(), info));
    if (signer.fields.signature.empty()) {
        good = false;
        return Status::ok;
    }
    return is_sm2(signer) ? check_by_ec(signer, info.bytes(), good)
                          : check_by_opening(signer, info.bytes(), good);
}

Status has_digest(const SignerInfo &signer, Bytes octets, Bytes stated, bool &same) {
    Secret digest;
    ZA_PASS(digest_of(signer, octets, digest));
    same = equal(digest.bytes(), stated);
    return Status::ok;
}

// messageDigest OCTET STRING: there must be one attribute with one value.
bool read_message_digest(const AttributeList &attributes, Bytes &out) {
    const Attribute *attribute = find_attribute(attributes, oid::kMessageDigest);
    const Bytes value = attribute == nullptr ? Bytes{} : attribute->value.bytes();
    asn1::Content content;
    if (value.empty() || value[0] != ZA_DER_ID_OCTETSTRING ||
        asn1::read_string(asn1::Element(value), content) != Status::ok) {
        return false;
    }
    out = content.octets;
    return true;
}

// The octets inside the one element that `in` is; none where it is something else.
Bytes value_octets(Bytes in) {
    asn1::Header header;
    const bool is_element =
        !in.empty() && asn1::read_header(in, header) == Status::ok && header.total == in.size();
    return is_element ? in.subspan(header.size()) : Bytes{};
}

// A signature over attributes covers content by the digest that is one of them. Of content that is
// no data some writers digest the whole element, as this library does, and some what is inside it.
Status check_content(const SignerInfo &signer, bool &covered) {
    const SignerFields &fields = signer.fields;
    const Bytes content = fields.content.bytes();
    Bytes stated;
    covered = read_message_digest(fields.attributes, stated);
    if (!covered) {
        return Status::ok;
    }
    ZA_PASS(has_digest(signer, content, stated, covered));
    const Bytes type = fields.content_type.bytes();
    const Bytes inside = type.empty() || equal(type, oid::kData) ? Bytes{} : value_octets(content);
    if (!covered && !inside.empty()) {
        ZA_PASS(has_digest(signer, inside, stated, covered));
    }
    return Status::ok;
}

Status verify(const SignerInfo &signer, Bytes given, uint32_t &result) {
    if (!has_functions(signer)) {
        result = kNoFunctions;
        return trace.fail(Status::invalid_item, "------>Func == NULL");
    }
    bool good = false;
    ZA_PASS(check_signature(signer, given, good));
    const bool by_attributes = given.empty() && !signer.fields.attributes.list.empty();
    if (good && by_attributes && signer.fields.has_content) {
        ZA_PASS(check_content(signer, good));
    }
    result = good ? kGood : kBad;
    return Status::ok;
}

Status need_result(const uint32_t *result) {
    return result != nullptr
               ? Status::ok
               : trace.fail(Status::general,
                            "------>result is NULL, in ZA_PKCS7_VerifySignerSignature Fun");
}

constexpr const char *kNoContextLine = "------>pPKCS7SignerInfo is NULL";

}  // namespace
}  // namespace za::pkcs7

using za::Status;
namespace pkcs7 = za::pkcs7;

uint32_t ZA_PKCS7_VerifySignerSignature(void *ctx, uint32_t *result) {
    return trace.exported([&] {
        ZA_PASS(pkcs7::need_result(result));
        if (ctx == nullptr) {
            return trace.fail(Status::general, pkcs7::kNoContextLine);
        }
        return pkcs7::verify(*static_cast<pkcs7::SignerInfo *>(ctx), {}, *result);
    });
}

// Without a context the code is the result, and the call has succeeded.
uint32_t ZA_PKCS7_VerifySignerSignature2(void *ctx, const uint8_t *content, uint32_t contentLen,
                                         uint32_t *result) {
    return trace.exported([&] {
        ZA_PASS(pkcs7::need_result(result));
        if (ctx == nullptr) {
            trace.note(pkcs7::kNoContextLine);
            *result = pkcs7::kNoContext;
            return Status::ok;
        }
        za::Bytes given;
        ZA_PASS(pkcs7::view_content(content, content == nullptr ? 0 : contentLen, given));
        return pkcs7::verify(*static_cast<pkcs7::SignerInfo *>(ctx), given, *result);
    });
}
