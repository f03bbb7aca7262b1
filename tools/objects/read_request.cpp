#include "base/context.hpp"
#include "base/der.hpp"
#include "base/elements.hpp"
#include "base/utf8.hpp"
#include "objects/extensions.hpp"
#include "objects/names.hpp"
#include "objects/oid_names.hpp"
#include "objects/public_key.hpp"
#include "objects/request.hpp"

#include <algorithm>
#include <array>

namespace tool {

namespace {

class RequestContext {
  public:
    explicit RequestContext(View der) : context_(der) {}

    Octets octets(ZA_CsrAttribute type) const {
        return fetched([&](uint8_t *out, uint32_t *length) {
            return ZACert_GetCsrAttributeChar(context_.get(), type, out, length);
        });
    }

  private:
    Decoded<ZACert_CreateCsrDecodeCtx, ZACert_DecodeCsr, ZACert_DestroyCsrDecodeCtx> context_;
};

struct AttributeKind {
    std::string_view oid;
    std::string_view name;
    std::string_view title;
    bool holds_extensions;
};

constexpr auto kKinds = std::to_array<AttributeKind>({
    {"1.2.840.113549.1.9.2", "unstructuredName", "Unstructured name", false},
    {"1.2.840.113549.1.9.7", "challengePassword", "Challenge password", false},
    {"1.2.840.113549.1.9.8", "unstructuredAddress", "Unstructured address", false},
    {"1.2.840.113549.1.9.14", "extensionRequest", "Extensions asked for", true},
    {"1.3.6.1.4.1.311.2.1.14", "certExtensions", "Extensions asked for", true},
    {"1.3.6.1.4.1.311.13.2.3", "osVersion", "Operating system version", false},
});

// The library writes every value as an OCTET STRING, whatever is inside.
Text read_value(const Element &element) {
    if (element.identifier == ZA_DER_ID_OCTETSTRING) {
        std::string text = text_of(element.content);
        if (is_plain(text)) {
            return {std::move(text), "OCTET STRING", true};
        }
    }
    return read_text(record_of(element.whole));
}

View extension_list(const Element &value) {
    return value.identifier == ZA_DER_ID_OCTETSTRING ? value.content : value.whole;
}

void read_values(View set, bool holds_extensions, RequestAttribute &out) {
    Elements values(set);
    if (holds_extensions) {
        try {
            const Element value = only_element(set, values.identifier());
            out.extensions = read_extensions(extension_list(value));
            out.has_extensions = true;
            return;
        } catch (const LibraryError &error) {
            out.problem = error.what();
        }
    }
    while (!values.at_end()) {
        out.values.push_back(read_value(values.next()));
    }
}

RequestAttribute read_attribute(const Element &element) {
    // Attribute ::= SEQUENCE { type OBJECT IDENTIFIER, values SET OF ANY }
    Elements fields(element.content);
    RequestAttribute attribute;
    attribute.type = named(object_id_text(fields.required(ZA_DER_ID_OBJECTID).content));
    const auto *kind = std::find_if(kKinds.begin(), kKinds.end(), [&](const AttributeKind &row) {
        return row.oid == attribute.type.oid;
    });
    const bool known = kind != kKinds.end();
    if (known) {
        attribute.type.name = kind->name;
        attribute.title = kind->title;
    }
    read_values(fields.required(ZA_DER_ID_SET).content, known && kind->holds_extensions, attribute);
    return attribute;
}

// The attributes stand in the context tag, or in a SET inside it.
std::vector<RequestAttribute> read_attributes(View content) {
    Elements elements(content);
    if (elements.identifier() == ZA_DER_ID_SET) {
        elements = Elements(only_element(content, ZA_DER_ID_SET).content);
    }
    std::vector<RequestAttribute> attributes;
    while (!elements.at_end()) {
        attributes.push_back(read_attribute(elements.required(ZA_DER_ID_SEQUENCE)));
    }
    return attributes;
}

// What no attribute gives: the version, the subject's DER, all values of the attributes.
void read_info(View der, Request &out) {
    // CertificationRequestInfo ::= SEQUENCE { version INTEGER, subject, subjectPKInfo,
    //     attributes [0] }
    Elements request(only_element(der, ZA_DER_ID_SEQUENCE).content);
    Elements fields(request.required(ZA_DER_ID_SEQUENCE).content);
    const uint64_t version = number(fields.required(ZA_DER_ID_INTEGER).content);
    out.version = std::min<uint64_t>(version, UINT32_MAX) + 1;
    out.subject = read_name(record_of(fields.required(ZA_DER_ID_SEQUENCE).whole));
    fields.required(ZA_DER_ID_SEQUENCE);
    if (const auto attributes = fields.optional(constructed(0))) {
        out.attributes = read_attributes(attributes->content);
    }
}

}  // namespace

Request read_request(View der) {
    const RequestContext context(der);
    Request request;
    const Octets algorithm = context.octets(CSR_OUTER_SIGNATUREALGORITHM);
    request.signature_algorithm = algorithm.empty() ? NamedId{} : named(object_id_text(algorithm));
    request.key = read_public_key({context.octets(CSR_PUBLICKEY_ALGORITHM),
                                   context.octets(CSR_SUBJECTPUBLICKEYINFO),
                                   context.octets(CSR_ECC_PUBLICKEY_OID)});
    read_info(der, request);
    return request;
}

}  // namespace tool
