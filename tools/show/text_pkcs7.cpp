#include <zacert.h>

#include "base/elements.hpp"
#include "base/failure.hpp"
#include "base/wording.hpp"
#include "objects/crl.hpp"
#include "objects/name_forms.hpp"
#include "objects/oid_names.hpp"
#include "show/page.hpp"
#include "show/text.hpp"

namespace tool {

namespace {

std::string content_text(const Message &message) {
    std::string text = label(message.content_type) + ", ";
    if (!message.content_size) {
        return text + "not in the message";
    }
    text += octets_text(*message.content_size);
    return message.encryption ? text + " encrypted" : text;
}

// The usual parameters are an initialization vector or NULL.
std::string encryption_text(const AlgorithmUse &use) {
    std::string text = label(use.id);
    const View parameters = use.parameters;
    if (parameters.empty() || parameters.front() == ZA_DER_ID_NULL) {
        return text;
    }
    if (const auto vector = octet_string_in(parameters)) {
        return text + ", initialization vector " + hex(*vector, ":");
    }
    return text + ", parameters " + hex(parameters, ":");
}

std::string whose_text(const IssuerSerial &certificate) {
    return "serial " + certificate.serial.hex(":") + " of " + one_line(certificate.name);
}

std::optional<std::string> known_value(const MessageAttribute &attribute) {
    if (attribute.type.oid == pkcs7::kContentType) {
        const auto id = object_id_in(attribute);
        return id ? std::optional(label(*id)) : std::nullopt;
    }
    if (attribute.type.oid == pkcs7::kMessageDigest) {
        const auto digest = octets_in(attribute);
        return digest ? std::optional(hex(*digest, ":")) : std::nullopt;
    }
    if (attribute.type.oid == pkcs7::kSigningTime) {
        const auto time = time_in(attribute);
        return time ? std::optional(instant_text(*time)) : std::nullopt;
    }
    return std::nullopt;
}

void write_attribute(const MessageAttribute &attribute, Page &page) {
    if (const auto value = known_value(attribute)) {
        page.line(4, label(attribute.type) + " " + *value);
        return;
    }
    page.line(4, label(attribute.type));
    page.block(5, hex_lines(attribute.values));
}

void write_attributes(std::string_view title, const std::vector<MessageAttribute> &attributes,
                      Page &page) {
    page.line(3, std::string(title) + ": " + count_or_none(attributes.size()));
    for (const MessageAttribute &attribute : attributes) {
        write_attribute(attribute, page);
    }
}

void write_signers(const Message &message, Page &page) {
    page.field("Certificates", count_or_none(message.certificates.size()));
    for (const Octets &certificate : message.certificates) {
        page.line(2, certificate_line(certificate));
    }
    page.field("CRLs", count_or_none(message.crls.size()));
    for (const Octets &crl : message.crls) {
        page.line(2, crl_line(crl));
    }
    page.field("Signers", count_or_none(message.signers.size()));
    for (const MessageSigner &signer : message.signers) {
        page.line(2, whose_text(signer.certificate));
        page.line(3, "Digest " + label(signer.digest_algorithm));
        page.line(3, "Signature " + label(signer.signature_algorithm) + ", " +
                         octets_text(signer.signature.size()));
        write_attributes("Signed attributes", signer.attributes, page);
        write_attributes("Unsigned attributes", signer.unsigned_attributes, page);
    }
}

void write_recipients(const Message &message, Page &page) {
    page.field("Recipients", count_or_none(message.recipients.size()));
    for (const MessageRecipient &recipient : message.recipients) {
        page.line(2, whose_text(recipient.certificate));
        page.line(3, "Key by " + label(recipient.key_algorithm) + ", " +
                         octets_text(recipient.encrypted_key.size()));
    }
}

std::string labels(const std::vector<NamedId> &ids) {
    std::string text;
    for (const NamedId &id : ids) {
        text += (text.empty() ? "" : ", ") + label(id);
    }
    return text.empty() ? "none" : text;
}

}  // namespace

std::string octets_text(size_t count) {
    return std::to_string(count) + (count == 1 ? " octet" : " octets");
}

std::string certificate_line(View der) {
    try {
        const CertificateBrief brief = certificate_brief(der);
        return one_line(brief.subject) + ", " + whose_text(brief.certificate);
    } catch (const LibraryError &error) {
        return std::string("not decoded: ") + error.what();
    }
}

std::string crl_line(View der) {
    try {
        const Crl crl = read_crl(der);
        return one_line(crl.issuer) + ", " + instant_text(crl.this_update) + ", " +
               std::to_string(crl.num_revoked) + " revoked";
    } catch (const LibraryError &error) {
        return std::string("not decoded: ") + error.what();
    }
}

std::string message_text(const Message &message) {
    Page page;
    page.line(
        0, "PKCS#7 message " + std::to_string(message.index) + " of " + file_label(message.file));
    page.field("Type", label(message.type));
    if (message.version) {
        page.field("Version", std::to_string(*message.version));
    }
    if (message.has_digests()) {
        page.field("Digest algorithms", labels(message.digest_algorithms));
    }
    page.field("Content", content_text(message));
    if (message.encryption) {
        page.field("Encryption", encryption_text(*message.encryption));
    }
    if (!message.digest.empty()) {
        page.field("Digest", hex(message.digest, ":"));
    }
    if (message.has_recipients()) {
        write_recipients(message, page);
    }
    if (message.has_signers()) {
        write_signers(message, page);
    }
    return page.take();
}

}  // namespace tool
