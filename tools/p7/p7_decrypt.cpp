#include <zacert.h>

#include "base/der.hpp"
#include "base/failure.hpp"
#include "base/wording.hpp"
#include "base/write_file.hpp"
#include "issue/private_key.hpp"
#include "objects/loading.hpp"
#include "objects/oid_names.hpp"
#include "objects/pkcs7.hpp"
#include "objects/pkcs7_contexts.hpp"
#include "objects/subject_key.hpp"
#include "p7/content_cipher.hpp"
#include "p7/key_transport.hpp"
#include "p7/p7_command.hpp"
#include "p7/secret_key.hpp"

#include <optional>
#include <utility>

namespace tool {

namespace {

struct Options {
    std::string key;
    PasswordSource password;
    SecretKeyOptions secret_key;
    std::string certificate;
    std::string message;
    std::string out;
};

Failure about(const Options &options, const std::string &text) {
    return Failure(file_label(options.message) + ": " + text);
}

// One text for whatever went wrong from the first use of a key on.
Failure not_opened(const Options &options) {
    return about(options, "this key does not open the message, or the message is damaged");
}

const CipherKind &cipher_of(const Options &options, const Message &facts) {
    const CipherKind *kind = facts.encryption ? cipher_of_id(facts.encryption->id.oid) : nullptr;
    if (kind == nullptr) {
        throw about(options, "expected one of the ciphers AES-CBC and DES-EDE3-CBC" +
                                 (facts.encryption ? ", found " + facts.encryption->id.oid : ""));
    }
    if (!facts.content_size) {
        throw about(options, "expected a message with its content");
    }
    return *kind;
}

std::optional<Secret> plaintext(const ContentCipher &cipher, void *encrypted_content) {
    cipher.decrypt_in(encrypted_content);
    uint32_t length = 0;
    if (ZA_PKCS7_GetEncryptedContentInformation(encrypted_content, nullptr, &length) != 0) {
        return std::nullopt;
    }
    Secret octets(length);
    if (length > 0) {
        check(ZA_PKCS7_GetEncryptedContentInformation(encrypted_content, octets.data(), &length));
    }
    return octets;
}

EvpKey private_key(const Options &options) {
    EvpKey key = read_private_key(options.key, options.password);
    if (subject_key(public_key_of(*key)).kind != KeyKind::rsa) {
        throw Failure(file_label(options.key) +
                      ": expected an RSA key: recipients of PKCS#7 have no other here");
    }
    return key;
}

bool is_named_by(const MessageRecipient &recipient, const LoadedCertificate &certificate) {
    return same_octets(certificate.parts.issuer, recipient.certificate.issuer) &&
           recipient.certificate.serial.magnitude == certificate.facts.serial.magnitude;
}

// The numbers, from 1, of the recipients that can be meant.
std::vector<size_t> candidates(const Options &options, const Message &facts, EVP_PKEY &key) {
    std::optional<LoadedCertificate> certificate;
    if (!options.certificate.empty()) {
        certificate.emplace(load_certificate(options.certificate));
        if (subject_key(certificate->parts.key) != subject_key(public_key_of(key))) {
            throw Failure(file_label(options.certificate) +
                          ": the private key is not that of the certificate");
        }
    }
    std::vector<size_t> numbers;
    for (size_t i = 0; i < facts.recipients.size(); ++i) {
        const MessageRecipient &recipient = facts.recipients[i];
        const bool fits =
            recipient.key_algorithm.oid == kRsaEncryption &&
            recipient.encrypted_key.size() == static_cast<size_t>(EVP_PKEY_get_size(&key));
        if (fits && (!certificate || is_named_by(recipient, *certificate))) {
            numbers.push_back(i + 1);
        }
    }
    if (numbers.empty()) {
        throw about(options, certificate ? "the message is not for this certificate"
                                         : "the message is not for an RSA key of this size");
    }
    return numbers;
}

// Every candidate is tried, and the content decrypted, whatever comes out: an outsider learns from
// the time it takes no more than from the text of the failure.
Secret opened_envelope(const Options &options, const Message &facts, View der) {
    const CipherKind &kind = cipher_of(options, facts);
    const EvpKey key = private_key(options);
    const std::vector<size_t> numbers = candidates(options, facts, *key);
    const DecodedEnvelopedData message(der);
    OpenedKey found{random_key(kind), false};
    for (const size_t number : numbers) {
        void *recipient = part_of(message.get(), number, ZA_PKCS7_GetEnvelopedData_RecipientInfo);
        OpenedKey opened = open_key(recipient, *key, random_key(kind), numbers.size() == 1);
        if (!found.good && opened.good) {
            found = std::move(opened);
        }
    }
    const ContentCipher cipher(kind, std::move(found.key), facts.encryption->parameters);
    void *content = nullptr;
    check(ZA_PKCS7_GetEnvelopedData_EncryptedContent(message.get(), &content));
    std::optional<Secret> octets = plaintext(cipher, content);
    if (!octets || !found.good) {
        throw not_opened(options);
    }
    return std::move(*octets);
}

Secret decrypted(const Options &options, const Message &facts, View der) {
    const ContentCipher cipher(cipher_of(options, facts), secret_key(options.secret_key),
                               facts.encryption->parameters);
    const DecodedEncryptedData message(der);
    void *content = nullptr;
    check(ZA_PKCS7_GetEncrytpedData_EncryptedContent(message.get(), &content));
    std::optional<Secret> octets = plaintext(cipher, content);
    if (!octets) {
        throw not_opened(options);
    }
    return std::move(*octets);
}

bool run(const Options &options) {
    constexpr mode_t kMode = 0666;
    const Octets der = load_one(options.message, ObjectKind::message);
    const Message facts = read_message(der);
    const bool with_key = !options.key.empty();
    if (!facts.is(with_key ? pkcs7::kEnvelopedData : pkcs7::kEncryptedData)) {
        throw about(options, std::string(with_key ? "--key decrypts envelopedData"
                                                  : "--secret-key decrypts encryptedData") +
                                 ", found " + label(facts.type));
    }
    const Secret content =
        with_key ? opened_envelope(options, facts, der) : decrypted(options, facts, der);
    write_file(options.out, content.view(), kMode, Existing::replaced);
    return true;
}

}  // namespace

void add_p7_decrypt(Arguments &p7) {
    Arguments command =
        p7.add_command("decrypt", "Decrypt a message (envelopedData, encryptedData).");
    const auto options = std::make_shared<Options>();
    Arguments group = command.add_group("Key", "what decrypts", 1, 1);
    Option key = group.add_option("--key", options->key, "the recipient's private RSA key")
                     .type_name("FILE");
    add_secret_key_options(group, options->secret_key);
    command
        .add_option("--cert", options->certificate,
                    "the recipient's certificate; without it each recipient is tried")
        .type_name("FILE")
        .needs(key);
    add_password_options(command, options->password, "asked for where it is needed and not given");
    command.add_option("--out", options->out, "where to write the content; - is standard output")
        .type_name("FILE")
        .required();
    command.add_option("MESSAGE", options->message, "DER or PEM; - is standard input").required();
    command.footer(
        "Example:\n  zacert p7 decrypt --key bob.key --cert bob.pem --out report.pdf report.p7m");
    command.runs([options] { return run(*options); });
}

}  // namespace tool
