#include "objects/pkcs7.hpp"

#include "base/der.hpp"
#include "base/elements.hpp"
#include "base/times.hpp"
#include "objects/names.hpp"
#include "objects/oid_names.hpp"
#include "objects/signed_object.hpp"

namespace tool {

namespace {

std::optional<Element> only_value(const MessageAttribute &attribute) {
    Elements values(attribute.values);
    const Element value = values.next();
    return values.at_end() ? std::optional(value) : std::nullopt;
}

// Where the octets cannot be read there is no value either.
template <class Read>
auto value_in(const MessageAttribute &attribute, const Read &read)
    -> std::optional<decltype(read(Element{}))> {
    try {
        if (const auto value = only_value(attribute)) {
            return read(*value);
        }
    } catch (const LibraryError &) {
    }
    return std::nullopt;
}

void require(const Element &element, uint8_t identifier) {
    if (element.identifier != identifier) {
        throw LibraryError(ZACERT_TagErr);
    }
}

}  // namespace

std::vector<const MessageAttribute *> attributes_of_type(
    const std::vector<MessageAttribute> &attributes, std::string_view oid) {
    std::vector<const MessageAttribute *> found;
    for (const MessageAttribute &attribute : attributes) {
        if (attribute.type.oid == oid) {
            found.push_back(&attribute);
        }
    }
    return found;
}

std::optional<NamedId> object_id_in(const MessageAttribute &attribute) {
    return value_in(attribute, [](const Element &value) {
        require(value, ZA_DER_ID_OBJECTID);
        return named(object_id_text(value.content));
    });
}

std::optional<View> octets_in(const MessageAttribute &attribute) {
    return value_in(attribute, [](const Element &value) {
        require(value, ZA_DER_ID_OCTETSTRING);
        return value.content;
    });
}

std::optional<View> octet_string_in(View element) {
    try {
        return only_element(element, ZA_DER_ID_OCTETSTRING).content;
    } catch (const LibraryError &) {
        return std::nullopt;
    }
}

std::optional<std::chrono::sys_seconds> time_in(const MessageAttribute &attribute) {
    return value_in(attribute, [](const Element &value) { return read_time(value); });
}

std::vector<View> values_of(const MessageAttribute &attribute) {
    std::vector<View> values;
    for (Elements elements(attribute.values); !elements.at_end();) {
        values.push_back(elements.next().whole);
    }
    return values;
}

CertificateBrief certificate_brief(View der) {
    const CertificateParts parts = certificate_parts(der);
    CertificateBrief brief;
    brief.certificate.issuer = {parts.issuer.begin(), parts.issuer.end()};
    brief.certificate.name = read_name(record_of(parts.issuer));
    brief.certificate.serial = Integer(parts.serial);
    brief.subject = read_name(record_of(parts.subject));
    return brief;
}

}  // namespace tool
