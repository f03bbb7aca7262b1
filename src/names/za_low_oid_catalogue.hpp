// Every object identifier of the library's vocabulary as content octets, written here in its dotted
// form, and the DigestInfo prefixes made of them.
#pragma once

#include "names/za_low_oid_text.hpp"
#include "runtime/bytes.hpp"

#include <array>

namespace za::oid {

// Octets known while compiling. They are views of the constants below and live as long.
template <size_t Capacity>
struct Constant {
    std::array<uint8_t, Capacity> octets{};
    size_t size = 0;

    constexpr operator Bytes() const & { return {octets.data(), size}; }
    operator Bytes() const && = delete;

    constexpr void add(Bytes more) {
        for (const uint8_t octet : more) {
            octets[size++] = octet;
        }
    }
};

using Oid = Constant<12>;

// A malformed or overlong text does not compile.
consteval Oid make(std::string_view dotted) {
    Oid made;
    const bool valid = names::each_subidentifier(dotted, [&](uint32_t number) {
        made.size = static_cast<size_t>(names::put_base128(made.octets.data() + made.size, number) -
                                        made.octets.data());
    });
    return valid ? made : throw "not an object identifier";
}

// RSA keys and signatures
inline constexpr Oid kRsaEncryption = make("1.2.840.113549.1.1.1");
inline constexpr Oid kMd2WithRsaEncryption = make("1.2.840.113549.1.1.2");
inline constexpr Oid kMd4WithRsaEncryption = make("1.2.840.113549.1.1.3");
inline constexpr Oid kMd5WithRsaEncryption = make("1.2.840.113549.1.1.4");
inline constexpr Oid kSha1WithRsaEncryption = make("1.2.840.113549.1.1.5");
inline constexpr Oid kSha256WithRsaEncryption = make("1.2.840.113549.1.1.11");
inline constexpr Oid kSha384WithRsaEncryption = make("1.2.840.113549.1.1.12");
inline constexpr Oid kSha512WithRsaEncryption = make("1.2.840.113549.1.1.13");

// Elliptic-curve keys and signatures; the last two are kept with exactly these arcs
inline constexpr Oid kEcPublicKey = make("1.2.840.10045.2.1");
inline constexpr Oid kPrime256v1 = make("1.2.840.10045.3.1.7");
inline constexpr Oid kEcdsaWithSha1 = make("1.2.840.10045.4.1");
inline constexpr Oid kEcdsaWithSha256 = make("1.2.840.10045.4.3.2");
inline constexpr Oid kEcdsaArc8 = make("1.2.840.10045.4.3.8");
inline constexpr Oid kEcdsaArc9 = make("1.2.840.10045.4.3.9");

// The national SM2 family; the short form lacks an arc and is a second form of the curve
inline constexpr Oid kSm2 = make("1.2.156.10197.1.301");
inline constexpr Oid kSm2Short = make("1.2.156.10197.301");
inline constexpr Oid kSm2WithSm3 = make("1.2.156.10197.1.501");
inline constexpr Oid kSm2WithSha1 = make("1.2.156.10197.1.502");
inline constexpr Oid kSm2WithSha256 = make("1.2.156.10197.1.503");

// Further curves
inline constexpr std::array<Oid, 7> kFurtherCurves{
    make("1.2.156.197.10045.3.1.1"), make("1.2.156.197.10045.3.1.2"),
    make("1.2.156.197.10045.3.1.3"), make("1.2.156.197.10045.3.1.4"),
    make("1.2.156.197.10045.3.1.5"), make("1.2.156.197.10045.3.1.6"),
    make("1.2.156.197.1.1000.8"),
};

// Key agreement and PKCS#5
inline constexpr Oid kDhKeyAgreement = make("1.2.840.113549.1.3.1");
inline constexpr Oid kPbeWithMd2AndDesCbc = make("1.2.840.113549.1.5.1");
inline constexpr Oid kPbeWithMd5AndDesCbc = make("1.2.840.113549.1.5.3");
inline constexpr Oid kPbeWithMd2AndRc2Cbc = make("1.2.840.113549.1.5.4");
inline constexpr Oid kPbeWithMd5AndRc2Cbc = make("1.2.840.113549.1.5.6");
inline constexpr Oid kPbeWithSha1AndDesCbc = make("1.2.840.113549.1.5.10");
inline constexpr Oid kPbeWithSha1AndRc2Cbc = make("1.2.840.113549.1.5.11");

// PKCS#9 attributes
inline constexpr Oid kEmailAddress = make("1.2.840.113549.1.9.1");
inline constexpr Oid kUnstructuredName = make("1.2.840.113549.1.9.2");
inline constexpr Oid kContentType = make("1.2.840.113549.1.9.3");
inline constexpr Oid kMessageDigest = make("1.2.840.113549.1.9.4");
inline constexpr Oid kSigningTime = make("1.2.840.113549.1.9.5");
inline constexpr Oid kCountersignature = make("1.2.840.113549.1.9.6");
inline constexpr Oid kChallengePassword = make("1.2.840.113549.1.9.7");
inline constexpr Oid kUnstructuredAddress = make("1.2.840.113549.1.9.8");
inline constexpr Oid kExtendedCertificateAttributes = make("1.2.840.113549.1.9.9");
inline constexpr Oid kFriendlyName = make("1.2.840.113549.1.9.20");
inline constexpr Oid kLocalKeyId = make("1.2.840.113549.1.9.21");
inline constexpr Oid kX509Certificate = make("1.2.840.113549.1.9.22.1");

// PKCS#7 content types
inline constexpr Oid kData = make("1.2.840.113549.1.7.1");
inline constexpr Oid kSignedData = make("1.2.840.113549.1.7.2");
inline constexpr Oid kEnvelopedData = make("1.2.840.113549.1.7.3");
inline constexpr Oid kSignedAndEnvelopedData = make("1.2.840.113549.1.7.4");
inline constexpr Oid kDigestedData = make("1.2.840.113549.1.7.5");
inline constexpr Oid kEncryptedData = make("1.2.840.113549.1.7.6");

// Digests
inline constexpr Oid kMd2 = make("1.2.840.113549.2.2");
inline constexpr Oid kMd5 = make("1.2.840.113549.2.5");
inline constexpr Oid kSha1 = make("1.3.14.3.2.26");
inline constexpr Oid kSha256 = make("2.16.840.1.101.3.4.2.1");
inline constexpr Oid kSha384 = make("2.16.840.1.101.3.4.2.2");
inline constexpr Oid kSha512 = make("2.16.840.1.101.3.4.2.3");

// PKCS#12 encryption and bag types
inline constexpr Oid kPbeWithSha1And128BitRc4 = make("1.2.840.113549.1.12.1.1");
inline constexpr Oid kPbeWithSha1And40BitRc4 = make("1.2.840.113549.1.12.1.2");
inline constexpr Oid kPbeWithSha1And3KeyTripleDesCbc = make("1.2.840.113549.1.12.1.3");
inline constexpr Oid kPbeWithSha1And2KeyTripleDesCbc = make("1.2.840.113549.1.12.1.4");
inline constexpr Oid kPbeWithSha1And128BitRc2Cbc = make("1.2.840.113549.1.12.1.5");
inline constexpr Oid kPbeWithSha1And40BitRc2Cbc = make("1.2.840.113549.1.12.1.6");
inline constexpr Oid kKeyBag = make("1.2.840.113549.1.12.10.1.1");
inline constexpr Oid kPkcs8ShroudedKeyBag = make("1.2.840.113549.1.12.10.1.2");
inline constexpr Oid kCertBag = make("1.2.840.113549.1.12.10.1.3");
inline constexpr Oid kCrlBag = make("1.2.840.113549.1.12.10.1.4");
inline constexpr Oid kSecretBag = make("1.2.840.113549.1.12.10.1.5");
inline constexpr Oid kSafeContentsBag = make("1.2.840.113549.1.12.10.1.6");

// X.500 attribute types
inline constexpr Oid kCommonName = make("2.5.4.3");
inline constexpr Oid kSurname = make("2.5.4.4");
inline constexpr Oid kSerialNumber = make("2.5.4.5");
inline constexpr Oid kCountryName = make("2.5.4.6");
inline constexpr Oid kLocalityName = make("2.5.4.7");
inline constexpr Oid kStateOrProvinceName = make("2.5.4.8");
inline constexpr Oid kStreetAddress = make("2.5.4.9");
inline constexpr Oid kOrganizationName = make("2.5.4.10");
inline constexpr Oid kOrganizationalUnitName = make("2.5.4.11");
inline constexpr Oid kTitle = make("2.5.4.12");
inline constexpr Oid kDescription = make("2.5.4.13");
inline constexpr Oid kSearchGuide = make("2.5.4.14");
inline constexpr Oid kBusinessCategory = make("2.5.4.15");
inline constexpr Oid kPostalAddress = make("2.5.4.16");
inline constexpr Oid kPostalCode = make("2.5.4.17");
inline constexpr Oid kPostOfficeBox = make("2.5.4.18");
inline constexpr Oid kPhysicalDeliveryOfficeName = make("2.5.4.19");
inline constexpr Oid kTelephoneNumber = make("2.5.4.20");
inline constexpr Oid kTelexNumber = make("2.5.4.21");
inline constexpr Oid kTeletexTerminalIdentifier = make("2.5.4.22");
inline constexpr Oid kFacsimileTelephoneNumber = make("2.5.4.23");
inline constexpr Oid kX121Address = make("2.5.4.24");
inline constexpr Oid kInternationalIsdnNumber = make("2.5.4.25");
inline constexpr Oid kRegisteredAddress = make("2.5.4.26");
inline constexpr Oid kDestinationIndicator = make("2.5.4.27");
inline constexpr Oid kPreferredDeliveryMethod = make("2.5.4.28");
inline constexpr Oid kPresentationAddress = make("2.5.4.29");
inline constexpr Oid kSupportedApplicationContext = make("2.5.4.30");
inline constexpr Oid kMember = make("2.5.4.31");
inline constexpr Oid kOwner = make("2.5.4.32");
inline constexpr Oid kRoleOccupant = make("2.5.4.33");
inline constexpr Oid kSeeAlso = make("2.5.4.34");
inline constexpr Oid kUserPassword = make("2.5.4.35");
inline constexpr Oid kUserCertificate = make("2.5.4.36");
inline constexpr Oid kCaCertificate = make("2.5.4.37");
inline constexpr Oid kAuthorityRevocationList = make("2.5.4.38");
inline constexpr Oid kCertificateRevocationList = make("2.5.4.39");
inline constexpr Oid kCrossCertificatePair = make("2.5.4.40");
inline constexpr Oid kDnQualifier = make("2.5.4.46");

// Certificate and CRL extensions
inline constexpr Oid kSubjectDirectoryAttributes = make("2.5.29.9");
inline constexpr Oid kSubjectKeyIdentifier = make("2.5.29.14");
inline constexpr Oid kKeyUsage = make("2.5.29.15");
inline constexpr Oid kPrivateKeyUsagePeriod = make("2.5.29.16");
inline constexpr Oid kSubjectAltName = make("2.5.29.17");
inline constexpr Oid kIssuerAltName = make("2.5.29.18");
inline constexpr Oid kBasicConstraints = make("2.5.29.19");
inline constexpr Oid kCrlNumber = make("2.5.29.20");
inline constexpr Oid kReasonCode = make("2.5.29.21");
inline constexpr Oid kDeltaCrlIndicator = make("2.5.29.27");
inline constexpr Oid kIssuingDistributionPoint = make("2.5.29.28");
inline constexpr Oid kNameConstraints = make("2.5.29.30");
inline constexpr Oid kCrlDistributionPoints = make("2.5.29.31");
inline constexpr Oid kCertificatePolicies = make("2.5.29.32");
inline constexpr Oid kPolicyMappings = make("2.5.29.33");
inline constexpr Oid kAuthorityKeyIdentifier = make("2.5.29.35");
inline constexpr Oid kPolicyConstraints = make("2.5.29.36");
inline constexpr Oid kExtKeyUsage = make("2.5.29.37");

// PKIX: an extension, policy qualifiers, key purposes, access methods and OCSP
inline constexpr Oid kAuthorityInfoAccess = make("1.3.6.1.5.5.7.1.1");
inline constexpr Oid kCps = make("1.3.6.1.5.5.7.2.1");
inline constexpr Oid kUserNotice = make("1.3.6.1.5.5.7.2.2");
inline constexpr Oid kKeyPurpose = make("1.3.6.1.5.5.7.3");
inline constexpr Oid kServerAuth = make("1.3.6.1.5.5.7.3.1");
inline constexpr Oid kClientAuth = make("1.3.6.1.5.5.7.3.2");
inline constexpr Oid kCodeSigning = make("1.3.6.1.5.5.7.3.3");
inline constexpr Oid kEmailProtection = make("1.3.6.1.5.5.7.3.4");
inline constexpr Oid kIpsecEndSystem = make("1.3.6.1.5.5.7.3.5");
inline constexpr Oid kIpsecTunnel = make("1.3.6.1.5.5.7.3.6");
inline constexpr Oid kIpsecUser = make("1.3.6.1.5.5.7.3.7");
inline constexpr Oid kTimeStamping = make("1.3.6.1.5.5.7.3.8");
inline constexpr Oid kOcspSigning = make("1.3.6.1.5.5.7.3.9");
inline constexpr Oid kAccessDescription = make("1.3.6.1.5.5.7.48");
inline constexpr Oid kOcsp = make("1.3.6.1.5.5.7.48.1");
inline constexpr Oid kCaIssuers = make("1.3.6.1.5.5.7.48.2");
inline constexpr Oid kOcspBasic = make("1.3.6.1.5.5.7.48.1.1");
inline constexpr Oid kOcspNonce = make("1.3.6.1.5.5.7.48.1.2");
inline constexpr Oid kOcspCrl = make("1.3.6.1.5.5.7.48.1.3");
inline constexpr Oid kOcspResponse = make("1.3.6.1.5.5.7.48.1.4");
inline constexpr Oid kOcspNoCheck = make("1.3.6.1.5.5.7.48.1.5");
inline constexpr Oid kOcspArchiveCutoff = make("1.3.6.1.5.5.7.48.1.6");
inline constexpr Oid kOcspServiceLocator = make("1.3.6.1.5.5.7.48.1.7");

// What stands before a digest in a PKCS#1 signature (RFC 8017, 9.2, note 1):
//   DigestInfo ::= SEQUENCE { SEQUENCE { algorithm, NULL }, OCTET STRING of the digest }
using DigestInfoPrefix = Constant<19>;

consteval DigestInfoPrefix make_prefix(const Oid &digest, uint8_t digest_len) {
    const auto oid_len = static_cast<uint8_t>(digest.size);
    const auto algorithm_len = static_cast<uint8_t>(2 + oid_len + 2);
    const auto info_len = static_cast<uint8_t>(2 + algorithm_len + 2 + digest_len);
    const std::array<uint8_t, 6> start{0x30, info_len, 0x30, algorithm_len, 0x06, oid_len};
    const std::array<uint8_t, 4> end{0x05, 0x00, 0x04, digest_len};
    DigestInfoPrefix prefix;
    prefix.add(start);
    prefix.add(digest);
    prefix.add(end);
    return prefix;
}

inline constexpr DigestInfoPrefix kMd2DigestInfo = make_prefix(kMd2, 16);
inline constexpr DigestInfoPrefix kMd5DigestInfo = make_prefix(kMd5, 16);
inline constexpr DigestInfoPrefix kSha1DigestInfo = make_prefix(kSha1, 20);
inline constexpr DigestInfoPrefix kSha256DigestInfo = make_prefix(kSha256, 32);
inline constexpr DigestInfoPrefix kSha384DigestInfo = make_prefix(kSha384, 48);
inline constexpr DigestInfoPrefix kSha512DigestInfo = make_prefix(kSha512, 64);

static_assert(kMd2DigestInfo.size == 18 && kMd5DigestInfo.size == 18);
static_assert(kSha1DigestInfo.size == 15 && kSha256DigestInfo.size == 19);
static_assert(kSha384DigestInfo.size == 19 && kSha512DigestInfo.size == 19);

}  // namespace za::oid
