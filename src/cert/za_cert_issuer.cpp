// Contexts for certificates that a given CA issues.
#include "cert/za_cert_issuer.hpp"

#include "cert/za_cert_accessors.hpp"
#include "cert/za_cert_attributes.hpp"
#include "cert/za_cert_decode.hpp"
#include "crypto/za_crypt_pkcs7.hpp"
#include "names/za_low_charset.hpp"
#include "runtime/context.hpp"
#include "runtime/trace.hpp"
#include "text/za_pem.hpp"

#include <array>
#include <memory>

namespace {

constexpr za::TraceSource trace{".\\src\\za_cert"};

}  // namespace

namespace za::cert {

Status decode_ca(const TraceSource &trace, const uint8_t *der, uint32_t der_len, Certificate &out) {
    constexpr size_t kLongestName = 2048;
    if (der == nullptr) {
        return trace.fail(Status::general, "------>pDerIssuCert is NULL");
    }
    if (der_len == 0) {
        return trace.fail(Status::general, "------>pDerIssuCertLen<=0");
    }
    ZA_TRY(ZACert_DecodeCert, decode_certificate(out, {der, der_len}));
    if (out.subject.der.bytes().size() > kLongestName) {
        return trace.fail(Status::length);
    }
    return Status::ok;
}

namespace {

struct Destroy {
    void operator()(Certificate *cert) const { destroy_in_heap(cert); }
};
using Context = std::unique_ptr<Certificate, Destroy>;

Status set_issuer_name(const Certificate &ca, Certificate &cert) {
    ZA_TRY(ZACert_SetCertAttributeChar,
           set_attribute(cert, CERT_ISSUER_DERDN, ca.subject.der.bytes()));
    return Status::ok;
}

Status create_for(const Certificate &ca, Context &out) {
    Context cert(make_in_heap<Certificate>());
    if (cert == nullptr) {
        return trace.fail(Status::memory);
    }
    ZA_PASS(set_issuer_name(ca, *cert));
    out = std::move(cert);
    return Status::ok;
}

// The authority key identifier: the CA's own key identifier, where it has one.
Status set_key_identifier(const Certificate &ca, Certificate &cert) {
    constexpr std::array<uint8_t, 1> kNotCritical{0};
    const Bytes identifier = ca.subject_key_identifier.value.bytes();
    if (identifier.empty()) {
        return Status::ok;
    }
    ZA_TRY(ZACert_SetCertAttributeChar,
           set_attribute(cert, CERTEX_AUTHORITYKEYIDENTIFIER, identifier));
    ZA_TRY(ZACert_SetCertAttributeChar,
           set_attribute(cert, CERTEX_AUTHORITYKEYIDENTIFIER_CRITICAL, kNotCritical));
    return Status::ok;
}

struct IssuerEntry {
    uint32_t kind;
    int32_t id;
    const char *failure;
};

#define ENTRY(kind, name)                                                                \
    IssuerEntry {                                                                        \
        kind, CERT_ISSUER_PUBLICKEYINFO_##name,                                          \
            "------>ZACert_SetCertAttributeChar CERT_ISSUER_PUBLICKEYINFO_" #name " Err" \
    }

constexpr std::array kIssuerEntries{
    ENTRY(names::kCountry, COUNTRYNAME),
    ENTRY(names::kState, STATEORPROVINCENAME),
    ENTRY(names::kLocality, LOCALITYNAME),
    ENTRY(names::kOrganization, ORGANIZATIONNAME),
    ENTRY(names::kOrganizationalUnit, ORGANIZATIONALUNITNAME),
    ENTRY(names::kCommonName, COMMONNAME),
    ENTRY(names::kEmail, EMAIL),
};

#undef ENTRY

bool has_utf8(const names::NameList &entries, uint32_t kind) {
    const ZI_NameEntry *entry = entries.first();
    while (entry != nullptr &&
           (entry->attrKind != kind || entry->attrValue.dataType != asn1::kUtf8String)) {
        entry = entry->nextEntry;
    }
    return entry != nullptr;
}

// What the CA's subject attribute reads as. Setters take GB18030, but the values of a UTF8String
// are read as they stand; those without a counterpart there are passed on so.
Status subject_value(Certificate &ca, uint32_t kind, Octets &out) {
    Bytes value = names::first_of_kind(ca.subject.entries, kind);
    if (kind == names::kOrganizationalUnit) {
        ZA_TRY(ZACert_GetCertAttributeChar, join_units(ca.subject, kind, value));
    }
    if (has_utf8(ca.subject.entries, kind)) {
        const Status converted = names::utf8_to_chinese(value, out);
        if (converted == Status::ok || converted == Status::memory) {
            return converted;
        }
    }
    ZA_TRY(ZACert_GetCertAttributeChar, out.assign(value));
    return Status::ok;
}

Status set_issuer_entries(Certificate &ca, Certificate &cert) {
    for (const IssuerEntry &entry : kIssuerEntries) {
        Octets value;
        ZA_PASS(subject_value(ca, entry.kind, value));
        if (!value.empty()) {
            ZA_TRY_AS(entry.failure, set_attribute(cert, entry.id, value.bytes()));
        }
    }
    return Status::ok;
}

// The digest of the CA's key as one line of Base64.
Status key_digest_text(const Certificate &ca, Octets &out) {
    constexpr int32_t kSha1 = 7;
    constexpr size_t kLongestDigest = 64;
    constexpr size_t kLineEnd = 2;
    std::array<uint8_t, kLongestDigest> digest{};
    uint32_t digest_len = 0;
    ZA_TRY(ZA_PKCS7_DigestMessage,
           crypto::digest_message(kSha1, ca.key.bits.bytes(), digest, digest_len));
    Octets text;
    ZA_TRY(DER2PEM_data_format, text::der_to_pem(Bytes(digest).first(digest_len), {}, text));
    text.truncate(text.size() - kLineEnd);
    out = std::move(text);
    return Status::ok;
}

// What names the CA's certificate beside its key. The name is set once more, as logs of this
// function have always shown.
Status set_issuer_certificate(Certificate &ca, Certificate &cert) {
    Octets digest;
    ZA_PASS(key_digest_text(ca, digest));
    ZA_PASS(set_issuer_name(ca, cert));
    ZA_PASS(set_key_identifier(ca, cert));
    ZA_PASS(set_issuer_entries(ca, cert));
    ZA_TRY_AS("------>ZACert_SetCertAttributeChar CERT_ISSUER_PUBLICKEYINFO_dnQualifier Err",
              set_attribute(cert, CERT_ISSUER_PUBLICKEYINFO_dnQualifier, digest.bytes()));
    ZA_TRY_AS("------>ZACert_SetCertAttributeChar CERT_ISSUER_PUBLICKEYINFO_SN Err",
              set_attribute(cert, CERT_ISSUER_PUBLICKEYINFO_SN, ca.serial.bytes()));
    return Status::ok;
}

}  // namespace
}  // namespace za::cert

using za::Status;
using za::cert::Certificate;
using za::cert::Context;

uint32_t ZACert_CreateCertEncodeCtx_Ex(void **ctx, const uint8_t *derIssuCert,
                                       uint32_t derIssuCertLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        Certificate ca;
        Context cert;
        ZA_PASS(za::cert::decode_ca(trace, derIssuCert, derIssuCertLen, ca));
        ZA_PASS(za::cert::create_for(ca, cert));
        *ctx = cert.release();
        return Status::ok;
    });
}

uint32_t ZACert_CreateCertEncodeCtx_Ex_ForAKid(void **ctx, const uint8_t *derIssuCert,
                                               uint32_t derIssuCertLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        Certificate ca;
        Context cert;
        ZA_PASS(za::cert::decode_ca(trace, derIssuCert, derIssuCertLen, ca));
        ZA_PASS(za::cert::create_for(ca, cert));
        ZA_PASS(za::cert::set_issuer_certificate(ca, *cert));
        *ctx = cert.release();
        return Status::ok;
    });
}
