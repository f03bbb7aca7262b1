#include "objects/names.hpp"

#include "base/utf8.hpp"
#include "objects/oid_names.hpp"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <bit>

namespace tool {

namespace {

enum class Charset { as_it_is, latin1, ucs2, ucs4, none };

struct StringType {
    uint8_t identifier;
    std::string_view name;
    Charset charset;
};

constexpr auto kStringTypes = std::to_array<StringType>({
    {ZA_DER_ID_UTF8STRING, "UTF8String", Charset::as_it_is},
    {ZA_DER_ID_PRINTABLESTRING, "PrintableString", Charset::as_it_is},
    {ZA_DER_ID_IA5STRING, "IA5String", Charset::as_it_is},
    {0x12, "NumericString", Charset::as_it_is},
    {0x1A, "VisibleString", Charset::as_it_is},
    {ZA_DER_ID_UTCTIME, "UTCTime", Charset::as_it_is},
    {ZA_DER_ID_GENERALIZEDTIME, "GeneralizedTime", Charset::as_it_is},
    // T.61 in name; what is found in certificates is Latin-1.
    {0x14, "TeletexString", Charset::latin1},
    {ZA_DER_ID_BMPSTRING, "BMPString", Charset::ucs2},
    {0x1C, "UniversalString", Charset::ucs4},
    {ZA_DER_ID_BOOLEAN, "BOOLEAN", Charset::none},
    {ZA_DER_ID_INTEGER, "INTEGER", Charset::none},
    {ZA_DER_ID_BITSTRING, "BIT STRING", Charset::none},
    {ZA_DER_ID_OCTETSTRING, "OCTET STRING", Charset::none},
    {ZA_DER_ID_OBJECTID, "OBJECT IDENTIFIER", Charset::none},
    {ZA_DER_ID_SEQUENCE, "SEQUENCE", Charset::none},
    {ZA_DER_ID_SET, "SET", Charset::none},
});

StringType type_of(uint8_t identifier) {
    const auto row = std::find_if(kStringTypes.begin(), kStringTypes.end(),
                                  [=](const StringType &r) { return r.identifier == identifier; });
    return row == kStringTypes.end() ? StringType{identifier, "other", Charset::none} : *row;
}

std::string from_latin1(View octets) {
    std::string text;
    for (const uint8_t octet : octets) {
        append_code_point(text, octet);
    }
    return text;
}

// The converter takes no more than 4096 octets at a time.
std::string from_ucs2(View octets) {
    constexpr size_t kLimit = 4096;
    std::string text;
    while (!octets.empty()) {
        const View part = octets.first(std::min(octets.size(), kLimit));
        text += text_of(fetched([part](uint8_t *out, uint32_t *length) {
            return ZI_BmpString2UTF8(part.data(), static_cast<int32_t>(part.size()), out, length);
        }));
        octets = octets.subspan(part.size());
    }
    return text;
}

std::string from_ucs4(View octets) {
    std::string text;
    for (; octets.size() >= 4; octets = octets.subspan(4)) {
        const auto value = static_cast<char32_t>(number(octets.first(4)));
        append_code_point(text, value);
    }
    if (!octets.empty() || !is_utf8(text)) {
        throw LibraryError(ZI_CHARSET_INVALID);
    }
    return text;
}

std::string convert(Charset charset, View octets) {
    switch (charset) {
        case Charset::latin1:
            return from_latin1(octets);
        case Charset::ucs2:
            return from_ucs2(octets);
        case Charset::ucs4:
            return from_ucs4(octets);
        default:
            return text_of(octets);
    }
}

Attribute read_attribute(const Anybuf &element) {
    // AttributeTypeAndValue ::= SEQUENCE { type OBJECT IDENTIFIER, value ANY }
    Fields fields(sequence(element));
    Attribute attribute;
    attribute.type = named(object_id(fields.next()));
    attribute.value = read_text(fields.next());
    return attribute;
}

std::string address_text(View address) {
    std::array<char, INET6_ADDRSTRLEN> text{};
    inet_ntop(address.size() == 4 ? AF_INET : AF_INET6, address.data(), text.data(), text.size());
    return text.data();
}

// The prefix length, or the mask as an address where its ones are not in front.
std::string mask_text(View mask) {
    size_t ones = 0;
    size_t all_ones = 0;
    for (size_t i = 0; i < mask.size(); ++i) {
        all_ones += static_cast<size_t>(std::popcount(mask[i]));
        ones += ones == 8 * i ? static_cast<size_t>(std::countl_one(mask[i])) : 0;
    }
    return ones == all_ones ? std::to_string(ones) : address_text(mask);
}

Text ip_text(View octets, Address form) {
    const size_t parts = form == Address::plain ? 1 : 2;
    if (octets.size() != 4 * parts && octets.size() != 16 * parts) {
        return {"#" + hex(octets), "OCTET STRING", false};
    }
    const View address = octets.first(octets.size() / parts);
    std::string text = address_text(address);
    if (form == Address::with_mask) {
        text += "/" + mask_text(octets.subspan(address.size()));
    }
    return {std::move(text), "OCTET STRING", true};
}

void read_other_name(const Anybuf &element, GeneralName &out) {
    // OtherName ::= SEQUENCE { type-id OBJECT IDENTIFIER, value [0] EXPLICIT ANY }
    Fields fields(tagged(element));
    out.type_id = named(object_id(fields.next()));
    const Octets value = content(fields.required(constructed(0)));
    out.value = read_text(record_of(value));
}

constexpr auto kForms = std::to_array<std::string_view>(
    {"otherName", "rfc822Name", "dNSName", "x400Address", "directoryName", "ediPartyName",
     "uniformResourceIdentifier", "iPAddress", "registeredID"});

}  // namespace

Text read_text(const Anybuf &element) {
    const StringType type = type_of(identifier_of(element));
    if (type.charset != Charset::none) {
        try {
            return {convert(type.charset, content(element)), std::string(type.name), true};
        } catch (const LibraryError &) {
            // Shown by its octets below.
        }
    }
    return {"#" + hex(octets_of(element)), std::string(type.name), false};
}

Rdn read_rdn(Chain attributes) {
    Rdn rdn;
    for (const Anybuf &attribute : attributes) {
        rdn.push_back(read_attribute(attribute));
    }
    return rdn;
}

Name read_name(const Anybuf &element) {
    Name name;
    for (const Anybuf &rdn : sequence(element)) {
        name.push_back(read_rdn(set_of(rdn)));
    }
    return name;
}

GeneralName read_general_name(const Anybuf &element, Address address) {
    GeneralName name;
    const uint8_t identifier = identifier_of(element);
    const size_t choice = identifier & 0x1Fu;
    if ((identifier & 0x80) == 0 || choice >= kForms.size()) {
        throw LibraryError(ZACERT_TagErr);
    }
    name.form = kForms[choice];
    switch (identifier) {
        case constructed(0):
            read_other_name(element, name);
            break;
        case primitive(1):
        case primitive(2):
        case primitive(6):
            name.value = {text_of(content(element)), "IA5String", true};
            break;
        case constructed(4): {
            const Octets directory = content(element);
            name.directory = read_name(record_of(directory));
            break;
        }
        case primitive(7):
            name.value = ip_text(content(element), address);
            break;
        case primitive(8):
            name.value = {object_id_text(content(element)), "OBJECT IDENTIFIER", true};
            break;
        default:
            name.value = {"#" + hex(octets_of(element)), "other", false};
    }
    return name;
}

GeneralNames read_general_names(Chain names) {
    GeneralNames list;
    for (const Anybuf &name : names) {
        list.push_back(read_general_name(name));
    }
    return list;
}

}  // namespace tool
