// The public key of a decoded certificate or request.
#pragma once

#include "objects/certificate.hpp"

namespace tool {

// What the library gives of a key, for certificates and requests alike.
struct KeyParts {
    Octets algorithm;   // object identifier
    Octets octets;      // attribute 54 or 2027
    Octets parameters;  // attribute 3003 or 3004
};

PublicKey read_public_key(const KeyParts &parts);

}  // namespace tool
