// RSA keys out of certificate and PKCS#12 files.
#pragma once

#include <zacert.h>

#include "runtime/bytes.hpp"

namespace za::app {

// The codes of this family, beside those of the functions that do the work.
constexpr Status kNoFile = Status{1000};
constexpr Status kEmptyFile = Status{1001};
constexpr Status kNoCertificate = Status{1002};
constexpr Status kPublicKeySize = Status{1003};
constexpr Status kPublicKeyMalformed = Status{1004};
constexpr Status kNoPfxContext = Status{1012};
constexpr Status kPfxNotOpened = Status{1013};
constexpr Status kNoPrivateKey = Status{1014};
constexpr Status kPrivateKeyMalformed = Status{1016};
constexpr Status kNoKeyInside = Status{1017};
constexpr Status kInputTooLong = Status{1998};
constexpr Status kSymmetricKeySize = Status{1999};
constexpr Status kNotHex = Status{2000};
constexpr Status kNoMatch = Status{0xFFFFFFFF};

// The call of an exported function, for the macros that carry its failure upward.
constexpr Status result_of(uint32_t call) {
    return static_cast<Status>(call);
}

// Octets or digits as they come from outside: where there are none, the pointer may be NULL.
template <class Octet>
struct Input {
    const Octet *first;
    uint32_t len;
};

Status key_of_certificate(const char *path, ZA_RSArefPublicKey &out);
Status key_of_pfx(const char *path, const Input<char> &password, ZA_RSArefPrivateKey &out);

}  // namespace za::app
