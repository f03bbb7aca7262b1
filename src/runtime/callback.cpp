#include "runtime/callback.hpp"

namespace za {

Status call(const TraceSource &trace, const CryptSlot &slot, Bytes in, size_t room, Status too_long,
            Secret &out) {
    if (!fits_u32(in.size()) || !fits_u32(room)) {
        return trace.fail(Status::length);
    }
    Secret buffer;
    ZA_PASS(buffer.value.allocate(room));
    const std::span<uint8_t> place = buffer.value.span();
    uint32_t len = to_u32(place.size());
    // No octets have an address too: functions may refuse NULL.
    const uint8_t nothing = 0;
    ZA_PASS(slot.call([&](ZA_CryptFunc function, void *block) {
        return function(in.empty() ? &nothing : in.data(), to_u32(in.size()), place.data(), &len,
                        block);
    }));
    if (len > place.size()) {
        return trace.fail(too_long);
    }
    // What a function left behind its result is nobody's, but may be a piece of a secret.
    wipe(place.data() + len, place.size() - len);
    buffer.value.truncate(len);
    out = std::move(buffer);
    return Status::ok;
}

}  // namespace za
