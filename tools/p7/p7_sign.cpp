#include <zacert.h>

#include "base/dates.hpp"
#include "base/der.hpp"
#include "base/der_writer.hpp"
#include "base/failure.hpp"
#include "base/wording.hpp"
#include "base/write_file.hpp"
#include "objects/input.hpp"
#include "objects/loading.hpp"
#include "objects/pkcs7.hpp"
#include "objects/pkcs7_contexts.hpp"
#include "p7/p7_command.hpp"
#include "p7/signing_key.hpp"

#include <algorithm>

namespace tool {

namespace {

struct Options {
    std::string certificate;
    KeyOptions key;
    std::string chain;
    std::string digest;
    bool detached = false;
    bool no_attributes = false;
    std::string message;  // that gets one more signer
    std::string content;
    std::string out;
    bool pem = false;
};

Octets id_octets(std::string_view dotted) {
    return object_id_octets(std::string(dotted));
}

uint32_t size_of(View octets) {
    return static_cast<uint32_t>(octets.size());
}

struct Signatory {
    LoadedCertificate certificate;
    SigningKey key;
};

Signatory open_signatory(const Options &options) {
    const MessageDigest *digest = options.digest.empty() ? nullptr : &digest_named(options.digest);
    Signatory who{load_certificate(options.certificate), open_signing_key(options.key, digest)};
    const std::string label = file_label(options.certificate);
    if (subject_key(who.certificate.parts.key) != who.key.key) {
        throw Failure(label + ": the private key is not that of the certificate");
    }
    if (who.certificate.facts.serial.negative) {
        throw Failure(label + ": a negative serial number cannot be written in messages");
    }
    return who;
}

// UTCTime as long as it can say the year (RFC 2985, 5.3.3).
Octets signing_time(std::chrono::sys_seconds time) {
    constexpr std::chrono::sys_seconds kEndOfUtcTime =
        std::chrono::sys_days(std::chrono::year(2050) / 1 / 1);
    std::string text = date(time) + time_of_day(time) + "Z";
    text.erase(
        std::remove_if(text.begin(), text.end(), [](char c) { return c == '-' || c == ':'; }),
        text.end());
    const bool short_form = time < kEndOfUtcTime;
    const View octets(reinterpret_cast<const uint8_t *>(text.data()), text.size());
    return short_form ? der(ZA_DER_ID_UTCTIME, {octets.subspan(2)})
                      : der(ZA_DER_ID_GENERALIZEDTIME, {octets});
}

// In the order that DER gives the elements of a SET, shorter ones first. The library puts the digest
// of a content it knows into the last one.
void add_attributes(const SigningKey &key, View content, void *signer_info) {
    const auto add = [signer_info](std::string_view type, const Octets &value) {
        const Octets id = id_octets(type);
        check(ZA_PKCS7_SetSignerAttribute(signer_info, id.data(), size_of(id), value.data(),
                                          size_of(value)));
    };
    add(pkcs7::kContentType, der(ZA_DER_ID_OBJECTID, {id_octets(pkcs7::kData)}));
    add(pkcs7::kSigningTime, signing_time(now()));
    add(pkcs7::kMessageDigest, der(ZA_DER_ID_OCTETSTRING, {key.digest_of(content)}));
}

void attach_signer(const Options &options, const Signatory &who, View content, void *message) {
    NewSigner signer;
    const auto set = [&signer](int32_t id, View value) {
        check(ZA_PKCS7_SetSignerInfoAttributeChar(signer.get(), id, value.data(), size_of(value)));
    };
    set(PKCS7_SIGNER_DN, who.certificate.parts.issuer);
    set(PKCS7_SIGNER_SERIAL, who.certificate.facts.serial.magnitude);
    who.key.install_in(signer.get());
    if (!options.no_attributes) {
        add_attributes(who.key, content, signer.get());
    }
    signer.attach_to(message, ZA_PKCS7_SetSignedData_SignerInfo);
}

void set_in(void *message, int32_t id, View value) {
    check(ZA_PKCS7_SetSignedDataAttributeChar(message, id, value.data(),
                                              static_cast<int32_t>(value.size())));
}

// Appends what is not among those that are there.
void add_new(void *message, int32_t id, const std::vector<Octets> &present,
             const std::vector<Octets> &added) {
    for (const Octets &value : added) {
        if (std::find(present.begin(), present.end(), value) == present.end()) {
            set_in(message, id, value);
        }
    }
}

std::vector<Octets> certificates_of(const Options &options, const Signatory &who) {
    std::vector<Octets> certificates = {who.certificate.der};
    if (!options.chain.empty()) {
        add_certificates(options.chain, certificates);
    }
    return certificates;
}

Octets read_content(const Options &options) {
    if (options.content.empty()) {
        throw UsageError("expected CONTENT, which is to be signed");
    }
    Octets content = read_file(options.content, "the content");
    if (content.empty()) {
        throw Failure(file_label(options.content) + ": expected content, the file is empty");
    }
    return content;
}

Octets new_message(const Options &options) {
    constexpr uint32_t kVersion = 1;
    const Signatory who = open_signatory(options);
    const Octets content = read_content(options);
    NewSignedData message;
    check(ZA_PKCS7_SetSignedDataAttributeInt(message.get(), PKCS7_SIGNEDDATA_VERSION, kVersion));
    set_in(message.get(), PKCS7_SIGNEDDATA_DIGEST_ALGO, who.key.digest_algorithm);
    set_in(message.get(), PKCS7_SIGNEDDATA_CONTENTTYPE, id_octets(pkcs7::kData));
    if (!options.detached) {
        set_in(message.get(), PKCS7_CONTENT, content);
    }
    add_new(message.get(), PKCS7_SIGNEDDATA_CERTIFICATE, {}, certificates_of(options, who));
    attach_signer(options, who, content, message.get());
    // The content as an argument spares signers a copy of it.
    return fetched([&](uint8_t *out, uint32_t *length) {
        return ZA_PKCS7_EncodePKCS7SignedDataPutData(message.get(), content.data(),
                                                     size_of(content), out, length);
    });
}

// What the message holds of the content, which the new signer is to sign.
Octets content_to_add(const Options &options, const Message &facts, void *message) {
    if (facts.content_type.oid != pkcs7::kData) {
        throw Failure(file_label(options.message) + ": expected content of type data, found " +
                      facts.content_type.oid);
    }
    if (!facts.content_size) {
        if (options.no_attributes) {
            throw UsageError("expected attributes for one more signer of a detached message");
        }
        return read_content(options);
    }
    if (!options.content.empty() || options.detached) {
        throw UsageError("expected neither CONTENT nor --detached: the message has its content");
    }
    return fetched([&](uint8_t *out, uint32_t *length) {
        // With a NULL place the length comes with a refusal.
        const uint32_t result =
            ZA_PKCS7_GetSignedDataAttributeChar(message, PKCS7_CONTENT, out, length, 0);
        return out == nullptr && result == ZACERT_LengthErr ? 0 : result;
    });
}

// The signatures that are there stay as they are, octet by octet.
Octets message_with_signer(const Options &options) {
    const Signatory who = open_signatory(options);
    const Octets der = load_one(options.message, ObjectKind::message);
    const Message facts = read_message(der);
    if (!facts.is(pkcs7::kSignedData)) {
        throw Failure(file_label(options.message) + ": expected signedData");
    }
    const DecodedSignedData message(der);
    const Octets content = content_to_add(options, facts, message.get());
    std::vector<Octets> digests;
    for (const NamedId &id : facts.digest_algorithms) {
        digests.push_back(object_id_octets(id.oid));
    }
    add_new(message.get(), PKCS7_SIGNEDDATA_DIGEST_ALGO, digests, {who.key.digest_algorithm});
    add_new(message.get(), PKCS7_SIGNEDDATA_CERTIFICATE, facts.certificates,
            certificates_of(options, who));
    attach_signer(options, who, content, message.get());
    return fetched([&](uint8_t *out, uint32_t *length) {
        return ZA_PKCS7_EncodePKCS7SignedData(message.get(), out, length);
    });
}

bool run(const Options &options) {
    const Octets message =
        options.message.empty() ? new_message(options) : message_with_signer(options);
    write_object({options.out, !options.pem}, message, "PKCS7");
    return true;
}

}  // namespace

void add_p7_sign(Arguments &p7) {
    Arguments command = p7.add_command("sign", "Sign a file (signedData).");
    const auto options = std::make_shared<Options>();
    command.add_option("--cert", options->certificate, "the signer's certificate")
        .type_name("FILE")
        .required();
    add_key_options(command, "--key", options->key);
    command.add_option("--chain", options->chain, "further certificates that go into the message")
        .type_name("FILE");
    add_digest_option(command, options->digest)
        .description("sha256 (the default), sha384 or sha512; SM2 keys have SM3");
    command.add_flag("--detached", options->detached, "leave the content out of the message");
    command.add_flag("--no-attributes", options->no_attributes,
                     "sign the content itself, without signing time");
    command
        .add_option("--add", options->message,
                    "add the signer to this message; CONTENT is given where it is detached")
        .type_name("MESSAGE");
    command.add_option("--out", options->out, "where to write it; - is standard output")
        .type_name("FILE")
        .required();
    command.add_flag("--pem", options->pem, "write PEM instead of DER");
    command.add_option("CONTENT", options->content, "what is signed; - is standard input");
    command.footer(
        "Examples:\n"
        "  zacert p7 sign --cert user.pem --key user.key --out report.p7m report.pdf\n"
        "  zacert p7 sign --cert user.pem --key \"pkcs11:token=CA;object=user\" --detached --out "
        "report.p7s report.pdf");
    command.runs([options] { return run(*options); });
}

}  // namespace tool
