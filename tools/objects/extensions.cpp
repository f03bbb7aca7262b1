#include "objects/extensions.hpp"

#include "base/der.hpp"
#include "base/elements.hpp"
#include "objects/extension_kinds.hpp"
#include "objects/extension_values.hpp"

#include <algorithm>
#include <array>

namespace tool {

namespace {

// The library decodes these in certificates and lists all others as private. Where it has an
// attribute for all of the value, it is asked.
struct OwnAttribute {
    std::string_view oid;
    ExtensionValue (*read)(const Context &context, View octets);
};

ExtensionValue subject_key_identifier_of(const Context &context, View) {
    return KeyIdentifier{context.octets(CERTEX_SUBJECTKEYIDENTIFIER)};
}

ExtensionValue key_usage_of(const Context &context, View) {
    return KeyUsage{names_of_usages(context.octets(CERTEX_KEYUSAGE))};
}

ExtensionValue basic_constraints_of(const Context &context, View) {
    BasicConstraints value;
    const Octets ca = context.octets(CERTEX_AUTHORITY);
    value.ca = !ca.empty() && ca.front() != 0;
    Octets path_length = context.octets(CERTEX_PATHLENCONSTRAINT);
    if (!path_length.empty()) {
        // The getter gives the number without the zero octet that keeps it positive.
        path_length.insert(path_length.begin(), 0);
        value.path_length = number(path_length);
    }
    return value;
}

ExtensionValue authority_key_identifier_of(const Context &context, View octets) {
    ExtensionValue value = read_authority_key_identifier(octets);
    std::get<AuthorityKeyIdentifier>(value).key_id = context.octets(CERTEX_AUTHORITYKEYIDENTIFIER);
    return value;
}

constexpr auto kOwnAttributes = std::to_array<OwnAttribute>({
    {"2.5.29.14", subject_key_identifier_of},
    {"2.5.29.15", key_usage_of},
    {"2.5.29.17", nullptr},
    {"2.5.29.18", nullptr},
    {"2.5.29.19", basic_constraints_of},
    {"2.5.29.31", nullptr},
    {"2.5.29.35", authority_key_identifier_of},
    {"2.5.29.37", nullptr},
});

const OwnAttribute *find_own_attribute(std::string_view oid) {
    const auto *row = std::find_if(kOwnAttributes.begin(), kOwnAttributes.end(),
                                   [oid](const OwnAttribute &r) { return r.oid == oid; });
    return row == kOwnAttributes.end() ? nullptr : row;
}

RawExtension read_raw(const Element &element) {
    // Extension ::= SEQUENCE { extnID, critical BOOLEAN DEFAULT FALSE, extnValue OCTET STRING }
    Elements fields(element.content);
    RawExtension extension;
    extension.oid = object_id_text(fields.required(ZA_DER_ID_OBJECTID).content);
    if (const auto critical = fields.optional(ZA_DER_ID_BOOLEAN)) {
        extension.critical = !critical->content.empty() && critical->content.front() != 0;
    }
    const View octets = fields.required(ZA_DER_ID_OCTETSTRING).content;
    extension.octets.assign(octets.begin(), octets.end());
    return extension;
}

std::vector<RawExtension> raw_extensions(View list) {
    std::vector<RawExtension> extensions;
    Elements elements(only_element(list, ZA_DER_ID_SEQUENCE).content);
    while (!elements.at_end()) {
        extensions.push_back(read_raw(elements.required(ZA_DER_ID_SEQUENCE)));
    }
    return extensions;
}

// Those of the private list as the library keeps them.
std::vector<RawExtension> raw_extensions(const Context &context, View list) {
    std::vector<RawExtension> listed = context.private_extensions();
    auto next_listed = listed.begin();
    std::vector<RawExtension> extensions = raw_extensions(list);
    for (RawExtension &extension : extensions) {
        if (find_own_attribute(extension.oid) == nullptr) {
            if (next_listed == listed.end() || next_listed->oid != extension.oid) {
                throw LibraryError(ZACERT_InvalidItem);
            }
            extension = std::move(*next_listed++);
        }
    }
    return extensions;
}

Extension undecoded(RawExtension raw, const ExtensionKind *kind) {
    Extension extension;
    extension.id.oid = std::move(raw.oid);
    extension.critical = raw.critical;
    extension.octets = std::move(raw.octets);
    if (kind != nullptr) {
        extension.id.name = kind->name;
        extension.title = kind->title;
        extension.short_code = kind->short_code;
    }
    return extension;
}

ExtensionValue read_value(const Context *context, const ExtensionKind &kind, View octets) {
    const OwnAttribute *own = context == nullptr ? nullptr : find_own_attribute(kind.oid);
    return own != nullptr && own->read != nullptr ? own->read(*context, octets) : kind.read(octets);
}

bool contains(const std::vector<Extension> &extensions, std::string_view oid) {
    return std::any_of(extensions.begin(), extensions.end(),
                       [oid](const Extension &extension) { return extension.id.oid == oid; });
}

std::vector<Extension> decoded(const Context *context, std::vector<RawExtension> raw_extensions) {
    std::vector<Extension> extensions;
    for (RawExtension &raw : raw_extensions) {
        const ExtensionKind *kind = find_extension_kind(raw.oid);
        Extension extension = undecoded(std::move(raw), kind);
        if (contains(extensions, extension.id.oid)) {
            extension.problem = "the extension is there twice";
        } else if (kind != nullptr) {
            try {
                extension.value = read_value(context, *kind, extension.octets);
            } catch (const LibraryError &error) {
                extension.problem = error.what();
            }
        }
        extensions.push_back(std::move(extension));
    }
    return extensions;
}

}  // namespace

std::vector<Extension> read_extensions(const Context &context, const Anybuf &wrapper) {
    return decoded(&context, raw_extensions(context, content(wrapper)));
}

std::vector<Extension> read_extensions(View list) {
    return decoded(nullptr, raw_extensions(list));
}

}  // namespace tool
