// Parameters and MacData, and the containers of a file.
//
//   PBEParameter ::= SEQUENCE { salt OCTET STRING, iterations INTEGER }
//   MacData ::= SEQUENCE { mac DigestInfo, macSalt OCTET STRING, iterations INTEGER DEFAULT 1 }
//   PFX ::= SEQUENCE { version INTEGER (3), authSafe ContentInfo, macData MacData OPTIONAL }
//   AuthenticatedSafe ::= SEQUENCE OF ContentInfo
#pragma once

#include "asn1/za_asn2_builder.hpp"
#include "asn1/za_asn2_reader.hpp"
#include "pkcs12/za_pkcs12_part.hpp"
#include "pkcs7/za_pkcs7_EncryptedData.hpp"
#include "pkcs7/za_pkcs7_EnvelopedData.hpp"
#include "pkcs7/za_pkcs7_SignedData.hpp"

namespace za::pkcs12 {

struct Parameter {
    Secret salt;
    uint32_t iterations = 0;
};

// ZA_PKCS12_EncodeParameter, ZA_PKCS12_DecodeParameter
Status encode(const Parameter &parameter, Octets &out);
Status decode(Bytes in, Parameter &out);

struct GivenParameter {
    const uint8_t *salt;
    uint32_t salt_len;
    uint32_t iterations;
};

// The DER of parameters that may be missing (121).
Status split_parameter(Bytes der, Parameter &out);

// A copy of what a caller brings.
Status set_parameter(const TraceSource &trace, const GivenParameter &from, Parameter &out);

struct MacData {
    Secret digest;  // identifier
    Secret mac;
    Parameter parameter;
};

// ZA_PKCS12_EncodeMac without the function; ZA_PKCS12_DecodeMac
Status encode(const MacData &data, Octets &out);
Status decode(Bytes in, MacData &out);

// What a function of the caller's makes of data. 121: there is none, or no data.
Status compute_mac(const CryptSlot &function, Bytes data, Secret &out);

// ZA_PKCS12_EncodeMac: the MAC, and MacData around it.
Status make_mac_data(const CryptSlot &function, Bytes data, MacData &mac_data, Octets &out);

struct DataContent {
    Secret safe_contents;
};

// What those who encrypt a SafeContents are given, or what was received from them.
struct EncryptedContent {
    Secret safe_contents;
    Secret algorithm;
    Secret parameter;  // DER
    Secret encrypted;
    CryptSlot encrypt;
    CryptSlot decrypt;
};

struct EnvelopedContent {
    Secret safe_contents;
    Secret algorithm;
    Secret parameter;  // DER
    Secret encrypted;
    CryptSlot crypt;  // encrypts, or decrypts what was received
    Secret key;
    pkcs7::EnvelopedData message;  // the recipients, while one is written
};

Status encode(const DataContent &content, Octets &out);
Status encode(const EncryptedContent &content, Octets &out);
Status encode(EnvelopedContent &content, Octets &out);

// Functions that are installed stay.
Status decode(Bytes in, DataContent &out);
Status decode(Bytes in, EncryptedContent &out);
Status decode(Bytes in, EnvelopedContent &out);

// ZA_PKCS12_GetContentInfoOf{Encrypted,Enveloped}Type_SafeContent
Status open_content(const EncryptedContent &content, Secret &out);
Status open_content(const EnvelopedContent &content, Secret &out);

struct DataSafe {
    List<Secret> content_infos;
    MacData mac_data;
    Secret covered;  // what the MAC of a file that was decoded covers
    bool has_mac = false;
    bool verified = false;
    CryptSlot generate_mac;
    CryptSlot parse_mac;
};

struct SignedSafe {
    List<Secret> content_infos;
    pkcs7::SignedData message;
};

Status encode(const DataSafe &safe, Octets &out);
Status encode(SignedSafe &safe, Octets &out);
Status decode(Bytes in, DataSafe &out);
Status decode(Bytes in, SignedSafe &out);

// What a comparison found.
enum class Verdict : uint32_t { not_compared = 100, match = 200, mismatch = 300 };

// ZA_PKCS12_GetAuthSafeOfDataType_MACVerifyResult
Status verify_mac(DataSafe &safe, Verdict &out);

}  // namespace za::pkcs12
