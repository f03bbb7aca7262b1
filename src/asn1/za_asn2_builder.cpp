#include "asn1/za_asn2_builder.hpp"

#include "asn1/za_asn2_time.hpp"
#include "asn1/za_asn2_writer.hpp"
#include "runtime/trace.hpp"

#include <algorithm>

namespace {

constexpr za::TraceSource trace{".\\src\\za_asn2"};

}  // namespace

namespace za::asn1 {

void Builder::reserve(size_t size) {
    if (status_ != Status::ok || size <= block_.size()) {
        return;
    }
    Octets larger;
    status_ = larger.allocate(size);
    if (status_ == Status::ok) {
        put(larger.data(), bytes());
        clear(0);
        block_ = std::move(larger);
    }
}

uint8_t *Builder::grow(size_t size) {
    constexpr size_t kFirstBlock = 1024;
    if (size > block_.size() - size_) {
        const size_t needed = size_ + size;
        reserve(fits_u32(needed) ? std::max(std::min<size_t>(2 * needed, UINT32_MAX), kFirstBlock)
                                 : needed);
    }
    if (status_ != Status::ok) {
        return nullptr;
    }
    uint8_t *const place = block_.data() + size_;
    size_ += size;
    return place;
}

void Builder::raw(Bytes octets) {
    if (uint8_t *place = grow(octets.size()); place != nullptr) {
        put(place, octets);
    }
}

void Builder::element(uint8_t identifier, Bytes content) {
    if (!fits_u32(content.size())) {
        status_ = trace.fail(Status::length);
        return;
    }
    const uint32_t length = to_u32(content.size());
    if (uint8_t *place = grow(1 + length_octets_for(length) + content.size()); place != nullptr) {
        put(put_header(place, identifier, length), content);
    }
}

void Builder::integer(uint32_t value) {
    element(ZA_DER_ID_INTEGER, IntegerContent(value).octets());
}

void Builder::integer(Bytes magnitude) {
    if (magnitude.empty() || magnitude[0] < 0x80) {
        element(ZA_DER_ID_INTEGER, magnitude);
        return;
    }
    constexpr uint8_t kSign[] = {0};
    wrapped(ZA_DER_ID_INTEGER, [&] {
        raw(kSign);
        raw(magnitude);
    });
}

void Builder::boolean(bool value) {
    const uint8_t octet = value ? 0xFF : 0x00;
    element(ZA_DER_ID_BOOLEAN, Bytes(&octet, 1));
}

void Builder::null() {
    element(ZA_DER_ID_NULL, {});
}

void Builder::bit_string(Bytes bits, uint32_t unused_bits) {
    const auto unused = static_cast<uint8_t>(unused_bits);
    const auto content = [&] {
        raw(Bytes(&unused, 1));
        raw(bits);
    };
    wrapped(ZA_DER_ID_BITSTRING, content, bits.size() + 1);
}

Status Builder::utc_time(int32_t time) {
    TimeText text;
    ZA_TRY(ZAsn1_Low_ItoCTime, time_to_text(time, text));
    element(ZA_DER_ID_UTCTIME, bytes_of(std::string_view(text.data(), text.size())));
    return Status::ok;
}

Status Builder::generalized_time(int32_t time) {
    TimeText text;
    ZA_TRY(ZAsn1_Low_ItoCTime, time_to_text(time, text));
    element(ZA_DER_ID_GENERALIZEDTIME, bytes_of(std::string_view(text.data(), text.size())));
    return Status::ok;
}

Builder::Open Builder::begin(uint8_t identifier, size_t expected) {
    const uint32_t header = 1 + length_octets_for(to_u32(std::min<size_t>(expected, UINT32_MAX)));
    const Open open{size_, header};
    if (uint8_t *place = grow(header); place != nullptr) {
        *place = identifier;
    }
    return open;
}

// The content moves when its length takes more octets, or fewer, than were left for it.
void Builder::end(const Open &open) {
    if (status_ != Status::ok) {
        return;
    }
    const size_t length = size_ - open.start - open.header;
    if (!fits_u32(length)) {
        status_ = trace.fail(Status::length);
        return;
    }
    const uint32_t header = 1 + length_octets_for(to_u32(length));
    if (header > open.header && grow(header - open.header) == nullptr) {
        return;
    }
    uint8_t *const start = block_.data() + open.start;
    if (header != open.header) {
        std::memmove(start + header, start + open.header, length);
    }
    put_header(start, *start, to_u32(length));
    size_ = open.start + header + length;
}

Status Builder::finish(Octets &out) {
    ZA_PASS(status_);
    clear(size_);
    block_.truncate(size_);
    out = std::move(block_);
    block_ = Octets();
    size_ = 0;
    return Status::ok;
}

Status Builder::finish(Chain &out) {
    Octets der;
    ZA_PASS(finish(der));
    if (der.empty()) {
        return Status::ok;
    }
    Chain record;
    ZA_TRY(ZAsn1_Low_CreateAnyBuf, create_record(record));
    record.head()->dataType = tag_of(*der.data());
    record.head()->dataLen = to_u32(der.size());
    record.head()->data = der.release();
    out.append(std::move(record));
    return Status::ok;
}

}  // namespace za::asn1
