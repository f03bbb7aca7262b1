#include "objects/pkcs7_refusal.hpp"

#include <zacert.h>

#include "base/der.hpp"
#include "base/elements.hpp"
#include "objects/kind.hpp"
#include "objects/pkcs7.hpp"

namespace tool {

namespace {

void look_at_signer(const Element &signer) {
    // SignerInfo ::= SEQUENCE { version, issuerAndSerialNumber, ... }; CMS: or [0] key identifier
    Elements fields(signer.content);
    fields.required(ZA_DER_ID_INTEGER);
    if (fields.identifier() == primitive(0)) {
        throw not_pkcs7("a signer is told by key identifier and not by issuer and serial number");
    }
}

void look_at_recipient(const Element &recipient) {
    // RecipientInfo ::= SEQUENCE { version, issuerAndSerialNumber, ... }; CMS: or [0] key identifier,
    // or [1] to [4] instead of the SEQUENCE
    if (recipient.identifier != ZA_DER_ID_SEQUENCE) {
        throw not_pkcs7("a recipient gets the key by other means than key transport");
    }
    Elements fields(recipient.content);
    fields.required(ZA_DER_ID_INTEGER);
    if (fields.identifier() == primitive(0)) {
        throw not_pkcs7(
            "a recipient is told by key identifier and not by issuer and serial number");
    }
}

void look_at_each(View set, void (*look_at)(const Element &)) {
    for (Elements list(set); !list.at_end();) {
        look_at(list.next());
    }
}

void look_at_fields(const std::string &type, Elements fields) {
    // SignedData ::= SEQUENCE { version, digestAlgorithms SET, contentInfo, certificates [0] OPTIONAL,
    //     crls [1] OPTIONAL, signerInfos SET }
    // EnvelopedData ::= SEQUENCE { version, recipientInfos SET, encryptedContentInfo }
    fields.required(ZA_DER_ID_INTEGER);
    if (type == pkcs7::kSignedData) {
        fields.required(ZA_DER_ID_SET);
        fields.required(ZA_DER_ID_SEQUENCE);
        fields.optional(constructed(0));
        fields.optional(constructed(1));
        look_at_each(fields.required(ZA_DER_ID_SET).content, look_at_signer);
    } else if (type == pkcs7::kEnvelopedData) {
        if (fields.identifier() == constructed(0)) {
            throw not_pkcs7("it has information on its originator");
        }
        look_at_each(fields.required(ZA_DER_ID_SET).content, look_at_recipient);
    }
}

}  // namespace

Failure not_pkcs7(const std::string &reason) {
    return Failure("expected " + std::string(noun(ObjectKind::message)) + ": " + reason);
}

void refuse_what_is_not_pkcs7(View der) {
    try {
        Elements info(only_element(der, ZA_DER_ID_SEQUENCE).content);
        const std::string type = object_id_text(info.required(ZA_DER_ID_OBJECTID).content);
        const View message = info.required(constructed(0)).content;
        look_at_fields(type, Elements(only_element(message, ZA_DER_ID_SEQUENCE).content));
    } catch (const LibraryError &) {
        // Damage has the library's own code.
    }
}

}  // namespace tool
