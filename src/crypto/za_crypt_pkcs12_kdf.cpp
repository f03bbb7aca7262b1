#include <zacert.h>

#include "crypto/za_crypt_pkcs12.hpp"
#include "crypto/za_crypt_pkcs7_digest.hpp"
#include "runtime/trace.hpp"

#include <algorithm>
#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_crypt_pkcs12"};

}  // namespace

namespace za::crypto {
namespace {

// Blocks have this size for every digest, also where the digest's own blocks have another: files
// written so must open again.
constexpr size_t kWide = 64;
using WideBlock = std::array<uint8_t, kWide>;

constexpr size_t kMostPassword = 0x7FFFFFF0;  // of which the wide form still has 32 bits

constexpr size_t unicode_size(size_t password_size) {
    return 2 * password_size + 2;
}

// `out`, of unicode_size() octets, holds zeros.
void put_unicode(Bytes password, uint8_t *out) {
    for (size_t i = 0; i < password.size(); ++i) {
        out[2 * i + 1] = password[i];
    }
}

// Goes on with the first `period` octets, of which there are as many or more, to the end.
void repeat(std::span<uint8_t> octets, size_t period) {
    for (size_t i = period; i < octets.size(); ++i) {
        octets[i] = octets[i - period];
    }
}

constexpr size_t round_up(size_t size) {
    return (size + kWide - 1) / kWide * kWide;
}

// Salt and password, each repeated up to a multiple of a block.
Status make_input(const Derivation &from, Octets &out) {
    if (from.password.size() > kMostText || from.salt.size() > kMostText) {
        return Status::crypt;
    }
    const size_t salt_size = round_up(from.salt.size());
    const size_t password_size = unicode_size(from.password.size());
    ZA_PASS(out.allocate(salt_size + round_up(password_size)));
    put(out.data(), from.salt);
    repeat(out.span().first(salt_size), from.salt.size());
    put_unicode(from.password, out.data() + salt_size);
    repeat(out.span().subspan(salt_size), password_size);
    return Status::ok;
}

// Adds `block` and 1 to each block of the input, modulo 2^512.
void advance(std::span<uint8_t> input, const WideBlock &block) {
    for (size_t at = 0; at < input.size(); at += kWide) {
        unsigned carry = 1;
        for (size_t i = kWide; i-- > 0;) {
            carry += unsigned{input[at + i]} + block[i];
            input[at + i] = static_cast<uint8_t>(carry);
            carry >>= 8;
        }
    }
}

bool run(const Digest &digest, const Derivation &from, uint32_t id, std::span<uint8_t> input,
         std::span<uint8_t> out) {
    WideBlock diversifier;
    diversifier.fill(static_cast<uint8_t>(id));
    Hasher hasher(digest, Hasher::First::nettle);
    Wiped<WideBlock> block;
    const std::span value = std::span(block.value).first(digest.size);
    for (;;) {
        bool done = hasher.run({diversifier, input}, value.data());
        for (uint32_t i = 1; done && i < from.iterations; ++i) {
            done = hasher.run({value}, value.data());
        }
        if (!done) {
            return false;
        }
        const size_t size = std::min(value.size(), out.size());
        put(out.data(), value.first(size));
        out = out.subspan(size);
        if (out.empty()) {
            return true;
        }
        repeat(block.value, digest.size);
        advance(input, block.value);
    }
}

}  // namespace

// Failures have one code, whatever it was that failed.
Status derive(const Derivation &from, uint32_t id, std::span<uint8_t> out) {
    const Digest *digest = find_digest(from.digest);
    Wiped<Octets> input;
    if (digest == nullptr || make_input(from, input.value) != Status::ok ||
        !run(*digest, from, id, input.value.span(), out)) {
        return trace.fail(Status::crypt);
    }
    return Status::ok;
}

}  // namespace za::crypto

using za::Bytes;
using za::Status;
namespace crypto = za::crypto;

uint32_t ZA_PKCS12_ACIItoUNI(const uint8_t *password, uint32_t passwordLen, uint8_t *out,
                             uint32_t *outLen) {
    return trace.exported([&] {
        const size_t size = password == nullptr ? 0 : passwordLen;
        const bool fits = size <= crypto::kMostPassword;
        const size_t out_size = fits ? crypto::unicode_size(size) : 0;
        if (out != nullptr && fits) {
            std::fill_n(out, out_size, uint8_t{0});
            crypto::put_unicode({password, size}, out);
        }
        if (outLen != nullptr) {
            *outLen = za::to_u32(out_size);
        }
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_GenRandomFromPassword(uint32_t digestCode, const uint8_t *password,
                                         uint32_t passwordLen, const uint8_t *salt,
                                         uint32_t saltLen, uint32_t idByte, uint32_t iterations,
                                         uint8_t *out, uint32_t wanted) {
    return trace.exported([&] {
        if ((password == nullptr && passwordLen > 0) || (salt == nullptr && saltLen > 0) ||
            (out == nullptr && wanted > 0)) {
            return trace.fail(Status::crypt);
        }
        const crypto::Derivation from{
            digestCode, {password, passwordLen}, {salt, saltLen}, iterations};
        return crypto::derive(from, idByte, {out, wanted});
    });
}
