// PEM: DER between two lines of text, as Base64 in lines of 64 characters.
#pragma once

#include "runtime/bytes.hpp"
#include "runtime/status.hpp"

#include <cstdint>

namespace za::text {

// The functions of this family tell every failure by this result.
constexpr int32_t kFailure = -1;

// The lines around the Base64, without their ends; an empty one is not written.
struct PemFrame {
    Bytes header;
    Bytes footer;
};

// Every line ends in CR LF; without a frame the result is bare Base64. No octets make no text.
Status der_to_pem(Bytes der, const PemFrame &frame, Octets &out);

// Takes bare Base64 too. Status::text_invalid: the text begins a frame and does not finish it.
Status pem_to_der(Bytes text, Octets &out);

}  // namespace za::text
