// The four kinds of contexts of OCSP through functions of one shape, and a function of the caller's
// that shows what it got.
#pragma once

#include <zacert.h>

#include "ocsp/za_ocsp_standard_response.hpp"
#include "pkcs7/za_pkcs7_context_support.hpp"
#include "support/handed.hpp"
#include "support/heap.hpp"

namespace za::test::ocsp {

using contexts::Context;

inline uint32_t size_of(const Octets &octets) {
    return uint32_t(octets.size());
}

// Long values as "<LENGTH>".
inline std::string shown(const Octets &value) {
    return value.size() > 24 ? "<" + std::to_string(value.size()) + ">"
                             : contexts::plain_hex(value);
}

// What the function is told to do, and how often it was called.
struct Told {
    uint32_t code = 0;
    uint32_t claims = UINT32_MAX;  // octets, where not those that were written
    uint32_t calls = 0;
};
inline Told told;

// The first octet of its block, which it spoils, or AA without one; the first octet and the length
// of what it got; an octet 5A more at every call.
inline int32_t show(const uint8_t *in, uint32_t len, uint8_t *out, uint32_t *out_len, void *block) {
    auto *mark = static_cast<uint8_t *>(block);
    Octets shown{mark == nullptr ? uint8_t{0xAA} : *mark, in[0], uint8_t(len)};
    shown.insert(shown.end(), told.calls++, 0x5A);
    std::fill_n(mark, mark == nullptr ? 0 : 1, uint8_t{0});
    if (shown.size() <= *out_len) {
        std::ranges::copy(shown, out);
    }
    *out_len = told.claims == UINT32_MAX ? size_of(shown) : told.claims;
    return int32_t(told.code);
}

// "code=7" or "claims=600", or nothing; it goes on counting.
inline void tell(const std::string &what) {
    const Row pair = split(what + "=", '=');
    told.code = pair[0] == "code" ? number_of(pair[1]) : 0;
    told.claims = pair[0] == "claims" ? number_of(pair[1]) : UINT32_MAX;
}

using Install = uint32_t (*)(void *, ZA_CryptFunc, const uint8_t *, uint32_t);

struct Kind : contexts::Kind {
    int32_t first, last;  // identifiers; those of requests begin at 0, too
    contexts::Life decoding;
    Install sign, hash;
    uint32_t (*encode_entry)(void *, Anybuf **) = nullptr;
    uint32_t (*set_int)(void *, int32_t, int32_t) = nullptr;
    uint32_t (*get_int)(void *, int32_t, int32_t *) = nullptr;
    uint32_t (*add)(void *, const uint8_t *, uint32_t) = nullptr;
    uint32_t (*item)(void *, uint8_t *, uint32_t *, uint32_t) = nullptr;
};

// Contexts that were never made are no failure here.
template <auto Destroy>
uint32_t destroyed(void *context) {
    return context == nullptr ? 0 : Destroy(context);
}

#define ZA_OCSP_KIND(name, destroy, encode, first, last)                       \
    {{#name, 121, 121, {}},                                                    \
     {ZA_OCSP_CreateEncode##name, destroyed<ZA_OCSP_##destroy##Encode##name>}, \
     {ZA_OCSP_Set##name##AttributeChar, ZA_OCSP_Get##name##AttributeChar},     \
     {encode, ZA_OCSP_Decode##name},                                           \
     {},                                                                       \
     {}},                                                                      \
        first, last, {                                                         \
        ZA_OCSP_CreateDecode##name, ZA_OCSP_##destroy##Decode##name            \
    }
#define ZA_OCSP_NUMBERS(name) ZA_OCSP_Set##name##AttributeInt, ZA_OCSP_Get##name##AttributeInt
#define ZA_OCSP_MESSAGE(name) \
    nullptr, ZA_OCSP_NUMBERS(name), ZA_OCSP_Set##name##Single##name, ZA_OCSP_Get##name##Single##name

inline const Kind kKinds[]{
    {ZA_OCSP_KIND(RequestList, Destroy, nullptr, 15, 22), nullptr, ZA_OCSP_SetRequestListHashFunc,
     ZA_OCSP_EncodeRequestList},
    {ZA_OCSP_KIND(ResponseList, Destroy, nullptr, 23, 32), nullptr, ZA_OCSP_SetResponseListHashFunc,
     ZA_OCSP_EncodeResponseList, ZA_OCSP_NUMBERS(ResponseList)},
    {ZA_OCSP_KIND(Request, Destory, ZA_OCSP_EncodeRequest, 33, 45), ZA_OCSP_SetRequestSignFunc,
     nullptr, ZA_OCSP_MESSAGE(Request)},
    {ZA_OCSP_KIND(Response, Destory, ZA_OCSP_EncodeResponse, 46, 63), ZA_OCSP_SetResponseSignFunc,
     ZA_OCSP_SetResponseHashFunc, ZA_OCSP_MESSAGE(Response)}};
inline const Kind &kAsked = kKinds[0], &kAnswered = kKinds[1], &kRequest = kKinds[2],
                  &kResponse = kKinds[3];

// Identifiers of numbers, of whatever kind.
inline const std::set<int32_t> kNumbers{3, 4, 9, 23, 24, 33, 46, 47};

inline bool owns(const Kind &kind, int32_t id) {
    return (id >= kind.first && id <= kind.last) || (&kind == &kRequest && id >= 0 && id <= 14);
}

inline Octets item(const Kind &kind, void *context, uint32_t number) {
    return two_calls(
        [&](uint8_t *out, uint32_t *len) { return kind.item(context, out, len, number); });
}

// "IDENTIFIER=VALUE" of what is there, or "<LENGTH>", then entries and the status.
inline std::string seen(const Kind &kind, void *context) {
    std::string all;
    uint32_t count = 0;
    for (int32_t id = 0; id <= kind.last; ++id) {
        int32_t number = 0;
        if (owns(kind, id) && !kNumbers.contains(id)) {
            const Octets value = get(kind, context, id);
            all += value.empty() ? "" : " " + std::to_string(id) + "=" + shown(value);
        } else if (owns(kind, id)) {
            EXPECT_EQ(kind.get_int(context, id, &number), 0u);
            all += number == 0 ? "" : " " + std::to_string(id) + "=" + std::to_string(number);
        }
    }
    if (&kind == &kRequest) {
        EXPECT_EQ(ZA_OCSP_GetRequestSingleRequestNum(context, &count), 0u);
    } else if (&kind == &kResponse) {
        const auto &record = *static_cast<za::ocsp::Response *>(context)->basic;
        for (const Anybuf *one = record.data.responses; one != nullptr; one = one->next) {
            ++count;
        }
    } else if (&kind == &kAnswered) {
        uint32_t status = 0;
        EXPECT_EQ(ZA_OCSP_GetResponseListCertSatus(context, &status), 0u);
        all += " status " + std::to_string(status);
    }
    for (uint32_t i = 1; i <= count; ++i) {
        all += " [" + shown(item(kind, context, i)) + "]";
    }
    return all.empty() ? all : all.substr(1);
}

// The codes of damaged octets.
inline const std::set<uint32_t> kRefused{101, 102, 104, 105,        106,
                                         108, 121, 122, 0xFFFFFFFE, 0xFFFFFFFF};

constexpr uint8_t kBlock[]{0xC0, 0xFF, 0xEE, 0x5E, 0xC2, 0xE7, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66};

// "set | ID=VALUE ID=VALUE", "add | | OCTETS", "sign" and "hash" with "block" or nothing, "good",
// "revoked | TIME | REASON", "unknown | | OCTETS", "encode | what the function is told",
// "decode | | OCTETS" ("encoded": what was encoded last), which shows what is there then.
class Steps {
  public:
    explicit Steps(const Kind &kind) : kind_(kind) { told = {}; }

    uint32_t take(const Row &row, std::string &out) {
        const Octets octets = row[2] == "encoded" ? encoded_ : octets_of_cell(row[2]);
        const uint8_t *data = octets.empty() ? nullptr : octets.data();
        const uint8_t *block = row[1] == "block" ? kBlock : nullptr;
        return context_.created != 0 ? context_.created
               : row[0] == "encode"  ? encode(row[1], out)
               : row[0] == "decode"  ? decode(octets, out)
               : row[0] == "set"     ? set(split(row[1], ' '))
               : row[0] == "add"     ? kind_.add(context_, data, size_of(octets))
               : row[0] == "sign"    ? kind_.sign(context_, show, block, sizeof kBlock)
               : row[0] == "hash"    ? kind_.hash(context_, show, block, sizeof kBlock)
               : row[0] == "good"    ? ZA_OCSP_SetResponseList_CertStatusGood(context_)
               : row[0] == "unknown"
                   ? ZA_OCSP_SetResponseList_CertStatusUnInfo(context_, data, size_of(octets))
                   : ZA_OCSP_SetResponseList_CertStatusRevoke(context_, number_of(row[1]), 7, data,
                                                              size_of(octets));
    }

  private:
    uint32_t set(const Row &pairs) const {
        uint32_t result = 0;
        for (size_t i = 0; result == 0 && i < pairs.size(); ++i) {
            const Row pair = split(pairs[i], '=');
            const int32_t id = std::stoi(pair.at(0));
            result = kNumbers.contains(id)
                         ? kind_.set_int(context_, id, std::stoi(pair.at(1)))
                         : contexts::set(kind_, context_, id, from_hex(pair.at(1)));
        }
        return result;
    }
    uint32_t encode(const std::string &what, std::string &out) {
        tell(what);
        uint32_t result = 0;
        if (kind_.encode_entry == nullptr) {
            result = context_.encode(encoded_);
        } else {
            const Handed made =
                handed([&](Anybuf **to) { return kind_.encode_entry(context_, to); });
            result = made.result;
            encoded_ = result == 0 ? from_hex(to_hex(made.record.get())) : Octets{};
        }
        out = to_hex(encoded_);
        return result;
    }
    uint32_t decode(const Octets &octets, std::string &out) const {
        const Context fresh(kind_);
        const uint32_t result = fresh.decode(octets);
        out = result == 0 ? seen(kind_, fresh) : "";
        return result;
    }

    const Kind &kind_;
    Context context_{kind_};
    Octets encoded_;
};

// "step | what | octets | result | what comes out | failures"; "new" begins again. The steps from
// one "new" to the next are taken again without memory: a lack of it is told, and never changes
// what comes out.
inline void expect_steps(const Kind &kind, const std::string &file) {
    const NoLeak no_leak;
    const NoSecret no_secret(kBlock);
    const auto expected = [](const Row &row) {
        return row[0] == "encode" ? to_hex(octets_of_cell(row[4])) : row[4];
    };
    std::vector<std::vector<Row>> stories;
    for (Row row : rows_of(file)) {
        row.resize(6);
        row[3] = row[3].empty() ? "0" : row[3];
        if (row[0] == "new") {
            stories.emplace_back();
        } else {
            stories.back().push_back(row);
        }
    }
    for (const std::vector<Row> &story : stories) {
        Steps steps(kind);
        for (const Row &row : story) {
            SCOPED_TRACE(row[0] + "|" + row[1] + "|" + row[2]);
            const TraceRecord trace;
            std::string out;
            EXPECT_EQ(steps.take(row, out), number_of(row[3]));
            EXPECT_EQ(out, expected(row));
            EXPECT_EQ(trace.failures(), list_of(row[5]));
        }
        expect_allocation_faults_survived([&] {
            Steps again(kind);
            for (const Row &row : story) {
                std::string out;
                const uint32_t result = again.take(row, out);
                if (result == 100 || result != number_of(row[3]) || out != expected(row)) {
                    return result == 100 ? 100u : 1u;
                }
            }
            return 0u;
        });
    }
}

// Decoding by rows, with damage and without memory.
inline void expect_contexts_decoded(const Kind &kind, const std::string &file) {
    expect_decoded(file, kRefused, [&](const Octets &in, std::string &out) {
        const Context context(kind);
        const uint32_t result = context.decode(in);
        out = result == 0 && out.empty() ? seen(kind, context) : out;
        return result;
    });
}

}  // namespace za::test::ocsp
