#include "check/critical.hpp"

#include "objects/oid_names.hpp"

#include <algorithm>
#include <array>
#include <string_view>

namespace tool {

namespace {

// Evaluated, or nothing that a path could violate. Policies are accepted all alike, as they are by
// one who asks for none (RFC 5280, 6.1.1, "any-policy").
constexpr auto kUnderstood = std::to_array<std::string_view>({
    "2.5.29.14",  // subjectKeyIdentifier
    "2.5.29.15",  // keyUsage
    "2.5.29.17",  // subjectAltName
    "2.5.29.18",  // issuerAltName
    "2.5.29.19",  // basicConstraints
    "2.5.29.20",  // cRLNumber
    "2.5.29.27",  // deltaCRLIndicator
    "2.5.29.28",  // issuingDistributionPoint
    "2.5.29.31",  // cRLDistributionPoints
    "2.5.29.32",  // certificatePolicies
    "2.5.29.35",  // authorityKeyIdentifier
    "2.5.29.37",  // extKeyUsage
});

// Numbers of persons and organisations, which name the subject further.
constexpr auto kIdentities =
    std::to_array<std::string_view>({"1.2.156.10260.4.1.", "1.2.86.11.7."});

bool is_understood(const Extension &extension) {
    const std::string_view oid = extension.id.oid;
    if (oid == "1.3.6.1.5.5.7.48.1.5") {
        return true;  // ocspNoCheck, of which the tool shows no value
    }
    return extension.decoded() &&
           (std::find(kUnderstood.begin(), kUnderstood.end(), oid) != kUnderstood.end() ||
            std::any_of(kIdentities.begin(), kIdentities.end(),
                        [oid](std::string_view prefix) { return oid.starts_with(prefix); }));
}

}  // namespace

void check_critical_extensions(const std::vector<Extension> &extensions, Report &report) {
    bool good = true;
    for (const Extension &extension : extensions) {
        if (!extension.problem.empty()) {
            good =
                report.check(false, "extension " + label(extension.id) + ": " + extension.problem);
        } else if (extension.critical && !is_understood(extension)) {
            good = report.check(
                false, "extension " + label(extension.id) + ": critical, and not evaluated here");
        } else if (extension.id.oid == "2.5.29.30") {
            report.note("name constraints: not critical, and not evaluated here");
        }
    }
    if (good) {
        report.check(true, "extensions: every critical one is understood");
    }
}

}  // namespace tool
