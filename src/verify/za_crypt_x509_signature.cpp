#include "verify/za_crypt_x509_signature.hpp"

#include "asn1/za_asn2_reader.hpp"
#include "crypto/za_crypt_pkcs7.hpp"
#include "keys/za_ext_ecc_key.hpp"
#include "keys/za_ext_ecc_sign.hpp"
#include "keys/za_ext_rsa.hpp"
#include "names/za_low_oid_catalogue.hpp"
#include "runtime/trace.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>

namespace {

constexpr za::TraceSource trace{".\\src\\za_crypt_x509"};

}  // namespace

namespace za::verify {
namespace {

constexpr const char *kBadSignature = "------>ZA_VerifyData";

// Identifiers are compared in blocks of 16 octets, filled up with zeros. Zeros at the end of one
// make no difference therefore.
constexpr size_t kAlgorithmOctets = 16;
using AlgorithmBlock = std::array<uint8_t, kAlgorithmOctets>;

constexpr AlgorithmBlock block_of(const oid::Oid &algorithm) {
    AlgorithmBlock block{};
    std::copy_n(algorithm.octets.begin(), algorithm.size, block.begin());
    return block;
}

struct DigestRow {
    AlgorithmBlock algorithm;
    int32_t digest;
};

// A signature under the identifier of the key itself is of no unknown algorithm, and never verifies:
// no digest has this number.
constexpr int32_t kNoDigest = 200;

constexpr std::array kDigests{
    DigestRow{block_of(oid::kRsaEncryption), kNoDigest},
    DigestRow{block_of(oid::kMd2WithRsaEncryption), 3},
    DigestRow{block_of(oid::kMd5WithRsaEncryption), 5},
    DigestRow{block_of(oid::kSha1WithRsaEncryption), 7},
    DigestRow{block_of(oid::kSha256WithRsaEncryption), 9},
    DigestRow{block_of(oid::kSha384WithRsaEncryption), 11},
    DigestRow{block_of(oid::kSha512WithRsaEncryption), 13},
};
static_assert(std::ranges::is_sorted(kDigests, {}, &DigestRow::algorithm));

Status digest_of(Bytes algorithm, int32_t &out) {
    if (algorithm.size() > kAlgorithmOctets) {
        return trace.fail(Status::invalid_signature_algorithm);
    }
    AlgorithmBlock block{};
    std::ranges::copy(algorithm, block.begin());
    const auto *row = std::ranges::find(kDigests, block, &DigestRow::algorithm);
    if (row == kDigests.end()) {
        return trace.fail(Status::invalid_signature_algorithm);
    }
    out = row->digest;
    return Status::ok;
}

// The record of the one-shot functions is the decoder's behind a length in bits, which is one of
// two and does not take part in the computation.
Status read_key(Bytes der, ZA_RSArefPublicKey &out) {
    constexpr size_t kLeastOctetsOfLongKey = 151;
    ZA_RSAPublicKey key;
    ZA_TRY_AS(kBadSignature, keys::decode_public_key(der, key));
    out.bits = der.size() < kLeastOctetsOfLongKey ? 1024 : 2048;
    std::ranges::copy(key.modulus, out.modulus);
    std::ranges::copy(key.exponent, out.exponent);
    return Status::ok;
}

}  // namespace

Status Rsa::check(const Signed &object, Bytes key_der) const {
    int32_t digest = 0;
    ZA_PASS(digest_of(object.algorithm, digest));
    ZA_RSArefPublicKey key;
    ZA_PASS(read_key(key_der, key));
    bool match = false;
    const Status status =
        crypto::verify_signature(digest, object.tbs, object.signature, key, match);
    return status == Status::ok && match ? Status::ok : trace.fail(Status::verify, kBadSignature);
}

namespace {

// 1 is in no table of codes, but what callers of these functions test for.
constexpr Status kKeyFailed = Status::unknown_selector;

Status read_key(Bytes der, KeyFailure failure, ZACERT_EccPubKey &out) {
    const Status status = keys::decode_ecc_public_key(der, out);
    if (status != Status::ok && failure == KeyFailure::line) {
        std::printf("ZACert_GetCertAttributeChar ZACERT_DecodeEccPubKey Error!code:%d\n",
                    static_cast<int>(status));
        return trace.fail(kKeyFailed, "------>ZACERT_DecodeEccPubKey");
    }
    ZA_TRY(ZACERT_DecodeEccPubKey, status);
    return Status::ok;
}

// The decoder takes elements of any type for the numbers. Here a changed octet must not pass.
bool holds_integers(Bytes signature) {
    asn1::Children numbers;
    asn1::Element number;
    bool integers = asn1::read_sequence(asn1::Element(signature), numbers) == Status::ok;
    while (integers && numbers.next(number)) {
        integers = number.octets.front() == ZA_DER_ID_INTEGER;
    }
    return integers;
}

Status read_signature(Bytes der, ZA_ECCSignStruct &out) {
    ZA_TRY(ZA_Decode_DerDataToECCSignStruct, keys::decode_ecc_signature(der, out));
    return holds_integers(der) ? Status::ok : trace.fail(Status::type);
}

// The function gets a record of its own, and the point at its end apart.
bool is_good(ZA_EccVerifyFunc function, Bytes tbs, const ZA_ECCSignStruct &signature,
             ZACERT_EccPubKey key) {
    static_assert(offsetof(ZACERT_EccPubKey, x) + sizeof(ZA_ECCPOINT) == sizeof key);
    static_assert(offsetof(ZACERT_EccPubKey, y) == offsetof(ZACERT_EccPubKey, x) + sizeof key.x);
    const auto *point = reinterpret_cast<const ZA_ECCPOINT *>(&key.x);
    uint32_t result = 0;
    if (function(tbs.data(), to_u32(tbs.size()), &key, &signature, point, &result) != 0) {
        trace.note("--------->ZA_ECC_VerifySignature verifyFunc");
        return false;
    }
    return result == 1;
}

}  // namespace

Status Ecc::check(const Signed &object, Bytes key_der) const {
    ZACERT_EccPubKey key;
    ZA_PASS(read_key(key_der, key_failure, key));
    ZA_ECCSignStruct signature;
    const bool good = read_signature(object.signature, signature) == Status::ok &&
                      is_good(function, object.tbs, signature, key);
    return good ? Status::ok : trace.fail(Status::verify, kBadSignature);
}

}  // namespace za::verify
