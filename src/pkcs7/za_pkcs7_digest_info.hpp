// DigestInfo ::= SEQUENCE { digestAlgorithm AlgorithmIdentifier, digest OCTET STRING }
#pragma once

#include "asn1/za_asn2_builder.hpp"
#include "runtime/bytes.hpp"

namespace za::pkcs7 {

// The signature algorithms of SM2, whose signers take the digest as it is. They stand in the place
// of a digest algorithm.
bool is_sm2_signature(Bytes algorithm);

// ZI_MakeDigestInfo: what a signer of this digest algorithm signs.
Status make_digest_info(Bytes algorithm, Bytes digest, Octets &out);

}  // namespace za::pkcs7
