// The setters and getters of what certificates, CRLs and requests have in common, for the rows of
// their attributes to name. Paths are pointers to members.
#pragma once

#include "cert/za_cert_parts.hpp"
#include "runtime/attribute_table.hpp"

namespace za::cert {

// The member of a member of a context.
template <auto First, auto... Rest>
auto &member(auto &object) {
    if constexpr (sizeof...(Rest) == 0) {
        return object.*First;
    } else {
        return member<Rest...>(object.*First);
    }
}

// ---- Plain values

template <auto... Path, class Context>
Status set_field(Context &context, const AttributeRow<Context> &, Bytes value) {
    return member<Path...>(context).assign(value);
}

template <auto... Path, class Context>
Status get_field(Context &context, const AttributeRow<Context> &, Bytes &out) {
    out = member<Path...>(context).bytes();
    return Status::ok;
}

template <auto Which, class Context>
void set_time(Context &context, int32_t value) {
    (context.*Which).set(value);
}

template <auto Which, class Context>
Status get_time(const Context &context, uint32_t &out) {
    int32_t seconds = 0;
    ZA_PASS((context.*Which).utc(seconds));
    out = static_cast<uint32_t>(seconds);
    return Status::ok;
}

// ---- Names

template <auto Which, uint32_t kStringType = 0, class Context>
Status add_entry(Context &context, const AttributeRow<Context> &row, Bytes value) {
    return (context.*Which).entries.append(row.kind, value, kStringType);
}

template <auto Which, class Context>
Status get_entry(Context &context, const AttributeRow<Context> &row, Bytes &out) {
    out = names::first_of_kind((context.*Which).entries, row.kind);
    return Status::ok;
}

// All organisational units, joined as in the text form of a name.
Status join_units(Name &name, uint32_t kind, Bytes &out);

template <auto Which, class Context>
Status get_units(Context &context, const AttributeRow<Context> &row, Bytes &out) {
    return join_units(context.*Which, row.kind, out);
}

// Made on the first request and kept.
Status text_of_name(Name &name, Bytes &out);

template <auto Which, class Context>
Status get_text(Context &context, const AttributeRow<Context> &, Bytes &out) {
    return text_of_name(context.*Which, out);
}

Status replace_string_types(Name &name, Bytes value);

template <auto Which, class Context>
Status set_string_types(Context &context, const AttributeRow<Context> &, Bytes value) {
    return replace_string_types(context.*Which, value);
}

}  // namespace za::cert
