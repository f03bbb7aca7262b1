#include "asn1/za_asn2_indefinite.hpp"

#include "asn1/za_asn2_header.hpp"
#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_asn2"};

}  // namespace

namespace za::asn1 {
namespace {

constexpr uint32_t kDeepest = 64;
constexpr uint8_t kIndefinite = 0x80;
constexpr uint8_t kConstructedOctetString = ZA_DER_ID_OCTETSTRING | kConstructed;

Status malformed() {
    return trace.fail(Status::indefinite);
}

// One BER element: `content` reaches to the end of the input when the length is indefinite.
struct BerElement {
    Bytes identifier;
    Bytes content;
    size_t header_size = 0;
    bool constructed = false;
    bool indefinite = false;
};

Status open_ber(Bytes in, BerElement &out) {
    Tag tag;
    if (read_tag(in, tag) != Status::ok || tag.octets == 0) {
        return malformed();
    }
    BerElement element;
    element.identifier = in.first(tag.octets);
    element.constructed = (in[0] & kConstructed) != 0;
    Length length;
    const Bytes rest = in.subspan(tag.octets);
    if (read_length(rest, length) != Status::ok || length.octets == 0) {
        return malformed();
    }
    element.header_size = size_t{tag.octets} + length.octets;
    element.content = rest.subspan(length.octets);
    element.indefinite = rest[0] == kIndefinite;
    if (element.indefinite) {
        if (!element.constructed) {
            return malformed();
        }
    } else if (length.value > element.content.size()) {
        return malformed();
    } else {
        element.content = element.content.first(length.value);
    }
    out = element;
    return Status::ok;
}

bool at_closing_pair(Bytes in) {
    return in.size() >= 2 && in[0] == 0 && in[1] == 0;
}

// Where the definite form goes: octets when there is a place for them, their number in any case.
struct Sink {
    uint8_t *place = nullptr;
    uint64_t size = 0;

    void add(Bytes octets) {
        if (place != nullptr) {
            place = put(place, octets);
        }
        size += octets.size();
    }
};

Status rewrite(Bytes in, uint32_t depth, Sink &sink, size_t &used);

// Behind the last child: a closing pair after an indefinite length, and only there.
Status close_children(const BerElement &element, Bytes rest, size_t &used) {
    if (element.indefinite != at_closing_pair(rest)) {
        return malformed();
    }
    used = element.content.size() - rest.size() + (element.indefinite ? 2 : 0);
    return Status::ok;
}

// The children of a constructed element; `used` counts the closing pair, where there is one.
Status rewrite_children(const BerElement &element, uint32_t depth, Sink &sink, size_t &used) {
    Bytes rest = element.content;
    while (!rest.empty() && !at_closing_pair(rest)) {
        size_t child = 0;
        ZA_PASS(rewrite(rest, depth + 1, sink, child));
        rest = rest.subspan(child);
    }
    return close_children(element, rest, used);
}

// The octets of an OCTET STRING that came in pieces; `used` as above. `folds` turns false, and
// nothing else counts, when a piece is no OCTET STRING.
Status fold_octet_string(const BerElement &element, uint32_t depth, Sink &sink, size_t &used,
                         bool &folds) {
    if (depth > kDeepest) {
        return malformed();
    }
    Bytes rest = element.content;
    while (!rest.empty() && !at_closing_pair(rest)) {
        BerElement piece;
        ZA_PASS(open_ber(rest, piece));
        size_t piece_used = piece.content.size();
        if (piece.identifier[0] == ZA_DER_ID_OCTETSTRING) {
            sink.add(piece.content);
        } else if (piece.identifier[0] == kConstructedOctetString) {
            ZA_PASS(fold_octet_string(piece, depth + 1, sink, piece_used, folds));
        } else {
            folds = false;
        }
        if (!folds) {
            return Status::ok;
        }
        rest = rest.subspan(piece.header_size + piece_used);
    }
    return close_children(element, rest, used);
}

// An element whose content is made by `content`, called once for its size and once to write it.
template <class Content>
Status put_element(Bytes identifier, Sink &sink, const Content &content) {
    Sink measure;
    ZA_PASS(content(measure));
    if (!fits_u32(measure.size)) {
        return malformed();
    }
    std::array<uint8_t, kMostLengthOctets + 1> header;
    const uint8_t *end = put_header(header.data(), 0, to_u32(measure.size));
    sink.add(identifier);
    sink.add(Bytes(header.data() + 1, end));
    if (sink.place == nullptr) {
        sink.size += measure.size;
        return Status::ok;
    }
    return content(sink);
}

// One element at the start of `in`; `used` is what it takes of the input.
Status rewrite(Bytes in, uint32_t depth, Sink &sink, size_t &used) {
    if (depth > kDeepest) {
        return malformed();
    }
    BerElement element;
    ZA_PASS(open_ber(in, element));
    if (!element.constructed) {
        used = element.header_size + element.content.size();
        sink.add(in.first(used));
        return Status::ok;
    }
    size_t content_used = 0;
    bool folds = element.identifier[0] == kConstructedOctetString;
    const auto as_octets = [&](Sink &to) {
        return fold_octet_string(element, depth, to, content_used, folds);
    };
    const auto as_children = [&](Sink &to) {
        return rewrite_children(element, depth, to, content_used);
    };
    if (folds) {
        Sink nowhere;
        ZA_PASS(as_octets(nowhere));
    }
    constexpr uint8_t kOctetStringIdentifier = ZA_DER_ID_OCTETSTRING;
    ZA_PASS(folds ? put_element(Bytes(&kOctetStringIdentifier, 1), sink, as_octets)
                  : put_element(element.identifier, sink, as_children));
    used = element.header_size + content_used;
    return Status::ok;
}

// Whether there is nothing to do: a definite length that accounts for the whole input.
Status is_definite(Bytes in, bool &out) {
    BerElement element;
    ZA_PASS(open_ber(in, element));
    out = !element.indefinite;
    if (out && element.header_size + element.content.size() != in.size()) {
        return malformed();
    }
    return Status::ok;
}

Status convert(Bytes in, Sink &sink) {
    bool definite = false;
    ZA_PASS(is_definite(in, definite));
    if (definite) {
        sink.add(in);
        return Status::ok;
    }
    size_t used = 0;
    ZA_PASS(rewrite(in, 1, sink, used));
    return used == in.size() ? Status::ok : malformed();
}

}  // namespace

Status definite_size(Bytes in, size_t &out) {
    Sink sink;
    ZA_PASS(convert(in, sink));
    out = sink.size;
    return Status::ok;
}

Status write_definite(Bytes in, uint8_t *out) {
    Sink sink{out};
    return convert(in, sink);
}

Status join_octet_string(Bytes element, Octets &out) {
    BerElement whole;
    ZA_PASS(open_ber(element, whole));
    size_t used = 0;
    bool folds = true;
    Sink measure;
    ZA_PASS(fold_octet_string(whole, 1, measure, used, folds));
    if (!folds) {
        return trace.fail(Status::type);
    }
    Octets joined;
    ZA_PASS(joined.allocate(measure.size));
    Sink sink{joined.data()};
    // An empty result has no block, and nothing is left to be written.
    if (!joined.empty()) {
        ZA_PASS(fold_octet_string(whole, 1, sink, used, folds));
    }
    out = std::move(joined);
    return Status::ok;
}

}  // namespace za::asn1

using za::Status;

uint32_t ZAsn1_IndefiniteToDefinite(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                    uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(in, outLen));
        if (inLen == 0) {
            return trace.fail(Status::general);
        }
        const za::Bytes input(in, inLen);
        size_t size = 0;
        ZA_PASS(za::asn1::definite_size(input, size));
        if (!za::fits_u32(size) || (out != nullptr && size > inLen)) {
            return trace.fail(Status::length);
        }
        if (out != nullptr) {
            ZA_PASS(za::asn1::write_definite(input, out));
        }
        *outLen = za::to_u32(size);
        return Status::ok;
    });
}
