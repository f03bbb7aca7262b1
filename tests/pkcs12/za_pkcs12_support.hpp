// Every function of bags and containers called by rows: the types of its arguments tell what its
// cells are.
#pragma once

#include <zacert.h>

#include "pkcs7/za_pkcs7_context_support.hpp"
#include "support/heap.hpp"

#include <algorithm>
#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <utility>

namespace za::test::pkcs12 {

using Word = uintptr_t;

template <class T>
constexpr char shape_of() {
    return std::is_same_v<T, const uint8_t *> ? 'i'  // octets; their length is the next argument
           : std::is_same_v<T, uint8_t *>     ? 'o'  // room; the next is where their length goes
           : std::is_same_v<T, uint32_t *>    ? 'n'
           : std::is_same_v<T, uint32_t>      ? 'v'
           : std::is_same_v<T, void **>       ? 'c'  // a context that is made, or handed out
           : std::is_same_v<T, void *>        ? 'h'
                                              : 'f';
}

struct Exported {
    std::string whole_name;
    std::string name;   // without the name of the library
    std::string shape;  // one letter of each argument
    std::function<uint32_t(const std::vector<Word> &)> call;

    bool starts(const std::string &text) const { return name.starts_with(text); }
};

template <class... Arguments>
Exported exported(const std::string &name, uint32_t (*function)(Arguments...)) {
    const auto call = [function]<size_t... at>(const std::vector<Word> &words,
                                               std::index_sequence<at...>) {
        return function((Arguments)(words.at(at))...);
    };
    return {
        name,
        name.substr(std::string("ZA_PKCS12_").size()),
        {shape_of<Arguments>()...},
        [call](const auto &words) { return call(words, std::index_sequence_for<Arguments...>()); }};
}

#define ZA_NAMED(f) exported("ZA_PKCS12_" #f, ZA_PKCS12_##f)
#define ZA_CODED(f) ZA_NAMED(Encode##f), ZA_NAMED(Decode##f)
#define ZA_FAMILY(f, destroy)                                                           \
    ZA_NAMED(CreateEncode##f), ZA_NAMED(CreateDecode##f), ZA_NAMED(destroy##Encode##f), \
        ZA_NAMED(destroy##Decode##f), ZA_CODED(f)
#define ZA_ONE_SHOT(f) ZA_NAMED(Gen##f), ZA_NAMED(Parse##f)
#define ZA_BOTH(f, a) ZA_NAMED(Set##f##a), ZA_NAMED(Get##f##a)
#define ZA_BOTH2(f, a, b) ZA_BOTH(f, a), ZA_BOTH(f, b)
#define ZA_BOTH3(f, a, b, c) ZA_BOTH2(f, a, b), ZA_BOTH(f, c)
#define ZA_INSTALL(f, a, b) ZA_NAMED(Set##f##a), ZA_NAMED(Set##f##b)

// The functions of a family stand behind its name.
inline const std::vector<Exported> kFunctions{
    ZA_CODED(Parameter),
    ZA_CODED(Mac),
    ZA_ONE_SHOT(KeyBag),
    ZA_ONE_SHOT(EncKeyBag),
    ZA_ONE_SHOT(CertBag),
    ZA_ONE_SHOT(CrlBag),
    ZA_ONE_SHOT(SecretContentsBag),
    ZA_FAMILY(KeyBag, Destroy),
    ZA_BOTH3(KeyBag, Version, Algorithm, Key),
    ZA_NAMED(GetKeyBagAttributeNum),
    ZA_BOTH(KeyBag, Attribute),
    ZA_FAMILY(EncKeyBag, Destory),
    ZA_BOTH3(EncKeyBag, Algo, Parameter, EncKey),
    ZA_FAMILY(CertBag, Destory),
    ZA_BOTH(CertBag, ID),
    ZA_FAMILY(CrlBag, Destory),
    ZA_BOTH2(CrlBag, ID, Crl),
    ZA_FAMILY(SecretContentsBag, Destory),
    ZA_BOTH2(SecretContentsBag, ID, Contents),
    ZA_FAMILY(SafeBag, Destory),
    ZA_BOTH2(SafeBag, OID, Content),
    ZA_NAMED(GetSafeBagAttributeNum),
    ZA_BOTH(SafeBag, Attribute),
    ZA_FAMILY(SafeContents, Destory),
    ZA_NAMED(GetSafeContents_SafeBagNum),
    ZA_BOTH(SafeContents, _SafeBag),
    ZA_FAMILY(ContentInfoOfDataType, Destory),
    ZA_BOTH(ContentInfoOfDataType, _SafeContent),
    ZA_FAMILY(ContentInfoOfEncryptedType, Destory),
    ZA_BOTH2(ContentInfoOfEncryptedType, _SafeContent, _DesAlgorithm),
    exported("ZA_PKCs12_SetContentInfoOfEncryptedType_DesParameter",
             ZA_PKCs12_SetContentInfoOfEncryptedType_DesParameter),
    ZA_NAMED(GetContentInfoOfEncryptedType_DesParameter),
    ZA_INSTALL(ContentInfoOfEncryptedType, _EncContentFunc, _DecContentFunc),
    ZA_FAMILY(ContentInfoOfEnvelopedType, Destory),
    ZA_BOTH3(ContentInfoOfEnvelopedType, _SafeContent, _DesAlgorithm, _DesParameter),
    ZA_INSTALL(ContentInfoOfEnvelopedType, _EncContentFunc, _EncContentKey),
    ZA_NAMED(SetContentInfoOfEnvelopedType_RecipientInfo),
    ZA_FAMILY(AuthSafeOfDataType, Destory),
    ZA_BOTH3(AuthSafeOfDataType, _ContentInfo, _DigestAlgorithm, _MacParameter),
    ZA_INSTALL(AuthSafeOfDataType, _GenMacFunc, _ParseMacFunc),
    ZA_NAMED(GetAuthSafeOfDataType_MACVerifyResult),
    ZA_FAMILY(AuthSafeOfSignedType, Destory),
    ZA_BOTH2(AuthSafeOfSignedType, _ContentInfo, _DigestAlgorithm),
    ZA_BOTH3(AuthSafeOfSignedType, _SignerInfo, _Cert, _Crl)};

inline const Exported &find(const std::string &name) {
    static std::map<std::string, const Exported *> by_name;
    for (size_t i = by_name.size(); i < kFunctions.size(); ++i) {
        by_name[kFunctions[i].name] = &kFunctions[i];
    }
    return *by_name.at(name);
}

// What a function of the caller's is told to do, and how often it was called.
struct Told {
    uint32_t code = 0;
    uint32_t claims = 0;  // octets, where not those that were written
    uint32_t calls = 0;
};
inline Told told;

// Complements octets by its block, which it spoils, and fills all its room.
inline int32_t crypt(const uint8_t *in, uint32_t len, uint8_t *out, uint32_t *out_len,
                     void *block) {
    auto *octet = static_cast<uint8_t *>(block);
    const uint8_t mark = octet == nullptr ? 0xFF : *octet;
    EXPECT_GE(*out_len, std::max<uint32_t>(len, 4096));
    std::transform(in, in + len, out, [&](uint8_t x) { return uint8_t(x ^ mark); });
    std::fill_n(out + len, *out_len - len, uint8_t{0x5E});
    std::fill_n(octet, octet == nullptr ? 0 : 1, uint8_t{0});
    ++told.calls;
    *out_len = told.claims == 0 ? len : told.claims;
    return int32_t(told.code);
}

constexpr uint32_t kUntouched = 0x77777777;

// Cells in order: one of octets and their length, one of any other number, "crypt" or "-".
struct Call {
    Call(const Exported &called, void *context, const Row &cells, void *part = nullptr)
        : function(called), numbers(called.shape.size(), kUntouched) {
        const std::string &shape = function.shape;
        auto cell = cells.begin();
        for (size_t i = 0; i < shape.size(); ++i) {
            const bool length = shape[i] == 'v' && i > 0 && shape[i - 1] == 'i';
            if (shape[i] == 'i') {
                given.push_back(octets_of_cell(*cell++));
                given.back().shrink_to_fit();
                given.back().reserve(1);
            }
            words.push_back(shape[i] == 'i'   ? Word(given.back().data())
                            : length          ? given.back().size()
                            : shape[i] == 'v' ? number_of(*cell++)
                            : shape[i] == 'n' ? Word(&numbers[i])
                            : shape[i] == 'h' ? Word(i == 0 ? context : part)
                            : shape[i] == 'c' ? Word(&handed)
                            : shape[i] == 'f' ? Word(*cell++ == "-" ? nullptr : crypt)
                                              : 0);
        }
    }

    // First for the lengths, then with room of exactly those.
    uint32_t run() {
        uint32_t result = function.call(words);
        const std::vector<uint32_t> lengths = numbers;
        const bool failed = result != 0;
        for (size_t i = 0; i < words.size(); ++i) {
            EXPECT_TRUE(function.shape[i] != 'n' || failed == (numbers[i] == kUntouched));
            if (function.shape[i] == 'o' && !failed) {
                words[i] = Word(rooms.emplace_back(numbers[i + 1]).data());
            }
        }
        result = failed || rooms.empty() ? result : function.call(words);
        EXPECT_EQ(numbers, lengths);
        return result;
    }

    // Hex, "-" where there are no octets, "#NUMBER".
    Row values() const {
        Row all;
        auto room = rooms.begin();
        for (size_t i = 0; i < words.size(); ++i) {
            if (function.shape[i] == 'o') {
                const std::string hex = contexts::plain_hex(*room++);
                all.push_back(hex.empty() ? "-" : hex);
            } else if (function.shape[i] == 'n' && (i == 0 || function.shape[i - 1] != 'o')) {
                all.push_back("#" + std::to_string(numbers[i]));
            }
        }
        return all;
    }

    const Exported &function;
    std::vector<uint32_t> numbers;
    std::deque<Octets> given;
    std::deque<Octets> rooms;
    std::vector<Word> words;
    void *handed = nullptr;
};

class Structure {
  public:
    explicit Structure(const std::string &family, const std::string &side = "Encode")
        : family_(family), side_(side) {
        created = find("Create" + side + family).call({Word(&handle_)});
    }
    ~Structure() {
        const std::string destroy = family_ == "KeyBag" ? "Destroy" : "Destory";
        const uint32_t result = find(destroy + side_ + family_).call({Word(handle_)});
        EXPECT_EQ(result, created == 0 ? 0u : 121u);
    }
    Structure(const Structure &) = delete;
    Structure &operator=(const Structure &) = delete;

    operator void *() const { return handle_; }
    const std::string &family() const { return family_; }
    uint32_t created = 0;

    // A function of the family; its name is given without what follows from that.
    uint32_t operator()(const std::string &name, const Row &cells, Row *values = nullptr,
                        void *part = nullptr) const {
        Call call(find(name), handle_, cells, part);
        const uint32_t result = call.run();
        if (values != nullptr) {
            *values = result == 0 ? call.values() : Row{};
        }
        return result;
    }

    // The caller's octets are gone when the fields are read.
    uint32_t decode(Octets der) const {
        const std::vector<Word> words{Word(handle_), Word(der.data()), der.size()};
        const uint32_t result = created != 0 ? created : find("Decode" + family_).call(words);
        std::ranges::fill(der, uint8_t{0});
        return result;
    }

    // What all getters give: of lists up to the last.
    std::string seen() const {
        std::string all;
        uint32_t most = 0;
        for (const Exported &function : kFunctions) {
            const bool numbered = function.shape.ends_with('v');
            const bool counted = function.name.ends_with("Attribute");
            if (!function.starts("Get" + family_) ||
                function.shape.find('c') != std::string::npos) {
                continue;
            }
            for (uint32_t i = 1; i == 1 || numbered; ++i) {
                Row cells{std::to_string(i)};
                Row values{"-"};
                if (counted && i > most) {
                    break;
                }
                const uint32_t result = (*this)(function.name, cells, &values);
                const bool none = numbered && values == Row{"-"};
                most = function.name.ends_with("Num") ? number_of(values[0].substr(1)) : most;
                values = result == 0 ? values : Row{"!" + std::to_string(result)};
                for (const std::string &value : none ? Row{} : values) {
                    all += (all.empty() ? "" : "; ") + value;
                }
                if (none) {
                    break;
                }
            }
        }
        return all;
    }

  private:
    std::string family_;
    std::string side_;
    void *handle_ = nullptr;
};

}  // namespace za::test::pkcs12
