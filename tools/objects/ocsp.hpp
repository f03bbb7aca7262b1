// What the tool knows of OCSP requests and responses (RFC 6960).
#pragma once

#include "objects/certificate.hpp"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

namespace ocsp {

constexpr std::string_view kBasicResponse = "1.3.6.1.5.5.7.48.1.1";
constexpr std::string_view kNonce = "1.3.6.1.5.5.7.48.1.2";

// OCSPResponseStatus
constexpr uint64_t kSuccessful = 0;
constexpr uint64_t kMalformedRequest = 1;

}  // namespace ocsp

// A certificate by hashes of its issuer's name and key.
struct CertificateId {
    NamedId hash_algorithm;
    Octets name_hash;
    Octets key_hash;
    Integer serial;
    Octets der;
};

struct OcspRequest {
    std::string file;
    size_t index = 1;  // in the file, from 1
    uint64_t version = 1;
    std::optional<Name> requestor;
    std::vector<CertificateId> certificates;
    std::vector<Extension> extensions;
    bool is_signed = false;
};

enum class OcspStatus : uint32_t { good = 1, revoked = 2, unknown = 3 };

std::string_view status_name(OcspStatus status);

// What a response says of one certificate.
struct OcspAnswer {
    CertificateId certificate;
    OcspStatus status = OcspStatus::unknown;
    std::chrono::sys_seconds this_update;
    std::optional<std::chrono::sys_seconds> next_update;
    std::optional<std::chrono::sys_seconds> revoked;
    std::string reason;  // empty when there is none
    Octets about;        // what the responder has to say of one it does not know
    std::vector<Extension> extensions;
};

struct OcspBody {
    NamedId type;
    Octets responder_name;  // DER; empty when absent
    Octets responder_key;   // its hash; likewise
    std::chrono::sys_seconds produced;
    std::vector<OcspAnswer> answers;
    std::vector<Extension> extensions;
    std::string signature_algorithm;
    Octets signature;
    Octets signed_part;
    std::vector<Octets> certificates;  // DER of whatever stands there
};

struct OcspResponse {
    std::string file;
    size_t index = 1;  // in the file, from 1
    uint64_t status = ocsp::kSuccessful;
    std::optional<OcspBody> body;
};

// "tryLater"; empty for numbers without a name.
std::string_view response_status_name(uint64_t status);

// "tryLater (3)"
std::string response_status(uint64_t status);

// Each reads one that fills `der` exactly. Throw LibraryError, or Failure with a whole sentence
// where the reason is a form of RFC 6960 that the library does not have.
OcspRequest read_ocsp_request(View der);
OcspResponse read_ocsp_response(View der);

// The nonce's extnValue, whole; nothing where there is none.
std::optional<View> nonce_in(const std::vector<Extension> &extensions);

}  // namespace tool
