#include "base/der.hpp"
#include "base/elements.hpp"
#include "base/times.hpp"
#include "objects/extension_values.hpp"
#include "objects/names.hpp"
#include "objects/oid_names.hpp"

#include <array>

namespace tool {

namespace {

// CRLReason ::= ENUMERATED; 7 is not used.
constexpr auto kReasons = std::to_array<std::string_view>(
    {"unspecified", "keyCompromise", "cACompromise", "affiliationChanged", "superseded",
     "cessationOfOperation", "certificateHold", "reason7", "removeFromCRL", "privilegeWithdrawn",
     "aACompromise"});

bool flag(const Anybuf *element) {
    if (element == nullptr) {
        return false;
    }
    const Octets value = content(*element);
    return !value.empty() && value.front() != 0;
}

}  // namespace

ExtensionValue read_crl_number(View octets) {
    return CrlNumber{Integer(only_element(octets, ZA_DER_ID_INTEGER).content)};
}

ExtensionValue read_issuing_distribution_point(View octets) {
    // IssuingDistributionPoint ::= SEQUENCE { distributionPoint [0],
    //     onlyContainsUserCerts [1] BOOLEAN DEFAULT FALSE,
    //     onlyContainsCACerts [2] BOOLEAN DEFAULT FALSE, onlySomeReasons [3],
    //     indirectCRL [4] BOOLEAN DEFAULT FALSE,
    //     onlyContainsAttributeCerts [5] BOOLEAN DEFAULT FALSE }
    IssuingDistributionPoint value;
    Fields fields(sequence(record_of(octets)));
    if (const Anybuf *name = fields.optional(constructed(0))) {
        read_point_name(*name, value.point);
    }
    value.only_user_certificates = flag(fields.optional(primitive(1)));
    value.only_ca_certificates = flag(fields.optional(primitive(2)));
    if (const Anybuf *reasons = fields.optional(primitive(3))) {
        value.point.reasons = names_of_reasons(bits(content(*reasons)));
    }
    value.indirect = flag(fields.optional(primitive(4)));
    value.only_attribute_certificates = flag(fields.optional(primitive(5)));
    return value;
}

ExtensionValue read_reason(View octets) {
    const uint64_t reason = number(only_element(octets, ZA_DER_ID_ENUMERATED).content);
    return Reason{reason < kReasons.size() ? std::string(kReasons[reason])
                                           : "reason" + std::to_string(reason)};
}

ExtensionValue read_instant(View octets) {
    return Instant{read_time(only_element(octets, ZA_DER_ID_GENERALIZEDTIME))};
}

ExtensionValue read_identifier(View octets) {
    return Identifier{named(object_id_text(only_element(octets, ZA_DER_ID_OBJECTID).content))};
}

}  // namespace tool
