// Requests and responses as a whole.
#pragma once

#include "names/za_low_name.hpp"
#include "ocsp/za_ocsp_base.hpp"
#include "ocsp/za_ocsp_entry.hpp"

namespace za::ocsp {

// Certificates one behind the other.
Status join(Bytes before, Bytes more, Octets &out);

// What was encoded stays, so that a signature is made once.
template <class Message>
Status hand_out_encoded(Message &message, uint8_t *out, uint32_t *out_len) {
    if (message.encoded.empty()) {
        asn1::Builder built;
        Octets der;
        ZA_PASS(write(message, built));
        ZA_PASS(built.finish(der));
        message.encoded.take(std::move(der));
    }
    hand_out(message.encoded.bytes(), out, out_len);
    return Status::ok;
}

}  // namespace za::ocsp
