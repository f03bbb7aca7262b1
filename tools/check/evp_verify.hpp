// Signatures by keys that the library's verifiers do not take.
#pragma once

#include "objects/signed_object.hpp"

namespace tool {

enum class EvpVerdict { good, bad, unsupported };

// `key_info` is the signer's SubjectPublicKeyInfo.
EvpVerdict evp_verify(View key_info, const SignedObject &object);

}  // namespace tool
