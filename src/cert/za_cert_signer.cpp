#include "cert/za_cert_signer.hpp"

#include <algorithm>

namespace za::cert {
namespace {

constexpr uint32_t kLongestSignature = 10240;

}  // namespace

Status Signer::install(const TraceSource &trace, ZACertSignFunc function, const uint8_t *key,
                       int32_t key_len) {
    if (key != nullptr && key_len >= 1) {
        Wiped<Octets> copy;
        if (copy.value.assign({key, static_cast<size_t>(key_len)}) != Status::ok) {
            return trace.fail(Status::memory);
        }
        key_.value.swap(copy.value);
    }
    function_ = function;
    return Status::ok;
}

Status Signer::call(const TraceSource &trace, Bytes tbs, uint8_t *out, uint32_t &len,
                    const uint8_t *key) const {
    // The interface hands the copy out as it hands out any context: not const.
    const int32_t code =
        function_(tbs.data(), to_u32(tbs.size()), out, &len, const_cast<uint8_t *>(key));
    if (code != 0) {
        return trace.fail(static_cast<Status>(code), "------>ZACertSignFunc");
    }
    return Status::ok;
}

Status Signer::sign_certificate(const TraceSource &trace, Bytes tbs, Octets &out) const {
    constexpr uint32_t kAnnouncedRoom = 512;
    if (function_ == nullptr) {
        return trace.fail(Status::sign_function_not_set);
    }
    uint32_t len = 0;
    ZA_PASS(call(trace, tbs, nullptr, len, nullptr));

    // More room than announced: a function that does not heed it harms nobody.
    Octets signature;
    ZA_PASS(signature.allocate(kLongestSignature));
    len = kAnnouncedRoom;
    ZA_PASS(call(trace, tbs, signature.data(), len, key_.value.bytes().data()));
    if (len > kLongestSignature) {
        return trace.fail(Status::invalid_signature_length);
    }
    signature.truncate(len);
    out = std::move(signature);
    return Status::ok;
}

Status Signer::sign_list(const TraceSource &trace, Bytes tbs, Octets &out) const {
    if (function_ == nullptr) {
        return trace.fail(Status::sign_function_not_set);
    }
    uint32_t announced = 0;
    ZA_PASS(call(trace, tbs, nullptr, announced, key_.value.bytes().data()));
    if (announced >= kLongestSignature) {
        return trace.fail(Status::invalid_signature_length);
    }
    // An announcement of nothing still gets an address, so that it is not taken for the question.
    Octets signature;
    ZA_PASS(signature.allocate(std::max<uint32_t>(announced, 1)));
    uint32_t len = announced;
    ZA_PASS(call(trace, tbs, signature.data(), len, key_.value.bytes().data()));
    if (len > announced) {
        return trace.fail(Status::invalid_signature_length);
    }
    signature.truncate(len);
    out = std::move(signature);
    return Status::ok;
}

}  // namespace za::cert
