// The setters and getters that the rows of a certificate's attributes name.
#pragma once

#include "cert/za_cert_context.hpp"
#include "cert/za_cert_part_accessors.hpp"

namespace za::cert {

using Row = AttributeRow<Certificate>;

void set_version(Certificate &cert, int32_t value);
Status get_version(const Certificate &cert, uint32_t &out);

// ---- Names

Status set_issuer_der(Certificate &cert, const Row &, Bytes value);

// ---- Keys

Status set_curve(Certificate &cert, const Row &, Bytes value);

// ---- Extensions

// What setting a value does to the criticality of its extension.
enum class Criticality { kept, cleared, raised };

template <auto Extension, Criticality kCriticality = Criticality::kept>
void mark_set(Certificate &cert) {
    ExtensionState &state = (cert.*Extension).state;
    state.set = true;
    if constexpr (kCriticality != Criticality::kept) {
        state.critical = kCriticality == Criticality::raised ? 1 : 0;
    }
    cert.extensions_changed = true;
}

template <auto Extension>
Status set_critical(Certificate &cert, const Row &, Bytes value) {
    (cert.*Extension).state.critical = value[0];
    return Status::ok;
}

template <auto Extension>
Status get_critical(Certificate &cert, const Row &, Bytes &out) {
    const ExtensionState &state = (cert.*Extension).state;
    out = state.present() ? Bytes(&state.critical, 1) : Bytes{};
    return Status::ok;
}

template <auto Extension, auto Value, Criticality kCriticality = Criticality::kept>
Status set_value(Certificate &cert, const Row &, Bytes value) {
    ZA_PASS(((cert.*Extension).*Value).assign(value));
    mark_set<Extension, kCriticality>(cert);
    return Status::ok;
}

// 114, with the text that belongs to the row.
Status refuse_second_value(const Row &row);

template <auto Extension, auto Value, Criticality kCriticality = Criticality::kept>
Status set_value_once(Certificate &cert, const Row &row, Bytes value) {
    if (!((cert.*Extension).*Value).empty()) {
        return refuse_second_value(row);
    }
    return set_value<Extension, Value, kCriticality>(cert, row, value);
}

// A value that is too long is kept all the same; the result alone says so.
Status set_key_usage(Certificate &cert, const Row &row, Bytes value);

Status add_purpose(Certificate &cert, const Row &, Bytes dotted);
Status set_policy(Certificate &cert, const Row &row, Bytes oid);

// Qualifiers may come before the policy they qualify, which alone sets the extension.
Status add_cps_uri(Certificate &cert, const Row &, Bytes uri);

template <auto Which>
Status add_directory_entry(Certificate &cert, const Row &row, Bytes value) {
    ZA_PASS((cert.*Which).directory.append(row.kind, value));
    mark_set<Which>(cert);
    return Status::ok;
}

template <auto Which>
Status get_directory_entry(Certificate &cert, const Row &row, Bytes &out) {
    out = names::first_of_kind((cert.*Which).directory, row.kind);
    return Status::ok;
}

Status set_other_name_tag(Certificate &cert, const Row &, Bytes value);
Status set_basic_constraints_critical(Certificate &cert, const Row &, Bytes value);
Status set_authority(Certificate &cert, const Row &, Bytes value);
Status get_authority(Certificate &cert, const Row &, Bytes &out);
Status add_distribution_point(Certificate &cert, const Row &, Bytes uri);
Status get_distribution_point(Certificate &cert, const Row &, Bytes &out);

Status append_access(Certificate &cert, AccessMethod method, Bytes uri);

template <AccessMethod kMethod>
Status add_access(Certificate &cert, const Row &, Bytes uri) {
    return append_access(cert, kMethod, uri);
}

Status add_authority_issuer_entry(Certificate &cert, const Row &row, Bytes value);

}  // namespace za::cert
