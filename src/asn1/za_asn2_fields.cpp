#include "asn1/za_asn2_fields.hpp"

#include <zacert.h>

namespace za::asn1 {

Status take_field(const TraceSource &trace, Children &fields, uint8_t identifier, Element &out,
                  const char *missing) {
    Element field;
    if (!fields.next(field)) {
        return missing == nullptr ? trace.fail(Status::invalid_item)
                                  : trace.fail(Status::invalid_item, missing);
    }
    if (field.octets[0] != identifier) {
        return trace.fail(Status::type);
    }
    out = field;
    return Status::ok;
}

bool take_optional(Children &fields, uint8_t identifier, Element &out) {
    Children rest = fields;
    Element field;
    if (!rest.next(field) || field.octets[0] != identifier) {
        return false;
    }
    out = field;
    fields = rest;
    return true;
}

Status read_elements(const TraceSource &trace, const Element &in, Children &out) {
    Implicit found;
    ZA_TRY(ZAsn1_ReadImplicit, read_implicit(in, found));
    if (!found.constructed) {
        return trace.fail(Status::type);
    }
    out = found.children;
    return Status::ok;
}

Status open_field(const TraceSource &trace, Children &fields, uint8_t identifier, Children &out) {
    Element field;
    ZA_PASS(take_field(trace, fields, identifier, field));
    return read_elements(trace, field, out);
}

Status end_of(const TraceSource &trace, const Children &fields) {
    return fields.empty() ? Status::ok : trace.fail(Status::type);
}

}  // namespace za::asn1
