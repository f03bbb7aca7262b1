#include "crypto/za_crypt_pkcs7_digest.hpp"

#include "names/za_low_oid_catalogue.hpp"

#include <array>
#include <nettle/version.h>

namespace za::crypto {
namespace {

constexpr std::array kDigests{
    Digest{kMd2, 16, oid::kMd2DigestInfo, nullptr, &nettle_md2},
    Digest{kMd5, 16, oid::kMd5DigestInfo, EVP_md5, &nettle_md5},
    Digest{kSha1, 20, oid::kSha1DigestInfo, EVP_sha1, &nettle_sha1},
    Digest{9, 32, oid::kSha256DigestInfo, EVP_sha256, nullptr},
    Digest{11, 48, oid::kSha384DigestInfo, EVP_sha384, nullptr},
    Digest{kSha512, 64, oid::kSha512DigestInfo, EVP_sha512, nullptr},
};

constexpr bool in_order() {
    uint32_t number = kMd2;
    for (const Digest &digest : kDigests) {
        if (digest.number != number || digest.size > kMostDigest ||
            (digest.libcrypto == nullptr && digest.nettle == nullptr)) {
            return false;
        }
        number += 2;
    }
    return true;
}
static_assert(in_order(), "find_digest computes the row from the number");

}  // namespace

const Digest *find_digest(uint32_t number) {
    const bool known = number >= kMd2 && number <= kSha512 && number % 2 == 1;
    return known ? &kDigests[(number - kMd2) / 2] : nullptr;
}

Hasher::Hasher(const Digest &digest, First first)
    : digest_(digest),
      with_nettle_(digest.nettle != nullptr &&
                   (first == First::nettle || digest.libcrypto == nullptr)) {
    if (with_nettle_) {
        digest_.nettle->init(&nettle_);
    } else {
        libcrypto_ = EVP_MD_CTX_new();
    }
}

Hasher::~Hasher() {
    EVP_MD_CTX_free(libcrypto_);
    if (with_nettle_) {
        wipe(&nettle_, sizeof nettle_);
    }
}

bool Hasher::run(std::initializer_list<Bytes> parts, uint8_t *out) {
    if (!with_nettle_) {
        return run_libcrypto(parts, out);
    }
    run_nettle(parts, out);
    return true;
}

bool Hasher::run_libcrypto(std::initializer_list<Bytes> parts, uint8_t *out) {
    bool done =
        libcrypto_ != nullptr && EVP_DigestInit_ex2(libcrypto_, digest_.libcrypto(), nullptr) == 1;
    for (const Bytes part : parts) {
        done = done && EVP_DigestUpdate(libcrypto_, part.data(), part.size()) == 1;
    }
    return done && EVP_DigestFinal_ex(libcrypto_, out, nullptr) == 1;
}

void Hasher::run_nettle(std::initializer_list<Bytes> parts, uint8_t *out) {
    const nettle_hash &hash = *digest_.nettle;
    for (const Bytes part : parts) {
        hash.update(&nettle_, part.size(), part.data());
    }
    // It leaves the state ready for the next digest.
#if NETTLE_VERSION_MAJOR >= 4
    hash.digest(&nettle_, out);
#else
    hash.digest(&nettle_, digest_.size, out);
#endif
}

}  // namespace za::crypto
