// Files put together octet by octet from a line of text, and what is read in them as such a line:
// "R A+x B; D K*y+z" has two containers (D plain, R and E encrypted, H hex), two certificates, and
// a key with an attribute y inside it and z beside it. P is a key that is not encrypted.
#pragma once

#include <zacert.h>

#include "names/za_low_oid_catalogue.hpp"
#include "support/rows.hpp"
#include "support/trace.hpp"

#include <gtest/gtest.h>

namespace za::test::p12 {

inline const Octets kPassword{'a', 'b', 'c', '1', '2', '3'};
inline const Octets kAttributeType{0x2A, 0x03};

// Octets that are no number of iterations where damage makes them one.
struct Salts {
    Octets key = from_hex("E1*8");
    Octets container = from_hex("E2*8");
    Octets mac = from_hex("E3*3");
    uint32_t iterations = 1;
};

// Of so many octets, in the form of an ECPrivateKey. All secrets are of one octet.
inline Octets key_of(size_t size) {
    Octets key;
    for (size_t n = 0; key.size() < size; ++n) {
        key = sequence({from_hex("02(01)"), element(0x04, Octets(n, 0x5E))});
    }
    EXPECT_EQ(key.size(), size);
    return key;
}

// Q is in the container form, S what becomes of it; N has no point. ~116 is a key of that length,
// $601 one for RSA.
inline Octets key_named(const std::string &token) {
    const std::string container = "30(02(01) 06(2A811CCF5501822D) 13(5E*32) ";
    const bool sized = token[0] == '~' || token[0] == '$';
    return sized             ? key_of(number_of(token.substr(1)))
           : token[0] == 'Q' ? from_hex(container + "13(0A*32) 13(0B*32))")
           : token[0] == 'N' ? from_hex(container + "13(00*32) 13(00*32))")
           : token[0] == 'S'
               ? from_hex("30(02(01) 04(5E*32) A0(06(2A811CCF5501822D)) A1(03(0004 0A*32 0B*32)))")
               : key_of(token[0] == 'k' ? 117 : 116);
}

inline bool is_key(const std::string &token) {
    return std::string_view("KkPQSN~$").find(token[0]) != std::string_view::npos;
}

inline Octets certificate(char letter) {
    return element(0x30, {uint8_t(letter)});
}

inline Octets attribute_values(char letter) {
    return element(0x31, element(0x0C, {uint8_t(letter)}));
}

inline Octets attributes(uint8_t identifier, const std::string &token, char mark) {
    std::vector<Octets> all;
    for (size_t i = 1; i + 1 < token.size(); i += 2) {
        if (token[i] == mark) {
            all.push_back(
                sequence({element(0x06, kAttributeType), attribute_values(token[i + 1])}));
        }
    }
    return all.empty() ? Octets{} : element(identifier, join(all));
}

inline Octets object_id(Bytes oid) {
    return element(0x06, {oid.begin(), oid.end()});
}

inline Octets integer(uint32_t value) {
    return element(
        0x02, value < 0x80 ? Octets{uint8_t(value)} : Octets{uint8_t(value >> 8), uint8_t(value)});
}

// AlgorithmIdentifier, and what it makes of octets.
inline std::pair<Octets, Octets> encrypted(Bytes oid, const Octets &salt, uint32_t iterations,
                                           const Octets &plain) {
    ZA_PBE_RECORD with{oid.data(),  uint32_t(oid.size()),  kPassword.data(), 6,
                       salt.data(), uint32_t(salt.size()), iterations};
    return {sequence({object_id(oid), sequence({element(0x04, salt), integer(iterations)})}),
            two_calls([&](uint8_t *out, uint32_t *len) {
                return uint32_t(
                    ZA_EncryptFunc_Ref(plain.data(), uint32_t(plain.size()), out, len, &with));
            })};
}

inline Octets private_key_info(const std::string &token) {
    const Bytes type = token[0] == '$' ? Bytes(oid::kRsaEncryption) : Bytes(oid::kEcPublicKey);
    return sequence({from_hex("02(00)"), sequence({object_id(type), from_hex("05()")}),
                     element(0x04, key_named(token)), attributes(0xA0, token, '*')});
}

inline Octets encrypted_key(const std::string &token, const Salts &salts) {
    const auto [algorithm, cipher] = encrypted(oid::kPbeWithSha1And3KeyTripleDesCbc, salts.key,
                                               salts.iterations, private_key_info(token));
    return sequence({algorithm, element(0x04, cipher)});
}

inline Octets bag(const std::string &token, const Salts &salts) {
    const bool plain = token[0] == 'P';
    const Bytes type = plain           ? Bytes(oid::kKeyBag)
                       : is_key(token) ? Bytes(oid::kPkcs8ShroudedKeyBag)
                                       : Bytes(oid::kCertBag);
    const Octets value = element(0x04, certificate(token[0]));
    const Octets content = plain ? private_key_info(token)
                           : is_key(token)
                               ? encrypted_key(token, salts)
                               : sequence({object_id(oid::kX509Certificate), element(0xA0, value)});
    return sequence({object_id(type), element(0xA0, content), attributes(0x31, token, '+')});
}

inline Octets safe_contents(const std::string &tokens, const Salts &salts = {}) {
    std::vector<Octets> bags;
    for (const std::string &token : tokens.empty() ? Row{} : split(tokens, ' ')) {
        bags.push_back(bag(token, salts));
    }
    return sequence(bags);
}

inline Octets data_info(const Octets &content) {
    return sequence({object_id(oid::kData), element(0xA0, element(0x04, content))});
}

inline Octets container(const std::string &text, const Salts &salts) {
    if (text[0] == 'H') {
        return from_hex(text.substr(1));
    }
    const Octets contents = safe_contents(text.size() < 2 ? "" : text.substr(2), salts);
    const Bytes how = text[0] == 'R' ? Bytes(oid::kPbeWithSha1And40BitRc2Cbc)
                                     : Bytes(oid::kPbeWithSha1And2KeyTripleDesCbc);
    const auto [algorithm, cipher] = encrypted(how, salts.container, salts.iterations, contents);
    const Octets info = sequence({object_id(oid::kData), algorithm, element(0x80, cipher)});
    return text[0] == 'D' ? data_info(contents)
                          : sequence({object_id(oid::kEncryptedData),
                                      element(0xA0, sequence({from_hex("02(00)"), info}))});
}

inline Octets mac_key(uint32_t digest, const Salts &salts) {
    Octets key(20);
    EXPECT_EQ(ZA_PKCS12_GenRandomFromPassword(digest, kPassword.data(), 6, salts.mac.data(),
                                              uint32_t(salts.mac.size()), 3, salts.iterations,
                                              key.data(), 20),
              0u);
    return key;
}

// The digest; behind it "!" for a MAC that is wrong, or "-" for one without its iterations.
inline Octets mac_data(const std::string &mac, const Salts &salts, const Octets &covered) {
    const uint32_t number = mac.starts_with("md2") ? 3 : mac.starts_with("md5") ? 5 : 7;
    const Bytes digest = mac == "sha256" ? Bytes(oid::kSha256)
                         : number == 3   ? Bytes(oid::kMd2)
                         : number == 5   ? Bytes(oid::kMd5)
                                         : Bytes(oid::kSha1);
    const Octets key = mac_key(number, salts);
    Octets value = two_calls([&](uint8_t *out, uint32_t *len) {
        return ZA_PKCS12_HMAC(number, key.data(), 20, covered.data(), uint32_t(covered.size()), out,
                              len);
    });
    value.back() ^= uint8_t{mac.ends_with('!')};
    return sequence(
        {sequence({sequence({object_id(digest), from_hex("05()")}), element(0x04, value)}),
         element(0x04, salts.mac), mac.ends_with('-') ? Octets{} : integer(salts.iterations)});
}

inline Octets file(const std::string &containers, const std::string &mac = "sha1",
                   const Salts &salts = {}) {
    std::vector<Octets> infos;
    for (const std::string &text : list_of(containers)) {
        infos.push_back(container(text, salts));
    }
    const Octets content = sequence(infos);
    return sequence(
        {integer(3), data_info(content), mac == "none" ? Octets{} : mac_data(mac, salts, content)});
}

class Context {
  public:
    Context() { created = ZA_PKCS12_CreateDecodePfx(&handle_); }
    ~Context() { EXPECT_EQ(ZA_PKCS12_DestroyDecodePFX(handle_), created == 0 ? 0u : 121u); }
    Context(const Context &) = delete;
    Context &operator=(const Context &) = delete;

    operator void *() const { return handle_; }
    uint32_t created = 0;

  private:
    void *handle_ = nullptr;
};

// The attributes that a getter gives.
template <class Get>
std::string marks(char mark, const Get &get) {
    std::string all;
    Octets type(200);
    Octets values(200);
    uint32_t type_len = 0;
    uint32_t len = 0;
    for (uint32_t i = 1; get(type.data(), &type_len, values.data(), &len, i) == 0; ++i) {
        values.resize(len);
        all += {mark, char(values.back())};
        values.resize(200);
    }
    return all;
}

inline Octets key_in(void *ctx, uint32_t *result = nullptr) {
    return two_calls(
        [&](uint8_t *out, uint32_t *len) { return ZA_PKCS12_GetPrivateKey(ctx, out, len); },
        result);
}

inline Octets certificate_in(void *ctx, uint32_t number) {
    return two_calls([&](uint8_t *out, uint32_t *len) {
        return ZA_PKCS12_GetCertificate(ctx, out, len, number);
    });
}

inline std::string key_attributes(void *ctx) {
    return marks('*', [=](auto... x) { return ZA_PKCS12_GetPrivateKey_Attribute(ctx, x...); }) +
           marks('+', [=](auto... x) { return ZA_PKCS12_GetPrivateKeyBag_Attribute(ctx, x...); });
}

inline std::string certificate_attributes(void *ctx, uint32_t number) {
    return marks(
        '+', [=](auto... x) { return ZA_PKCS12_GetCertificateBag_Attribute(ctx, x..., number); });
}

// Everything in a context.
inline std::string seen(void *ctx) {
    const Octets key = key_in(ctx);
    const std::string name = key == key_named("K") ? "K" : key == key_named("k") ? "k" : "-";
    std::string all = name + key_attributes(ctx);
    for (uint32_t i = 1; !certificate_in(ctx, i).empty(); ++i) {
        all += {' ', char(certificate_in(ctx, i).back())};
        all += certificate_attributes(ctx, i);
    }
    return all;
}

template <class Argument>
Argument given(void *ctx, uint32_t *n) {
    static uint8_t room[4096] = {1};
    if constexpr (std::is_same_v<Argument, void *>) {
        return ctx;
    } else if constexpr (std::is_same_v<Argument, uint32_t *>) {
        return n;
    } else if constexpr (std::is_pointer_v<Argument>) {
        return room;
    } else {
        return 1;
    }
}

template <class Argument>
Trail spoil(Argument &argument, const Trail &missing) {
    if constexpr (std::is_pointer_v<Argument>) {
        argument = nullptr;
    } else {
        argument = Argument(-1);
    }
    return std::is_same_v<Argument, void *> ? Trail{"------------>pTmpPfx == NULL"} : missing;
}

// Every argument in turn is missing, or negative.
template <class... Arguments>
void expect_refused(uint32_t (*function)(Arguments...), void *ctx,
                    const std::set<size_t> &optional = {}, uint32_t code = 121,
                    const Trail &missing = {"------------>ZACERT_InvalidItem"}) {
    for (size_t i = 0; i < sizeof...(Arguments); ++i) {
        uint32_t n = 7;
        size_t at = 0;
        Trail expected;
        std::tuple<Arguments...> all{given<Arguments>(ctx, &n)...};
        const auto spoil_one = [&](auto &...argument) {
            ((at++ == i ? void(expected = spoil(argument, missing)) : void()), ...);
        };
        std::apply(spoil_one, all);
        const TraceRecord trace;
        if (!optional.contains(i)) {
            EXPECT_EQ(std::apply(function, all), code) << i;
            EXPECT_EQ(trace.failures(), expected);
            EXPECT_TRUE(n == 7 || n == 300) << "the verdict alone is told of failures";
        }
    }
}

}  // namespace za::test::p12
