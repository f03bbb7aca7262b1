// Objects for programs to read; docs/zacert-show.md describes the members.
#pragma once

#include "objects/certificate.hpp"
#include "objects/crl.hpp"
#include "objects/ocsp.hpp"
#include "objects/pkcs7.hpp"
#include "objects/request.hpp"

#include <chrono>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace tool {

using Json = nlohmann::ordered_json;

Json certificate_json(const Certificate &certificate);
Json request_json(const Request &request);
Json message_json(const Message &message);
Json ocsp_request_json(const OcspRequest &request);
Json ocsp_response_json(const OcspResponse &response);
Json crl_json(const Crl &crl);  // without its entries
Json entry_json(const RevokedEntry &entry);

// What stands in messages and files; a member "problem" alone where it cannot be read.
Json certificate_brief_json(View der);
Json crl_brief_json(View der);

// Text with every character that steers a terminal escaped: in indented lines, or in one.
enum class Layout { lines, one_line };
std::string json_text(const Json &json, Layout layout);

// Shared by several kinds of objects.
Json file_json(const std::string &path);
std::string instant_json(std::chrono::sys_seconds time);
Json key_json(const PublicKey &key);
Json extensions_json(const std::vector<Extension> &extensions);
Json text_json(const Text &text);
Json identifier_json(const NamedId &id);
Json rdn_json(const Rdn &rdn);
Json name_json(const Name &name);
void add_extension_value(const Extension &extension, Json &out);

// Text as a string of JSON; with a member "hex" besides where it is not valid in its type.
void add_text(std::string_view key, const Text &text, Json &out);

}  // namespace tool
