#include <zacert.h>

#include "app/orvo_keys.hpp"
#include "runtime/trace.hpp"

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\orvo"};

}  // namespace

namespace za::app {
namespace {

constexpr uint8_t kNoDigit = 16;

constexpr uint8_t value_of(char digit) {
    if (digit >= '0' && digit <= '9') {
        return static_cast<uint8_t>(digit - '0');
    }
    const char upper = digit >= 'a' && digit <= 'z' ? static_cast<char>(digit - 'a' + 'A') : digit;
    return upper >= 'A' && upper <= 'F' ? static_cast<uint8_t>(upper - 'A' + 10) : kNoDigit;
}

// All digits are looked at, and as many converted as `out` has room for.
Status hex2str(std::string_view digits, std::span<uint8_t> out) {
    if (digits.size() % 2 != 0) {
        return trace.fail(kNotHex, "=====>In hex2str len Error !");
    }
    for (size_t i = 0; i < digits.size() / 2; ++i) {
        const uint8_t high = value_of(digits[2 * i]);
        const uint8_t low = value_of(digits[2 * i + 1]);
        if (high == kNoDigit || low == kNoDigit) {
            return trace.fail(kNotHex, "=====>In hex2str ch Error !");
        }
        if (i < out.size()) {
            out[i] = static_cast<uint8_t>(high * 16 + low);
        }
    }
    return Status::ok;
}

void hand_out_hex(Bytes octets, char *out, uint32_t *out_len) {
    for (const uint8_t octet : octets) {
        *out++ = "0123456789ABCDEF"[octet / 16];
        *out++ = "0123456789ABCDEF"[octet % 16];
    }
    *out_len = to_u32(octets.size() * 2);
}

template <class... Octet>
Status need(const Input<Octet> &...inputs) {
    return ((inputs.first != nullptr || inputs.len == 0) && ...) ? Status::ok
                                                                 : trace.fail(Status::general);
}

std::string_view text_of(const Input<char> &digits) {
    return {digits.first, digits.len};
}

constexpr uint32_t kEcb = 1;
constexpr int32_t kKeyDigits = 32;
constexpr size_t kAesBlock = 16;
constexpr size_t kMostData = 8192;

using AesKey = Wiped<std::array<uint8_t, kKeyDigits / 2>>;

Status encrypt(const char *key_hex, int32_t key_hex_len, const Input<uint8_t> &data, char *out,
               uint32_t *out_len) {
    if (key_hex_len != kKeyDigits) {
        return trace.fail(kSymmetricKeySize, "------>PkgEncrypt_KOVA keylen  Err");
    }
    if (data.len > kMostData) {
        return trace.fail(kInputTooLong, "------>PkgEncrypt_KOVA inputLen  Err");
    }
    AesKey key;
    ZA_TRY_AS("------>PkgEncrypt_KOVA hex2str key Err", hex2str({key_hex, kKeyDigits}, key.value));
    std::array<uint8_t, kMostData + kAesBlock> cipher;
    uint32_t len = 0;
    ZA_TRY(ZA_PKCS12_AESEncrypt,
           result_of(ZA_PKCS12_AESEncrypt(kEcb, key.value.data(), key.value.size(), nullptr, 0,
                                          data.first, data.len, cipher.data(), &len)));
    hand_out_hex(Bytes(cipher).first(len), out, out_len);
    return Status::ok;
}

// Here the digits are looked at before their number, unless it is out of all proportion.
Status decrypt(const char *key_hex, int32_t key_hex_len, const Input<char> &cipher_hex,
               uint8_t *out, uint32_t *out_len) {
    constexpr uint32_t kMostDigits = 0x80000000;
    constexpr const char *kTooLong = "------>PkgDecrypt_KOVA inputLen  Err";
    if (key_hex_len != kKeyDigits) {
        return trace.fail(kSymmetricKeySize, "------>PkgDecrypt_KOVA keylen  Err");
    }
    AesKey key;
    ZA_TRY_AS("------>PkgDecrypt_KOVA hex2str key Err", hex2str({key_hex, kKeyDigits}, key.value));
    if (cipher_hex.len > kMostDigits) {
        return trace.fail(kInputTooLong, kTooLong);
    }
    std::array<uint8_t, kMostData> cipher;
    ZA_TRY_AS("------>PkgDecrypt_KOVA hex2str indata Err", hex2str(text_of(cipher_hex), cipher));
    if (cipher_hex.len > 2 * cipher.size()) {
        return trace.fail(kInputTooLong, kTooLong);
    }
    ZA_TRY(ZA_PKCS12_AESDecrypt,
           result_of(ZA_PKCS12_AESDecrypt(kEcb, key.value.data(), key.value.size(), nullptr, 0,
                                          cipher.data(), cipher_hex.len / 2, out, out_len)));
    return Status::ok;
}

constexpr int32_t kSha1 = 7;

using RsaOctets = std::array<uint8_t, sizeof(ZA_RSArefPublicKey::modulus)>;

Status encrypt_for(const char *cert_path, const Input<uint8_t> &data, char *out,
                   uint32_t *out_len) {
    ZA_RSArefPublicKey key;
    ZA_TRY_AS("------>PubKey_Encrypt_KOVA Call  GetRSAPubKeyFromCert  Err",
              key_of_certificate(cert_path, key));
    RsaOctets cipher;
    uint32_t len = 0;
    ZA_TRY_AS(
        "------>PubKey_Encrypt_KOVA Call  ZA_PKCS7_RSAPublicEncrypt  Err",
        result_of(ZA_PKCS7_RSAPublicEncrypt(cipher.data(), &len, data.first, data.len, &key)));
    hand_out_hex(Bytes(cipher).first(len), out, out_len);
    return Status::ok;
}

Status decrypt_with(const char *pfx_path, const Input<char> &password,
                    const Input<char> &cipher_hex, uint8_t *out, uint32_t *out_len) {
    Wiped<ZA_RSArefPrivateKey> key;
    ZA_TRY_AS("------>PrivateKey_Decrypt_KOVA Call  GetRSAPriKeyFromPfx  Err",
              key_of_pfx(pfx_path, password, key.value));
    std::array<uint8_t, 8192> cipher;
    if (cipher_hex.len > 2 * cipher.size()) {
        return trace.fail(kInputTooLong, "------>PrivateKey_Decrypt_KOVA inputLen  Err");
    }
    ZA_PASS(hex2str(text_of(cipher_hex), cipher));
    Wiped<RsaOctets> plain;
    uint32_t len = 0;
    ZA_TRY_AS("------>PrivateKey_Decrypt_KOVA Call  ZA_PKCS7_RSAPrivateDecrypt  Err",
              result_of(ZA_PKCS7_RSAPrivateDecrypt(plain.value.data(), &len, cipher.data(),
                                                   cipher_hex.len / 2, &key.value)));
    hand_out(Bytes(plain.value).first(len), out, out_len);
    return Status::ok;
}

Status sign_with(const char *pfx_path, const Input<char> &password, const Input<uint8_t> &data,
                 char *out, uint32_t *out_len) {
    Wiped<ZA_RSArefPrivateKey> key;
    ZA_TRY_AS("------>Pfx_SignData_KOVA Call  GetRSAPriKeyFromPfx  Err",
              key_of_pfx(pfx_path, password, key.value));
    RsaOctets signature;
    uint32_t len = 0;
    ZA_TRY_AS("------>Pfx_SignData_KOVA Call  ZA_PKCS7_SignedData  Err",
              result_of(ZA_PKCS7_SignedData(kSha1, data.first, static_cast<int32_t>(data.len),
                                            signature.data(), &len, &key.value)));
    hand_out_hex(Bytes(signature).first(len), out, out_len);
    return Status::ok;
}

Status verify_by(const char *cert_path, const Input<uint8_t> &data, const Input<char> &sign_hex) {
    ZA_RSArefPublicKey key;
    ZA_TRY_AS("------>Pfx_VerifyData_KOVA Call  GetRSAPubKeyFromCert  Err",
              key_of_certificate(cert_path, key));
    std::array<uint8_t, 4096> signature;
    if (sign_hex.len > 2 * signature.size()) {
        return trace.fail(kNotHex, "------>Pfx_VerifyData_KOVA inputLen  Err");
    }
    ZA_PASS(hex2str(text_of(sign_hex), signature));
    uint32_t verdict = 0;
    ZA_TRY_AS(
        "------>Pfx_VerifyData_KOVA Call  ZA_PKCS7_VerifySignature  Err",
        result_of(ZA_PKCS7_VerifySignature(kSha1, data.first, static_cast<int32_t>(data.len),
                                           signature.data(), sign_hex.len / 2, &key, &verdict)));
    return verdict == 1 ? Status::ok : kNoMatch;
}

}  // namespace
}  // namespace za::app

using za::Status;
using za::app::Input;
using za::app::need;

uint32_t PkgEncrypt_KOVA(const char *keyHex, int32_t keyHexLen, const uint8_t *data,
                         uint32_t dataLen, char *cipherHex, uint32_t *cipherHexLen) {
    return trace.exported([&] {
        const Input<uint8_t> plain{data, dataLen};
        ZA_PASS(trace.need(keyHex, cipherHex, cipherHexLen));
        ZA_PASS(need(plain));
        return za::app::encrypt(keyHex, keyHexLen, plain, cipherHex, cipherHexLen);
    });
}

uint32_t PkgDecrypt_KOVA(const char *keyHex, int32_t keyHexLen, const char *cipherHex,
                         uint32_t cipherHexLen, uint8_t *plain, uint32_t *plainLen) {
    return trace.exported([&] {
        const Input<char> cipher{cipherHex, cipherHexLen};
        ZA_PASS(trace.need(keyHex, plain, plainLen));
        ZA_PASS(need(cipher));
        return za::app::decrypt(keyHex, keyHexLen, cipher, plain, plainLen);
    });
}

uint32_t PubKey_Encrypt_KOVA(const char *certPath, const uint8_t *data, uint32_t dataLen,
                             char *cipherHex, uint32_t *cipherHexLen) {
    return trace.exported([&] {
        const Input<uint8_t> plain{data, dataLen};
        ZA_PASS(trace.need(cipherHex, cipherHexLen));
        ZA_PASS(need(plain));
        return za::app::encrypt_for(certPath, plain, cipherHex, cipherHexLen);
    });
}

uint32_t PrivateKey_Decrypt_KOVA(const char *pfxPath, const char *password, uint32_t passwordLen,
                                 const char *cipherHex, uint32_t cipherHexLen, uint8_t *plain,
                                 uint32_t *plainLen) {
    return trace.exported([&] {
        const Input<char> with{password, passwordLen};
        const Input<char> cipher{cipherHex, cipherHexLen};
        ZA_PASS(trace.need(plain, plainLen));
        ZA_PASS(need(with, cipher));
        return za::app::decrypt_with(pfxPath, with, cipher, plain, plainLen);
    });
}

uint32_t Pfx_SignData_KOVA(const char *pfxPath, const char *password, uint32_t passwordLen,
                           const uint8_t *data, uint32_t dataLen, char *signHex,
                           uint32_t *signHexLen) {
    return trace.exported([&] {
        const Input<char> with{password, passwordLen};
        const Input<uint8_t> octets{data, dataLen};
        ZA_PASS(trace.need(signHex, signHexLen));
        ZA_PASS(need(with, octets));
        return za::app::sign_with(pfxPath, with, octets, signHex, signHexLen);
    });
}

uint32_t Pfx_VerifyData_KOVA(const char *certPath, const uint8_t *data, uint32_t dataLen,
                             const char *signHex, uint32_t signHexLen) {
    return trace.exported([&] {
        const Input<uint8_t> octets{data, dataLen};
        const Input<char> signature{signHex, signHexLen};
        ZA_PASS(need(octets, signature));
        return za::app::verify_by(certPath, octets, signature);
    });
}
