// The fields of a structure, one after the other.
#pragma once

#include "asn1/za_asn2_reader.hpp"
#include "runtime/trace.hpp"

namespace za::asn1 {

// The next field, which must be there (121) and have this identifier octet (122). `missing` is the
// line of one that is not there, where it has one of its own.
Status take_field(const TraceSource &trace, Children &fields, uint8_t identifier, Element &out,
                  const char *missing = nullptr);

// The next field when it has this identifier octet; else nothing is taken.
bool take_optional(Children &fields, uint8_t identifier, Element &out);

// The elements inside a context tag, or inside a SET.
Status read_elements(const TraceSource &trace, const Element &in, Children &out);

// The fields of the next one, which has this identifier octet.
Status open_field(const TraceSource &trace, Children &fields, uint8_t identifier, Children &out);

// Behind the last field nothing may stand (122).
Status end_of(const TraceSource &trace, const Children &fields);

}  // namespace za::asn1
