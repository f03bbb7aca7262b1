// Key structures as DER in one block of exactly their size: nothing secret is left in pieces.
#pragma once

#include "asn1/za_asn2_writer.hpp"
#include "keys/za_ext_number.hpp"
#include "runtime/trace.hpp"

namespace za::keys {

// Runs over a structure twice: first it counts, then it writes. Without a place it counts.
class DerWriter {
  public:
    DerWriter() = default;
    explicit DerWriter(uint8_t *place) : place_(place) {}

    size_t size() const { return size_; }

    void raw(Bytes octets) {
        if (place_ != nullptr) {
            put(place_ + size_, octets);
        }
        size_ += octets.size();
    }

    void element(uint8_t identifier, Bytes content) {
        header(identifier, content.size());
        raw(content);
    }

    // `content` writes what stands inside.
    template <class Content>
    void wrapped(uint8_t identifier, const Content &content) {
        DerWriter counted;
        content(counted);
        header(identifier, counted.size());
        content(*this);
    }

    // INTEGER of a field's significant octets; 02 00 for a field of zeros.
    void number(Bytes field) {
        const Bytes magnitude = significant(field);
        const uint8_t sign_octet[] = {0};
        wrapped(ZA_DER_ID_INTEGER, [&](DerWriter &content) {
            if (!magnitude.empty() && magnitude[0] >= 0x80) {
                content.raw(sign_octet);
            }
            content.raw(magnitude);
        });
    }

    void integer(uint32_t value) {
        element(ZA_DER_ID_INTEGER, asn1::IntegerContent(value).octets());
    }

  private:
    void header(uint8_t identifier, size_t length) {
        const uint32_t checked = to_u32(length);
        if (place_ != nullptr) {
            asn1::put_header(place_ + size_, identifier, checked);
        }
        size_ += 1 + asn1::length_octets_for(checked);
    }

    uint8_t *place_ = nullptr;
    size_t size_ = 0;
};

// `structure` writes it into the DerWriter it is given, each time the same octets.
template <class Structure>
Status write_der(const Structure &structure, Octets &out) {
    DerWriter counted;
    structure(counted);
    Octets der;
    ZA_PASS(der.allocate(counted.size()));
    DerWriter writer(der.data());
    structure(writer);
    out = std::move(der);
    return Status::ok;
}

}  // namespace za::keys
