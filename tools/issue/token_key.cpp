#include "issue/token_key.hpp"

#include "base/der.hpp"
#include "base/failure.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <sstream>
#include <string_view>
#include <unistd.h>

namespace tool {

namespace {

struct TokenProblem {
    uint32_t code;
    std::string_view text;
};

constexpr auto kTokenProblems = std::to_array<TokenProblem>({
    {ZACERT_GeneralErr, "the text is no PKCS#11 URI"},
    {ZACERT_AttributeNotSupportErr, "the URI has an attribute that is not looked at"},
    {ZACERT_ItemMissingErr, "no token or key is what the URI names"},
    {ZACERT_InvalidSignatureAlgErr, "neither key nor token can sign in this way"},
    {ZACERT_PrivateKeyErr, "the PIN is missing or was refused"},
    {ZACERT_InvalidItem, "several tokens or keys are what the URI names"},
    {ZACERT_TypeErr, "the URI names another kind of object"},
    {ZACERT_CryptErr, "the module cannot be loaded, or the token refused"},
});

Failure token_failure(uint32_t code) {
    const auto row = std::find_if(kTokenProblems.begin(), kTokenProblems.end(),
                                  [code](const TokenProblem &r) { return r.code == code; });
    std::ostringstream text;
    text << "expected a key on a token: ";
    if (row == kTokenProblems.end()) {
        text << LibraryError(code).what();
    } else {
        text << row->text << " (" << code << ")";
    }
    if (code == ZACERT_CryptErr && zacert_pkcs11_token_result() != 0) {
        text << ", PKCS#11 result 0x" << std::hex << zacert_pkcs11_token_result();
    }
    return Failure(text.str());
}

uint32_t open_with(const std::string &uri, const Secret *pin, int32_t digest,
                   zacert_pkcs11_key *out) {
    const uint8_t *octets = pin == nullptr ? nullptr : pin->view().data();
    const auto length = pin == nullptr ? uint32_t{0} : static_cast<uint32_t>(pin->size());
    return zacert_pkcs11_open(uri.c_str(), octets, length, digest, out);
}

// A token that has its own key pad, or a URI that tells the PIN, needs none from here.
zacert_pkcs11_key opened(const std::string &uri, const PasswordSource &password, int32_t digest) {
    zacert_pkcs11_key key{};
    std::optional<Secret> pin = given_password(password);
    uint32_t result = open_with(uri, pin ? &*pin : nullptr, digest, &key);
    const bool uri_has_pin = uri.find("pin-") != std::string::npos;
    if (result == ZACERT_PrivateKeyErr && !pin && !uri_has_pin && isatty(STDIN_FILENO) != 0) {
        pin = asked_password("PIN of the token: ", Ask::once);
        result = open_with(uri, &*pin, digest, &key);
    }
    if (result != 0) {
        throw token_failure(result);
    }
    return key;
}

struct CloseToken {
    void operator()(zacert_pkcs11_key *key) const {
        zacert_pkcs11_close(key);
        delete key;
    }
};

}  // namespace

std::shared_ptr<zacert_pkcs11_key> open_token_key(const std::string &uri,
                                                  const PasswordSource &password, int32_t digest) {
    return {new zacert_pkcs11_key(opened(uri, password, digest)), CloseToken()};
}

Octets public_key_of(const zacert_pkcs11_key &key) {
    return fetched([&](uint8_t *out, uint32_t *length) {
        return zacert_pkcs11_public_key(&key, out, length);
    });
}

}  // namespace tool
