#include <zacert.h>

#include "crypto/za_crypt_pkcs12.hpp"
#include "runtime/trace.hpp"

#include <algorithm>
#include <cstring>

namespace {

constexpr za::TraceSource trace{".\\src\\za_crypt_pkcs12"};

}  // namespace

namespace za::crypto {

Status add_pad(Bytes in, Octets &out) {
    if (in.size() > kMostText) {
        return trace.fail(Status::memory, "ZAPR_Malloc");
    }
    Octets padded;
    ZA_TRY_AS("ZAPR_Malloc", padded.allocate(padded_size(in.size())));
    const size_t count = padded.size() - in.size();
    std::fill_n(put(padded.data(), in), count, static_cast<uint8_t>(count));
    out = std::move(padded);
    return Status::ok;
}

// Nothing but the last octet decides: callers depend on texts padded in other ways being taken.
Status remove_pad(Bytes in, Bytes &text) {
    if (in.empty() || in.back() >= in.size()) {
        return trace.fail(Status::length, "------>ZA_PKCS12_DecPad  Err");
    }
    text = in.first(in.size() - in.back());
    return Status::ok;
}

}  // namespace za::crypto

using za::Status;
namespace crypto = za::crypto;

uint32_t ZA_PKCS12_AddPad(const uint8_t *in, uint32_t inLen, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(outLen));
        if (inLen > 0) {
            ZA_PASS(trace.need(in));
        }
        za::Wiped<za::Octets> padded;
        ZA_PASS(crypto::add_pad({in, inLen}, padded.value));
        za::hand_out(padded.value.bytes(), out, outLen);
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_DecPad(const uint8_t *in, uint32_t inLen, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(outLen));
        if (inLen > 0) {
            ZA_PASS(trace.need(in));
        }
        za::Bytes text;
        ZA_PASS(crypto::remove_pad({in, inLen}, text));
        // The caller's two places may overlap.
        if (out != nullptr && !text.empty()) {
            std::memmove(out, text.data(), text.size());
        }
        *outLen = za::to_u32(text.size());
        return Status::ok;
    });
}
