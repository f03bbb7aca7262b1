#include <zacert.h>

#include "base/elements.hpp"
#include "base/failure.hpp"
#include "show/json.hpp"

namespace tool {

namespace {

Json whose_json(const IssuerSerial &certificate) {
    return {{"issuer", name_json(certificate.name)}, {"serial", certificate.serial.hex()}};
}

void add_known_value(const MessageAttribute &attribute, Json &out) {
    if (attribute.type.oid == pkcs7::kContentType) {
        if (const auto id = object_id_in(attribute)) {
            out["content_type"] = identifier_json(*id);
        }
    } else if (attribute.type.oid == pkcs7::kMessageDigest) {
        if (const auto digest = octets_in(attribute)) {
            out["digest"] = hex(*digest);
        }
    } else if (attribute.type.oid == pkcs7::kSigningTime) {
        if (const auto time = time_in(attribute)) {
            out["time"] = instant_json(*time);
        }
    }
}

Json attributes_json(const std::vector<MessageAttribute> &attributes) {
    Json list = Json::array();
    for (const MessageAttribute &attribute : attributes) {
        Json json = identifier_json(attribute.type);
        add_known_value(attribute, json);
        json["hex"] = hex(attribute.values);
        list.push_back(std::move(json));
    }
    return list;
}

Json signer_json(const MessageSigner &signer) {
    Json json = whose_json(signer.certificate);
    json["digest_algorithm"] = identifier_json(signer.digest_algorithm);
    json["signature_algorithm"] = identifier_json(signer.signature_algorithm);
    json["attributes"] = attributes_json(signer.attributes);
    json["unsigned_attributes"] = attributes_json(signer.unsigned_attributes);
    json["signature"] = hex(signer.signature);
    return json;
}

Json recipient_json(const MessageRecipient &recipient) {
    Json json{{"version", recipient.version}};
    json.update(whose_json(recipient.certificate));
    json["key_algorithm"] = identifier_json(recipient.key_algorithm);
    json["encrypted_key_size"] = recipient.encrypted_key.size();
    return json;
}

Json encryption_json(const AlgorithmUse &use) {
    Json json = identifier_json(use.id);
    if (const auto vector = octet_string_in(use.parameters)) {
        json["initialization_vector"] = hex(*vector);
    }
    if (!use.parameters.empty()) {
        json["parameters"] = hex(use.parameters);
    }
    return json;
}

template <class Items, class Convert>
Json list_json(const Items &items, const Convert &convert) {
    Json list = Json::array();
    for (const auto &item : items) {
        list.push_back(convert(item));
    }
    return list;
}

Json content_json(const Message &message) {
    Json json{{"type", identifier_json(message.content_type)}};
    if (message.content_size) {
        json["size"] = *message.content_size;
    }
    return json;
}

}  // namespace

Json certificate_brief_json(View der) {
    try {
        const CertificateBrief brief = certificate_brief(der);
        Json json{{"subject", name_json(brief.subject)}};
        json.update(whose_json(brief.certificate));
        return json;
    } catch (const LibraryError &error) {
        return {{"problem", error.what()}};
    }
}

Json crl_brief_json(View der) {
    try {
        const Crl crl = read_crl(der);
        return {{"issuer", name_json(crl.issuer)},
                {"this_update", instant_json(crl.this_update)},
                {"num_revoked", crl.num_revoked}};
    } catch (const LibraryError &error) {
        return {{"problem", error.what()}};
    }
}

Json message_json(const Message &message) {
    Json json{{"file", file_json(message.file)},
              {"index", message.index},
              {"kind", "pkcs7"},
              {"type", identifier_json(message.type)}};
    if (message.version) {
        json["version"] = *message.version;
    }
    if (message.has_digests()) {
        json["digest_algorithms"] = list_json(message.digest_algorithms, identifier_json);
    }
    json["content"] = content_json(message);
    if (message.encryption) {
        json["encryption"] = encryption_json(*message.encryption);
    }
    if (!message.digest.empty()) {
        json["digest"] = hex(message.digest);
    }
    if (message.has_recipients()) {
        json["recipients"] = list_json(message.recipients, recipient_json);
    }
    if (message.has_signers()) {
        json["certificates"] = list_json(message.certificates, certificate_brief_json);
        json["crls"] = list_json(message.crls, crl_brief_json);
        json["signers"] = list_json(message.signers, signer_json);
    }
    return json;
}

}  // namespace tool
