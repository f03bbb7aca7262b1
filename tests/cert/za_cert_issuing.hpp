// Contexts filled by rows, and a signing function that remembers how it was called.
#pragma once

#include "cert/za_cert_support.hpp"

namespace za::test {

// "IDENTIFIER=VALUE; ...": each must give 0, or RESULT where "!RESULT" follows; the first other
// result ends it and is returned. "P=OID CRITICAL VALUE" is a private extension.
inline uint32_t set_all(void *cert, const std::string &setters) {
    for (const std::string &setter : list_of(setters)) {
        const size_t equals = setter.find('=');
        const size_t mark = setter.find('!');
        const std::string id = setter.substr(0, equals);
        const std::string text = setter.substr(equals + 1, mark - equals - 1);
        uint32_t result = 0;
        if (id == "P") {
            const Row parts = split(text, ' ');
            const Octets oid = from_hex(parts[0]);
            const Octets value = from_hex(parts[2]);
            result = ZACert_SetCertAttributePrivate(cert, oid.data(), int32_t(oid.size()),
                                                    number_of("0x" + parts[1]), value.data(),
                                                    int32_t(value.size()));
        } else if (id == "4" || id == "29" || id == "30") {
            result = ZACert_SetCertAttributeInt(cert, std::stoi(id), std::stoi(text));
        } else {
            const Octets value = value_of(text);
            result = ZACert_SetCertAttributeChar(cert, std::stoi(id), value.data(),
                                                 int32_t(value.size()));
        }
        if (result != (mark == std::string::npos ? 0 : number_of(setter.substr(mark + 1)))) {
            return result;
        }
    }
    return 0;
}

// The one call of a signing function, and what the function is to do.
struct SignCall {
    Octets in;
    bool has_room;
    uint32_t room;
    std::string key;

    bool operator==(const SignCall &) const = default;
};

struct SignPlan {
    int32_t first = 0;
    int32_t second = 0;
    uint32_t length = 2;
};

inline SignPlan sign_plan;
inline std::vector<SignCall> sign_calls;

// Key octets end in a zero octet here. Writes as much as the library has room for.
inline int32_t sign_as_planned(const uint8_t *in, uint32_t in_len, uint8_t *out, uint32_t *out_len,
                               void *key) {
    constexpr uint32_t kPhysicalRoom = 10240;
    sign_calls.push_back({Octets(in, in + in_len), out != nullptr, *out_len,
                          key == nullptr ? "(none)" : static_cast<const char *>(key)});
    if (out != nullptr) {
        std::fill_n(out, std::min(sign_plan.length, kPhysicalRoom), uint8_t{0xA5});
    }
    *out_len = out == nullptr ? 7777 : sign_plan.length;
    return out == nullptr ? sign_plan.first : sign_plan.second;
}

inline uint32_t install_signer(void *cert, const std::string &key = "k") {
    return ZACert_SetCertSignFunc(cert, sign_as_planned,
                                  reinterpret_cast<const uint8_t *>(key.c_str()),
                                  int32_t(key.size() + 1));
}

inline Octets encoded(void *cert, uint32_t *status = nullptr) {
    return two_calls([&](uint8_t *out, uint32_t *len) { return ZACert_EncodeCert(cert, out, len); },
                     status);
}

}  // namespace za::test
