#include "base/failure.hpp"

#include <zacert.h>

#include <algorithm>
#include <array>

namespace tool {

namespace {

struct Row {
    uint32_t code;
    std::string_view meaning;
};

constexpr std::array<Row, 31> kMeanings = {{
    {ZACERT_MemoryErr, "out of memory, or no such time"},
    {ZACERT_LengthErr, "a length is out of range"},
    {ZACERT_LengthNotEqualErr, "length fields do not add up"},
    {ZACERT_TimeFormatErr, "a time field is above 99"},
    {ZACERT_InvalidTimeEndErr, "a time is not in a form that can be read"},
    {ZACERT_TagErr, "a tag is not the one expected"},
    {ZACERT_InvalidSignatureLenErr, "a signature has an unusable length"},
    {ZACERT_GeneralErr, "an element is missing or not of the expected kind"},
    {ZACERT_CertNotEndErr, "the certificate ends before a required element"},
    {ZACERT_AttributeNotSupportErr, "an attribute is not supported"},
    {ZACERT_CrlNotEndErr, "the CRL ends before a required element"},
    {ZACERT_CsrNotEndErr, "the request ends before a required element"},
    {ZACERT_ItemMissingErr, "a key has too few elements"},
    {ZACERT_AttributeAlreadySet, "a value is there twice"},
    {ZACERT_InvalidTimeErr, "a time is negative"},
    {ZACERT_DnNotEqualErr, "issuer and subject differ"},
    {ZACERT_TimeOutRangeErr, "outside the validity period"},
    {ZACERT_InvalidSignatureAlgErr, "the signature algorithm is not supported"},
    {ZACERT_SignFuncNotSetErr, "no signing function is set"},
    {ZACERT_PrivateKeyErr, "the private key cannot be prepared"},
    {ZACERT_InvalidItem, "an item is outside the supported set"},
    {ZACERT_TypeErr, "a content is of the wrong type"},
    {ZACERT_IndefiniteErr, "an indefinite length is broken"},
    {ZACERT_RsaPublicKeyErr, "the RSA public key cannot be used"},
    {ZACERT_DigestedErr, "a digest failed"},
    {ZACERT_CryptErr, "a cryptographic operation failed"},
    {ZACERT_RsaPrivateKeyErr, "the RSA private key cannot be used"},
    {ZACERT_VerifyErr, "a signature does not verify"},
    {ZACERT_IvaliedAlgo, "an algorithm is unknown or an object identifier malformed"},
    {ZI_CHARSET_INVALID, "text is invalid in its character set"},
    {ZI_CHARSET_NOT_REPRESENTABLE, "text has a character that cannot be represented"},
}};

}  // namespace

std::string_view meaning(uint32_t code) {
    const auto *row = std::find_if(kMeanings.begin(), kMeanings.end(),
                                   [code](const Row &r) { return r.code == code; });
    return row == kMeanings.end() ? "an unknown result" : row->meaning;
}

LibraryError::LibraryError(uint32_t code)
    : runtime_error(std::string(meaning(code)) + " (" + std::to_string(code) + ")"), code_(code) {}

}  // namespace tool
