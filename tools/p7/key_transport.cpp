#include "p7/key_transport.hpp"

#include <zacert.h>

#include "base/callback.hpp"
#include "base/failure.hpp"

#include <openssl/err.h>
#include <openssl/rsa.h>
#include <utility>

namespace tool {

namespace {

EvpKeyContext context_for(EVP_PKEY *key, int (*init)(EVP_PKEY_CTX *)) {
    EvpKeyContext context(EVP_PKEY_CTX_new_from_pkey(nullptr, key, nullptr));
    if (context == nullptr || init(context.get()) != 1 ||
        EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING) != 1) {
        return nullptr;
    }
    return context;
}

int32_t encrypt_key(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len,
                    void *context) {
    const EvpKeyContext operation =
        context_for(record_in<EVP_PKEY *>(context), EVP_PKEY_encrypt_init);
    size_t written = *out_len;
    const bool done =
        operation != nullptr && EVP_PKEY_encrypt(operation.get(), out, &written, in, in_len) == 1;
    ERR_clear_error();
    if (!done) {
        return ZACERT_CryptErr;
    }
    *out_len = static_cast<uint32_t>(written);
    return 0;
}

struct Opening {
    EVP_PKEY *key;
    bool exact;
    OpenedKey *result;
};

// The key, or the one that is made up where padding or size are wrong: the content is decrypted in
// either case, and nothing but its end tells the caller. Who could tell the cases apart would open
// any key with enough questions (RFC 3218).
int32_t decrypt_key(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len,
                    void *context) {
    const auto opening = record_in<Opening>(context);
    Secret &key = opening.result->key;
    const EvpKeyContext operation = context_for(opening.key, EVP_PKEY_decrypt_init);
    Secret block(static_cast<size_t>(EVP_PKEY_get_size(opening.key)));
    size_t written = block.size();
    if (operation == nullptr || *out_len < key.size() || block.size() < key.size()) {
        return ZACERT_CryptErr;
    }
    if (!opening.exact) {
        // Newer releases of libcrypto open every block to something, which would pass for a key now
        // and then. Older ones do not know the setting.
        EVP_PKEY_CTX_ctrl_str(operation.get(), "rsa_pkcs1_implicit_rejection", "0");
    }
    const int opened = EVP_PKEY_decrypt(operation.get(), block.data(), &written, in, in_len);
    ERR_clear_error();
    const bool good = (opened == 1) & (written == key.size());
    const auto mask = static_cast<uint8_t>(-static_cast<int>(good));
    for (size_t i = 0; i < key.size(); ++i) {
        out[i] = static_cast<uint8_t>((block.data()[i] & mask) | (key.data()[i] & ~mask));
    }
    *out_len = static_cast<uint32_t>(key.size());
    opening.result->good = good;
    return 0;
}

}  // namespace

void encrypt_key_in(void *recipient_info, EVP_PKEY &key) {
    const Secret context = octets_of_record(&key);
    check(ZA_PKCS7_SetRecipientInfoKeyEncFunc(recipient_info, encrypt_key, context.view().data(),
                                              static_cast<uint32_t>(context.size())));
}

OpenedKey open_key(void *recipient_info, EVP_PKEY &key, Secret made_up, bool exact) {
    OpenedKey opened{std::move(made_up), false};
    const Secret context = octets_of_record(Opening{&key, exact, &opened});
    check(ZA_PKCS7_SetRecipientInfoKeyDecFunc(recipient_info, decrypt_key, context.view().data(),
                                              static_cast<uint32_t>(context.size())));
    Secret octets(opened.key.size());
    auto length = static_cast<uint32_t>(octets.size());
    check(ZA_PKCS7_DecryptDesKey(recipient_info, octets.data(), &length));
    opened.key = std::move(octets);
    return opened;
}

}  // namespace tool
