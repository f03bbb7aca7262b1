#include "base/der.hpp"
#include "base/elements.hpp"
#include "objects/names.hpp"
#include "objects/oid_names.hpp"
#include "objects/pkcs7.hpp"
#include "objects/pkcs7_contexts.hpp"
#include "objects/pkcs7_refusal.hpp"

#include <algorithm>
#include <array>

namespace tool {

namespace {

using Getter = uint32_t (*)(void *, int32_t, uint8_t *, uint32_t *);
using ListGetter = uint32_t (*)(void *, int32_t, uint8_t *, uint32_t *, int32_t);
using AttributeGetter = uint32_t (*)(void *, uint8_t *, uint32_t *, uint8_t *, uint32_t *, int32_t);
using NumberGetter = uint32_t (*)(void *, int32_t, uint32_t *);

Octets value(Getter getter, void *context, int32_t id) {
    return fetched(
        [&](uint8_t *out, uint32_t *length) { return getter(context, id, out, length); });
}

size_t length_of(Getter getter, void *context, int32_t id) {
    uint32_t length = 0;
    check(getter(context, id, nullptr, &length));
    return length;
}

uint32_t number_of(NumberGetter getter, void *context, int32_t id) {
    uint32_t number = 0;
    check(getter(context, id, &number));
    return number;
}

// Of a list the entry counted from 1; empty behind its end. Asked for the length alone, the getter
// of signedData tells it and gives 101.
size_t length_at(ListGetter getter, void *context, int32_t id, size_t at) {
    uint32_t length = 0;
    const uint32_t status = getter(context, id, nullptr, &length, static_cast<int32_t>(at));
    check(status == ZACERT_LengthErr ? 0 : status);
    return length;
}

Octets value_at(ListGetter getter, void *context, int32_t id, size_t at) {
    Octets octets(length_at(getter, context, id, at));
    if (!octets.empty()) {
        auto length = static_cast<uint32_t>(octets.size());
        check(getter(context, id, octets.data(), &length, static_cast<int32_t>(at)));
    }
    return octets;
}

std::vector<Octets> values_at(ListGetter getter, void *context, int32_t id) {
    std::vector<Octets> list;
    for (Octets entry = value_at(getter, context, id, 1); !entry.empty();) {
        list.push_back(std::move(entry));
        entry = value_at(getter, context, id, list.size() + 1);
    }
    return list;
}

NamedId id_of(View content) {
    return named(object_id_text(content));
}

std::vector<NamedId> ids_of(const std::vector<Octets> &contents) {
    std::vector<NamedId> ids;
    std::transform(contents.begin(), contents.end(), std::back_inserter(ids), id_of);
    return ids;
}

// The library gives the serial number without the octet of a positive sign.
IssuerSerial issuer_serial(Octets issuer, Octets serial) {
    Name name = read_name(record_of(issuer));
    serial.insert(serial.begin(), 0);
    return {std::move(issuer), std::move(name), Integer(serial)};
}

MessageAttribute attribute_at(AttributeGetter getter, void *signer, size_t at) {
    uint32_t oid_length = 0;
    uint32_t length = 0;
    const auto get = [&](uint8_t *oid, uint8_t *octets) {
        check(getter(signer, oid, &oid_length, octets, &length, static_cast<int32_t>(at)));
    };
    get(nullptr, nullptr);
    Octets oid(oid_length);
    Octets octets(length);
    get(oid.data(), octets.data());
    return {id_of(oid), std::move(octets)};
}

std::vector<MessageAttribute> attributes(AttributeGetter getter, void *signer, size_t count) {
    std::vector<MessageAttribute> list;
    for (size_t at = 1; at <= count; ++at) {
        list.push_back(attribute_at(getter, signer, at));
    }
    return list;
}

MessageSigner read_signer(void *context) {
    const auto get = [context](int32_t id) {
        return value(ZA_PKCS7_GetSignerInfoAttributeChar, context, id);
    };
    MessageSigner signer;
    signer.certificate = issuer_serial(get(PKCS7_SIGNER_DN), get(PKCS7_SIGNER_SERIAL));
    signer.digest_algorithm = id_of(get(PKCS7_SIGNER_DIGEST_ALGO));
    signer.signature_algorithm = id_of(get(PKCS7_SIGNER_DIGEST_ENC_ALG));
    signer.signature = get(PKCS7_SIGNER_SIGNATURE);
    signer.attributes = attributes(ZA_PKCS7_GetSignerAttribute, context,
                                   count_of(context, ZA_PKCS7_GetSignerInfoAttributesNum));
    signer.unsigned_attributes =
        attributes(ZA_PKCS7_GetSignerUnAttribute, context,
                   count_of(context, ZA_PKCS7_GetSignerInfoUnAttributesNum));
    return signer;
}

MessageRecipient read_recipient(void *context) {
    const auto get = [context](int32_t id) {
        return value(ZA_PKCS7_GetRecipientInfoAttributeChar, context, id);
    };
    return {number_of(ZA_PKCS7_GetRecipientInfoAttributeInt, context, PKCS7_RECIPIENTINFO_VERSION),
            issuer_serial(get(PKCS7_RECIPIENT_DN), get(PKCS7_RECIPIENT_SERIAL)),
            id_of(get(PKCS7_RECIPIENT_KEYENCRYPTION_ALGO)), get(PKCS7_RECIPIENT_ENCRYPTED_KEY)};
}

template <class Parts, class Count, class Part, class Read>
void read_parts(void *context, const Count &count, const Part &part, const Read &read, Parts &out) {
    for (size_t at = 1, end = count_of(context, count); at <= end; ++at) {
        out.push_back(read(part_of(context, at, part)));
    }
}

void read_encrypted_content(void *context, Message &out) {
    const auto get = [context](int32_t id) {
        return value(ZA_PKCS7_GetEncryptedContentAttributeChar, context, id);
    };
    out.content_type = id_of(get(PKCS7_ENCRYPT_CONTENT_TYPE));
    out.encryption = AlgorithmUse{id_of(get(PKCS7_ENCRYPT_ALGO)), get(PKCS7_ENCRYPT_PARAMETER)};
    const size_t size = length_of(ZA_PKCS7_GetEncryptedContentAttributeChar, context,
                                  PKCS7_ENCRYPT_ENCRYPTEDCONTENT);
    if (size != 0) {
        out.content_size = size;
    }
}

// The fields of the message inside its ContentInfo.
Elements fields_of(View der) {
    // ContentInfo ::= SEQUENCE { contentType OBJECT IDENTIFIER, content [0] EXPLICIT ANY }
    Elements info(only_element(der, ZA_DER_ID_SEQUENCE).content);
    info.required(ZA_DER_ID_OBJECTID);
    const View message = info.required(constructed(0)).content;
    return Elements(only_element(message, ZA_DER_ID_SEQUENCE).content);
}

// Behind version and algorithms, in signedData and digestedData alike. Of the library's getters an
// absent content and an empty one look alike.
bool has_content(Elements &fields) {
    fields.required(ZA_DER_ID_INTEGER);
    fields.next();
    Elements info(fields.required(ZA_DER_ID_SEQUENCE).content);
    info.required(ZA_DER_ID_OBJECTID);
    return !info.at_end();
}

void read_data(View der, Message &out) {
    const DecodedData context(der);
    uint32_t size = 0;
    check(ZA_PKCS7_GetDataContent(context.get(), nullptr, &size));
    out.content_type = out.type;
    out.content_size = size;
}

void read_signed_data(View der, Message &out) {
    const DecodedSignedData decoded(der);
    void *context = decoded.get();
    const ListGetter getter = ZA_PKCS7_GetSignedDataAttributeChar;
    out.version = number_of(ZA_PKCS7_GetSignedDataAttributeInt, context, PKCS7_SIGNEDDATA_VERSION);
    for (size_t at = 1, end = count_of(context, ZA_PKCS7_GetSignedData_DigestAlgoNum); at <= end;
         ++at) {
        out.digest_algorithms.push_back(
            id_of(value_at(getter, context, PKCS7_SIGNEDDATA_DIGEST_ALGO, at)));
    }
    out.content_type = id_of(value_at(getter, context, PKCS7_SIGNEDDATA_CONTENTTYPE, 1));
    out.certificates = values_at(getter, context, PKCS7_SIGNEDDATA_CERTIFICATE);
    read_parts(context, ZA_PKCS7_GetSignedData_SignerInfoNum, ZA_PKCS7_GetSignedData_SignerInfo,
               read_signer, out.signers);
    Elements fields = fields_of(der);
    if (has_content(fields)) {
        out.content_size = length_at(getter, context, PKCS7_CONTENT, 1);
    }
    // The library's getter gives the first CRL for each of them.
    fields.optional(constructed(0));
    if (const auto crls = fields.optional(constructed(1))) {
        for (Elements list(crls->content); !list.at_end();) {
            const View crl = list.next().whole;
            out.crls.emplace_back(crl.begin(), crl.end());
        }
    }
}

void read_enveloped_data(View der, Message &out) {
    const DecodedEnvelopedData decoded(der);
    void *context = decoded.get();
    out.version =
        number_of(ZA_PKCS7_GetEnvelopedDataAttributeInt, context, PKCS7_ENVELOPEDDATA_VERSION);
    read_parts(context, ZA_PKCS7_GetEnvelopedData_RecipientInfoNum,
               ZA_PKCS7_GetEnvelopedData_RecipientInfo, read_recipient, out.recipients);
    void *content = nullptr;
    check(ZA_PKCS7_GetEnvelopedData_EncryptedContent(context, &content));
    read_encrypted_content(content, out);
}

void read_signed_and_enveloped_data(View der, Message &out) {
    const DecodedSignedAndEnvelopedData decoded(der);
    void *context = decoded.get();
    const ListGetter getter = ZA_PKCS7_GetSignedAndEnvelopedDataAttributeChar;
    out.version = number_of(ZA_PKCS7_GetSignedAndEnvelopedDataAttributeInt, context,
                            PKCS7_SIGNEDANDENVELOPED_VERSION);
    out.digest_algorithms =
        ids_of(values_at(getter, context, PKCS7_SIGNEDANDENVELOPED_DIGEST_ALGO));
    out.certificates = values_at(getter, context, PKCS7_SIGNEDANDENVELOPED_CERTIFICATE);
    out.crls = values_at(getter, context, PKCS7_SIGNEDANDENVELOPED_CRL);
    read_parts(context, ZA_PKCS7_GetSignedAndEnvelopedData_RecipientInfoNum,
               ZA_PKCS7_GetSignedAndEnvelopedData_RecipientInfo, read_recipient, out.recipients);
    read_parts(context, ZA_PKCS7_GetSignedAndEnvelopedData_SignerInfoNum,
               ZA_PKCS7_GetSignedAndEnvelopedData_SignerInfo, read_signer, out.signers);
    void *content = nullptr;
    check(ZA_PKCS7_GetSignedAndEnvelopedData_EncryptedContent(context, &content));
    read_encrypted_content(content, out);
}

void read_digested_data(View der, Message &out) {
    const DecodedDigestedData decoded(der);
    void *context = decoded.get();
    const Getter getter = ZA_PKCS7_GetDigestedDataAttributeChar;
    out.version =
        number_of(ZA_PKCS7_GetDigestedDataAttributeInt, context, PKCS7_DIGESTEDDATA_VERSION);
    out.digest_algorithms = {id_of(value(getter, context, PKCS7_DIGESTEDDATA_DIGEST_ALGO))};
    out.content_type = id_of(value(getter, context, PKCS7_DIGESTEDDATA_CONTENTTYPE));
    out.digest = value(getter, context, PKCS7_DIGESTEDDATA_DIGEST);
    Elements fields = fields_of(der);
    if (has_content(fields)) {
        out.content_size = length_of(getter, context, PKCS7_DIGESTEDDATA_CONTENT);
    }
}

void read_encrypted_data(View der, Message &out) {
    const DecodedEncryptedData decoded(der);
    void *context = decoded.get();
    out.version =
        number_of(ZA_PKCS7_GetEncryptedDataAttributeInt, context, PKCS7_ENCRYPTEDDATA_VERSION);
    void *content = nullptr;
    check(ZA_PKCS7_GetEncrytpedData_EncryptedContent(context, &content));
    read_encrypted_content(content, out);
}

struct Reader {
    std::string_view type;
    void (*read)(View der, Message &out);
};

constexpr auto kReaders = std::to_array<Reader>({
    {pkcs7::kData, read_data},
    {pkcs7::kSignedData, read_signed_data},
    {pkcs7::kEnvelopedData, read_enveloped_data},
    {pkcs7::kSignedAndEnvelopedData, read_signed_and_enveloped_data},
    {pkcs7::kDigestedData, read_digested_data},
    {pkcs7::kEncryptedData, read_encrypted_data},
});

}  // namespace

Message read_message(View der) {
    Elements info(only_element(der, ZA_DER_ID_SEQUENCE).content);
    Message message;
    message.type = id_of(info.required(ZA_DER_ID_OBJECTID).content);
    const auto reader = std::find_if(kReaders.begin(), kReaders.end(),
                                     [&](const Reader &row) { return message.is(row.type); });
    if (reader == kReaders.end()) {
        throw not_pkcs7("the content type " + label(message.type) + " is none of its own");
    }
    try {
        reader->read(der, message);
    } catch (const LibraryError &) {
        refuse_what_is_not_pkcs7(der);
        throw;
    }
    return message;
}

}  // namespace tool
