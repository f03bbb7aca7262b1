#include <zacert.h>

#include "crypto/za_crypt_pkcs12.hpp"
#include "crypto/za_crypt_pkcs12_cipher.hpp"
#include "crypto/za_crypt_pkcs7_digest.hpp"
#include "names/za_low_oid_catalogue.hpp"
#include "runtime/trace.hpp"

#include <algorithm>
#include <array>
#include <functional>

namespace {

constexpr za::TraceSource trace{".\\src\\za_crypt_pkcs12"};

}  // namespace

namespace za::crypto {
namespace {

struct Family {
    Cipher cipher;
    bool stream;  // neither padding nor IV
    size_t least_key;
    size_t most_key;
};

constexpr Family kRc4{rc4, true, 1, kMostCipherKey};
constexpr Family kTwoKeys{triple_des_of_two_keys, false, 0, kMostCipherKey};
constexpr Family kThreeKeys{triple_des_of_three_keys, false, 0, kMostCipherKey};
constexpr Family kRc2Of40{rc2_of_40_bits, false, 1, kMostRc2Key};
constexpr Family kRc2Of128{rc2_of_128_bits, false, 1, kMostRc2Key};

struct Algorithm {
    Bytes oid;
    const Family &family;
    size_t derived;  // octets of the key
    uint32_t digest;
};

// The identifiers of PKCS#5 stand for what is written here, not for PBES1: files written with them
// must open again.
constexpr std::array kAlgorithms{
    Algorithm{oid::kPbeWithMd2AndDesCbc, kTwoKeys, 24, kMd2},
    Algorithm{oid::kPbeWithMd5AndDesCbc, kTwoKeys, 24, kMd5},
    Algorithm{oid::kPbeWithMd2AndRc2Cbc, kRc2Of40, 16, kMd2},
    Algorithm{oid::kPbeWithMd5AndRc2Cbc, kRc2Of40, 16, kMd5},
    Algorithm{oid::kPbeWithSha1AndDesCbc, kTwoKeys, 24, kSha1},
    Algorithm{oid::kPbeWithSha1AndRc2Cbc, kRc2Of40, 16, kSha1},
    Algorithm{oid::kPbeWithSha1And128BitRc4, kRc4, 16, kSha1},
    Algorithm{oid::kPbeWithSha1And40BitRc4, kRc4, 5, kSha1},
    Algorithm{oid::kPbeWithSha1And3KeyTripleDesCbc, kThreeKeys, 24, kSha1},
    Algorithm{oid::kPbeWithSha1And2KeyTripleDesCbc, kTwoKeys, 16, kSha1},
    Algorithm{oid::kPbeWithSha1And128BitRc2Cbc, kRc2Of128, 16, kSha1},
    Algorithm{oid::kPbeWithSha1And40BitRc2Cbc, kRc2Of40, 5, kSha1},
};

constexpr bool before(const Algorithm &a, const Algorithm &b) {
    return std::ranges::lexicographical_compare(a.oid, b.oid);
}
static_assert(std::ranges::adjacent_find(kAlgorithms, std::not_fn(before)) == kAlgorithms.end(),
              "each identifier once, in ascending order");

Status find(const uint8_t *oid, uint32_t oid_len, const Algorithm *&out) {
    const Bytes wanted{oid, oid == nullptr ? 0 : oid_len};
    const auto row = std::ranges::find_if(
        kAlgorithms, [&](const Algorithm &algorithm) { return equal(algorithm.oid, wanted); });
    if (row == kAlgorithms.end()) {
        return trace.fail(Status::invalid_algorithm, "------>ZACERT_IvaliedAlgo  Err");
    }
    out = &*row;
    return Status::ok;
}

// Lengths that leave no room for padding count as memory there is not.
Status check_text(const uint8_t *text, uint32_t len, const uint32_t *out_len) {
    ZA_PASS(trace.need(out_len));
    if (len > 0) {
        ZA_PASS(trace.need(text));
    }
    return len <= kMostText ? Status::ok : trace.fail(Status::memory, "------------>ZAPR_Malloc");
}

Status derive_key(const ZA_PBE_RECORD &with, const Algorithm &algorithm, CipherKey &out) {
    if ((with.password == nullptr && with.passwordLen > 0) ||
        (with.salt == nullptr && with.saltLen > 0)) {
        return trace.fail(Status::general);
    }
    const Derivation from{algorithm.digest,
                          {with.password, with.passwordLen},
                          {with.salt, with.saltLen},
                          with.iterations};
    out.size = algorithm.derived;
    ZA_TRY(ZA_PKCS12_GenRandomFromPassword,
           derive(from, kForKey, std::span(out.octets).first(out.size)));
    if (!algorithm.family.stream) {
        ZA_TRY(ZA_PKCS12_GenRandomFromPassword, derive(from, kForIv, out.iv));
    }
    return Status::ok;
}

size_t encrypted_size(const Family &family, size_t size) {
    return family.stream ? size : padded_size(size);
}

Status encrypt(const Family &family, const CipherKey &key, Bytes plain, uint8_t *out,
               uint32_t *out_len) {
    Octets work;
    ZA_TRY_AS("------------>ZAPR_Malloc", work.allocate(encrypted_size(family, plain.size())));
    Wiped<Octets> padded;
    if (!family.stream) {
        ZA_TRY_AS("------------>ZA_PKCS12_AddPad", add_pad(plain, padded.value));
    }
    const Bytes text = family.stream ? plain : padded.value.bytes();
    if (!family.cipher(key, Direction::encrypt, text, work.data())) {
        return trace.fail(Status::crypt);
    }
    hand_out(work.bytes(), out, out_len);
    return Status::ok;
}

// A text that is no number of whole blocks was not padded.
Status check_blocks(const Family &family, size_t size) {
    const bool good = family.stream || (size > 0 && size % kBlock == 0);
    return good ? Status::ok : trace.fail(Status::length, "------>ZA_PKCS12_DecPad  Err");
}

Status decrypt(const Family &family, const CipherKey &key, Bytes cipher, uint8_t *out,
               uint32_t *out_len) {
    Wiped<Octets> work;
    ZA_TRY_AS("------------>ZAPR_Malloc", work.value.allocate(cipher.size()));
    if (!family.cipher(key, Direction::decrypt, cipher, work.value.data())) {
        return trace.fail(Status::crypt);
    }
    Bytes text = work.value.bytes();
    if (!family.stream) {
        ZA_TRY_AS("----------->ZA_PKCS12_DecPad", remove_pad(work.value.bytes(), text));
    }
    hand_out(text, out, out_len);
    return Status::ok;
}

struct CallerKey {
    const uint8_t *key;
    uint32_t key_len;
    const uint8_t *iv;
    uint32_t iv_len;
};

Status take_key(const CallerKey &from, const Family &family, CipherKey &out) {
    if (from.key == nullptr || from.key_len < family.least_key || from.key_len > family.most_key ||
        (from.iv == nullptr && !family.stream)) {
        return trace.fail(Status::general);
    }
    put(out.octets.data(), {from.key, from.key_len});
    out.size = from.key_len;
    if (from.iv != nullptr) {
        put(out.iv.data(), {from.iv, std::min<size_t>(from.iv_len, out.iv.size())});
    }
    return Status::ok;
}

Status encrypt_with_key(const uint8_t *oid, uint32_t oid_len, const CallerKey &with,
                        const uint8_t *plain, uint32_t plain_len, uint8_t *out, uint32_t *out_len) {
    const Algorithm *algorithm = nullptr;
    ZA_PASS(find(oid, oid_len, algorithm));
    ZA_PASS(check_text(plain, plain_len, out_len));
    Wiped<CipherKey> key;
    ZA_PASS(take_key(with, algorithm->family, key.value));
    return encrypt(algorithm->family, key.value, {plain, plain_len}, out, out_len);
}

Status decrypt_with_key(const uint8_t *oid, uint32_t oid_len, const CallerKey &with,
                        const uint8_t *cipher, uint32_t cipher_len, uint8_t *out,
                        uint32_t *out_len) {
    if (cipher_len == 0) {
        return trace.fail(Status::invalid_algorithm, "----------->inputLen error");
    }
    const Algorithm *algorithm = nullptr;
    ZA_PASS(find(oid, oid_len, algorithm));
    ZA_PASS(check_text(cipher, cipher_len, out_len));
    Wiped<CipherKey> key;
    ZA_PASS(take_key(with, algorithm->family, key.value));
    ZA_TRY_AS("----------->ZA_PKCS12_DecPad", check_blocks(algorithm->family, cipher_len));
    return decrypt(algorithm->family, key.value, {cipher, cipher_len}, out, out_len);
}

}  // namespace

// The length alone needs no key, whose derivation is what costs.
Status pbe_encrypt(const ZA_PBE_RECORD &with, const uint8_t *plain, uint32_t plain_len,
                   uint8_t *out, uint32_t *out_len) {
    const Algorithm *algorithm = nullptr;
    ZA_PASS(find(with.algoOid, with.algoOidLen, algorithm));
    ZA_PASS(check_text(plain, plain_len, out_len));
    if (out == nullptr) {
        *out_len = to_u32(encrypted_size(algorithm->family, plain_len));
        return Status::ok;
    }
    Wiped<CipherKey> key;
    ZA_PASS(derive_key(with, *algorithm, key.value));
    return encrypt(algorithm->family, key.value, {plain, plain_len}, out, out_len);
}

Status pbe_decrypt(const ZA_PBE_RECORD &with, const uint8_t *cipher, uint32_t cipher_len,
                   uint8_t *out, uint32_t *out_len) {
    const Algorithm *algorithm = nullptr;
    ZA_PASS(find(with.algoOid, with.algoOidLen, algorithm));
    ZA_PASS(check_text(cipher, cipher_len, out_len));
    ZA_TRY_AS("----------->ZA_PKCS12_DecPad", check_blocks(algorithm->family, cipher_len));
    Wiped<CipherKey> key;
    ZA_PASS(derive_key(with, *algorithm, key.value));
    return decrypt(algorithm->family, key.value, {cipher, cipher_len}, out, out_len);
}

}  // namespace za::crypto

namespace crypto = za::crypto;

uint32_t ZA_PKCS12_PbeWithDigestAlgoAndEncrypt(const uint8_t *oid, uint32_t oidLen,
                                               const uint8_t *password, uint32_t passwordLen,
                                               const uint8_t *salt, uint32_t saltLen,
                                               uint32_t iterations, const uint8_t *plain,
                                               uint32_t plainLen, uint8_t *cipher,
                                               uint32_t *cipherLen) {
    return trace.exported([&] {
        const ZA_PBE_RECORD with{oid, oidLen, password, passwordLen, salt, saltLen, iterations};
        return crypto::pbe_encrypt(with, plain, plainLen, cipher, cipherLen);
    });
}

uint32_t ZA_PKCS12_PbeWithDigestAlgoAndDecrypt(const uint8_t *oid, uint32_t oidLen,
                                               const uint8_t *password, uint32_t passwordLen,
                                               const uint8_t *salt, uint32_t saltLen,
                                               uint32_t iterations, const uint8_t *cipher,
                                               uint32_t cipherLen, uint8_t *plain,
                                               uint32_t *plainLen) {
    return trace.exported([&] {
        const ZA_PBE_RECORD with{oid, oidLen, password, passwordLen, salt, saltLen, iterations};
        return crypto::pbe_decrypt(with, cipher, cipherLen, plain, plainLen);
    });
}

uint32_t ZA_PKCS12_DESEncrypt(const uint8_t *oid, uint32_t oidLen, const uint8_t *key,
                              uint32_t keyLen, const uint8_t *iv, uint32_t ivLen,
                              const uint8_t *plain, uint32_t plainLen, uint8_t *cipher,
                              uint32_t *cipherLen) {
    return trace.exported([&] {
        return crypto::encrypt_with_key(oid, oidLen, {key, keyLen, iv, ivLen}, plain, plainLen,
                                        cipher, cipherLen);
    });
}

uint32_t ZA_PKCS12_DESDecrypt(const uint8_t *oid, uint32_t oidLen, const uint8_t *key,
                              uint32_t keyLen, const uint8_t *iv, uint32_t ivLen,
                              const uint8_t *cipher, uint32_t cipherLen, uint8_t *plain,
                              uint32_t *plainLen) {
    return trace.exported([&] {
        return crypto::decrypt_with_key(oid, oidLen, {key, keyLen, iv, ivLen}, cipher, cipherLen,
                                        plain, plainLen);
    });
}
