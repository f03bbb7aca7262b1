// Certificate contexts in tests, and certificates put together from the parts of real ones.
#pragma once

#include "cert/za_cert_context.hpp"
#include "support/bytes.hpp"

#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace za::test {

inline constexpr const char *kCertificates[] = {
    "rsa_all",  "rsa_v1",      "rsa_bmp", "rsa_t61", "rsa_purposes",
    "ec_named", "ec_explicit", "ec_p384", "sm2",     "ed25519",
};

inline Octets certificate(const std::string &name) {
    return read_file(ZACERT_TEST_DATA "/certs/" + name + ".der");
}

using Lines = std::vector<std::string>;  // of a trace

// Rows of data: fields between bars; "#" begins a line of comment.
using Row = std::vector<std::string>;

inline std::vector<Row> rows_of(const std::string &name) {
    std::ifstream file(ZACERT_TEST_DATA "/certs/rows/" + name);
    std::vector<Row> rows;
    for (std::string line; std::getline(file, line);) {
        if (line[0] == '#') {
            continue;
        }
        rows.emplace_back();
        for (size_t bar = 0; bar != std::string::npos;) {
            bar = line.find('|');
            const std::string field = line.substr(0, bar);
            const size_t first = std::min(field.find_first_not_of(' '), field.size());
            rows.back().push_back(field.substr(first, field.find_last_not_of(' ') + 1 - first));
            line.erase(0, bar == std::string::npos ? bar : bar + 1);
        }
    }
    EXPECT_FALSE(rows.empty()) << name;
    return rows;
}

inline uint32_t number(const std::string &field) {
    return static_cast<uint32_t>(std::stoul(field));
}

inline Octets octets_of(std::string_view text) {
    return Octets(text.begin(), text.end());
}

inline std::string plain_hex(std::span<const uint8_t> octets) {
    std::string hex = to_hex(octets);
    std::erase(hex, ' ');
    return hex;
}

class Context {
  public:
    Context() { EXPECT_EQ(ZACert_CreateCertEncodeCtx(&handle_), 0u); }
    ~Context() { EXPECT_EQ(ZACert_DestroyCertEncodeCtx(handle_), 0u); }
    Context(const Context &) = delete;
    Context &operator=(const Context &) = delete;

    operator void *() const { return handle_; }
    cert::Certificate *operator->() const { return &**this; }
    cert::Certificate &operator*() const { return *static_cast<cert::Certificate *>(handle_); }

    uint32_t decode(const Octets &der) const {
        return ZACert_DecodeCert(handle_, der.data(), static_cast<uint32_t>(der.size()));
    }
    uint32_t set(int32_t id, const Octets &value) const {
        return ZACert_SetCertAttributeChar(handle_, id, value.data(),
                                           static_cast<int32_t>(value.size()));
    }
    uint32_t set(int32_t id, std::string_view text) const { return set(id, octets_of(text)); }
    Octets get(int32_t id, uint32_t *status = nullptr) const {
        return two_calls(
            [&](uint8_t *out, uint32_t *len) {
                return ZACert_GetCertAttributeChar(handle_, id, out, len);
            },
            status);
    }
    std::string hex(int32_t id) const { return to_hex(get(id)); }
    std::string text(int32_t id) const {
        const Octets value = get(id);
        return {value.begin(), value.end()};
    }
    uint32_t count_private() const {
        uint32_t index = 0;
        EXPECT_EQ(ZACert_GetCertAttributePrivate(handle_, &index, nullptr, nullptr, nullptr,
                                                 nullptr, nullptr),
                  0u);
        return index;
    }
    // "OID CRITICAL VALUE"
    std::string private_extension(uint32_t index) const {
        uint32_t oid_len = 0;
        uint32_t value_len = 0;
        uint32_t critical = 0;
        const auto get = [&](uint8_t *oid, uint8_t *value) {
            EXPECT_EQ(ZACert_GetCertAttributePrivate(handle_, &index, oid, &oid_len, &critical,
                                                     value, &value_len),
                      0u);
        };
        get(nullptr, nullptr);
        Octets oid(oid_len);
        Octets value(value_len);
        get(oid.data(), value.data());
        return plain_hex(oid) + " " + std::to_string(critical) + " " + plain_hex(value);
    }

  private:
    void *handle_ = nullptr;
};

inline Octets join(const std::vector<Octets> &parts) {
    Octets whole;
    for (const Octets &part : parts) {
        whole.insert(whole.end(), part.begin(), part.end());
    }
    return whole;
}

inline Octets tlv(uint8_t identifier, const Octets &content) {
    const size_t size = content.size();
    Octets header{identifier, 0x82, static_cast<uint8_t>(size >> 8), static_cast<uint8_t>(size)};
    if (size < 0x80) {
        header = {identifier, static_cast<uint8_t>(size)};
    }
    return join({header, content});
}

// The children of an element of less than 64 KiB; where its content begins is told by the first
// octets.
inline std::vector<Octets> children(const Octets &element) {
    const auto header = [&](size_t at) {
        return element[at + 1] < 0x80 ? 2u : element[at + 1] - 0x7Eu;
    };
    std::vector<Octets> parts;
    for (size_t at = header(0); at < element.size();) {
        size_t size = header(at) == 2 ? element[at + 1] : 0u;
        for (size_t i = 2; i < header(at); ++i) {
            size = size << 8 | element[at + i];
        }
        const auto first = element.begin() + static_cast<std::ptrdiff_t>(at);
        parts.emplace_back(first, first + static_cast<std::ptrdiff_t>(header(at) + size));
        at += parts.back().size();
    }
    return parts;
}

// A real certificate in pieces that can be changed, left out and added to. The names are the places
// of the fields from version 2 on.
struct Parts {
    enum { kVersion, kSerial, kAlgorithm, kIssuer, kValidity, kSubject, kKey, kExtensions };

    std::vector<Octets> tbs;
    std::vector<Octets> behind;
    std::vector<Octets> extensions;

    explicit Parts(const std::string &name) {
        behind = children(certificate(name));
        tbs = children(behind.front());
        behind.erase(behind.begin());
        if (tbs.size() > kExtensions) {
            extensions = children(children(tbs.back()).front());
            tbs.pop_back();
        }
    }
    Octets tbs_der() const {
        std::vector<Octets> fields = tbs;
        if (!extensions.empty()) {
            fields.push_back(tlv(0xA3, tlv(0x30, join(extensions))));
        }
        return tlv(0x30, join(fields));
    }
    Octets der() const { return tlv(0x30, join({tbs_der(), join(behind)})); }
};

}  // namespace za::test
