#include "objects/extension_values.hpp"

#include "base/der.hpp"
#include "objects/names.hpp"
#include "objects/oid_names.hpp"

#include <array>
#include <span>

namespace tool {

namespace {

using BitNames = std::span<const std::string_view>;

constexpr auto kUsages = std::to_array<std::string_view>(
    {"digitalSignature", "nonRepudiation", "keyEncipherment", "dataEncipherment", "keyAgreement",
     "keyCertSign", "cRLSign", "encipherOnly", "decipherOnly"});

constexpr auto kReasons = std::to_array<std::string_view>(
    {"unused", "keyCompromise", "cACompromise", "affiliationChanged", "superseded",
     "cessationOfOperation", "certificateHold", "privilegeWithdrawn", "aACompromise"});

// Bit 0 is the highest of the first octet.
std::vector<std::string> names_of_bits(View octets, BitNames names) {
    std::vector<std::string> set;
    for (size_t bit = 0; bit < octets.size() * 8; ++bit) {
        if ((octets[bit / 8] & (0x80u >> bit % 8)) != 0) {
            set.push_back(bit < names.size() ? std::string(names[bit])
                                             : "bit" + std::to_string(bit));
        }
    }
    return set;
}

Fields fields_of(const Anybuf &element) {
    return Fields(sequence(element));
}

std::optional<uint64_t> optional_number(const Anybuf *element) {
    if (element == nullptr) {
        return std::nullopt;
    }
    return number(content(*element));
}

DistributionPoint read_distribution_point(const Anybuf &element) {
    // DistributionPoint ::= SEQUENCE { distributionPoint [0], reasons [1], cRLIssuer [2] }
    DistributionPoint point;
    Fields fields = fields_of(element);
    if (const Anybuf *name = fields.optional(constructed(0))) {
        read_point_name(*name, point);
    }
    if (const Anybuf *reasons = fields.optional(primitive(1))) {
        point.reasons = names_of_reasons(bits(content(*reasons)));
    }
    if (const Anybuf *issuer = fields.optional(constructed(2))) {
        point.crl_issuer = read_general_names(tagged(*issuer));
    }
    return point;
}

void read_user_notice(const Anybuf &element, PolicyQualifier &out) {
    // UserNotice ::= SEQUENCE { noticeRef NoticeReference OPTIONAL, explicitText OPTIONAL }
    Fields fields = fields_of(element);
    if (const Anybuf *reference = fields.optional(ZA_DER_ID_SEQUENCE)) {
        // NoticeReference ::= SEQUENCE { organization, noticeNumbers SEQUENCE OF INTEGER }
        Fields parts = fields_of(*reference);
        out.organization = read_text(parts.next());
        for (const Anybuf &entry : sequence(parts.next())) {
            out.notice_numbers.push_back(number(content(expect(entry, ZA_DER_ID_INTEGER))));
        }
    }
    if (!fields.at_end()) {
        out.explicit_text = read_text(fields.next());
    }
}

PolicyQualifier read_qualifier(const Anybuf &element) {
    constexpr std::string_view kCps = "1.3.6.1.5.5.7.2.1";
    constexpr std::string_view kUserNotice = "1.3.6.1.5.5.7.2.2";
    // PolicyQualifierInfo ::= SEQUENCE { policyQualifierId, qualifier ANY }
    PolicyQualifier qualifier;
    Fields fields = fields_of(element);
    qualifier.id = named(object_id(fields.next()));
    const Anybuf &value = fields.next();
    if (qualifier.id.oid == kCps) {
        qualifier.cps = read_text(value);
    } else if (qualifier.id.oid == kUserNotice) {
        read_user_notice(value, qualifier);
    } else {
        qualifier.octets.assign(octets_of(value).begin(), octets_of(value).end());
    }
    return qualifier;
}

Policy read_policy(const Anybuf &element) {
    // PolicyInformation ::= SEQUENCE { policyIdentifier, policyQualifiers SEQUENCE OF OPTIONAL }
    Policy policy;
    Fields fields = fields_of(element);
    policy.id = named(object_id(fields.next()));
    if (!fields.at_end()) {
        for (const Anybuf &qualifier : sequence(fields.next())) {
            policy.qualifiers.push_back(read_qualifier(qualifier));
        }
    }
    return policy;
}

std::vector<Subtree> read_subtrees(const Anybuf *element) {
    std::vector<Subtree> subtrees;
    if (element == nullptr) {
        return subtrees;
    }
    for (const Anybuf &entry : tagged(*element)) {
        // GeneralSubtree ::= SEQUENCE { base, minimum [0] DEFAULT 0, maximum [1] OPTIONAL }
        Fields fields = fields_of(entry);
        Subtree subtree;
        subtree.base = read_general_name(fields.next(), Address::with_mask);
        subtree.minimum = optional_number(fields.optional(primitive(0))).value_or(0);
        subtree.maximum = optional_number(fields.optional(primitive(1)));
        subtrees.push_back(std::move(subtree));
    }
    return subtrees;
}

}  // namespace

void read_point_name(const Anybuf &element, DistributionPoint &out) {
    // CHOICE { fullName [0] GeneralNames, nameRelativeToCRLIssuer [1] RDN }
    Fields choice(tagged(element));
    if (const Anybuf *full = choice.optional(constructed(0))) {
        out.full_name = read_general_names(tagged(*full));
    } else {
        out.relative_name = read_rdn(tagged(choice.required(constructed(1))));
    }
}

std::vector<std::string> names_of_usages(View bits) {
    return names_of_bits(bits, kUsages);
}

std::vector<std::string> names_of_reasons(View bits) {
    return names_of_bits(bits, kReasons);
}

ExtensionValue read_subject_key_identifier(View octets) {
    return KeyIdentifier{content(expect(record_of(octets), ZA_DER_ID_OCTETSTRING))};
}

ExtensionValue read_key_usage(View octets) {
    return KeyUsage{names_of_usages(bits(content(expect(record_of(octets), ZA_DER_ID_BITSTRING))))};
}

ExtensionValue read_basic_constraints(View octets) {
    // BasicConstraints ::= SEQUENCE { cA BOOLEAN DEFAULT FALSE,
    //     pathLenConstraint INTEGER OPTIONAL }
    BasicConstraints value;
    Fields fields = fields_of(record_of(octets));
    if (const Anybuf *ca = fields.optional(ZA_DER_ID_BOOLEAN)) {
        value.ca = boolean(*ca);
    }
    value.path_length = optional_number(fields.optional(ZA_DER_ID_INTEGER));
    return value;
}

ExtensionValue read_authority_key_identifier(View octets) {
    // AuthorityKeyIdentifier ::= SEQUENCE { keyIdentifier [0],
    //     authorityCertIssuer [1] GeneralNames, authorityCertSerialNumber [2] INTEGER }
    AuthorityKeyIdentifier value;
    Fields fields = fields_of(record_of(octets));
    if (const Anybuf *key_id = fields.optional(primitive(0))) {
        value.key_id = content(*key_id);
    }
    if (const Anybuf *issuer = fields.optional(constructed(1))) {
        value.issuer = read_general_names(tagged(*issuer));
    }
    if (const Anybuf *serial = fields.optional(primitive(2))) {
        value.serial = Integer(content(*serial));
    }
    return value;
}

ExtensionValue read_purposes(View octets) {
    Purposes value;
    for (const Anybuf &purpose : sequence(record_of(octets))) {
        value.purposes.push_back(named(object_id(purpose)));
    }
    return value;
}

ExtensionValue read_alternative_names(View octets) {
    return AlternativeNames{read_general_names(sequence(record_of(octets)))};
}

ExtensionValue read_distribution_points(View octets) {
    DistributionPoints value;
    for (const Anybuf &point : sequence(record_of(octets))) {
        value.points.push_back(read_distribution_point(point));
    }
    return value;
}

ExtensionValue read_access_descriptions(View octets) {
    AccessDescriptions value;
    for (const Anybuf &entry : sequence(record_of(octets))) {
        // AccessDescription ::= SEQUENCE { accessMethod, accessLocation GeneralName }
        Fields fields = fields_of(entry);
        NamedId method = named(object_id(fields.next()));
        value.descriptions.push_back({std::move(method), read_general_name(fields.next())});
    }
    return value;
}

ExtensionValue read_policies(View octets) {
    Policies value;
    for (const Anybuf &policy : sequence(record_of(octets))) {
        value.policies.push_back(read_policy(policy));
    }
    return value;
}

ExtensionValue read_policy_mappings(View octets) {
    PolicyMappings value;
    for (const Anybuf &entry : sequence(record_of(octets))) {
        // SEQUENCE { issuerDomainPolicy, subjectDomainPolicy }
        Fields fields = fields_of(entry);
        NamedId issuer = named(object_id(fields.next()));
        value.mappings.push_back({std::move(issuer), named(object_id(fields.next()))});
    }
    return value;
}

ExtensionValue read_policy_constraints(View octets) {
    // PolicyConstraints ::= SEQUENCE { requireExplicitPolicy [0], inhibitPolicyMapping [1] }
    Fields fields = fields_of(record_of(octets));
    PolicyConstraints value;
    value.require_explicit_policy = optional_number(fields.optional(primitive(0)));
    value.inhibit_policy_mapping = optional_number(fields.optional(primitive(1)));
    return value;
}

ExtensionValue read_inhibit_any_policy(View octets) {
    const Anybuf record = record_of(octets);
    return InhibitAnyPolicy{number(content(expect(record, ZA_DER_ID_INTEGER)))};
}

ExtensionValue read_name_constraints(View octets) {
    // NameConstraints ::= SEQUENCE { permittedSubtrees [0], excludedSubtrees [1] }
    Fields fields = fields_of(record_of(octets));
    NameConstraints value;
    value.permitted = read_subtrees(fields.optional(constructed(0)));
    value.excluded = read_subtrees(fields.optional(constructed(1)));
    return value;
}

ExtensionValue read_string(View octets) {
    return read_text(record_of(octets));
}

ExtensionValue read_nothing(View) {
    return Opaque{};
}

}  // namespace tool
