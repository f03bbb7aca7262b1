// PKCS#11 URIs (RFC 7512).
#pragma once

#include <zacert/base.h>

#include "secret.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace zacert_pkcs11 {

using Text = std::optional<std::string>;

struct Uri {
    Text token, manufacturer, serial, model;
    Text library_manufacturer, library_description, library_version;
    Text slot_manufacturer, slot_description, slot_id;
    Text object, type, id;
    Text module_path, pin_source;
    std::optional<Secret> pin_value;
};

// 101, 108, 110 or 122 where the text is not one this library can follow.
uint32_t parse(std::string_view text, Uri &out);

}  // namespace zacert_pkcs11
