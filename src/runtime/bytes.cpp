#include "runtime/bytes.hpp"

#include "runtime/trace.hpp"

#include <string.h>

namespace {

constexpr za::TraceSource trace{".\\src\\za_low"};

}  // namespace

namespace za {

Status Octets::allocate(size_t size) {
    Octets fresh;
    if (size > 0) {
        if (fits_u32(size)) {
            fresh.data_ = static_cast<uint8_t *>(
                ZAPR_Malloc(__FILE_NAME__, __LINE__, static_cast<uint32_t>(size)));
        }
        if (fresh.data_ == nullptr) {
            return trace.fail(Status::memory);
        }
        fresh.size_ = size;
    }
    swap(fresh);
    return Status::ok;
}

Status Octets::assign(Bytes bytes) {
    // Before the old octets go: the new ones may be a piece of them.
    Octets fresh;
    ZA_PASS(fresh.allocate(bytes.size()));
    put(fresh.data_, bytes);
    swap(fresh);
    return Status::ok;
}

void hand_out(Bytes bytes, uint8_t *out, uint32_t *out_len) {
    *out_len = to_u32(bytes.size());
    if (out != nullptr) {
        put(out, bytes);
    }
}

void wipe(void *secret, size_t size) noexcept {
    if (size > 0) {
        explicit_bzero(secret, size);
    }
}

}  // namespace za
