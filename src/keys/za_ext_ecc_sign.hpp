// The signature of an elliptic-curve key: two numbers, and their DER form.
#pragma once

#include "runtime/bytes.hpp"

namespace za::keys {

// ZA_Encode_ECCSignStructToDerData. `out` is empty when s is zero: that is no signature.
Status encode_ecc_signature(const ZA_ECCSignStruct &signature, Octets &out);

Status decode_ecc_signature(Bytes der, ZA_ECCSignStruct &out);  // ZA_Decode_DerDataToECCSignStruct

}  // namespace za::keys
