// The attributes of a request by number.
#pragma once

#include "request/za_csr_context.hpp"
#include "runtime/attribute_table.hpp"

namespace za::request {

const AttributeTable<Csr> &csr_attributes();

// ZACert_SetCsrAttributeChar
Status set_csr_attribute(Csr &csr, int32_t type, Bytes value);

}  // namespace za::request
