#include "pkcs7/za_pkcs7_callback.hpp"

#include <algorithm>

namespace za::pkcs7 {

Status run(const TraceSource &trace, const CryptSlot &slot, Bytes in, size_t room, Status too_long,
           Secret &out) {
    constexpr size_t kLeastRoom = 4096;
    return call(trace, slot, in, std::max(room, kLeastRoom), too_long, out);
}

}  // namespace za::pkcs7
