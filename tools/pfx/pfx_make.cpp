#include <zacert.h>

#include "base/arguments.hpp"
#include "base/der.hpp"
#include "base/der_writer.hpp"
#include "base/failure.hpp"
#include "base/utf8.hpp"
#include "base/wording.hpp"
#include "base/write_file.hpp"
#include "issue/private_key.hpp"
#include "objects/loading.hpp"
#include "objects/pkcs7_contexts.hpp"
#include "objects/subject_key.hpp"
#include "pfx/pfx_command.hpp"
#include "pfx/pfx_input.hpp"

#include <iostream>
#include <openssl/err.h>

namespace tool {

namespace {

struct Options {
    std::string key;
    PasswordSource key_password;
    std::string certificate;
    std::vector<std::string> chain;
    std::string name;
    std::string local_key_id = "auto";
    PasswordSource password;
    std::string out;
};

using NewPfx = Created<ZA_PKCS12_CreateEncodePfx, ZA_PKCS12_DestroyEncodePFX>;

enum class KeyType : uint32_t { rsa = 0, elliptic = 1 };

int32_t length_of(View octets) {
    return static_cast<int32_t>(octets.size());
}

KeyType type_of(EVP_PKEY &key, const std::string &path) {
    if (EVP_PKEY_is_a(&key, "RSA") == 1) {
        return KeyType::rsa;
    }
    if (EVP_PKEY_is_a(&key, "EC") != 1 && EVP_PKEY_is_a(&key, "SM2") != 1) {
        throw Failure(file_label(path) + ": expected an RSA or elliptic-curve key");
    }
    return KeyType::elliptic;
}

void warn_of_curve(EVP_PKEY &key) {
    const bool sm2 = subject_key(public_key_of(key)).kind == KeyKind::sm2;
    std::cerr << "zacert: the file has the elliptic-curve key without the curve beside it: "
              << (sm2 ? "no other program is known to read the key\n"
                      : "of other programs certtool reads the key, openssl and NSS do not\n");
}

// RSAPrivateKey, or ECPrivateKey with its curve.
Secret octets_of_key(EVP_PKEY &key) {
    const int size = i2d_PrivateKey(&key, nullptr);
    Secret octets(size > 0 ? static_cast<size_t>(size) : 0);
    uint8_t *at = octets.data();
    if (size <= 0 || i2d_PrivateKey(&key, &at) != size) {
        ERR_clear_error();
        throw Failure("the private key cannot be written");
    }
    return octets;
}

std::vector<Octets> certificates_of(const Options &options, EVP_PKEY &key) {
    LoadedCertificate first = load_certificate(options.certificate);
    if (subject_key(first.parts.key) != subject_key(public_key_of(key))) {
        throw Failure(file_label(options.certificate) +
                      ": the private key is not that of the certificate");
    }
    std::vector<Octets> certificates = {std::move(first.der)};
    for (const std::string &path : options.chain) {
        add_certificates(path, certificates);
    }
    return certificates;
}

// Two octets for each character.
Octets bmp_string(const std::string &text) {
    constexpr char32_t kLast = 0xFFFF;
    Octets octets;
    for (std::string_view rest = text; !rest.empty();) {
        const CodePoint point = first_code_point(rest);
        if (point.length == 0 || point.value > kLast) {
            throw UsageError("expected a name in UTF-8, of characters up to U+FFFF");
        }
        octets.push_back(static_cast<uint8_t>(point.value >> 8));
        octets.push_back(static_cast<uint8_t>(point.value));
        rest.remove_prefix(point.length);
    }
    return octets;
}

Octets local_key_id(const Options &options, View certificate) {
    if (options.local_key_id == "auto") {
        return sha1(certificate);
    }
    const std::optional<Octets> octets = octets_of_hex(options.local_key_id);
    if (!octets) {
        throw UsageError("expected hexadecimal digits or auto behind --local-key-id");
    }
    return *octets;
}

// To the bag of the key and to that of the first certificate, by which programs pair the two.
void add_attribute(std::string_view type, uint8_t identifier, View value, const NewPfx &pfx) {
    constexpr uint32_t kFirst = 1;
    const Octets id = object_id_octets(std::string(type));
    const Octets values = der(ZA_DER_ID_SET, {der(identifier, {value})});
    check(ZA_PKCS12_SetPrivateKeyBag_Attribute(pfx.get(), id.data(), length_of(id), values.data(),
                                               length_of(values)));
    check(ZA_PKCS12_SetCertificateBag_Attribute(pfx.get(), id.data(), length_of(id), values.data(),
                                                length_of(values), kFirst));
}

Secret password_of(const Options &options) {
    std::optional<Secret> given = given_password(options.password, Empty::allowed);
    Secret password =
        given ? std::move(*given)
              : asked_password("New password of " + file_label(options.out) + ": ", Ask::twice);
    warn_of_octets(password);
    return password;
}

bool run(const Options &options) {
    constexpr mode_t kOwnerAlone = 0600;
    const EvpKey key = read_private_key(options.key, options.key_password);
    const KeyType type = type_of(*key, options.key);
    const std::vector<Octets> certificates = certificates_of(options, *key);
    const NewPfx pfx;
    const Secret octets = octets_of_key(*key);
    check(ZA_PKCS12_SetPrivateKey(pfx.get(), octets.view().data(),
                                  static_cast<uint32_t>(octets.size())));
    for (const Octets &certificate : certificates) {
        check(ZA_PKCS12_SetCertificate(pfx.get(), certificate.data(),
                                       static_cast<uint32_t>(certificate.size())));
    }
    if (!options.name.empty()) {
        add_attribute(pfx::kFriendlyName, ZA_DER_ID_BMPSTRING, bmp_string(options.name), pfx);
    }
    add_attribute(pfx::kLocalKeyId, ZA_DER_ID_OCTETSTRING,
                  local_key_id(options, certificates.front()), pfx);
    const Secret password = password_of(options);
    // The other encoder tells the kind of the key by its length, and knows few lengths.
    const Octets file = fetched([&](uint8_t *out, uint32_t *length) {
        return ZA_PKCS12_EncodePFXNEW(pfx.get(), static_cast<uint32_t>(type),
                                      password.view().data(),
                                      static_cast<uint32_t>(password.size()), out, length);
    });
    write_file(options.out, file, kOwnerAlone, Existing::replaced);
    if (type == KeyType::elliptic) {
        warn_of_curve(*key);
    }
    return true;
}

}  // namespace

void add_pfx_make(Arguments &pfx) {
    Arguments command =
        pfx.add_command("make", "Make a PKCS#12 file of a key and its certificates, mode 0600.");
    const auto options = std::make_shared<Options>();
    command.add_option("--key", options->key, "the private key, RSA or elliptic-curve")
        .type_name("FILE")
        .required();
    add_password_options(command, options->key_password, "asked for where it is needed",
                         {"key-", "the password of the key file"});
    command.add_option("--cert", options->certificate, "the certificate of the key")
        .type_name("FILE")
        .required();
    command
        .add_repeatable("--chain", options->chain,
                        "further certificates, in the order of the path; repeatable")
        .type_name("FILE");
    command
        .add_option("--name", options->name,
                    "friendlyName of key and certificate, in UTF-8; programs list it")
        .type_name("TEXT");
    command
        .add_option("--local-key-id", options->local_key_id,
                    "what pairs key and certificate; auto is the SHA-1 of the certificate")
        .type_name("HEX")
        .shows_default();
    add_password_options(command, options->password, "asked for where it is not given",
                         {"", "the password of the new file"});
    command.add_option("--out", options->out, "where to write it; - is standard output")
        .type_name("FILE")
        .required();
    command.footer(
        "The encryption is the old one that every program reads. It does not withstand somebody "
        "with\n"
        "time: give the file away as you would the bare key.\n"
        "Example:\n  zacert pfx make --key server.key --cert server.pem --chain ca.pem --name "
        "server "
        "--out server.p12");
    command.runs([options] { return run(*options); });
}

}  // namespace tool
