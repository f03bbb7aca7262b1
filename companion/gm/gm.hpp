// What the callbacks share: curves, digests, keys of libcrypto, and the frame every call runs in.
#pragma once

#include <zacert/gm.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <memory>
#include <openssl/bn.h>
#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <span>

namespace zacert_gm {

using Bytes = std::span<const uint8_t>;
using Digest = std::array<uint8_t, ZACERT_GM_DIGEST_LEN>;

inline constexpr size_t kCoordinate = 32;
inline constexpr size_t kPoint = 1 + 2 * kCoordinate;

template <auto Free>
struct Release {
    template <class Object>
    void operator()(Object *object) const {
        Free(object);
    }
};
using Key = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;
using Number = std::unique_ptr<BIGNUM, Release<BN_clear_free>>;

// A record with a secret in it, wiped when it goes out of sight.
template <class Record>
struct Wiped {
    Record value{};

    Wiped() = default;
    Wiped(const Wiped &) = delete;
    Wiped &operator=(const Wiped &) = delete;
    ~Wiped() { OPENSSL_cleanse(&value, sizeof value); }
};

// Leaves libcrypto's queue of errors as the caller had it.
class ErrorMark {
  public:
    ErrorMark() { ERR_set_mark(); }
    ErrorMark(const ErrorMark &) = delete;
    ErrorMark &operator=(const ErrorMark &) = delete;
    ~ErrorMark() { ERR_pop_to_mark(); }
};

struct Curve {
    uint32_t number;
    const char *key_type;
    const char *group;
    int nid;
    // p, a, b, x and y of the base point, n, as they stand in ZACERT_EccCurve.
    std::array<uint8_t, 6 * kCoordinate> domain;

    Bytes order() const { return Bytes(domain).last(kCoordinate); }
    // What Z takes: a, b and the base point.
    Bytes of_z() const { return Bytes(domain).subspan(kCoordinate, 4 * kCoordinate); }
};

extern const Curve kSm2;
extern const Curve kP256;

const Curve *curve_by_number(uint32_t number);
const Curve *curve_by_group(const char *group);
const Curve *curve_by_domain(const ZACERT_EccCurve &domain);

// The public key, with its secret number unless that is empty; NULL when libcrypto refuses it.
Key make_key(const Curve &curve, const ZA_ECCPOINT &pub, Bytes secret = {});

bool sm3(std::initializer_list<Bytes> parts, Digest &out);
bool sha256(Bytes in, Digest &out);

// What SM2 signs: SM3 of Z and the octets.
bool sm2_digest(Bytes id, const ZA_ECCPOINT &pub, Bytes in, Digest &out);

Bytes default_id();

// Copies the identity a context holds; false when it holds none.
bool read_identity(const void *context, zacert_gm_identity &out);

// The same for a private key, which must be one on the curve.
bool read_key(const void *context, const Curve &curve, zacert_gm_key &out);

inline bool present(const void *octets, uint32_t len) {
    return octets != nullptr || len == 0;
}

// The frame of callbacks that write: answers a query, checks the room, then has `body(room)` give
// a code and the number of octets it wrote.
template <class Body>
int32_t answer(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len, void *context,
               bool wants_context, uint32_t most, const Body &body) noexcept {
    if (out_len == nullptr) {
        return ZACERT_GeneralErr;
    }
    if (out == nullptr) {
        *out_len = most;
        return 0;
    }
    if (!present(in, in_len) || (wants_context && context == nullptr)) {
        return ZACERT_GeneralErr;
    }
    if (*out_len < most) {
        return ZACERT_LengthErr;
    }
    const ErrorMark mark;
    return body(Bytes(in, in_len));
}

}  // namespace zacert_gm
