// A file as its users see it: one private key, certificates, and attributes of both.
#pragma once

#include "pkcs12/za_pkcs12_base.hpp"
#include "pkcs12/za_pkcs12_code.hpp"

namespace za::pkcs12 {

struct Certificate {
    Secret der;
    Attributes attributes;
};

struct Pfx {
    Secret key;
    Attributes key_attributes;      // inside the encrypted key
    Attributes key_bag_attributes;  // beside it
    List<Certificate> certificates;
    Attributes unwritten;  // of the certificate with the number 0
};

// ZA_PKCS12_SetCertificate
Status add_certificate(Pfx &pfx, Bytes der);

// ZA_PKCS12_SetCertificateBag_Attribute
Status add_certificate_attribute(Pfx &pfx, Bytes type, Bytes values, uint32_t number);

// ZA_PKCS12_EncodePFX, ZA_PKCS12_EncodePFXNEW
constexpr uint32_t kRsaKey = 0;
constexpr uint32_t kEccKey = 1;
Status encode_pfx(const Pfx &pfx, Bytes password, Octets &out);
Status encode_pfx(const Pfx &pfx, uint32_t key_type, Bytes password, Octets &out);

// ZA_PKCS12_DecodePFX: appends what it finds. The verdict is there for failures too.
Status decode_pfx(Bytes in, Bytes password, Pfx &out, Verdict &verdict);

// The octets of keys that are taken for RSA keys of 1024 or 2048 bits, or for keys of a curve.
struct KeyLengths {
    size_t least;
    size_t most;

    constexpr bool hold(Bytes key) const { return key.size() >= least && key.size() <= most; }
};

// The line of a key that has other ones: of those who read it, too.
constexpr const char *kWrongKeyLength = "------------>ZA_PKCS12_EncodePFX Prvate Key Error";

// A function whose parameter block is a record.
template <class Record>
Status install_record(const TraceSource &trace, CryptSlot &slot, ZA_CryptFunc function,
                      const Record &record) {
    return slot.install(trace, function, reinterpret_cast<const uint8_t *>(&record), sizeof record);
}

// What the reading of a file is made of.

// ZA_PKCS12_DealWithEncKeyBag
Status split_enc_key_bag(Bytes in, EncKeyBag &bag, Parameter &parameter);

// An encrypted key, decrypted: the DER of a KeyBag.
Status decrypt_key(Bytes enc_key_bag, Bytes password, Secret &out);

// The SafeContents of a container of type data or encryptedData.
Status open_container(Bytes content_info, Bytes password, Secret &out);

}  // namespace za::pkcs12
