#include <zacert.h>

#include "crypto/za_crypt_pkcs12.hpp"
#include "crypto/za_crypt_pkcs12_cipher.hpp"
#include "runtime/trace.hpp"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace {

constexpr za::TraceSource trace{".\\src\\za_crypt_pkcs12"};

}  // namespace

namespace za::crypto {
namespace {

constexpr size_t kAesBlock = 16;
constexpr size_t kAesKey = 16;
constexpr size_t kMostDecrypted = 8192;
constexpr uint32_t kCbc = 2;

// Both directions write the same line at entry and on success: programs that read logs know it.
constexpr const char *kEntryLine = "=====>ZA_PKCS12_AESEncrypt";

// In the order of the interface's values, beginning with 1.
constexpr std::array kModes{EVP_aes_128_ecb, EVP_aes_128_cbc};

struct AesArguments {
    uint32_t mode;
    const uint8_t *key;
    uint32_t key_len;
    const uint8_t *iv;
    uint32_t iv_len;
};

// One line for each argument, in the order of the arguments.
struct Condition {
    bool good;
    const char *line;
};

Status check(std::initializer_list<Condition> conditions) {
    for (const Condition &condition : conditions) {
        if (!condition.good) {
            return trace.fail(Status::general, condition.line);
        }
    }
    return Status::ok;
}

Status check(const AesArguments &with) {
    const bool cbc = with.mode == kCbc;
    return check({
        {with.mode >= 1 && with.mode <= kModes.size(), "----->algMode"},
        {with.key != nullptr, "----->key"},
        {with.key_len == kAesKey, "----->keyLen"},
        {!cbc || with.iv != nullptr, "----->pIv"},
        {!cbc || with.iv_len == kAesBlock, "----->pIvLen"},
    });
}

Status pad(Bytes plain, Octets &out) {
    const size_t count = kAesBlock - plain.size() % kAesBlock;
    ZA_TRY_AS("------>ZACERT_MemoryErr  Err", out.allocate(plain.size() + count));
    std::fill_n(put(out.data(), plain), count, static_cast<uint8_t>(count));
    return Status::ok;
}

Status run(const AesArguments &with, Direction direction, Bytes in, uint8_t *out) {
    BlockCipher cipher;
    const EVP_CIPHER *mode = kModes[with.mode - 1]();
    if (!cipher.set_key(mode, direction, with.key, with.mode == kCbc ? with.iv : nullptr)) {
        return trace.fail(Status::crypt, direction == Direction::encrypt
                                             ? "----->AES_set_encrypt_key"
                                             : "----->AES_set_decrypt_key");
    }
    return cipher.run(in, out) ? Status::ok : trace.fail(Status::crypt);
}

}  // namespace

Status aes_encrypt(uint32_t mode, const uint8_t *key, uint32_t key_len, const uint8_t *iv,
                   uint32_t iv_len, const uint8_t *plain, uint32_t plain_len, uint8_t *out,
                   uint32_t *out_len) {
    trace.note(kEntryLine);
    const AesArguments with{mode, key, key_len, iv, iv_len};
    ZA_PASS(check(with));
    ZA_PASS(check({
        {plain != nullptr, "----->input"},
        {plain_len > 0 && plain_len <= kMostText, "----->inputLen"},
        {out != nullptr, "----->output"},
        {out_len != nullptr, "----->outputLen"},
    }));
    Wiped<Octets> text;
    ZA_TRY_AS("----->CW_dataPadAdd", pad({plain, plain_len}, text.value));
    ZA_PASS(run(with, Direction::encrypt, text.value.bytes(), text.value.data()));
    hand_out(text.value.bytes(), out, out_len);
    trace.note(kEntryLine);
    return Status::ok;
}

Status aes_decrypt(uint32_t mode, const uint8_t *key, uint32_t key_len, const uint8_t *iv,
                   uint32_t iv_len, const uint8_t *cipher, uint32_t cipher_len, uint8_t *out,
                   uint32_t *out_len) {
    trace.note(kEntryLine);
    const AesArguments with{mode, key, key_len, iv, iv_len};
    ZA_PASS(check(with));
    ZA_PASS(check({
        {cipher != nullptr, "----->input"},
        {cipher_len % kAesBlock == 0, "----->inputLen err, Must 16*n"},
        {cipher_len > 0 && cipher_len <= kMostDecrypted, "----->inputLen"},
        {out != nullptr, "----->output"},
        {out_len != nullptr, "----->outputLen"},
    }));
    Wiped<std::array<uint8_t, kMostDecrypted>> work;
    ZA_PASS(run(with, Direction::decrypt, {cipher, cipher_len}, work.value.data()));
    const Bytes text = Bytes(work.value).first(cipher_len);
    if (text.back() > text.size()) {
        return trace.fail(Status::general);
    }
    hand_out(text.first(text.size() - text.back()), out, out_len);
    trace.note(kEntryLine);
    return Status::ok;
}

}  // namespace za::crypto

uint32_t ZA_PKCS12_AESEncrypt(uint32_t mode, const uint8_t *key, uint32_t keyLen, const uint8_t *iv,
                              uint32_t ivLen, const uint8_t *plain, uint32_t plainLen,
                              uint8_t *cipher, uint32_t *cipherLen) {
    return trace.unannounced([&] {
        return za::crypto::aes_encrypt(mode, key, keyLen, iv, ivLen, plain, plainLen, cipher,
                                       cipherLen);
    });
}

uint32_t ZA_PKCS12_AESDecrypt(uint32_t mode, const uint8_t *key, uint32_t keyLen, const uint8_t *iv,
                              uint32_t ivLen, const uint8_t *cipher, uint32_t cipherLen,
                              uint8_t *plain, uint32_t *plainLen) {
    return trace.unannounced([&] {
        return za::crypto::aes_decrypt(mode, key, keyLen, iv, ivLen, cipher, cipherLen, plain,
                                       plainLen);
    });
}
