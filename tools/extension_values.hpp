// One reader per extension.
#pragma once

#include "certificate.hpp"
#include "context.hpp"

namespace tool {

// Where a value comes from: an attribute of the context, or the extension's own octets.
struct ExtensionSource {
    const Context &context;
    View octets;
};

ExtensionValue read_subject_key_identifier(const ExtensionSource &source);
ExtensionValue read_key_usage(const ExtensionSource &source);
ExtensionValue read_basic_constraints(const ExtensionSource &source);
ExtensionValue read_authority_key_identifier(const ExtensionSource &source);
ExtensionValue read_purposes(const ExtensionSource &source);
ExtensionValue read_alternative_names(const ExtensionSource &source);
ExtensionValue read_distribution_points(const ExtensionSource &source);
ExtensionValue read_access_descriptions(const ExtensionSource &source);
ExtensionValue read_policies(const ExtensionSource &source);
ExtensionValue read_policy_mappings(const ExtensionSource &source);
ExtensionValue read_policy_constraints(const ExtensionSource &source);
ExtensionValue read_inhibit_any_policy(const ExtensionSource &source);
ExtensionValue read_name_constraints(const ExtensionSource &source);
ExtensionValue read_string(const ExtensionSource &source);
ExtensionValue read_nothing(const ExtensionSource &source);

}  // namespace tool
