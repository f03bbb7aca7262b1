#include "issue/signer.hpp"

#include <zacert/gm.h>
#include <zacert/pkcs11.h>

#include "base/der.hpp"
#include "base/der_writer.hpp"
#include "base/evp.hpp"
#include "base/failure.hpp"
#include "issue/private_key.hpp"

#include <algorithm>
#include <array>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <sstream>
#include <unistd.h>

namespace tool {

namespace {

constexpr size_t kRoom = 512;  // what the library has for a certificate's signature

// RSA, PKCS#1 v1.5 with SHA-256. `context` holds a pointer to the key, at any address.
int32_t sign_rsa(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len,
                 void *context) {
    EVP_PKEY *key = nullptr;
    if (context != nullptr) {
        std::copy_n(static_cast<const uint8_t *>(context), sizeof key,
                    reinterpret_cast<uint8_t *>(&key));
    }
    const size_t size = key == nullptr ? kRoom : static_cast<size_t>(EVP_PKEY_get_size(key));
    if (out == nullptr) {
        *out_len = static_cast<uint32_t>(size);
        return 0;
    }
    if (key == nullptr || *out_len < size) {
        return ZACERT_LengthErr;
    }
    const EvpDigest digest(EVP_MD_CTX_new());
    size_t written = size;
    if (digest == nullptr ||
        EVP_DigestSignInit(digest.get(), nullptr, EVP_sha256(), nullptr, key) != 1 ||
        EVP_DigestSign(digest.get(), out, &written, in, in_len) != 1) {
        ERR_clear_error();
        return ZACERT_CryptErr;
    }
    *out_len = static_cast<uint32_t>(written);
    return 0;
}

template <class Record>
Secret octets_of_record(const Record &record) {
    return Secret(View(reinterpret_cast<const uint8_t *>(&record), sizeof record));
}

Octets algorithm_for(KeyKind kind) {
    return object_id_octets(kind == KeyKind::rsa    ? "1.2.840.113549.1.1.11"
                            : kind == KeyKind::p256 ? "1.2.840.10045.4.3.2"
                                                    : "1.2.156.10197.1.501");
}

Secret curve_record(EVP_PKEY &key) {
    Secret der = der_of_key(key);
    zacert_gm_key record{};
    const uint32_t result =
        zacert_gm_key_from_der(der.data(), static_cast<uint32_t>(der.size()), &record);
    Secret octets = octets_of_record(record);
    OPENSSL_cleanse(&record, sizeof record);
    check(result);
    return octets;
}

Signer signer_of_file(const KeyOptions &options) {
    EvpKey key = read_private_key(options.file, options.password);
    Signer signer;
    signer.key = subject_key(public_key_of(*key));
    require_issuable(signer.key);
    signer.algorithm = algorithm_for(signer.key.kind);
    if (signer.key.kind == KeyKind::rsa) {
        if (static_cast<size_t>(EVP_PKEY_get_size(key.get())) > kRoom) {
            throw Failure("expected an RSA key of at most 4096 bits for signing");
        }
        EVP_PKEY *pointer = key.get();
        signer.function = sign_rsa;
        signer.context = octets_of_record(pointer);
        signer.owner = std::shared_ptr<EVP_PKEY>(std::move(key));
        return signer;
    }
    signer.function = signer.key.kind == KeyKind::p256 ? zacert_gm_p256_sign : zacert_gm_sm2_sign;
    signer.context = curve_record(*key);
    return signer;
}

struct TokenProblem {
    uint32_t code;
    std::string_view text;
};

constexpr auto kTokenProblems = std::to_array<TokenProblem>({
    {ZACERT_GeneralErr, "the text is no PKCS#11 URI"},
    {ZACERT_AttributeNotSupportErr, "the URI has an attribute that is not looked at"},
    {ZACERT_ItemMissingErr, "no token or key is what the URI names"},
    {ZACERT_InvalidSignatureAlgErr, "the key cannot sign with SHA-256"},
    {ZACERT_PrivateKeyErr, "the PIN is missing or was refused"},
    {ZACERT_InvalidItem, "several tokens or keys are what the URI names"},
    {ZACERT_TypeErr, "the URI names another kind of object"},
    {ZACERT_CryptErr, "the module cannot be loaded, or the token refused"},
});

Failure token_failure(uint32_t code) {
    const auto row = std::find_if(kTokenProblems.begin(), kTokenProblems.end(),
                                  [code](const TokenProblem &r) { return r.code == code; });
    std::ostringstream text;
    text << "expected a key on a token: ";
    if (row == kTokenProblems.end()) {
        text << LibraryError(code).what();
    } else {
        text << row->text << " (" << code << ")";
    }
    if (code == ZACERT_CryptErr && zacert_pkcs11_token_result() != 0) {
        text << ", PKCS#11 result 0x" << std::hex << zacert_pkcs11_token_result();
    }
    return Failure(text.str());
}

uint32_t open_with(const KeyOptions &options, const Secret *pin, zacert_pkcs11_key *out) {
    constexpr int32_t kSha256 = 9;
    const uint8_t *octets = pin == nullptr ? nullptr : pin->view().data();
    const auto length = pin == nullptr ? uint32_t{0} : static_cast<uint32_t>(pin->size());
    return zacert_pkcs11_open(options.uri.c_str(), octets, length, kSha256, out);
}

// A token that has its own key pad, or a URI that tells the PIN, needs none from here.
zacert_pkcs11_key open_token(const KeyOptions &options) {
    zacert_pkcs11_key key{};
    std::optional<Secret> pin = given_password(options.password);
    uint32_t result = open_with(options, pin ? &*pin : nullptr, &key);
    const bool uri_has_pin = options.uri.find("pin-") != std::string::npos;
    if (result == ZACERT_PrivateKeyErr && !pin && !uri_has_pin && isatty(STDIN_FILENO) != 0) {
        pin = asked_password("PIN of the token: ", Ask::once);
        result = open_with(options, &*pin, &key);
    }
    if (result != 0) {
        throw token_failure(result);
    }
    return key;
}

struct CloseToken {
    void operator()(zacert_pkcs11_key *key) const {
        zacert_pkcs11_close(key);
        delete key;
    }
};

Signer signer_of_token(const KeyOptions &options) {
    const auto key = std::shared_ptr<zacert_pkcs11_key>(new zacert_pkcs11_key(open_token(options)),
                                                        CloseToken());
    Signer signer;
    signer.function = zacert_pkcs11_sign;
    signer.context = octets_of_record(*key);
    signer.owner = key;
    signer.key = subject_key(fetched([&](uint8_t *out, uint32_t *length) {
        return zacert_pkcs11_public_key(key.get(), out, length);
    }));
    require_issuable(signer.key);
    if (signer.key.kind == KeyKind::sm2) {
        throw Failure("expected an RSA or P-256 key on the token");
    }
    signer.algorithm = algorithm_for(signer.key.kind);
    return signer;
}

}  // namespace

void add_key_options(CLI::App &command, const std::string &option, KeyOptions &options) {
    CLI::Option_group *group = command.add_option_group("Key", "who signs");
    group->add_option(option, options.file, "private key: PEM or DER")->type_name("FILE");
    group
        ->add_option("--pkcs11", options.uri,
                     "private key on a token instead: an RFC 7512 URI such as "
                     "\"pkcs11:token=CA;object=root?module-path=/usr/lib/token.so\"")
        ->type_name("URI");
    group->require_option(1);
    add_password_options(command, options.password, "asked for where it is needed and not given");
}

Signer open_signer(const KeyOptions &options) {
    return options.uri.empty() ? signer_of_file(options) : signer_of_token(options);
}

Octets signature_of(Signer &signer, View octets) {
    const auto size = static_cast<uint32_t>(octets.size());
    return fetched([&](uint8_t *out, uint32_t *length) {
        return static_cast<uint32_t>(
            signer.function(octets.data(), size, out, length, signer.context.data()));
    });
}

}  // namespace tool
