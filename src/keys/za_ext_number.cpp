#include "keys/za_ext_number.hpp"

#include "runtime/trace.hpp"

#include <algorithm>

namespace {

constexpr za::TraceSource trace{".\\src\\za_ext"};

}  // namespace

namespace za::keys {

Bytes significant(Bytes number) {
    const auto first = std::find_if(number.begin(), number.end(), [](uint8_t x) { return x != 0; });
    return {first, number.end()};
}

bool right_align(Bytes number, std::span<uint8_t> field) {
    const Bytes octets = significant(number);
    if (octets.size() > field.size()) {
        return false;
    }
    put(field.last(octets.size()).data(), octets);
    return true;
}

Status read_number(asn1::Children &fields, std::span<uint8_t> out) {
    asn1::Element field;
    if (!fields.next(field)) {
        return trace.fail(Status::item_missing);
    }
    asn1::Content number;
    ZA_TRY(ZAsn1_ReadIntegerArray, asn1::read_integer_array(field, number));
    if (!right_align(number.octets, out)) {
        return trace.fail(Status::length);
    }
    return Status::ok;
}

}  // namespace za::keys
