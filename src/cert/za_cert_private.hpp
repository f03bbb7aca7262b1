// Adding to the list of extensions that have no attribute of their own.
#pragma once

#include "runtime/status.hpp"

#include <cstdint>

namespace za::cert {

struct PrivateArguments {
    const uint8_t *oid;
    int32_t oid_len;
    uint32_t critical;
    const uint8_t *value;
    int32_t value_len;
};

Status set_private(void *ctx, const PrivateArguments &arguments);  // ZACert_SetCertAttributePrivate

}  // namespace za::cert
