#include "issue/private_key.hpp"

#include <zacert/gm.h>

#include "base/callback.hpp"
#include "base/failure.hpp"
#include "base/wording.hpp"

#include <algorithm>
#include <array>
#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/pkcs12.h>
#include <openssl/x509.h>
#include <string_view>

namespace tool {

namespace {

// What a guesser pays per password; OpenSSL's own default of 2048 is of another time.
constexpr int kIterations = 200000;

using Bio = std::unique_ptr<BIO, Free<BIO_free_all>>;
using KeyInfo = std::unique_ptr<PKCS8_PRIV_KEY_INFO, Free<PKCS8_PRIV_KEY_INFO_free>>;
using Sealed = std::unique_ptr<X509_SIG, Free<X509_SIG_free>>;

struct KeyType {
    std::string_view name;
    const char *algorithm;
    size_t bits;        // RSA
    const char *curve;  // else
};

constexpr auto kTypes = std::to_array<KeyType>({
    {"rsa-1024", "RSA", 1024, nullptr},
    {"rsa-2048", "RSA", 2048, nullptr},
    {"rsa-3072", "RSA", 3072, nullptr},
    {"rsa-4096", "RSA", 4096, nullptr},
    {"p256", "EC", 0, "P-256"},
    {"sm2", "SM2", 0, nullptr},
});

Failure key_failure(const std::string &what) {
    ERR_clear_error();
    return Failure(what);
}

// The octets of a BIO in secure memory, which wipes them when it is freed.
Secret octets_in(BIO &bio) {
    char *data = nullptr;
    const long size = BIO_get_mem_data(&bio, &data);
    return Secret(View(reinterpret_cast<const uint8_t *>(data), static_cast<size_t>(size)));
}

KeyInfo key_info(EVP_PKEY &key) {
    KeyInfo info(EVP_PKEY2PKCS8(&key));
    if (info == nullptr) {
        throw key_failure("the private key cannot be written");
    }
    return info;
}

Sealed sealed(PKCS8_PRIV_KEY_INFO &info, const Secret &password) {
    X509_ALGOR *scheme = PKCS5_pbe2_set(EVP_aes_256_cbc(), kIterations, nullptr, 0);
    X509_SIG *result =
        scheme == nullptr
            ? nullptr
            : PKCS8_set0_pbe(password.text(), static_cast<int>(password.size()), &info, scheme);
    if (result == nullptr) {
        X509_ALGOR_free(scheme);
        throw key_failure("the private key cannot be encrypted");
    }
    return Sealed(result);
}

struct PasswordRequest {
    const PasswordSource &source;
    const std::string &path;
    std::string problem;
};

// OpenSSL asks for the password when it meets an encrypted key, and not before. No exception may
// pass through it.
int give_password(char *buffer, int size, int, void *context) {
    auto &request = *static_cast<PasswordRequest *>(context);
    if (!request.problem.empty()) {
        return -1;  // it asks again where it tries another form
    }
    try {
        std::optional<Secret> given = given_password(request.source);
        const Secret password =
            given ? std::move(*given)
                  : asked_password("Password of " + request.path + ": ", Ask::once);
        if (password.size() > static_cast<size_t>(size)) {
            request.problem = "the password is too long";
            return -1;
        }
        std::copy_n(password.text(), password.size(), buffer);
        return static_cast<int>(password.size());
    } catch (const Failure &failure) {
        request.problem = failure.what();
        return -1;
    }
}

EVP_PKEY *decoded_key(const Secret &file, PasswordRequest &request) {
    const auto size = static_cast<int>(file.size());
    const Bio pem(BIO_new_mem_buf(file.text(), size));
    EVP_PKEY *key = PEM_read_bio_PrivateKey(pem.get(), nullptr, give_password, &request);
    if (key != nullptr || file.view().empty() || file.view().front() != 0x30) {
        return key;
    }
    const Bio der(BIO_new_mem_buf(file.text(), size));
    key = d2i_PrivateKey_bio(der.get(), nullptr);
    if (key != nullptr) {
        return key;
    }
    const Bio encrypted(BIO_new_mem_buf(file.text(), size));
    return d2i_PKCS8PrivateKey_bio(encrypted.get(), nullptr, give_password, &request);
}

}  // namespace

EvpKey generate_key(const std::string &type) {
    const auto row = std::find_if(kTypes.begin(), kTypes.end(),
                                  [&](const KeyType &entry) { return entry.name == type; });
    if (row == kTypes.end()) {
        throw Failure("no such type of key: " + type);
    }
    EVP_PKEY *key = nullptr;
    if (row->bits != 0) {
        key = EVP_PKEY_Q_keygen(nullptr, nullptr, row->algorithm, row->bits);
    } else if (row->curve != nullptr) {
        key = EVP_PKEY_Q_keygen(nullptr, nullptr, row->algorithm, row->curve);
    } else {
        key = EVP_PKEY_Q_keygen(nullptr, nullptr, row->algorithm);
    }
    if (key == nullptr) {
        throw key_failure("libcrypto made no key");
    }
    return EvpKey(key);
}

Secret pem_of_key(EVP_PKEY &key, const Secret *password) {
    const KeyInfo info = key_info(key);
    const Bio bio(BIO_new(BIO_s_secmem()));
    const int written = password == nullptr
                            ? PEM_write_bio_PKCS8_PRIV_KEY_INFO(bio.get(), info.get())
                            : PEM_write_bio_PKCS8(bio.get(), sealed(*info, *password).get());
    if (written != 1) {
        throw key_failure("the private key cannot be written");
    }
    return octets_in(*bio);
}

EvpKey read_private_key(const std::string &path, const PasswordSource &source) {
    constexpr size_t kMaxFile = 1024 * 1024;
    const Secret file = read_secret(path, kMaxFile, "a private key");
    PasswordRequest request{source, path, {}};
    EvpKey key(decoded_key(file, request));
    if (key == nullptr) {
        const unsigned long reason = ERR_peek_last_error();
        const bool refused = ERR_GET_LIB(reason) == ERR_LIB_EVP ||
                             ERR_GET_LIB(reason) == ERR_LIB_PROV ||
                             ERR_GET_LIB(reason) == ERR_LIB_PKCS12;
        const std::string why = !request.problem.empty() ? request.problem
                                : refused                ? "the password does not open it"
                                          : "neither PEM nor DER of one that libcrypto reads";
        throw key_failure(file_label(path) + ": expected a private key: " + why);
    }
    ERR_clear_error();
    return key;
}

Secret der_of_key(EVP_PKEY &key) {
    const Bio bio(BIO_new(BIO_s_secmem()));
    if (i2d_PKCS8_PRIV_KEY_INFO_bio(bio.get(), key_info(key).get()) != 1) {
        throw key_failure("the private key cannot be written");
    }
    return octets_in(*bio);
}

Secret gm_key_of(EVP_PKEY &key) {
    Secret der = der_of_key(key);
    zacert_gm_key record{};
    const uint32_t result =
        zacert_gm_key_from_der(der.data(), static_cast<uint32_t>(der.size()), &record);
    Secret octets = octets_of_record(record);
    OPENSSL_cleanse(&record, sizeof record);
    check(result);
    return octets;
}

Octets public_key_of(EVP_PKEY &key) {
    uint8_t *der = nullptr;
    const int size = i2d_PUBKEY(&key, &der);
    if (size <= 0) {
        throw key_failure("the public key cannot be written");
    }
    Octets octets(der, der + size);
    OPENSSL_free(der);
    return octets;
}

}  // namespace tool
