// Calling a callback that writes, and asking libcrypto what it wrote.
#pragma once

#include <zacert.h>

#include "support/bytes.hpp"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <openssl/evp.h>
#include <openssl/x509.h>

namespace za::test {

struct Written {
    int32_t code;
    Octets octets;
};

// A failure must write nothing, a success nothing beyond the room.
inline Written run(ZA_CryptFunc function, const Octets &in, void *context, uint32_t room) {
    Octets out(room + 1, 0xA5);
    uint32_t len = room;
    const auto in_len = static_cast<uint32_t>(in.size());
    const int32_t code = function(in.data(), in_len, out.data(), &len, context);
    EXPECT_EQ(out.back(), 0xA5);
    EXPECT_TRUE(code == 0 ? len <= room : len == room && out == Octets(room + 1, 0xA5));
    out.resize(std::min(len, room));
    return {code, out};
}

// libcrypto's verdict on a signature of the octets; `id` is SM2's identifier.
inline bool verifies(const Octets &spki, const EVP_MD *md, const Octets &in, const Octets &sig,
                     std::string_view id = {}) {
    const uint8_t *end = spki.data();
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(
        d2i_PUBKEY(nullptr, &end, static_cast<long>(spki.size())), EVP_PKEY_free);
    const std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)> context(
        EVP_PKEY_CTX_new(key.get(), nullptr), EVP_PKEY_CTX_free);
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> digest(EVP_MD_CTX_new(),
                                                                         EVP_MD_CTX_free);
    EVP_MD_CTX_set_pkey_ctx(digest.get(), context.get());
    const int id_len = static_cast<int>(id.size());
    return (id.empty() || EVP_PKEY_CTX_set1_id(context.get(), id.data(), id_len) == 1) &&
           EVP_DigestVerifyInit(digest.get(), nullptr, md, nullptr, key.get()) == 1 &&
           EVP_DigestVerify(digest.get(), sig.data(), sig.size(), in.data(), in.size()) == 1;
}

// Lines "code text" of a file below tests/data; at least one.
inline std::vector<std::pair<uint32_t, std::string>> cases_of(const std::string &name) {
    std::ifstream file(ZACERT_TEST_DATA "/" + name);
    std::vector<std::pair<uint32_t, std::string>> out;
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with('#')) {
            out.emplace_back(std::stoul(line), line.substr(line.find(' ') + 1));
        }
    }
    EXPECT_FALSE(out.empty()) << name;
    return out;
}

}  // namespace za::test
