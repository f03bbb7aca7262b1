#include "status/responder.hpp"

#include <zacert.h>

#include "base/failure.hpp"
#include "base/wording.hpp"
#include "check/purpose.hpp"
#include "objects/subject_key.hpp"
#include "p7/digests.hpp"

#include <algorithm>
#include <array>

namespace tool {

namespace {

constexpr std::string_view kSigning = "1.3.6.1.5.5.7.3.9";

Octets digest_of(const MessageDigest &digest, View octets) {
    std::array<uint8_t, 64> out{};
    uint32_t length = out.size();
    check(ZA_PKCS7_DigestMessage(digest.number, octets.data(), static_cast<int32_t>(octets.size()),
                                 out.data(), &length));
    return {out.begin(), out.begin() + length};
}

// "any purpose" is not enough: the CA must have meant this one.
bool names_signing(const LoadedCertificate &certificate) {
    const auto *value = find_value<Purposes>(certificate.facts.extensions);
    return value != nullptr &&
           std::any_of(value->purposes.begin(), value->purposes.end(),
                       [](const NamedId &purpose) { return purpose.oid == kSigning; });
}

}  // namespace

SharedCertificate load_shared(const std::string &path) {
    return std::make_shared<LoadedCertificate>(load_certificate(path));
}

LoadedCertificate load_issued(const std::string &path, const LoadedCertificate &ca) {
    LoadedCertificate certificate = load_certificate(path);
    const bool issued = same_name(certificate.parts.issuer, ca.parts.subject) &&
                        check_certificate_signature(ca.der, certificate.der, Moment::present).good;
    if (!issued) {
        throw Failure(file_label(path) + ": the certificate is not one that the issuer signed");
    }
    if (certificate.facts.serial.negative) {
        throw Failure(file_label(path) + ": the serial number is negative");
    }
    return certificate;
}

bool is_of_issuer(const CertificateId &id, View name, const LoadedCertificate &ca) {
    const MessageDigest *digest = digest_of_id(id.hash_algorithm.oid);
    return digest != nullptr && digest->number != 0 && digest->trust != Trust::none &&
           id.name_hash == digest_of(*digest, name) &&
           id.key_hash == digest_of(*digest, subject_key(ca.parts.key).bits);
}

void check_responder(const SharedCertificate &ca, const LoadedCertificate &responder,
                     const When &when, Report &report) {
    const Path path = find_path(responder, {{ca}, {}}, when);
    check_path(path, when, report);
    if (responder.der != ca->der) {
        check_purpose(path, "ocsp", report);
        const bool named = names_signing(responder);
        report.check(named, named ? "responder: OCSPSigning" : "responder: lacks OCSPSigning");
    }
}

}  // namespace tool
