#include "verify/za_crypt_x509.hpp"

#include <zacert.h>

#include "cert/za_cert_decode.hpp"
#include "keys/za_ext_number.hpp"
#include "names/za_low_name.hpp"
#include "request/za_crl_decode.hpp"
#include "request/za_csr_decode.hpp"
#include "runtime/trace.hpp"
#include "text/za_pem.hpp"
#include "verify/za_crypt_x509_signature.hpp"

#include <ctime>

namespace {

constexpr za::TraceSource trace{".\\src\\za_crypt_x509"};

}  // namespace

namespace za::verify {

Status check_names(const cert::Name &subject, const cert::Name &issuer) {
    // One encoding has one text, and hardly a pair that belongs together has two encodings.
    if (equal(subject.der.bytes(), issuer.der.bytes())) {
        return Status::ok;
    }
    Octets subject_text;
    Octets issuer_text;
    ZA_TRY(ZACert_GetCertAttributeChar, names::get_dn(subject.entries.first(), subject_text));
    ZA_TRY(ZACert_GetCertAttributeChar, names::get_dn(issuer.entries.first(), issuer_text));
    if (!equal(subject_text.bytes(), issuer_text.bytes())) {
        return trace.fail(Status::dn_not_equal);
    }
    return Status::ok;
}

namespace {

Status seconds_of(const cert::Time &time, uint32_t &out) {
    int32_t seconds = 0;
    ZA_TRY(ZACert_GetCertAttributeInt, time.utc(seconds));
    out = static_cast<uint32_t>(seconds);
    return Status::ok;
}

}  // namespace

Status check_validity(const cert::Certificate &ca, const cert::Certificate &user, Validity validity,
                      uint32_t now) {
    uint32_t ca_begins = 0;
    uint32_t begins = 0;
    ZA_PASS(seconds_of(ca.not_before, ca_begins));
    ZA_PASS(seconds_of(user.not_before, begins));
    if (begins < ca_begins || now < begins) {
        return trace.fail(Status::time_out_of_range);
    }
    if (validity == Validity::beginning) {
        return Status::ok;
    }
    uint32_t ca_ends = 0;
    uint32_t ends = 0;
    ZA_PASS(seconds_of(ca.not_after, ca_ends));
    ZA_PASS(seconds_of(user.not_after, ends));
    if (ends > ca_ends || now > ends) {
        return trace.fail(Status::time_out_of_range);
    }
    return Status::ok;
}

namespace {

template <class Scheme>
Status verify_certificate(Bytes ca_der, Bytes user_der, Validity validity, const Scheme &scheme) {
    cert::Certificate ca;
    cert::Certificate user;
    ZA_TRY(ZACert_DecodeCert, cert::decode_certificate(ca, ca_der));
    ZA_TRY(ZACert_DecodeCert, cert::decode_certificate(user, user_der));
    ZA_PASS(check_names(ca.subject, user.issuer));
    ZA_PASS(check_validity(ca, user, validity, static_cast<uint32_t>(std::time(nullptr))));
    ZA_PASS(scheme.check(signed_part(user), ca.key.bits.bytes()));
    ZAPR_Display_memory();
    return Status::ok;
}

template <class Scheme>
Status verify_certificate_by_key(Bytes key, Bytes user_der, const Scheme &scheme) {
    cert::Certificate user;
    ZA_TRY(ZACert_DecodeCert, cert::decode_certificate(user, user_der));
    return scheme.check(signed_part(user), key);
}

template <class Scheme>
Status verify_crl(Bytes ca_der, Bytes crl_der, const Scheme &scheme) {
    cert::Certificate ca;
    request::Crl crl;
    ZA_TRY(ZACert_DecodeCert, cert::decode_certificate(ca, ca_der));
    ZA_TRY(ZACert_DecodeCrl, request::decode_crl(crl, crl_der));
    ZA_PASS(check_names(ca.subject, crl.issuer));
    return scheme.check(signed_part(crl), ca.key.bits.bytes());
}

Status der_of_pem(Bytes pem, Octets &out) {
    constexpr size_t kLeastOctets = 128;
    const Status status = text::pem_to_der(pem, out);
    if (status == Status::memory) {
        return status;
    }
    if (status != Status::ok) {
        return trace.fail(Status::length, "------>PEM2DER_data_format");
    }
    return out.size() < kLeastOctets ? trace.fail(Status::length) : Status::ok;
}

template <class Scheme>
Status verify_csr(Bytes text, const Scheme &scheme) {
    Octets converted;
    const bool is_der = text[0] == ZA_DER_ID_SEQUENCE;
    if (!is_der) {
        ZA_PASS(der_of_pem(text, converted));
    }
    request::Csr csr;
    ZA_TRY(ZACert_DecodeCsr, request::decode_csr(csr, is_der ? text : converted.bytes()));
    return scheme.check(signed_part(csr), csr.key.bits.bytes());
}

}  // namespace
}  // namespace za::verify

using za::Bytes;
using za::Status;
using za::keys::view;
using za::verify::Ecc;
using za::verify::KeyFailure;
using za::verify::Rsa;
using za::verify::Validity;

namespace {

constexpr const char *kNeedsCertificates = "------>(derCaCert == NULL) || (derUserCert == NULL)";

Bytes view(const uint8_t *octets, uint32_t len) {
    return octets != nullptr ? Bytes{octets, len} : Bytes{};
}

// Callers of this family know a missing argument by this code.
Status need(const char *text, bool given) {
    return given ? Status::ok : trace.fail(Status::certificate_not_end, text);
}

}  // namespace

uint32_t ZA_VerifyCert(const uint8_t *derCaCert, uint32_t derCaCertLen, const uint8_t *derUserCert,
                       uint32_t derUserCertLen) {
    return trace.exported([&] {
        const Bytes ca = view(derCaCert, derCaCertLen);
        const Bytes user = view(derUserCert, derUserCertLen);
        ZA_PASS(need(kNeedsCertificates, !ca.empty() && !user.empty()));
        return za::verify::verify_certificate(ca, user, Validity::beginning, Rsa{});
    });
}

uint32_t VerifyUserCertByCACert(const uint8_t *derCert, int32_t derCertLen, const uint8_t *derPub,
                                int32_t derPubLen) {
    return trace.exported([&] {
        const Bytes user = view(derCert, derCertLen);
        const Bytes key = view(derPub, derPubLen);
        ZA_PASS(
            need("------>VerifyUserCertByCACert, pDerCert==NULL || iDerCertLen<=0", !user.empty()));
        ZA_PASS(
            need("------>VerifyUserCertByCACert, pDerPub==NULL || iDerPubLen<=0", !key.empty()));
        return za::verify::verify_certificate_by_key(key, user, Rsa{});
    });
}

uint32_t ZA_VerifyCrl(const uint8_t *derCaCert, uint32_t derCaCertLen, const uint8_t *derCrl,
                      uint32_t derCrlLen) {
    return trace.exported([&] {
        const Bytes ca = view(derCaCert, derCaCertLen);
        const Bytes crl = view(derCrl, derCrlLen);
        ZA_PASS(
            need("------>(derCaCert == NULL) || (derCrl == NULL)", !ca.empty() && !crl.empty()));
        return za::verify::verify_crl(ca, crl, Rsa{});
    });
}

uint32_t ZA_VerifyCsr_Sign(const uint8_t *csr, int32_t csrLen) {
    return trace.exported([&] {
        const Bytes text = view(csr, csrLen);
        ZA_PASS(need("------>ZA_VerifyCsr_Sign  derCsr==NULL || derCsrLen<=0 Err", !text.empty()));
        return za::verify::verify_csr(text, Rsa{});
    });
}

uint32_t ZA_ECC_VerifyCert(const uint8_t *derCaCert, uint32_t derCaCertLen,
                           const uint8_t *derUserCert, uint32_t derUserCertLen,
                           ZA_EccVerifyFunc verifyFunc) {
    return trace.exported([&] {
        const Bytes ca = view(derCaCert, derCaCertLen);
        const Bytes user = view(derUserCert, derUserCertLen);
        ZA_PASS(need(kNeedsCertificates, !ca.empty() && !user.empty() && verifyFunc != nullptr));
        return za::verify::verify_certificate(ca, user, Validity::whole,
                                              Ecc{verifyFunc, KeyFailure::line});
    });
}

uint32_t ZA_ECC_VerifyCertForSpeed(const uint8_t *issuerPub, uint32_t issuerPubLen,
                                   const uint8_t *derUserCert, uint32_t derUserCertLen,
                                   ZA_EccVerifyFunc verifyFunc) {
    return trace.exported([&] {
        const Bytes key = view(issuerPub, issuerPubLen);
        const Bytes user = view(derUserCert, derUserCertLen);
        ZA_PASS(need("------>ZA_ECC_VerifyCertForSpeed Parameter Error",
                     !key.empty() && !user.empty() && verifyFunc != nullptr));
        return za::verify::verify_certificate_by_key(key, user, Ecc{verifyFunc, KeyFailure::line});
    });
}

uint32_t ZA_ECC_VerifyCrl(const uint8_t *derCaCert, uint32_t derCaCertLen, const uint8_t *derCrl,
                          uint32_t derCrlLen, ZA_EccVerifyFunc verifyFunc) {
    return trace.exported([&] {
        const Bytes ca = view(derCaCert, derCaCertLen);
        const Bytes crl = view(derCrl, derCrlLen);
        ZA_PASS(need("------>ZA_ECC_VerifyCrl Parameter Error",
                     !ca.empty() && !crl.empty() && verifyFunc != nullptr));
        return za::verify::verify_crl(ca, crl, Ecc{verifyFunc, KeyFailure::code});
    });
}

uint32_t ZA_VerifyECCsr(const uint8_t *csr, int32_t csrLen, ZA_EccVerifyFunc verifyFunc) {
    return trace.exported([&] {
        const Bytes text = view(csr, csrLen);
        ZA_PASS(need("------>ZA_VerifyECCsr  derCsr==NULL || derCsrLen<=0 Err",
                     !text.empty() && verifyFunc != nullptr));
        return za::verify::verify_csr(text, Ecc{verifyFunc, KeyFailure::code});
    });
}
