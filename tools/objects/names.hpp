// Strings, distinguished names and GeneralNames out of their DER.
#pragma once

#include <zacert.h>

#include "base/der.hpp"
#include "objects/certificate.hpp"

namespace tool {

Text read_text(const Anybuf &element);

Name read_name(const Anybuf &element);
Rdn read_rdn(Chain attributes);

// Name constraints write an address together with its mask.
enum class Address { plain, with_mask };

GeneralName read_general_name(const Anybuf &element, Address address = Address::plain);
GeneralNames read_general_names(Chain names);

}  // namespace tool
