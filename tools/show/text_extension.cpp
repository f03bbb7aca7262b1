#include "base/utf8.hpp"
#include "objects/name_forms.hpp"
#include "objects/oid_names.hpp"
#include "show/text.hpp"

namespace tool {

namespace {

using Lines = std::vector<std::string>;

constexpr std::string_view kIndent = "    ";

void append_indented(Lines &lines, const Lines &inner) {
    for (const std::string &line : inner) {
        lines.push_back(std::string(kIndent) + line);
    }
}

std::string joined(const std::vector<std::string> &words) {
    std::string text;
    for (const std::string &word : words) {
        text += (text.empty() ? "" : ", ") + word;
    }
    return text.empty() ? "none" : text;
}

// With the number beside the name: names of policies and purposes are less known than numbers.
std::string with_oid(const NamedId &id) {
    return id.name.empty() ? id.oid : id.name + " (" + id.oid + ")";
}

std::string shown(const GeneralName &name) {
    if (name.form == "directoryName") {
        return name.form + ": " + one_line(name.directory);
    }
    const std::string type = name.form == "otherName" ? " " + label(name.type_id) : "";
    return name.form + type + ": " + shown(name.value);
}

Lines shown(const GeneralNames &names) {
    Lines lines;
    for (const GeneralName &name : names) {
        lines.push_back(shown(name));
    }
    return lines;
}

void append_names(Lines &lines, std::string_view title, const GeneralNames &names) {
    if (!names.empty()) {
        lines.emplace_back(title);
        append_indented(lines, shown(names));
    }
}

void append_subtrees(Lines &lines, std::string_view title, const std::vector<Subtree> &subtrees) {
    if (subtrees.empty()) {
        return;
    }
    lines.emplace_back(title);
    for (const Subtree &subtree : subtrees) {
        std::string text = shown(subtree.base);
        text += subtree.minimum == 0 ? "" : ", minimum " + std::to_string(subtree.minimum);
        text += subtree.maximum ? ", maximum " + std::to_string(*subtree.maximum) : "";
        lines.push_back(std::string(kIndent) + text);
    }
}

Lines qualifier_lines(const PolicyQualifier &qualifier) {
    Lines lines;
    if (!qualifier.cps.value.empty()) {
        lines.push_back("CPS: " + shown(qualifier.cps));
    }
    if (!qualifier.organization.value.empty()) {
        std::string text = "Notice of " + shown(qualifier.organization) + ":";
        for (const uint64_t number : qualifier.notice_numbers) {
            text += " " + std::to_string(number);
        }
        lines.push_back(std::move(text));
    }
    if (!qualifier.explicit_text.value.empty()) {
        lines.push_back("Notice: " + shown(qualifier.explicit_text));
    }
    if (lines.empty()) {
        lines.push_back(with_oid(qualifier.id));
        append_indented(lines, hex_lines(qualifier.octets));
    }
    return lines;
}

void append_point(Lines &lines, const DistributionPoint &point) {
    const Lines names = shown(point.full_name);
    lines.insert(lines.end(), names.begin(), names.end());
    if (!point.relative_name.empty()) {
        lines.push_back("Relative to the issuer: " + one_line(point.relative_name));
    }
    if (!point.reasons.empty()) {
        append_indented(lines, {"Reasons: " + joined(point.reasons)});
    }
    append_names(lines, "CRL issuer", point.crl_issuer);
}

// One overload per kind of value.
struct Writer {
    View octets;

    Lines operator()(const Opaque &) const { return hex_lines(octets); }

    Lines operator()(const BasicConstraints &value) const {
        std::string text = value.ca ? "CA" : "not a CA";
        if (value.path_length) {
            text += ", path length " + std::to_string(*value.path_length);
        }
        return {std::move(text)};
    }

    Lines operator()(const KeyUsage &value) const { return {joined(value.usages)}; }

    Lines operator()(const Purposes &value) const {
        Lines lines;
        for (const NamedId &purpose : value.purposes) {
            lines.push_back(label(purpose));
        }
        return {joined(lines)};
    }

    Lines operator()(const KeyIdentifier &value) const { return hex_lines(value.key_id); }

    Lines operator()(const AuthorityKeyIdentifier &value) const {
        Lines lines = hex_lines(value.key_id);
        append_names(lines, "Issuer", value.issuer);
        if (value.serial) {
            lines.push_back("Serial number " + value.serial->hex(":"));
        }
        return lines;
    }

    Lines operator()(const AlternativeNames &value) const { return shown(value.names); }

    Lines operator()(const DistributionPoints &value) const {
        Lines lines;
        for (const DistributionPoint &point : value.points) {
            append_point(lines, point);
        }
        return lines;
    }

    Lines operator()(const AccessDescriptions &value) const {
        Lines lines;
        for (const AccessDescription &entry : value.descriptions) {
            lines.push_back(label(entry.method) + ", " + shown(entry.location));
        }
        return lines;
    }

    Lines operator()(const Policies &value) const {
        Lines lines;
        for (const Policy &policy : value.policies) {
            lines.push_back(with_oid(policy.id));
            for (const PolicyQualifier &qualifier : policy.qualifiers) {
                append_indented(lines, qualifier_lines(qualifier));
            }
        }
        return lines;
    }

    Lines operator()(const PolicyMappings &value) const {
        Lines lines;
        for (const PolicyMapping &mapping : value.mappings) {
            lines.push_back(with_oid(mapping.issuer) + " is " + with_oid(mapping.subject));
        }
        return lines;
    }

    Lines operator()(const PolicyConstraints &value) const {
        Lines lines;
        if (value.require_explicit_policy) {
            lines.push_back("Require explicit policy after " +
                            std::to_string(*value.require_explicit_policy));
        }
        if (value.inhibit_policy_mapping) {
            lines.push_back("Inhibit policy mapping after " +
                            std::to_string(*value.inhibit_policy_mapping));
        }
        return lines;
    }

    Lines operator()(const InhibitAnyPolicy &value) const {
        return {"after " + std::to_string(value.skip_certs)};
    }

    Lines operator()(const NameConstraints &value) const {
        Lines lines;
        append_subtrees(lines, "Permitted", value.permitted);
        append_subtrees(lines, "Excluded", value.excluded);
        return lines;
    }

    Lines operator()(const CrlNumber &value) const { return {decimal_or_hex(value.number)}; }

    Lines operator()(const IssuingDistributionPoint &value) const {
        Lines lines;
        append_point(lines, value.point);
        const auto append = [&lines](bool set, const char *text) {
            if (set) {
                lines.emplace_back(text);
            }
        };
        append(value.only_user_certificates, "Only certificates of users");
        append(value.only_ca_certificates, "Only certificates of CAs");
        append(value.only_attribute_certificates, "Only attribute certificates");
        append(value.indirect, "Indirect CRL");
        return lines;
    }

    Lines operator()(const Reason &value) const { return {value.name}; }

    Lines operator()(const Instant &value) const { return {instant_text(value.time)}; }

    Lines operator()(const Identifier &value) const { return {label(value.id)}; }

    Lines operator()(const IdentityNumbers &value) const {
        Lines lines;
        for (const IdentityNumber &number : value.numbers) {
            lines.push_back(number.title + ": " + shown(number.value));
        }
        return lines;
    }

    Lines operator()(const Text &value) const { return {shown(value)}; }
};

}  // namespace

std::vector<std::string> extension_lines(const Extension &extension) {
    Lines lines = std::visit(Writer{extension.octets}, extension.value);
    if (!extension.problem.empty()) {
        lines.insert(lines.begin(), "not decoded: " + extension.problem);
    }
    return lines;
}

}  // namespace tool
