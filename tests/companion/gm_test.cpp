// Key, digest and signature of the recommended curve's example in GB/T 32918.5; libcrypto verifies
// the signature. What is not there was calculated with the openssl command.
#include <zacert/gm.h>

#include "companion/callback.hpp"

#include <cstring>
#include <openssl/err.h>
#include <thread>

namespace za::test {
namespace {

constexpr const char *kSecret = "3945208F7B2144B13F36E38AC6D39F95889393692860B51A42FB81EF4DF7C5B8";
const Octets kAlice = from_hex("414C494345313233405941484F4F2E434F4D");  // ALICE123@YAHOO.COM
const Octets kMessage = from_hex("6D65737361676520646967657374");        // message digest
const Octets kDigest = from_hex("F0B43E94BA45ACCAACE692ED534382EB17E6AB5A19CE7B31F4486FDFC0D28640");
const Octets kSignature = from_hex(
    "3046 022100F5A03B0648D2C4630EEAC513E1BB81A15944DA3827D5B74143AC7EACEEE720B3"
    "022100B1B6AA29DF212FD8763182BC0D421CA1BB9038FD1F7F42D4840B69C485BBC1AA");

zacert_gm_key key_of(uint32_t curve = ZACERT_GM_CURVE_SM2) {
    zacert_gm_key key{};
    EXPECT_EQ(zacert_gm_key_from_scalar(curve, from_hex(kSecret).data(), &key), 0U);
    return key;
}

Octets spki_of(const zacert_gm_key &key) {
    const bool sm2 = key.curve == ZACERT_GM_CURVE_SM2;
    Octets spki = data_file(sm2 ? "keys/spki_sm2.der" : "keys/spki_p256.der");
    std::memcpy(&spki[spki.size() - sizeof(ZA_ECCPOINT)], &key.identity.pub, sizeof(ZA_ECCPOINT));
    return spki;
}

ZA_ECCSignStruct halves(const Octets &der) {
    ZA_ECCSignStruct sig{};
    const auto len = static_cast<int32_t>(der.size());
    EXPECT_EQ(ZA_Decode_DerDataToECCSignStruct(&sig, der.data(), len), 0U);
    return sig;
}

// The code, or 1 for a signature that is good.
int32_t verdict(ZA_EccVerifyFunc function, const Octets &tbs, const ZA_ECCSignStruct &sig,
                const ZA_ECCPOINT &pub, void *pass = nullptr) {
    uint32_t result = 0;
    const auto len = static_cast<uint32_t>(tbs.size());
    return function(tbs.data(), len, pass, &sig, &pub, &result) + static_cast<int32_t>(result);
}

int32_t pkcs7_verdict(const Octets &e, const Octets &sig, zacert_gm_identity &identity) {
    uint32_t result = 0;
    const auto len = static_cast<uint32_t>(sig.size());
    const auto e_len = static_cast<uint32_t>(e.size());
    return zacert_gm_sm2_verify_pkcs7(e.data(), e_len, sig.data(), len, &result, &identity) +
           static_cast<int32_t>(result);
}

TEST(Gm, TheStandardsSignatureVerifiesAndNoOtherDoes) {
    zacert_gm_key key = key_of();
    const ZA_ECCPOINT &pub = key.identity.pub;
    const ZA_ECCSignStruct sig = halves(kSignature);
    EXPECT_EQ(verdict(zacert_gm_sm2_verify, kMessage, sig, pub), 1);
    EXPECT_EQ(verdict(zacert_gm_sm2_verify_digest, kDigest, sig, pub), 1);
    EXPECT_EQ(pkcs7_verdict(kDigest, kSignature, key.identity), 1);
    for (size_t i = 0; i < kSignature.size(); ++i) {
        Octets changed = kSignature;
        changed[i] ^= 1;
        EXPECT_EQ(pkcs7_verdict(kDigest, changed, key.identity), 0) << i;
        changed.resize(i);
        EXPECT_EQ(pkcs7_verdict(kDigest, changed, key.identity), 0) << i;
    }
    EXPECT_EQ(verdict(zacert_gm_sm2_verify, kMessage, {}, pub), 0);
    EXPECT_EQ(verdict(zacert_gm_sm2_verify, kDigest, sig, pub), 0);
    EXPECT_EQ(verdict(zacert_gm_sm2_verify_digest, kMessage, sig, pub), ZACERT_LengthErr);
    for (const auto &[file, expected] :
         {std::pair("sm2", 1), {"sm2_explicit", 1}, {"p256", 126}, {"secp256k1", 118}}) {
        const Octets spki = data_file(std::string("keys/spki_") + file + ".der");
        const Anybuf in = borrowed(spki);
        ZI_PubKey read{};
        ASSERT_EQ(ZI_DecodePubKey(&in, &read), 0U);
        EXPECT_EQ(verdict(zacert_gm_verify, kMessage, sig, pub, &read.ecc), expected) << file;
        for (Anybuf *part : {&read.algorithm, &read.parameters, &read.keyBits, &read.rawBits}) {
            ZI_ClearAnybuf(part);
        }
    }
    EXPECT_EQ(ERR_peek_error(), 0U) << "left in the caller's queue";
}

TEST(Gm, TheIdentifierDecidesAndIsTheThreadsOwn) {
    zacert_gm_key key = key_of();
    const auto len = static_cast<uint32_t>(kAlice.size());
    EXPECT_EQ(run(zacert_gm_sm2_digest, kMessage, &key.identity, 32).octets, kDigest);
    ASSERT_EQ(zacert_gm_key_set_id(&key, kAlice.data(), len), 0U);
    EXPECT_EQ(to_hex(run(zacert_gm_sm2_digest, kMessage, &key.identity, 32).octets),
              to_hex(from_hex("ABF7EB631D94615FD1A941D40E99932DDB1899E1DFAE7179B4A79417EA3743E5")));
    const Octets der = run(zacert_gm_sm2_sign, kMessage, &key, 72).octets;
    EXPECT_TRUE(verifies(spki_of(key), EVP_sm3(), kMessage, der, "ALICE123@YAHOO.COM"));
    const auto check = [&] {
        return verdict(zacert_gm_sm2_verify, kMessage, halves(der), key.identity.pub);
    };
    EXPECT_EQ(check(), 0);
    ASSERT_EQ(zacert_gm_set_verify_id(kAlice.data(), len), 0U);
    const Octets longer(ZACERT_GM_MAX_ID_LEN + 1);
    EXPECT_EQ(zacert_gm_set_verify_id(longer.data(), 257), 101U);
    EXPECT_EQ(check(), 1);
    std::thread([&] { EXPECT_EQ(check(), 0); }).join();
    ASSERT_EQ(zacert_gm_set_verify_id(nullptr, 0), 0U);
    EXPECT_EQ(check(), 0);
}

TEST(Gm, SignaturesVerifyEverywhereWhateverTheirLength) {
    zacert_gm_key sm2 = key_of();
    zacert_gm_key p256 = key_of(ZACERT_GM_CURVE_P256);
    Octets odd = join({{0}, octets_of(sm2)});  // records travel as octets, to any address
    for (int i = 0; i < 64; ++i) {
        const Octets whole = run(zacert_gm_sm2_sign, kMessage, &odd[1], 72).octets;
        const Octets bare = run(zacert_gm_sm2_sign_digest, kDigest, &odd[1], 512).octets;
        const Octets ecdsa = run(zacert_gm_p256_sign, kMessage, &p256, 72).octets;
        EXPECT_TRUE(verifies(spki_of(sm2), EVP_sm3(), kMessage, whole, ZACERT_GM_DEFAULT_ID));
        EXPECT_TRUE(verifies(spki_of(sm2), EVP_sm3(), kMessage, bare, ZACERT_GM_DEFAULT_ID));
        EXPECT_TRUE(verifies(spki_of(p256), EVP_sha256(), kMessage, ecdsa));
        EXPECT_EQ(verdict(zacert_gm_p256_verify, kMessage, halves(ecdsa), p256.identity.pub), 1);
    }
}

TEST(Gm, CallbacksKeepTheContract) {
    zacert_gm_key sm2 = key_of();
    zacert_gm_key p256 = key_of(ZACERT_GM_CURVE_P256);
    using Row = std::tuple<ZA_CryptFunc, uint32_t, void *, void *>;
    for (const auto &[function, most, context, wrong] :
         {Row(zacert_gm_sm3, 32, nullptr, nullptr),
          Row(zacert_gm_sm2_digest, 32, &sm2.identity, &sm2),
          Row(zacert_gm_sm2_sign, 72, &sm2, &p256), Row(zacert_gm_sm2_sign_digest, 72, &sm2, &p256),
          Row(zacert_gm_p256_sign, 72, &p256, &sm2)}) {
        uint32_t len = 0;
        EXPECT_EQ(function(nullptr, 9, nullptr, &len, nullptr), 0);
        EXPECT_EQ(len, most);
        EXPECT_EQ(function(nullptr, 9, nullptr, nullptr, nullptr), ZACERT_GeneralErr);
        EXPECT_EQ(run(function, kDigest, context, most).code, 0);
        EXPECT_EQ(run(function, kDigest, context, most - 1).code, ZACERT_LengthErr);
        if (context != nullptr) {
            EXPECT_EQ(run(function, kDigest, nullptr, 72).code, ZACERT_GeneralErr);
            EXPECT_EQ(run(function, kDigest, wrong, 72).code, ZACERT_TypeErr);
        }
    }
    EXPECT_EQ(to_hex(run(zacert_gm_sm3, from_hex("616263"), nullptr, 32).octets),
              to_hex(from_hex("66C7F0F462EEEDD9D1F2D46BDC10E4E24167C4875CF2F7A2297DA02B8F4BA8E0")));
    EXPECT_EQ(run(zacert_gm_sm2_sign_digest, kMessage, &sm2, 72).code, ZACERT_LengthErr);
    sm2.identity.idLen = ZACERT_GM_MAX_ID_LEN + 1;
    EXPECT_EQ(run(zacert_gm_sm2_sign, kDigest, &sm2, 72).code, ZACERT_TypeErr);
}

TEST(Gm, KeysAreReadOrRefused) {
    for (const auto &[code, text] : cases_of("companion/keys.txt")) {
        zacert_gm_key key{};
        const uint32_t curve = static_cast<uint32_t>(text[0] - '0');
        const bool file = text.ends_with(".der");
        Octets in = file ? data_file(text.substr(2)) : from_hex(text.substr(2));
        const auto read = [&](const Octets &der) {
            return zacert_gm_key_from_der(der.data(), static_cast<uint32_t>(der.size()), &key);
        };
        EXPECT_EQ(file ? read(in) : zacert_gm_key_from_scalar(curve, in.data(), &key), code);
        EXPECT_EQ(key.curve, code == 0 ? curve : 0) << text;
        for (size_t n = in.size() + 1; file && code == 0 && n > 0; n -= std::min<size_t>(n, 9)) {
            in.resize(n);
            EXPECT_EQ(read(in), 120U) << text << n;
        }
    }
}

}  // namespace
}  // namespace za::test
