// The attributes of a certificate by number.
#pragma once

#include "cert/za_cert_context.hpp"
#include "runtime/attribute_table.hpp"

namespace za::cert {

const AttributeTable<Certificate> &attributes();

// ZACert_SetCertAttributeChar
Status set_attribute(Certificate &cert, int32_t type, Bytes value);

}  // namespace za::cert
