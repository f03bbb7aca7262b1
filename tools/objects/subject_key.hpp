// A SubjectPublicKeyInfo as the library's setters take it.
#pragma once

#include "base/octets.hpp"

namespace tool {

enum class KeyKind { rsa, p256, sm2, other };

struct SubjectKey {
    KeyKind kind = KeyKind::other;
    Octets algorithm;   // object identifier
    Octets parameters;  // of elliptic curves: the curve's object identifier
    Octets value;       // attribute 54 or 2027
    Octets bits;        // content of subjectPublicKey

    bool operator==(const SubjectKey &) const = default;
};

SubjectKey subject_key(View spki);

Octets sha1(View octets);

// SHA-1 of subjectPublicKey: method 1 of RFC 5280, 4.2.1.2.
Octets key_identifier(const SubjectKey &key);

// The modulus' size of an RSA key; 0 for others.
size_t rsa_bits(const SubjectKey &key);

// Throws Failure for what cannot stand in certificates and requests written here.
void require_issuable(const SubjectKey &key);

}  // namespace tool
