#include "gm.hpp"

#include <cstring>
#include <openssl/core_names.h>
#include <openssl/ec.h>
#include <openssl/obj_mac.h>
#include <openssl/params.h>
#include <string_view>

namespace zacert_gm {
namespace {

consteval std::array<uint8_t, 6 * kCoordinate> octets(std::string_view hex) {
    std::array<uint8_t, 6 * kCoordinate> out{};
    size_t digits = 0;
    for (const char c : hex) {
        if (c != ' ') {
            const int digit = c <= '9' ? c - '0' : c - 'A' + 10;
            uint8_t &octet = out[digits++ / 2];
            octet = static_cast<uint8_t>(octet << 4 | digit);
        }
    }
    if (digits != 2 * out.size()) {
        throw "six numbers of 64 digits";
    }
    return out;
}

}  // namespace

constinit const Curve kSm2{
    .number = ZACERT_GM_CURVE_SM2,
    .key_type = "SM2",
    .group = SN_sm2,
    .nid = NID_sm2,
    .domain = octets("FFFFFFFE FFFFFFFF FFFFFFFF FFFFFFFF FFFFFFFF 00000000 FFFFFFFF FFFFFFFF "
                     "FFFFFFFE FFFFFFFF FFFFFFFF FFFFFFFF FFFFFFFF 00000000 FFFFFFFF FFFFFFFC "
                     "28E9FA9E 9D9F5E34 4D5A9E4B CF6509A7 F39789F5 15AB8F92 DDBCBD41 4D940E93 "
                     "32C4AE2C 1F198119 5F990446 6A39C994 8FE30BBF F2660BE1 715A4589 334C74C7 "
                     "BC3736A2 F4F6779C 59BDCEE3 6B692153 D0A9877C C62A4740 02DF32E5 2139F0A0 "
                     "FFFFFFFE FFFFFFFF FFFFFFFF FFFFFFFF 7203DF6B 21C6052B 53BBF409 39D54123"),
};

constinit const Curve kP256{
    .number = ZACERT_GM_CURVE_P256,
    .key_type = "EC",
    .group = SN_X9_62_prime256v1,
    .nid = NID_X9_62_prime256v1,
    .domain = octets("FFFFFFFF 00000001 00000000 00000000 00000000 FFFFFFFF FFFFFFFF FFFFFFFF "
                     "FFFFFFFF 00000001 00000000 00000000 00000000 FFFFFFFF FFFFFFFF FFFFFFFC "
                     "5AC635D8 AA3A93E7 B3EBBD55 769886BC 651D06B0 CC53B0F6 3BCE3C3E 27D2604B "
                     "6B17D1F2 E12C4247 F8BCE6E5 63A440F2 77037D81 2DEB33A0 F4A13945 D898C296 "
                     "4FE342E2 FE1A7F9B 8EE7EB4A 7C0F9E16 2BCE3357 6B315ECE CBB64068 37BF51F5 "
                     "FFFFFFFF 00000000 FFFFFFFF FFFFFFFF BCE6FAAD A7179E84 F3B9CAC2 FC632551"),
};

namespace {

constexpr const Curve *kCurves[] = {&kSm2, &kP256};

template <class Matches>
const Curve *find(const Matches &matches) {
    const auto *const found =
        std::ranges::find_if(kCurves, [&](const Curve *curve) { return matches(*curve); });
    return found == std::end(kCurves) ? nullptr : *found;
}

}  // namespace

const Curve *curve_by_number(uint32_t number) {
    return find([&](const Curve &curve) { return curve.number == number; });
}

const Curve *curve_by_group(const char *group) {
    return find([&](const Curve &curve) { return std::strcmp(curve.group, group) == 0; });
}

const Curve *curve_by_domain(const ZACERT_EccCurve &domain) {
    return find([&](const Curve &curve) {
        return std::memcmp(&domain, curve.domain.data(), curve.domain.size()) == 0;
    });
}

Key make_key(const Curve &curve, const ZA_ECCPOINT &pub, Bytes secret) {
    std::array<uint8_t, kPoint> point{POINT_CONVERSION_UNCOMPRESSED};
    std::ranges::copy(pub.x, &point[1]);
    std::ranges::copy(pub.y, &point[1 + kCoordinate]);

    // Numbers travel in the machine's order of octets, which the big number knows.
    Wiped<std::array<uint8_t, kCoordinate>> number;
    if (!secret.empty()) {
        const Number d(BN_bin2bn(secret.data(), static_cast<int>(secret.size()), nullptr));
        if (!d || BN_bn2nativepad(d.get(), number.value.data(), kCoordinate) < 0) {
            return nullptr;
        }
    }
    OSSL_PARAM params[] = {
        OSSL_PARAM_construct_utf8_string(OSSL_PKEY_PARAM_GROUP_NAME,
                                         const_cast<char *>(curve.group), 0),
        OSSL_PARAM_construct_octet_string(OSSL_PKEY_PARAM_PUB_KEY, point.data(), point.size()),
        secret.empty()
            ? OSSL_PARAM_construct_end()
            : OSSL_PARAM_construct_BN(OSSL_PKEY_PARAM_PRIV_KEY, number.value.data(), kCoordinate),
        OSSL_PARAM_construct_end(),
    };
    const std::unique_ptr<EVP_PKEY_CTX, Release<EVP_PKEY_CTX_free>> context(
        EVP_PKEY_CTX_new_from_name(nullptr, curve.key_type, nullptr));
    const int selection = secret.empty() ? EVP_PKEY_PUBLIC_KEY : EVP_PKEY_KEYPAIR;
    EVP_PKEY *key = nullptr;
    if (!context || EVP_PKEY_fromdata_init(context.get()) != 1 ||
        EVP_PKEY_fromdata(context.get(), &key, selection, params) != 1) {
        return nullptr;
    }
    return Key(key);
}

}  // namespace zacert_gm
