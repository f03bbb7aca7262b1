// The attributes of a CRL by number.
#pragma once

#include "request/za_crl_context.hpp"
#include "runtime/attribute_table.hpp"

namespace za::request {

const AttributeTable<Crl> &crl_attributes();

// ZACert_SetCrlAttributeChar
Status set_crl_attribute(Crl &crl, int32_t type, Bytes value);

// An attribute of the entry added last needs one.
Status need_entry(const Crl &crl);

}  // namespace za::request
