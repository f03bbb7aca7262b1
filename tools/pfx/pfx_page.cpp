#include "pfx/pfx_page.hpp"

#include "base/der.hpp"
#include "base/failure.hpp"
#include "base/wording.hpp"
#include "issue/private_key.hpp"
#include "objects/name_forms.hpp"
#include "objects/names.hpp"
#include "objects/oid_names.hpp"
#include "objects/public_key.hpp"
#include "objects/subject_key.hpp"
#include "show/page.hpp"
#include "show/text.hpp"

namespace tool {

namespace {

constexpr uint32_t kRight = 200;
constexpr const char *kUnknownKey = "a private key that libcrypto does not read";

// The public half of an opened bag's key; nothing where libcrypto or the library has no such keys.
std::optional<PublicKey> public_key_in(const PfxBag &bag) {
    try {
        if (const EvpKey key = key_in(bag)) {
            const SubjectKey parts = subject_key(public_key_of(*key));
            return read_public_key({parts.algorithm, parts.value, parts.parameters});
        }
    } catch (const LibraryError &) {
        // Said where the key is shown.
    }
    return std::nullopt;
}

std::optional<Text> name_in(const MessageAttribute &attribute) {
    try {
        const std::vector<View> values = values_of(attribute);
        if (attribute.type.oid == pfx::kFriendlyName && values.size() == 1) {
            return read_text(record_of(values.front()));
        }
    } catch (const LibraryError &) {
        // Shown by its octets.
    }
    return std::nullopt;
}

std::optional<View> key_id_in(const MessageAttribute &attribute) {
    return attribute.type.oid == pfx::kLocalKeyId ? octets_in(attribute) : std::nullopt;
}

// ---- Text --------------------------------------------------------------------------------------

std::string salt_text(const Octets &salt, uint32_t iterations) {
    return ", salt of " + octets_text(salt.size()) + ", " + std::to_string(iterations) +
           (iterations == 1 ? " iteration" : " iterations");
}

std::string encryption_text(const PbeUse &use) {
    return label(use) + (use.is_known() ? salt_text(use.salt, use.iterations) : "");
}

std::string mac_text(const Pfx &pfx) {
    if (!pfx.mac) {
        return "none";
    }
    const std::string verdict = !pfx.verdict ? "not checked"
                                : *pfx.verdict == kRight
                                    ? "right (200)"
                                    : "wrong (" + std::to_string(*pfx.verdict) + ")";
    return label(pfx.mac->digest) + salt_text(pfx.mac->salt, pfx.mac->iterations) + ", " + verdict;
}

std::string content_text(const PfxBag &bag) {
    const View content = bag.content.view();
    if (!bag.problem.empty()) {
        return "not decoded: " + bag.problem;
    }
    if (bag.is_key()) {
        const std::optional<PublicKey> key = public_key_in(bag);
        return key ? "Private key " + short_form(*key) : kUnknownKey;
    }
    if (bag.content_type.oid == pfx::kX509Certificate) {
        return certificate_line(content);
    }
    if (bag.content_type.oid == pfx::kX509Crl) {
        return crl_line(content);
    }
    return label(bag.content_type) + ", " + octets_text(content.size());
}

void write_attribute(size_t depth, const MessageAttribute &attribute, Page &page) {
    if (const auto name = name_in(attribute)) {
        page.line(depth, label(attribute.type) + " " + shown(*name));
    } else if (const auto id = key_id_in(attribute)) {
        page.line(depth, label(attribute.type) + " " + hex(*id, ":"));
    } else {
        page.line(depth, label(attribute.type));
        page.block(depth + 1, hex_lines(attribute.values));
    }
}

void write_bags(size_t depth, const std::vector<PfxBag> &bags, Page &page) {
    for (const PfxBag &bag : bags) {
        const std::string encryption =
            bag.encryption ? ", " + encryption_text(*bag.encryption) : "";
        const bool closed = bag.encryption && bag.content.size() == 0 && bag.problem.empty();
        page.line(depth, label(bag.type) + encryption + (closed ? ", not opened" : ""));
        if (bag.content.size() != 0 || !bag.problem.empty()) {
            page.line(depth + 1, content_text(bag));
        }
        for (const MessageAttribute &attribute : bag.attributes) {
            write_attribute(depth + 1, attribute, page);
        }
        write_bags(depth + 1, bag.bags, page);
    }
}

// ---- JSON --------------------------------------------------------------------------------------

Json salt_json(const NamedId &id, const Octets &salt, uint32_t iterations) {
    Json json = identifier_json(id);
    json["salt_size"] = salt.size();
    json["iterations"] = iterations;
    return json;
}

Json encryption_json(const PbeUse &use) {
    if (use.is_known()) {
        return salt_json(use.id, use.salt, use.iterations);
    }
    Json json = identifier_json(use.id);
    if (!use.cipher.oid.empty()) {
        json["cipher"] = identifier_json(use.cipher);
    }
    return json;
}

// Kind and size.
Json key_brief_json(const PublicKey &key) {
    Json json = key_json(key);
    for (const char *member : {"modulus", "exponent", "key"}) {
        json.erase(member);
    }
    return json;
}

Json attributes_json(const std::vector<MessageAttribute> &attributes) {
    Json list = Json::array();
    for (const MessageAttribute &attribute : attributes) {
        Json json = identifier_json(attribute.type);
        if (const auto name = name_in(attribute)) {
            json.update(text_json(*name));
        }
        if (const auto id = key_id_in(attribute)) {
            json["key_id"] = hex(*id);
        }
        json["hex"] = hex(attribute.values);
        list.push_back(std::move(json));
    }
    return list;
}

void add_content(const PfxBag &bag, Json &out) {
    const View content = bag.content.view();
    if (!bag.content_type.oid.empty()) {
        out["content_type"] = identifier_json(bag.content_type);
    }
    if (!bag.problem.empty()) {
        out["problem"] = bag.problem;
    } else if (bag.is_key() && !content.empty()) {
        const std::optional<PublicKey> key = public_key_in(bag);
        out["private_key"] = key ? key_brief_json(*key) : Json{{"problem", kUnknownKey}};
    } else if (bag.content_type.oid == pfx::kX509Certificate) {
        out["certificate"] = certificate_brief_json(content);
    } else if (bag.content_type.oid == pfx::kX509Crl) {
        out["crl"] = crl_brief_json(content);
    }
}

Json bags_json(const std::vector<PfxBag> &bags) {
    Json list = Json::array();
    for (const PfxBag &bag : bags) {
        Json json{{"type", identifier_json(bag.type)}};
        if (bag.encryption) {
            json["encryption"] = encryption_json(*bag.encryption);
        }
        add_content(bag, json);
        json["attributes"] = attributes_json(bag.attributes);
        if (bag.is(pfx::kBags)) {
            json["bags"] = bags_json(bag.bags);
        }
        list.push_back(std::move(json));
    }
    return list;
}

}  // namespace

std::string pfx_text(const Pfx &pfx) {
    Page page;
    page.line(0, "PKCS#12 file " + file_label(pfx.file));
    page.field("MAC", mac_text(pfx));
    page.field("Containers", count_or_none(pfx.containers.size()));
    for (const PfxContainer &container : pfx.containers) {
        const std::string encryption =
            container.encryption ? ", " + encryption_text(*container.encryption) : "";
        page.line(2, label(container.type) + encryption + (container.opened ? "" : ", not opened"));
        write_bags(3, container.bags, page);
    }
    return page.take();
}

Json pfx_json(const Pfx &pfx) {
    Json containers = Json::array();
    for (const PfxContainer &container : pfx.containers) {
        Json json{{"type", identifier_json(container.type)}};
        if (container.encryption) {
            json["encryption"] = encryption_json(*container.encryption);
        }
        json["opened"] = container.opened;
        if (container.opened) {
            json["bags"] = bags_json(container.bags);
        }
        containers.push_back(std::move(json));
    }
    Json json{{"file", file_json(pfx.file)}, {"index", 1}, {"kind", "pkcs12"}};
    if (pfx.mac) {
        json["mac"] = salt_json(pfx.mac->digest, pfx.mac->salt, pfx.mac->iterations);
    }
    if (pfx.verdict) {
        json["mac"]["result"] = *pfx.verdict;
    }
    json["containers"] = std::move(containers);
    return json;
}

}  // namespace tool
