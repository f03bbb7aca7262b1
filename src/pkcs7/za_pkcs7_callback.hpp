// How PKCS#7 calls functions of the caller's.
#pragma once

#include "runtime/callback.hpp"

namespace za::pkcs7 {

// What encryption and decryption may add to the octets they get.
constexpr size_t kCipherMayAdd = 330;

// As za::call, but never with room for few octets, because functions exist that do not look at it.
Status run(const TraceSource &trace, const CryptSlot &slot, Bytes in, size_t room, Status too_long,
           Secret &out);

}  // namespace za::pkcs7
