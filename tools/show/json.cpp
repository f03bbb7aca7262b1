#include "show/json.hpp"

#include "base/utf8.hpp"
#include "base/wording.hpp"
#include "objects/oid_names.hpp"

#include <array>

namespace tool {

namespace {

Json extension_json(const Extension &extension) {
    Json json{{"oid", extension.id.oid},
              {"name", label(extension.id)},
              {"critical", extension.critical},
              {"decoded", extension.decoded()}};
    if (!extension.problem.empty()) {
        json["problem"] = extension.problem;
    }
    add_extension_value(extension, json);
    return json;
}

// A character of the basic plane, as all unsafe ones are, in the escape of JSON.
std::string json_escape(char32_t value) {
    const std::array<uint8_t, 2> octets = {static_cast<uint8_t>(value >> 8),
                                           static_cast<uint8_t>(value)};
    return "\\u" + hex(octets);
}

}  // namespace

Json certificate_json(const Certificate &certificate) {
    return {
        {"file", file_json(certificate.file)},
        {"index", certificate.index},
        {"kind", "certificate"},
        {"version", certificate.version},
        {"serial", certificate.serial.hex()},
        {"signature_algorithm", identifier_json(certificate.signature_algorithm)},
        {"issuer", name_json(certificate.issuer)},
        {"validity",
         {{"not_before", instant_json(certificate.not_before)},
          {"not_after", instant_json(certificate.not_after)}}},
        {"subject", name_json(certificate.subject)},
        {"public_key", key_json(certificate.key)},
        {"extensions", extensions_json(certificate.extensions)},
        {"outer_signature_algorithm", identifier_json(certificate.outer_signature_algorithm)},
        {"signature", hex(certificate.signature)},
    };
}

// Outside its strings, JSON has no unsafe character but the line ends of the indentation.
std::string json_text(const Json &json, Layout layout) {
    const std::string dumped = json.dump(layout == Layout::lines ? 2 : -1);
    std::string text;
    std::string_view rest = dumped;
    while (!rest.empty()) {
        const CodePoint point = first_code_point(rest);
        if (is_unsafe(point.value) && point.value != '\n') {
            text += json_escape(point.value);
        } else {
            text += rest.substr(0, point.length);
        }
        rest.remove_prefix(point.length);
    }
    return text;
}

Json file_json(const std::string &path) {
    return is_utf8(path) ? path : printable(path);
}

std::string instant_json(std::chrono::sys_seconds time) {
    return date(time) + "T" + time_of_day(time) + "Z";
}

Json key_json(const PublicKey &key) {
    Json json{{"algorithm", label(key.algorithm)}, {"oid", key.algorithm.oid}};
    if (key.bits != 0) {
        json["bits"] = key.bits;
    }
    if (!key.curve.name.empty() || !key.curve.oid.empty()) {
        json["curve"] = label(key.curve);
    }
    if (!key.curve.oid.empty()) {
        json["curve_oid"] = key.curve.oid;
    }
    if (key.modulus && key.exponent) {
        json["modulus"] = key.modulus->hex();
        json["exponent"] = key.exponent->hex();
    }
    json["key"] = hex(key.octets);
    return json;
}

Json extensions_json(const std::vector<Extension> &extensions) {
    Json list = Json::array();
    for (const Extension &extension : extensions) {
        list.push_back(extension_json(extension));
    }
    return list;
}

Json text_json(const Text &text) {
    Json json = Json::object();
    add_text("value", text, json);
    json["string_type"] = text.type;
    return json;
}

Json identifier_json(const NamedId &id) {
    return {{"oid", id.oid}, {"name", label(id)}};
}

void add_text(std::string_view key, const Text &text, Json &out) {
    const bool valid = is_utf8(text.value);
    out[std::string(key)] = valid ? text.value : printable(text.value);
    if (!valid) {
        const auto *octets = reinterpret_cast<const uint8_t *>(text.value.data());
        out["hex"] = hex({octets, text.value.size()});
    }
}

Json rdn_json(const Rdn &rdn) {
    Json list = Json::array();
    for (const Attribute &attribute : rdn) {
        Json json{{"type", label(attribute.type)}, {"oid", attribute.type.oid}};
        add_text("value", attribute.value, json);
        json["string_type"] = attribute.value.type;
        list.push_back(std::move(json));
    }
    return list;
}

Json name_json(const Name &name) {
    Json list = Json::array();
    for (const Rdn &rdn : name) {
        list.push_back(rdn_json(rdn));
    }
    return list;
}

}  // namespace tool
