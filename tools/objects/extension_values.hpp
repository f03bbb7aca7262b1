// One reader per extension: from the octets of its value. Throws LibraryError.
#pragma once

#include <zacert.h>

#include "objects/certificate.hpp"

namespace tool {

ExtensionValue read_subject_key_identifier(View octets);
ExtensionValue read_key_usage(View octets);
ExtensionValue read_basic_constraints(View octets);
ExtensionValue read_authority_key_identifier(View octets);
ExtensionValue read_purposes(View octets);
ExtensionValue read_alternative_names(View octets);
ExtensionValue read_distribution_points(View octets);
ExtensionValue read_access_descriptions(View octets);
ExtensionValue read_policies(View octets);
ExtensionValue read_policy_mappings(View octets);
ExtensionValue read_policy_constraints(View octets);
ExtensionValue read_inhibit_any_policy(View octets);
ExtensionValue read_name_constraints(View octets);
ExtensionValue read_string(View octets);
ExtensionValue read_nothing(View octets);

// Of CRLs and their entries
ExtensionValue read_crl_number(View octets);
ExtensionValue read_issuing_distribution_point(View octets);
ExtensionValue read_reason(View octets);
ExtensionValue read_instant(View octets);
ExtensionValue read_identifier(View octets);

// Of the national certificate standard
ExtensionValue read_identity_numbers(View octets);

// Shared by those that name a point or reasons.
void read_point_name(const Anybuf &element, DistributionPoint &out);
std::vector<std::string> names_of_usages(View bits);
std::vector<std::string> names_of_reasons(View bits);

}  // namespace tool
