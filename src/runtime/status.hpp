// The result of everything that can fail.
#pragma once

#include <cstdint>

namespace za {

// The codes of the public table, and three results that stand outside it.
enum class [[nodiscard]] Status : uint32_t{
    ok = 0,
    unknown_selector = 1,
    memory = 100,
    length = 101,
    length_not_equal = 102,
    time_format = 103,
    invalid_time_end = 104,
    tag = 106,
    invalid_signature_length = 107,
    general = 108,
    certificate_not_end = 109,
    attribute_not_supported = 110,
    crl_not_end = 111,
    csr_not_end = 112,
    item_missing = 113,
    attribute_already_set = 114,
    invalid_time = 115,
    dn_not_equal = 116,
    time_out_of_range = 117,
    invalid_signature_algorithm = 118,
    sign_function_not_set = 119,
    private_key = 120,
    invalid_item = 121,
    type = 122,
    indefinite = 123,
    rsa_public_key = 124,
    digest = 125,
    crypt = 126,
    rsa_private_key = 127,
    verify = 128,
    invalid_algorithm = 139,
    text_not_representable = 0xFFFFFFFE,
    text_invalid = 0xFFFFFFFF,
};

}  // namespace za
