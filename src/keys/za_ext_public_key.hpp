// SubjectPublicKeyInfo taken apart.
#pragma once

#include "asn1/za_asn2_reader.hpp"

namespace za::keys {

// Views of the element it was read from. The fields mean what those of ZI_PubKey do; `key_bits` of
// an elliptic-curve key are made from `ecc` with encode_ecc_public_key where they are wanted.
struct PublicKeyInfo {
    Bytes algorithm;
    Bytes parameters;
    uint32_t kind = 0;
    Bytes raw_bits;
    uint32_t unused_bits = 0;
    bool has_ecc = false;
    ZACERT_EccPubKey ecc{};
};

// ZI_DecodePubKey. Takes any algorithm, curve and parameters whose DER holds together.
Status decode_public_key_info(const asn1::Element &spki, PublicKeyInfo &out);

}  // namespace za::keys
