// From a URI to a session with its token, logged in.
#pragma once

#include "module.hpp"
#include "uri.hpp"

namespace zacert_pkcs11 {

// 113: no token fits; 121: several do.
uint32_t open_session(const Uri &uri, Session &out);

// Logs in where the token asks for it. 120: the PIN is missing or refused.
uint32_t log_in(const Session &session, std::optional<Secret> &pin);

// The PIN of a URI. False when it has none; 120: its file cannot be read; 101: it holds too much.
uint32_t pin_of(const Uri &uri, Secret &out, bool &found);

// The one private key that fits. 113: none; 121: several.
uint32_t find_key(const Session &session, const Uri &uri, CK_OBJECT_HANDLE &out);

}  // namespace zacert_pkcs11
