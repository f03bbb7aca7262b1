#include "gm.hpp"

#include <cstring>
#include <openssl/core_names.h>
#include <openssl/ec.h>
#include <openssl/x509.h>
#include <string_view>

namespace zacert_gm {
namespace {

constexpr uint32_t kIdentityTag = 0x5A474D49;
constexpr uint32_t kKeyTag = 0x5A474D4B;

using Group = std::unique_ptr<EC_GROUP, Release<EC_GROUP_free>>;
using Point = std::unique_ptr<EC_POINT, Release<EC_POINT_clear_free>>;

bool in_range(const Curve &curve, const BIGNUM *d) {
    const Bytes octets = curve.order();
    const Number last(BN_bin2bn(octets.data(), static_cast<int>(octets.size()), nullptr));
    // SM2 divides by 1 + d, so that the order less one is no key there.
    const BN_ULONG beyond = curve.number == ZACERT_GM_CURVE_SM2 ? 2 : 1;
    return last && BN_sub_word(last.get(), beyond) == 1 && !BN_is_zero(d) &&
           BN_cmp(d, last.get()) <= 0;
}

bool multiply_base(const Curve &curve, const BIGNUM *d, ZA_ECCPOINT &out) {
    const Group group(EC_GROUP_new_by_curve_name(curve.nid));
    const Point point(group ? EC_POINT_new(group.get()) : nullptr);
    std::array<uint8_t, kPoint> octets;
    if (!point || EC_POINT_mul(group.get(), point.get(), d, nullptr, nullptr, nullptr) != 1 ||
        EC_POINT_point2oct(group.get(), point.get(), POINT_CONVERSION_UNCOMPRESSED, octets.data(),
                           octets.size(), nullptr) != octets.size()) {
        return false;
    }
    std::copy_n(&octets[1], kCoordinate, out.x);
    std::copy_n(&octets[1 + kCoordinate], kCoordinate, out.y);
    return true;
}

void set_id(zacert_gm_identity &identity, Bytes id) {
    const Bytes chosen = id.empty() ? default_id() : id;
    std::ranges::fill(identity.id, uint8_t{0});
    std::ranges::copy(chosen, identity.id);
    identity.idLen = static_cast<uint32_t>(chosen.size());
}

uint32_t fill_key(const Curve &curve, const BIGNUM *d, zacert_gm_key &out) {
    if (!in_range(curve, d)) {
        return ZACERT_PrivateKeyErr;
    }
    Wiped<zacert_gm_key> key;
    key.value.tag = kKeyTag;
    key.value.curve = curve.number;
    key.value.identity.tag = kIdentityTag;
    set_id(key.value.identity, {});
    if (BN_bn2binpad(d, key.value.d, sizeof key.value.d) < 0 ||
        !multiply_base(curve, d, key.value.identity.pub)) {
        return ZACERT_CryptErr;
    }
    out = key.value;
    return 0;
}

uint32_t read_key_file(Bytes der, zacert_gm_key &out) {
    const uint8_t *end = der.data();
    const Key key(d2i_AutoPrivateKey(nullptr, &end, static_cast<long>(der.size())));
    if (!key || end != der.data() + der.size()) {
        return ZACERT_PrivateKeyErr;
    }
    char group[64];
    BIGNUM *d = nullptr;
    const bool has_group = EVP_PKEY_get_utf8_string_param(key.get(), OSSL_PKEY_PARAM_GROUP_NAME,
                                                          group, sizeof group, nullptr) == 1;
    const Curve *const curve = has_group ? curve_by_group(group) : nullptr;
    if (curve == nullptr) {
        return ZACERT_InvalidSignatureAlgErr;
    }
    if (EVP_PKEY_get_bn_param(key.get(), OSSL_PKEY_PARAM_PRIV_KEY, &d) != 1) {
        return ZACERT_PrivateKeyErr;
    }
    const Number owner(d);
    return fill_key(*curve, d, out);
}

}  // namespace

Bytes default_id() {
    static constexpr std::string_view kDefault = ZACERT_GM_DEFAULT_ID;
    return {reinterpret_cast<const uint8_t *>(kDefault.data()), kDefault.size()};
}

bool read_identity(const void *context, zacert_gm_identity &out) {
    std::memcpy(&out, context, sizeof out);
    return out.tag == kIdentityTag && out.idLen <= ZACERT_GM_MAX_ID_LEN;
}

bool read_key(const void *context, const Curve &curve, zacert_gm_key &out) {
    std::memcpy(&out, context, sizeof out);
    return out.tag == kKeyTag && out.curve == curve.number &&
           out.identity.idLen <= ZACERT_GM_MAX_ID_LEN;
}

}  // namespace zacert_gm

using namespace zacert_gm;

uint32_t zacert_gm_identity_set(const ZA_ECCPOINT *pub, const uint8_t *id, uint32_t idLen,
                                zacert_gm_identity *out) {
    if (pub == nullptr || out == nullptr || !present(id, idLen)) {
        return ZACERT_GeneralErr;
    }
    if (idLen > ZACERT_GM_MAX_ID_LEN) {
        return ZACERT_LengthErr;
    }
    zacert_gm_identity identity{};
    identity.tag = kIdentityTag;
    identity.pub = *pub;
    set_id(identity, {id, idLen});
    *out = identity;
    return 0;
}

uint32_t zacert_gm_key_from_scalar(uint32_t curve, const uint8_t d[ZACERT_GM_SCALAR_LEN],
                                   zacert_gm_key *out) {
    if (d == nullptr || out == nullptr) {
        return ZACERT_GeneralErr;
    }
    const Curve *const known = curve_by_number(curve);
    if (known == nullptr) {
        return ZACERT_InvalidSignatureAlgErr;
    }
    const ErrorMark mark;
    const Number number(BN_bin2bn(d, ZACERT_GM_SCALAR_LEN, nullptr));
    return number ? fill_key(*known, number.get(), *out) : uint32_t{ZACERT_MemoryErr};
}

uint32_t zacert_gm_key_from_der(const uint8_t *der, uint32_t derLen, zacert_gm_key *out) {
    if (der == nullptr || out == nullptr) {
        return ZACERT_GeneralErr;
    }
    const ErrorMark mark;
    return read_key_file({der, derLen}, *out);
}

uint32_t zacert_gm_key_set_id(zacert_gm_key *key, const uint8_t *id, uint32_t idLen) {
    if (key == nullptr || !present(id, idLen)) {
        return ZACERT_GeneralErr;
    }
    if (key->tag != kKeyTag) {
        return ZACERT_TypeErr;
    }
    if (idLen > ZACERT_GM_MAX_ID_LEN) {
        return ZACERT_LengthErr;
    }
    set_id(key->identity, {id, idLen});
    return 0;
}
