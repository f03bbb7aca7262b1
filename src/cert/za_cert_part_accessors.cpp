#include "cert/za_cert_part_accessors.hpp"

#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_cert"};

}  // namespace

namespace za::cert {

// A first walk counts, a second one writes.
Status join_units(Name &name, uint32_t kind, Bytes &out) {
    constexpr std::string_view kJoint = ",OU=";
    size_t size = 0;
    size_t num_units = 0;
    for (auto *entry = name.entries.first(); entry != nullptr; entry = entry->nextEntry) {
        if (entry->attrKind == kind) {
            size += bytes_of(entry->attrValue).size() + kJoint.size();
            ++num_units;
        }
    }
    if (num_units <= 1) {
        out = names::first_of_kind(name.entries, kind);
        return Status::ok;
    }
    Octets joined;
    ZA_PASS(joined.allocate(size - kJoint.size()));
    uint8_t *place = joined.data();
    std::string_view joint;
    for (auto *entry = name.entries.first(); entry != nullptr; entry = entry->nextEntry) {
        if (entry->attrKind == kind) {
            place = put(put(place, bytes_of(joint)), bytes_of(entry->attrValue));
            joint = kJoint;
        }
    }
    name.joined_units.take(std::move(joined));
    out = name.joined_units.bytes();
    return Status::ok;
}

Status text_of_name(Name &name, Bytes &out) {
    if (!name.text_made) {
        Octets text;
        if (names::get_dn(name.entries.first(), text) != Status::ok) {
            trace.note("======>Get ZI_GetDN Len");
            out = {};
            return Status::ok;
        }
        name.text.take(std::move(text));
        name.text_made = true;
    }
    out = name.text.bytes();
    return Status::ok;
}

Status replace_string_types(Name &name, Bytes value) {
    if (value.size() > kStringTypes) {
        return trace.fail(Status::general);
    }
    put(name.string_types.data(), value);
    return Status::ok;
}

}  // namespace za::cert
