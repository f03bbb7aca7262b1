// RSA keys: records of fixed fields and their PKCS#1 forms.
#pragma once

#include "runtime/bytes.hpp"

namespace za::keys {

Status encode_public_key(const ZA_RSAPublicKey &key, Octets &out);    // ZA_Encode_PublicKey
Status decode_public_key(Bytes der, ZA_RSAPublicKey &out);            // ZA_Decode_PublicKey
Status encode_private_key(const ZA_RSAPrivateKey &key, Octets &out);  // ZA_Encode_PrivateKey
Status decode_private_key(Bytes der, ZA_RSAPrivateKey &out);          // ZA_Decode_PrivateKey

Status pkcs1_to_8(Bytes pkcs1, Octets &out);  // ZI_PKCS1to8KEY

}  // namespace za::keys
