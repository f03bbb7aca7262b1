// What the tool knows of a PKCS#7 message (RFC 2315).
#pragma once

#include "objects/certificate.hpp"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

namespace pkcs7 {

// Content types
constexpr std::string_view kData = "1.2.840.113549.1.7.1";
constexpr std::string_view kSignedData = "1.2.840.113549.1.7.2";
constexpr std::string_view kEnvelopedData = "1.2.840.113549.1.7.3";
constexpr std::string_view kSignedAndEnvelopedData = "1.2.840.113549.1.7.4";
constexpr std::string_view kDigestedData = "1.2.840.113549.1.7.5";
constexpr std::string_view kEncryptedData = "1.2.840.113549.1.7.6";

// Attributes of signers
constexpr std::string_view kContentType = "1.2.840.113549.1.9.3";
constexpr std::string_view kMessageDigest = "1.2.840.113549.1.9.4";
constexpr std::string_view kSigningTime = "1.2.840.113549.1.9.5";

}  // namespace pkcs7

struct AlgorithmUse {
    NamedId id;
    Octets parameters;  // the whole element; empty where there are none
};

// Whose certificate it is.
struct IssuerSerial {
    Octets issuer;  // DER
    Name name;      // the same, read
    Integer serial;
};

struct MessageAttribute {
    NamedId type;
    Octets values;  // of the SET: one whole element behind the other
};

struct MessageSigner {
    IssuerSerial certificate;
    NamedId digest_algorithm;
    NamedId signature_algorithm;
    std::vector<MessageAttribute> attributes;  // signed; else the content is
    std::vector<MessageAttribute> unsigned_attributes;
    Octets signature;
};

struct MessageRecipient {
    uint32_t version = 0;
    IssuerSerial certificate;
    NamedId key_algorithm;
    Octets encrypted_key;
};

struct Message {
    std::string file;
    size_t index = 1;  // in the file, from 1
    NamedId type;
    std::optional<uint32_t> version;  // data has none
    std::vector<NamedId> digest_algorithms;
    NamedId content_type;
    std::optional<size_t> content_size;  // in octets; of the ciphertext where it is encrypted
    std::optional<AlgorithmUse> encryption;
    std::vector<Octets> certificates;  // DER of whatever stands there
    std::vector<Octets> crls;
    std::vector<MessageSigner> signers;        // the n-th is the n-th of the library
    std::vector<MessageRecipient> recipients;  // likewise
    Octets digest;                             // of digestedData

    bool is(std::string_view oid) const { return type.oid == oid; }

    // What a message of this type has, be it none.
    bool has_signers() const {
        return is(pkcs7::kSignedData) || is(pkcs7::kSignedAndEnvelopedData);
    }
    bool has_recipients() const {
        return is(pkcs7::kEnvelopedData) || is(pkcs7::kSignedAndEnvelopedData);
    }
    bool has_digests() const { return has_signers() || is(pkcs7::kDigestedData); }
};

// Reads one message of definite lengths that fills `der` exactly, as input.hpp and loading.hpp give
// them. Throws LibraryError, or Failure with a whole sentence where the reason is
// a form that only the later CMS (RFC 5652) has.
Message read_message(View der);

// ---- Attributes --------------------------------------------------------------------------------

std::vector<const MessageAttribute *> attributes_of_type(
    const std::vector<MessageAttribute> &attributes, std::string_view oid);

// The value of an attribute that has exactly one, and of the right kind; else nothing.
std::optional<NamedId> object_id_in(const MessageAttribute &attribute);
std::optional<View> octets_in(const MessageAttribute &attribute);
std::optional<std::chrono::sys_seconds> time_in(const MessageAttribute &attribute);

// Each whole. Throws LibraryError.
std::vector<View> values_of(const MessageAttribute &attribute);

// The content of an element that is one OCTET STRING, as initialization vectors are; else nothing.
std::optional<View> octet_string_in(View element);

// ---- What stands in a message, in short --------------------------------------------------------

struct CertificateBrief {
    IssuerSerial certificate;
    Name subject;
};

// Throws LibraryError for what is no certificate.
CertificateBrief certificate_brief(View der);

}  // namespace tool
