#include <zacert.h>

#include "base/arguments.hpp"
#include "base/der.hpp"
#include "base/der_writer.hpp"
#include "base/failure.hpp"
#include "base/wording.hpp"
#include "base/write_file.hpp"
#include "objects/input.hpp"
#include "objects/loading.hpp"
#include "objects/pkcs7.hpp"
#include "objects/pkcs7_contexts.hpp"
#include "objects/subject_key.hpp"
#include "p7/content_cipher.hpp"
#include "p7/key_transport.hpp"
#include "p7/p7_command.hpp"
#include "p7/secret_key.hpp"

#include <openssl/err.h>
#include <openssl/x509.h>
#include <utility>

namespace tool {

namespace {

struct Options {
    std::vector<std::string> recipients;
    SecretKeyOptions key;
    std::string cipher;
    std::string content;
    std::string out;
    bool pem = false;
};

constexpr uint32_t kVersion = 0;  // of both kinds of message

uint32_t size_of(View octets) {
    return static_cast<uint32_t>(octets.size());
}

EvpKey key_of_recipient(const std::string &path, const LoadedCertificate &certificate) {
    const View info = certificate.parts.key;
    const SubjectKey facts = subject_key(info);
    const uint8_t *at = info.data();
    EvpKey key(d2i_PUBKEY(nullptr, &at, static_cast<long>(info.size())));
    ERR_clear_error();
    if (facts.kind != KeyKind::rsa || key == nullptr) {
        throw Failure(file_label(path) +
                      ": expected an RSA key: recipients of PKCS#7 have no other here");
    }
    require_issuable(facts);
    if (certificate.facts.serial.negative) {
        throw Failure(file_label(path) +
                      ": a negative serial number cannot be written in messages");
    }
    return key;
}

void attach_recipient(const LoadedCertificate &certificate, EVP_PKEY &key, void *message) {
    NewRecipient recipient;
    const auto set = [&recipient](int32_t id, View value) {
        check(ZA_PKCS7_SetRecipientInfoAttributeChar(recipient.get(), id, value.data(),
                                                     size_of(value)));
    };
    set(PKCS7_RECIPIENT_DN, certificate.parts.issuer);
    set(PKCS7_RECIPIENT_SERIAL, certificate.facts.serial.magnitude);
    set(PKCS7_RECIPIENT_KEYENCRYPTION_ALGO, object_id_octets(std::string(kRsaEncryption)));
    encrypt_key_in(recipient.get(), key);
    recipient.attach_to(message, ZA_PKCS7_SetEnvelopedData_RecipientInfo);
}

// The library's own copy is enough while a large content is encrypted.
void release(Octets &content) {
    Octets().swap(content);
}

Octets enveloped(const Options &options, Octets content) {
    const ContentCipher cipher(
        cipher_named(options.cipher.empty() ? "aes-256-cbc" : options.cipher));
    std::vector<EvpKey> keys;
    NewEnvelopedData message;
    for (const std::string &path : options.recipients) {
        const LoadedCertificate certificate = load_certificate(path);
        keys.push_back(key_of_recipient(path, certificate));
        attach_recipient(certificate, *keys.back(), message.get());
    }
    const auto set = [&message](int32_t id, View value) {
        check(ZA_PKCS7_SetEnvelopedDataAttributeChar(message.get(), id, value.data(),
                                                     size_of(value)));
    };
    check(ZA_PKCS7_SetEnvelopedDataAttributeInt(message.get(), PKCS7_ENVELOPEDDATA_VERSION,
                                                kVersion));
    set(PKCS7_ENVELOPEDDATA_CONTENTTYPE, object_id_octets(std::string(pkcs7::kData)));
    set(PKCS7_ENVELOPEDDATA_ENCRYPTED_CONTENT, content);
    release(content);
    set(PKCS7_ENVELOPEDDATA_RECIPIENT_KEY, cipher.key().view());
    NewEncryptedContent encrypted;
    cipher.encrypt_in(encrypted.get());
    encrypted.attach_to(message.get(), ZA_PKCS7_SetEnvelopedData_EncryptedContent);
    return fetched([&](uint8_t *out, uint32_t *length) {
        return ZA_PKCS7_EncodePKCS7EnvelopedData(message.get(), out, length);
    });
}

Octets encrypted(const Options &options, Octets content) {
    Secret key = secret_key(options.key);
    const CipherKind &kind =
        options.cipher.empty() ? aes_with_key(key.size()) : cipher_named(options.cipher);
    const ContentCipher cipher(kind, std::move(key));
    NewEncryptedData message;
    const auto set = [&message](int32_t id, View value) {
        check(ZA_PKCS7_SetEncryptedDataAttributeChar(message.get(), id, value.data(),
                                                     size_of(value)));
    };
    check(ZA_PKCS7_SetEncryptedDataAttributeInt(message.get(), PKCS7_ENCRYPTEDDATA_VERSION,
                                                kVersion));
    set(PKCS7_ENCRYPTEDDATA_CONTENTTYPE, object_id_octets(std::string(pkcs7::kData)));
    set(PKCS7_ENCRYPTEDDATA_CONTENT, content);
    release(content);
    NewEncryptedContent part;
    cipher.encrypt_in(part.get());
    part.attach_to(message.get(), ZA_PKCS7_SetEncrytpedData_EncryptedContent);
    return fetched([&](uint8_t *out, uint32_t *length) {
        return ZA_PKCS7_EncodePKCS7EncryptedData(message.get(), out, length);
    });
}

bool run(const Options &options) {
    Octets content = read_file(options.content, "the content");
    if (content.empty()) {
        throw Failure(file_label(options.content) + ": expected content, the file is empty");
    }
    const Octets message = options.key.given() ? encrypted(options, std::move(content))
                                               : enveloped(options, std::move(content));
    write_object({options.out, !options.pem}, message, "PKCS7");
    return true;
}

}  // namespace

void add_p7_encrypt(Arguments &p7) {
    Arguments command = p7.add_command(
        "encrypt",
        "Encrypt a file for recipients (envelopedData), or under a key (encryptedData).");
    const auto options = std::make_shared<Options>();
    Arguments group = command.add_group("Recipients", "who can decrypt", 1, 1);
    group
        .add_repeatable("--to", options->recipients,
                        "certificate of a recipient, with an RSA key; repeatable")
        .type_name("CERT");
    add_secret_key_options(group, options->key);
    add_cipher_option(command, options->cipher)
        .description(
            "aes-256-cbc (the default for recipients), aes-192-cbc, aes-128-cbc or des-ede3-cbc; a "
            "secret key is one of AES by its size");
    command.add_option("--out", options->out, "where to write it; - is standard output")
        .type_name("FILE")
        .required();
    command.add_flag("--pem", options->pem, "write PEM instead of DER");
    command.add_option("CONTENT", options->content, "what is encrypted; - is standard input")
        .required();
    command.footer(
        "Examples:\n  zacert p7 encrypt --to alice.pem --to bob.pem --out report.p7m report.pdf\n"
        "  zacert p7 encrypt --secret-key-file key.hex --out report.p7m report.pdf");
    command.runs([options] { return run(*options); });
}

}  // namespace tool
