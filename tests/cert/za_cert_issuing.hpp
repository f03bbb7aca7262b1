// Contexts filled by rows, and a signing function that remembers how it was called.
#pragma once

#include "cert/za_cert_support.hpp"

namespace za::test {

inline uint32_t set_one(void *cert, const std::string &id, const std::string &text) {
    if (id == "P") {
        const Row parts = split(text, ' ');
        const Octets oid = from_hex(parts[0]);
        const Octets value = from_hex(parts[2]);
        return ZACert_SetCertAttributePrivate(cert, oid.data(), int32_t(oid.size()),
                                              number_of("0x" + parts[1]), value.data(),
                                              int32_t(value.size()));
    }
    if (id == "4" || id == "29" || id == "30") {
        return ZACert_SetCertAttributeInt(cert, std::stoi(id), std::stoi(text));
    }
    const Octets value = value_of(text);
    return ZACert_SetCertAttributeChar(cert, std::stoi(id), value.data(), int32_t(value.size()));
}

// "IDENTIFIER=VALUE; ...": the first result other than 0, or than RESULT where "!RESULT" follows.
// "P=OID CRITICAL VALUE" is a private extension.
inline uint32_t set_all(void *cert, const std::string &setters) {
    for (const std::string &setter : list_of(setters)) {
        const Row parts = split(setter, '!');
        const Row pair = split(parts[0], '=');
        const uint32_t result = set_one(cert, pair[0], pair[1]);
        if (result != (parts.size() > 1 ? number_of(parts[1]) : 0)) {
            return result;
        }
    }
    return 0;
}

// What the function does, and what it was given, with "first" or "room" and the key in a line.
struct Signing {
    uint32_t first = 0;
    uint32_t second = 0;
    uint32_t length = 2;
    std::vector<std::string> calls;
    Octets in;
};
inline Signing signing;

// Key octets end in a zero octet here. Writes as much as the library has room for.
inline int32_t sign_as_planned(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len,
                               void *key) {
    constexpr uint32_t kPhysicalRoom = 10240;
    signing.in.assign(in, in + in_len);
    signing.calls.push_back((out == nullptr ? "first " : "room ") + std::to_string(*out_len) + " " +
                            (key == nullptr ? "(none)" : static_cast<const char *>(key)));
    if (out == nullptr) {
        *out_len = 7777;
        return int32_t(signing.first);
    }
    std::fill_n(out, std::min(signing.length, kPhysicalRoom), uint8_t{0xA5});
    *out_len = signing.length;
    return int32_t(signing.second);
}

inline uint32_t install_signer(void *cert, const std::string &key) {
    return ZACert_SetCertSignFunc(cert, sign_as_planned,
                                  reinterpret_cast<const uint8_t *>(key.c_str()),
                                  int32_t(key.size() + 1));
}

struct Issuing : Context {
    explicit Issuing(const std::string &setters, const std::string &key = "k") {
        signing = {};
        EXPECT_EQ(set_all(*this, setters), 0u);
        EXPECT_EQ(install_signer(*this, key), 0u);
    }
};

inline Octets encoded(void *cert, uint32_t *status = nullptr) {
    return two_calls([&](uint8_t *out, uint32_t *len) { return ZACert_EncodeCert(cert, out, len); },
                     status);
}

}  // namespace za::test
