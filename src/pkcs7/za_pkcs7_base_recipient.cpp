// Recipients between their fields and DER, and the key that they are told.
#include "pkcs7/za_pkcs7_base_recipient.hpp"

#include <zacert.h>

#include "names/za_low_algorithm.hpp"
#include "pkcs7/za_pkcs7_content_info.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_base", {za::pkcs7::kArrow}};

}  // namespace

namespace za::pkcs7 {

void RecipientFields::forget_opened_key() {
    if (key_opened) {
        key = Secret();
        key_opened = false;
    }
}

namespace {

using asn1::Builder;
using asn1::Children;
using asn1::Element;

// What stands as encryptedKey: `made` keeps it where the function of the recipient makes it.
Status encrypted_key_of(const RecipientInfo &recipient, Secret &made, Bytes &out) {
    const RecipientFields &fields = recipient.fields;
    const Bytes key = fields.key.bytes();
    if (!key.empty() && recipient.encrypt.installed()) {
        ZA_TRY_AS("------>Func", run(trace, recipient.encrypt, key, key.size() + kCipherMayAdd,
                                     Status::crypt, made));
        out = made.bytes();
        return Status::ok;
    }
    if (fields.encrypted_key.empty()) {
        return trace.fail(Status::general,
                          key.empty() ? "------>RecipientInfo Key is NULL" : "------>Key is null");
    }
    out = fields.encrypted_key.bytes();
    return Status::ok;
}

Status write_fields(RecipientFields &fields, Bytes encrypted_key, Builder &out) {
    return out.sequence([&] {
        // version INTEGER
        out.integer(fields.version);
        // issuerAndSerialNumber
        ZA_PASS(write_issuer_and_serial(fields.who, out));
        // keyEncryptionAlgorithm AlgorithmIdentifier
        names::write_algorithm_or_null(fields.algorithm.bytes(), fields.parameters.bytes(), out);
        // encryptedKey OCTET STRING
        out.octet_string(encrypted_key);
        return Status::ok;
    });
}

Status encode(RecipientInfo &recipient, Bytes &out) {
    RecipientFields &fields = recipient.fields;
    if (fields.encoded.empty()) {
        if (!fields.who.complete() || fields.algorithm.empty()) {
            return trace.fail(Status::general);
        }
        Secret made;
        Bytes encrypted_key;
        Builder built;
        Octets der;
        ZA_PASS(encrypted_key_of(recipient, made, encrypted_key));
        ZA_PASS(write_fields(fields, encrypted_key, built));
        ZA_PASS(built.finish(der));
        fields.encoded.made(std::move(der));
    }
    out = fields.encoded.bytes();
    return Status::ok;
}

// issuerAndSerialNumber; other kinds of recipients tell themselves by something else.
Status read_who(Children &fields, IssuerAndSerial &out) {
    Element who;
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SEQUENCE, who));
    return read_issuer_and_serial(who, out);
}

// The alternatives of RecipientInfo that came later have context tags.
Status read_fields(const Element &in, RecipientFields &out) {
    if (!in.octets.empty() && in.octets[0] != ZA_DER_ID_SEQUENCE) {
        return trace.fail(Status::type);
    }
    Children fields;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(in, fields));
    // version INTEGER
    ZA_PASS(take_version(trace, fields, out.version));
    ZA_PASS(read_who(fields, out.who));
    // keyEncryptionAlgorithm AlgorithmIdentifier
    ZA_PASS(take_algorithm(trace, fields, out.algorithm, &out.parameters));
    // encryptedKey OCTET STRING
    ZA_PASS(take_octets(trace, fields, out.encrypted_key));
    return fields.empty() ? Status::ok : trace.fail(Status::type);
}

Status decode(const Element &in, RecipientInfo &recipient) {
    RecipientFields fresh;
    ZA_PASS(read_fields(in, fresh));
    fresh.encoded.decoded(in.octets);
    recipient.fields = std::move(fresh);
    return Status::ok;
}

// A token may ask for its PIN each time: one call of the function serves the query and what follows.
Status open_key(RecipientInfo &recipient) {
    RecipientFields &fields = recipient.fields;
    if (!fields.key_opened) {
        const Bytes in = fields.encrypted_key.bytes();
        Secret key;
        ZA_TRY_AS("------------>Function is Decode key error",
                  run(trace, recipient.decrypt, in, in.size() + kCipherMayAdd, Status::crypt, key));
        fields.key = std::move(key);
        fields.key_opened = true;
        fields.encoded.forget_made();
    }
    return Status::ok;
}

}  // namespace

Status give_key(RecipientInfo &recipient, Bytes key) {
    RecipientFields &fields = recipient.fields;
    if (key.empty() || equal(key, fields.key.bytes())) {
        return Status::ok;
    }
    ZA_PASS(fields.key.assign(key));
    fields.key_opened = false;
    if (recipient.encrypt.installed()) {
        fields.encoded.forget();
    }
    return Status::ok;
}

Status encode_recipient_info(RecipientInfo &recipient, Bytes &out) {
    return trace.announced([&] { return encode(recipient, out); }, "ZA_PKCS7_EncodeRecipientInfo");
}

Status decode_recipient_info(const asn1::Element &in, RecipientInfo &recipient) {
    return trace.announced([&] { return decode(in, recipient); }, "ZA_PKCS7_DecodeRecipientInfo");
}

}  // namespace za::pkcs7

using za::Bytes;
using za::Octets;
using za::Status;
using za::pkcs7::RecipientInfo;

uint32_t ZA_PKCS7_EncodeRecipientInfo(void *ctx, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        Bytes der;
        ZA_PASS(za::pkcs7::encode(*static_cast<RecipientInfo *>(ctx), der));
        za::hand_out(der, out, outLen);
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_DecodeRecipientInfo(void *ctx, const uint8_t *der, uint32_t derLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, der));
        auto &recipient = *static_cast<RecipientInfo *>(ctx);
        Octets kept;
        ZA_PASS(za::pkcs7::take_der(trace, {der, derLen}, kept));
        ZA_PASS(za::pkcs7::decode(za::asn1::Element(kept.bytes()), recipient));
        recipient.fields.kept = std::move(kept);
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_DecryptDesKey(void *ctx, uint8_t *key, uint32_t *keyLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, keyLen));
        auto &recipient = *static_cast<RecipientInfo *>(ctx);
        if (recipient.fields.encrypted_key.empty()) {
            return trace.fail(Status::invalid_item);
        }
        if (!recipient.decrypt.installed()) {
            return Status::ok;
        }
        ZA_PASS(za::pkcs7::open_key(recipient));
        za::hand_out(recipient.fields.key.bytes(), key, keyLen);
        return Status::ok;
    });
}
