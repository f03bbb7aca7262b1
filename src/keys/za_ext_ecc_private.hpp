// Elliptic-curve private keys in their three forms.
//
//   explicit   SEQUENCE { curve, x, y, d }: the form of a public key with the secret number behind
//   container  SEQUENCE { INTEGER 1, curve OBJECT IDENTIFIER OPTIONAL, d, x, y }
//   SEC 1      ECPrivateKey (RFC 5915)
#pragma once

#include "runtime/bytes.hpp"

namespace za::keys {

Status encode_ecc_private_key(const ZACERT_EccPriKey &key, Octets &out);  // ZACERT_EncodeEccPriKey
Status decode_ecc_private_key(Bytes der, ZACERT_EccPriKey &out);          // ZACERT_DecodeEccPriKey

// ZACERT_DecodeEccPriKey_New
Status decode_any_ecc_private_key(Bytes der, ZACERT_EccPriKey &out);

// ZACERT_EcPrivateZqcspDerToCertDer
Status to_sec1_private_key(Bytes der, Octets &out);

}  // namespace za::keys
