#include "runtime/anybuf.hpp"

#include "runtime/trace.hpp"

#include <algorithm>

namespace {

constexpr za::TraceSource trace{".\\src\\za_low"};

}  // namespace

// Programs are linked against these layouts.
static_assert(sizeof(void *) != 8 || (sizeof(Anybuf) == 40 && offsetof(Anybuf, next) == 24));
static_assert(sizeof(void *) != 8 || (sizeof(ZA_AlgorithmIdentifier) == 48 &&
                                      offsetof(ZA_AlgorithmIdentifier, parameters) == 8));

namespace za {
namespace {

void free_chain(Anybuf *record) {
    while (record != nullptr) {
        Anybuf *next = record->next;
        ZAPR_Free(record->data);
        ZAPR_Free(record);
        record = next;
    }
}

}  // namespace

Chain::~Chain() {
    free_chain(head_);
}

void Chain::append(Anybuf *record) {
    record->next = nullptr;
    record->prev = tail_;
    (tail_ == nullptr ? head_ : tail_->next) = record;
    tail_ = record;
}

void Chain::append(Chain &&rest) {
    if (rest.empty()) {
        return;
    }
    rest.head_->prev = tail_;
    (tail_ == nullptr ? head_ : tail_->next) = rest.head_;
    tail_ = rest.tail_;
    rest.release();
}

void clear(Anybuf &record) {
    ZAPR_Free(record.data);
    record = {};
}

void copy(Anybuf &dst, const Anybuf &src) {
    if (&dst == &src) {
        return;
    }
    Octets octets;
    // The copy reports nothing: without memory it simply holds no octets.
    const bool copied = octets.assign(bytes_of(src)) == Status::ok;
    dst = src;
    dst.dataLen = copied ? to_u32(octets.size()) : 0;
    dst.data = octets.release();
}

Status set_value(Anybuf &record, Bytes bytes) {
    Octets octets;
    // A value of no octets still owns a block, so that it differs from no value.
    ZA_PASS(octets.allocate(std::max<size_t>(bytes.size(), 1)));
    put(octets.data(), bytes);
    record.data = octets.release();
    record.dataLen = to_u32(bytes.size());
    record.unusedBits = 0;
    record.bufFlag = 0;
    record.next = nullptr;
    record.prev = nullptr;
    return Status::ok;
}

}  // namespace za

using za::Status;

uint32_t ZI_InitAnybuf(Anybuf *record) {
    return trace.exported([&] {
        if (record != nullptr) {
            *record = {};
        }
        return Status::ok;
    });
}

uint32_t ZI_ClearAnybuf(Anybuf *record) {
    return trace.exported([&] {
        if (record != nullptr) {
            za::clear(*record);
        }
        return Status::ok;
    });
}

uint32_t ZI_FreeAnybuf(Anybuf *record) {
    return trace.exported([&] {
        za::free_chain(record);
        return Status::ok;
    });
}

uint32_t ZI_CopyAnybuf(Anybuf *dst, const Anybuf *src) {
    return trace.exported([&] {
        if (dst != nullptr && src != nullptr) {
            za::copy(*dst, *src);
        }
        return Status::ok;
    });
}

uint32_t ZI_SetAttributeCharValue(Anybuf *record, const uint8_t *bytes, uint32_t length) {
    return trace.exported([&] {
        ZA_PASS(trace.need(record, bytes));
        return za::set_value(*record, {bytes, length});
    });
}

uint32_t ZI_CopyAlgorithm(ZA_AlgorithmIdentifier *dst, const ZA_AlgorithmIdentifier *src) {
    return trace.exported([&] {
        if (dst != nullptr && src != nullptr) {
            dst->algorithm = src->algorithm;
            za::copy(dst->parameters, src->parameters);
        }
        return Status::ok;
    });
}

uint32_t ZI_GetNumberFromImpOrExplicit(const Anybuf *record, uint32_t *number) {
    return trace.exported([&] {
        ZA_PASS(trace.need(record, number));
        const za::Bytes octets = za::bytes_of(*record);
        if (octets.empty()) {
            return Status::unknown_selector;
        }
        *number = octets[0] & 0x1Fu;
        return Status::ok;
    });
}
