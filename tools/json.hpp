// Certificates for programs to read; docs/zacert-show.md describes the members.
#pragma once

#include "certificate.hpp"

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace tool {

using Json = nlohmann::ordered_json;

Json certificate_json(const Certificate &certificate);

// Indented text, every character that steers a terminal escaped.
std::string json_text(const Json &json);

// Shared with the extensions.
Json identifier_json(const NamedId &id);
Json rdn_json(const Rdn &rdn);
Json name_json(const Name &name);
void add_extension_value(const Extension &extension, Json &out);

// Text as a string of JSON; with a member "hex" besides where it is not valid in its type.
void add_text(std::string_view key, const Text &text, Json &out);

}  // namespace tool
