// The six digests, by the numbers of the interface.
#pragma once

#include "runtime/bytes.hpp"
#include "runtime/status.hpp"

#include <initializer_list>
#include <nettle/md2.h>
#include <nettle/md5.h>
#include <nettle/nettle-meta.h>
#include <nettle/sha1.h>
#include <openssl/evp.h>

namespace za::crypto {

constexpr uint32_t kMd2 = 3;
constexpr uint32_t kMd5 = 5;
constexpr uint32_t kSha1 = 7;
constexpr uint32_t kSha512 = 13;

constexpr size_t kMostDigest = 64;

// Where both libraries have a digest, libcrypto's is the one users keep patched; nettle's costs
// half per call on short inputs.
struct Digest {
    uint32_t number;
    uint32_t size;
    Bytes info_prefix;  // what stands before it in a DigestInfo
    const EVP_MD *(*libcrypto)();
    const nettle_hash *nettle;
};

// NULL for a number that is none of the six.
const Digest *find_digest(uint32_t number);

// Computes one digest after another. Its state may come from secrets and is wiped.
class Hasher {
  public:
    enum class First { libcrypto, nettle };

    Hasher(const Digest &digest, First first);
    ~Hasher();
    Hasher(const Hasher &) = delete;
    Hasher &operator=(const Hasher &) = delete;

    // The digest of all parts in a row; `out` may be one of them. False: libcrypto could not.
    [[nodiscard]] bool run(std::initializer_list<Bytes> parts, uint8_t *out);

  private:
    bool run_libcrypto(std::initializer_list<Bytes> parts, uint8_t *out);
    void run_nettle(std::initializer_list<Bytes> parts, uint8_t *out);

    const Digest &digest_;
    EVP_MD_CTX *libcrypto_ = nullptr;  // NULL where nettle does the work
    bool with_nettle_;
    union State {
        md2_ctx md2;
        md5_ctx md5;
        sha1_ctx sha1;
    } nettle_{};
};

}  // namespace za::crypto
