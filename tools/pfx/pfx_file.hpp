// What the tool knows of a PKCS#12 file (RFC 7292).
#pragma once

#include "base/evp.hpp"
#include "base/secret.hpp"
#include "objects/certificate.hpp"
#include "objects/pkcs7.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

namespace pfx {

// Types of bags
constexpr std::string_view kKey = "1.2.840.113549.1.12.10.1.1";
constexpr std::string_view kEncryptedKey = "1.2.840.113549.1.12.10.1.2";
constexpr std::string_view kCertificate = "1.2.840.113549.1.12.10.1.3";
constexpr std::string_view kCrl = "1.2.840.113549.1.12.10.1.4";
constexpr std::string_view kSecret = "1.2.840.113549.1.12.10.1.5";
constexpr std::string_view kBags = "1.2.840.113549.1.12.10.1.6";

constexpr std::string_view kX509Certificate = "1.2.840.113549.1.9.22.1";
constexpr std::string_view kX509Crl = "1.2.840.113549.1.9.23.1";

// Attributes of bags
constexpr std::string_view kFriendlyName = "1.2.840.113549.1.9.20";
constexpr std::string_view kLocalKeyId = "1.2.840.113549.1.9.21";

}  // namespace pfx

// Encryption under a password.
struct PbeUse {
    NamedId id;
    NamedId cipher;           // of PBES2
    Octets salt;              // empty where it is not known, as with PBES2
    uint32_t iterations = 0;  // likewise

    bool is_known() const;  // else the library has no such algorithm
};

struct PfxBag {
    NamedId type;
    NamedId content_type;              // of certificates, CRLs and secrets
    std::optional<PbeUse> encryption;  // of an encrypted key
    Secret content;                    // PrivateKeyInfo, certificate, CRL; empty where not opened
    std::vector<PfxBag> bags;          // of a bag of bags
    std::vector<MessageAttribute> attributes;
    std::string problem;  // why the content cannot be read

    bool is(std::string_view oid) const { return type.oid == oid; }
    bool is_key() const { return is(pfx::kKey) || is(pfx::kEncryptedKey); }
};

struct PfxContainer {
    NamedId type;
    std::optional<PbeUse> encryption;
    bool opened = false;
    std::vector<PfxBag> bags;
};

struct PfxMac {
    NamedId digest;
    Octets salt;
    uint32_t iterations = 0;

    bool is_known() const;
};

struct Pfx {
    std::string file;
    std::optional<PfxMac> mac;
    std::optional<uint32_t> verdict;  // the library's, 200 or 300; nothing where none was asked for
    std::vector<PfxContainer> containers;
};

// One file that fills `der`. Without a password what is encrypted stays closed, and with one what the
// library has no algorithm for. Throws LibraryError, or Failure with a whole sentence.
Pfx read_pfx(View der, const Secret *password);

// Of a MAC over a digest that the library knows. Throws as read_pfx.
uint32_t mac_verdict(View der, const PfxMac &mac, const Secret &password);

// What the library has no algorithm for: "MAC over SHA-256, encryption with PBES2 ..."; else empty.
std::string unknown_algorithms(const Pfx &pfx);

// "PBE-SHA1-RC2-40", "PBES2, AES-256-CBC"
std::string label(const PbeUse &use);

// The key of an opened bag; nullptr where libcrypto has no such keys.
EvpKey key_in(const PfxBag &bag);

}  // namespace tool
