#include "text/za_pem_base64.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <endian.h>
#include <string_view>

namespace za::text {
namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr uint8_t kPad = '=';

constexpr uint8_t character(uint32_t sextet) {
    return static_cast<uint8_t>(kAlphabet[sextet]);
}

// Two characters for every twelve bits: half the lookups of one character at a time.
constexpr auto kPairs = [] {
    std::array<std::array<uint8_t, 2>, 4096> pairs{};
    for (uint32_t bits = 0; bits < pairs.size(); ++bits) {
        pairs[bits] = {character(bits >> 6), character(bits & 63)};
    }
    return pairs;
}();

// The sextet of a character, or one of two values that no sextet has.
constexpr uint8_t kPadding = 64;
constexpr uint8_t kStray = 65;

constexpr auto kSextets = [] {
    std::array<uint8_t, 256> sextets{};
    sextets.fill(kStray);
    for (uint32_t sextet = 0; sextet < kAlphabet.size(); ++sextet) {
        sextets[character(sextet)] = static_cast<uint8_t>(sextet);
    }
    sextets[kPad] = kPadding;
    return sextets;
}();

// The same, shifted to each of the four places of a quartet; a bit above all of them marks what is
// no sextet, so that four lookups and one comparison take a quartet in.
constexpr uint32_t kNoSextet = 1U << 24;

constexpr auto kPlaces = [] {
    std::array<std::array<uint32_t, 256>, 4> places{};
    for (uint32_t place = 0; place < 4; ++place) {
        for (size_t i = 0; i < kSextets.size(); ++i) {
            places[place][i] =
                kSextets[i] < kPadding ? uint32_t{kSextets[i]} << (18 - 6 * place) : kNoSextet;
        }
    }
    return places;
}();

struct Quartet {
    uint32_t bits = 0;
    uint32_t pads = 0;

    uint32_t octets() const { return 3 - std::min(pads, uint32_t{3}); }
};

// Takes the next four characters that are not strays, wherever they stand.
bool take_quartet(Bytes &text, Quartet &out) {
    Quartet quartet;
    size_t kept = 0;
    size_t at = 0;
    for (; kept < 4 && at < text.size(); ++at) {
        const uint8_t sextet = kSextets[text[at]];
        if (sextet != kStray) {
            quartet.bits = quartet.bits << 6 | (sextet & 63);
            quartet.pads += sextet == kPadding ? 1 : 0;
            ++kept;
        }
    }
    text = text.subspan(at);
    out = quartet;
    return kept == 4;
}

uint8_t *put_quartet(uint8_t *to, const Quartet &quartet) {
    for (uint32_t i = 0; i < quartet.octets(); ++i) {
        *to++ = static_cast<uint8_t>(quartet.bits >> (16 - 8 * i));
    }
    return to;
}

// Takes quartets as long as they have neither strays nor pads, as nearly all have.
uint8_t *decode_clean(Bytes &text, uint8_t *to) {
    size_t at = 0;
    for (; text.size() - at >= 4; at += 4) {
        const uint32_t bits = kPlaces[0][text[at]] | kPlaces[1][text[at + 1]] |
                              kPlaces[2][text[at + 2]] | kPlaces[3][text[at + 3]];
        if (bits >= kNoSextet) {
            break;
        }
        *to++ = static_cast<uint8_t>(bits >> 16);
        *to++ = static_cast<uint8_t>(bits >> 8);
        *to++ = static_cast<uint8_t>(bits);
    }
    text = text.subspan(at);
    return to;
}

uint64_t load_big_endian(const uint8_t *from) {
    uint64_t number = 0;
    std::memcpy(&number, from, sizeof number);
    return be64toh(number);
}

uint8_t *put_pair(uint8_t *to, uint64_t bits) {
    return put(to, kPairs[bits]);
}

uint8_t *encode_rest(Bytes rest, uint8_t *to) {
    if (rest.size() == 1) {
        to = put_pair(to, uint32_t{rest[0]} << 4);
        *to++ = kPad;
        *to++ = kPad;
    } else if (rest.size() == 2) {
        to = put_pair(to, uint32_t{rest[0]} << 4 | rest[1] >> 4);
        *to++ = character((rest[1] & 15U) << 2);
        *to++ = kPad;
    }
    return to;
}

}  // namespace

uint8_t *base64_encode(Bytes octets, uint8_t *to) {
    size_t at = 0;
    for (; octets.size() - at >= sizeof(uint64_t); at += 6) {
        const uint64_t bits = load_big_endian(octets.data() + at);
        to = put_pair(to, bits >> 52);
        to = put_pair(to, bits >> 40 & 0xFFF);
        to = put_pair(to, bits >> 28 & 0xFFF);
        to = put_pair(to, bits >> 16 & 0xFFF);
    }
    for (; octets.size() - at >= 3; at += 3) {
        const uint32_t bits =
            uint32_t{octets[at]} << 16 | uint32_t{octets[at + 1]} << 8 | octets[at + 2];
        to = put_pair(to, bits >> 12);
        to = put_pair(to, bits & 0xFFF);
    }
    return encode_rest(octets.subspan(at), to);
}

uint64_t base64_decoded_size(Bytes text) {
    uint64_t size = 0;
    for (Quartet quartet; quartet.pads == 0 && take_quartet(text, quartet);) {
        size += quartet.octets();
    }
    return size;
}

uint8_t *base64_decode(Bytes text, uint8_t *to) {
    for (Quartet quartet; quartet.pads == 0;) {
        to = decode_clean(text, to);
        if (!take_quartet(text, quartet)) {
            break;
        }
        to = put_quartet(to, quartet);
    }
    return to;
}

}  // namespace za::text
