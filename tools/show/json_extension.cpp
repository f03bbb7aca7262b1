#include "objects/oid_names.hpp"
#include "show/json.hpp"

namespace tool {

namespace {

Json general_name_json(const GeneralName &name) {
    Json json = Json::object();
    json["form"] = name.form;
    if (name.form == "directoryName") {
        json["value"] = name_json(name.directory);
        return json;
    }
    if (name.form == "otherName") {
        json["type_id"] = identifier_json(name.type_id);
    }
    add_text("value", name.value, json);
    if (name.form == "otherName") {
        json["string_type"] = name.value.type;
    }
    return json;
}

Json general_names_json(const GeneralNames &names) {
    Json list = Json::array();
    for (const GeneralName &name : names) {
        list.push_back(general_name_json(name));
    }
    return list;
}

Json point_json(const DistributionPoint &point) {
    Json json = Json::object();
    if (!point.full_name.empty()) {
        json["full_name"] = general_names_json(point.full_name);
    }
    if (!point.relative_name.empty()) {
        json["relative_name"] = rdn_json(point.relative_name);
    }
    if (!point.reasons.empty()) {
        json["reasons"] = point.reasons;
    }
    if (!point.crl_issuer.empty()) {
        json["crl_issuer"] = general_names_json(point.crl_issuer);
    }
    return json;
}

Json qualifier_json(const PolicyQualifier &qualifier) {
    Json json = identifier_json(qualifier.id);
    if (!qualifier.cps.type.empty()) {
        json["cps"] = text_json(qualifier.cps);
    }
    if (!qualifier.organization.type.empty()) {
        json["organization"] = text_json(qualifier.organization);
        json["notice_numbers"] = qualifier.notice_numbers;
    }
    if (!qualifier.explicit_text.type.empty()) {
        json["explicit_text"] = text_json(qualifier.explicit_text);
    }
    if (!qualifier.octets.empty()) {
        json["hex"] = hex(qualifier.octets);
    }
    return json;
}

Json subtrees_json(const std::vector<Subtree> &subtrees) {
    Json list = Json::array();
    for (const Subtree &subtree : subtrees) {
        Json json = general_name_json(subtree.base);
        json["minimum"] = subtree.minimum;
        if (subtree.maximum) {
            json["maximum"] = *subtree.maximum;
        }
        list.push_back(std::move(json));
    }
    return list;
}

// One overload per kind of value; each adds the member that is named after it.
struct Writer {
    const Extension &extension;
    Json &out;

    void operator()(const Opaque &) const { out["hex"] = hex(extension.octets); }

    void operator()(const BasicConstraints &value) const {
        Json json = Json::object();
        json["ca"] = value.ca;
        if (value.path_length) {
            json["path_length"] = *value.path_length;
        }
        out["basic_constraints"] = std::move(json);
    }

    void operator()(const KeyUsage &value) const { out["key_usage"] = value.usages; }

    void operator()(const Purposes &value) const {
        Json list = Json::array();
        for (const NamedId &purpose : value.purposes) {
            list.push_back(identifier_json(purpose));
        }
        out["extended_key_usage"] = std::move(list);
    }

    void operator()(const KeyIdentifier &value) const {
        out["subject_key_identifier"] = hex(value.key_id);
    }

    void operator()(const AuthorityKeyIdentifier &value) const {
        Json json = Json::object();
        if (!value.key_id.empty()) {
            json["key_id"] = hex(value.key_id);
        }
        if (!value.issuer.empty()) {
            json["issuer"] = general_names_json(value.issuer);
        }
        if (value.serial) {
            json["serial"] = value.serial->hex();
        }
        out["authority_key_identifier"] = std::move(json);
    }

    void operator()(const AlternativeNames &value) const {
        const std::string &name = extension.id.name;
        out[name == "subjectAltName"  ? "subject_alt_name"
            : name == "issuerAltName" ? "issuer_alt_name"
                                      : "certificate_issuer"] = general_names_json(value.names);
    }

    void operator()(const DistributionPoints &value) const {
        Json list = Json::array();
        for (const DistributionPoint &point : value.points) {
            list.push_back(point_json(point));
        }
        out["distribution_points"] = std::move(list);
    }

    void operator()(const AccessDescriptions &value) const {
        Json list = Json::array();
        for (const AccessDescription &entry : value.descriptions) {
            list.push_back({{"method", identifier_json(entry.method)},
                            {"location", general_name_json(entry.location)}});
        }
        out["access_descriptions"] = std::move(list);
    }

    void operator()(const Policies &value) const {
        Json list = Json::array();
        for (const Policy &policy : value.policies) {
            Json json = identifier_json(policy.id);
            json["qualifiers"] = Json::array();
            for (const PolicyQualifier &qualifier : policy.qualifiers) {
                json["qualifiers"].push_back(qualifier_json(qualifier));
            }
            list.push_back(std::move(json));
        }
        out["certificate_policies"] = std::move(list);
    }

    void operator()(const PolicyMappings &value) const {
        Json list = Json::array();
        for (const PolicyMapping &mapping : value.mappings) {
            list.push_back({{"issuer_policy", identifier_json(mapping.issuer)},
                            {"subject_policy", identifier_json(mapping.subject)}});
        }
        out["policy_mappings"] = std::move(list);
    }

    void operator()(const PolicyConstraints &value) const {
        Json json = Json::object();
        if (value.require_explicit_policy) {
            json["require_explicit_policy"] = *value.require_explicit_policy;
        }
        if (value.inhibit_policy_mapping) {
            json["inhibit_policy_mapping"] = *value.inhibit_policy_mapping;
        }
        out["policy_constraints"] = std::move(json);
    }

    void operator()(const InhibitAnyPolicy &value) const {
        out["inhibit_any_policy"] = value.skip_certs;
    }

    void operator()(const NameConstraints &value) const {
        out["name_constraints"] = {{"permitted", subtrees_json(value.permitted)},
                                   {"excluded", subtrees_json(value.excluded)}};
    }

    void operator()(const CrlNumber &value) const {
        const bool base = extension.id.name == "deltaCRLIndicator";
        out[base ? "base_crl_number" : "crl_number"] = value.number.hex();
    }

    void operator()(const IssuingDistributionPoint &value) const {
        Json json = point_json(value.point);
        json["only_user_certificates"] = value.only_user_certificates;
        json["only_ca_certificates"] = value.only_ca_certificates;
        json["only_attribute_certificates"] = value.only_attribute_certificates;
        json["indirect"] = value.indirect;
        out["issuing_distribution_point"] = std::move(json);
    }

    void operator()(const Reason &value) const { out["reason"] = value.name; }

    void operator()(const Instant &value) const { out["time"] = instant_json(value.time); }

    void operator()(const Identifier &value) const {
        out["identifier"] = identifier_json(value.id);
    }

    void operator()(const IdentityNumbers &value) const {
        Json json = Json::object();
        for (const IdentityNumber &number : value.numbers) {
            json[number.member] = text_json(number.value);
        }
        out["identity_numbers"] = std::move(json);
    }

    void operator()(const Text &value) const { out["text"] = text_json(value); }
};

}  // namespace

void add_extension_value(const Extension &extension, Json &out) {
    std::visit(Writer{extension, out}, extension.value);
}

}  // namespace tool
