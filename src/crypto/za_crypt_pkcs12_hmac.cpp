#include <zacert.h>

#include "crypto/za_crypt_pkcs12.hpp"
#include "crypto/za_crypt_pkcs7_digest.hpp"
#include "runtime/trace.hpp"

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_crypt_pkcs12"};

}  // namespace

namespace za::crypto {
namespace {

// The digest's own size of blocks, but for MD2, which is taken as if it had the same.
constexpr size_t kKeyBlock = 64;
using KeyBlock = std::array<uint8_t, kKeyBlock>;

constexpr size_t kMostKey = 256;

void exclusive_or(KeyBlock &block, uint8_t octet) {
    for (uint8_t &other : block) {
        other ^= octet;
    }
}

bool run(const Digest &digest, Bytes key, Bytes data, uint8_t *out) {
    constexpr uint8_t kInner = 0x36;
    constexpr uint8_t kOuter = 0x5C;
    Hasher hasher(digest, Hasher::First::libcrypto);
    Wiped<KeyBlock> block;
    if (key.size() <= kKeyBlock) {
        put(block.value.data(), key);
    } else if (!hasher.run({key}, block.value.data())) {
        return false;
    }
    Wiped<std::array<uint8_t, kMostDigest>> inner;
    exclusive_or(block.value, kInner);
    bool done = hasher.run({block.value, data}, inner.value.data());
    exclusive_or(block.value, kInner ^ kOuter);
    const Bytes inner_digest = Bytes(inner.value).first(digest.size);
    return done && hasher.run({block.value, inner_digest}, out);
}

}  // namespace

Status hmac(uint32_t digest, Bytes key, Bytes data, uint8_t *out, uint32_t &out_len) {
    const Digest *row = find_digest(digest);
    const bool usable = row != nullptr && row->number <= kSha1 && key.size() <= kMostKey;
    if (!usable || (out != nullptr && !run(*row, key, data, out))) {
        return trace.fail(Status::crypt);
    }
    out_len = row->size;
    return Status::ok;
}

Status hmac(uint32_t digest, const uint8_t *key, uint32_t key_len, const uint8_t *data,
            uint32_t data_len, uint8_t *out, uint32_t *out_len) {
    ZA_PASS(trace.need(out_len));
    if (data_len > 0) {
        ZA_PASS(trace.need(data));
    }
    const Bytes key_octets{key, key == nullptr ? 0 : key_len};
    return hmac(digest, key_octets, {data, data_len}, out, *out_len);
}

}  // namespace za::crypto

uint32_t ZA_PKCS12_HMAC(uint32_t digestCode, const uint8_t *key, uint32_t keyLen,
                        const uint8_t *data, uint32_t dataLen, uint8_t *mac, uint32_t *macLen) {
    return trace.exported(
        [&] { return za::crypto::hmac(digestCode, key, keyLen, data, dataLen, mac, macLen); });
}
