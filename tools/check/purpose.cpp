#include "check/purpose.hpp"

#include <algorithm>
#include <array>
#include <string_view>

namespace tool {

namespace {

constexpr std::string_view kAnyPurpose = "2.5.29.37.0";

struct Purpose {
    std::string_view name;
    std::string_view oid;                    // empty: none is asked for
    std::array<std::string_view, 3> usages;  // one of them, where key usage is limited
    bool must_be_named;                      // a certificate without purposes will not do
};

constexpr auto kPurposes = std::to_array<Purpose>({
    {"ca", {}, {"keyCertSign"}, false},
    {"server", "1.3.6.1.5.5.7.3.1", {"digitalSignature", "keyEncipherment", "keyAgreement"}, false},
    {"client", "1.3.6.1.5.5.7.3.2", {"digitalSignature", "keyAgreement"}, false},
    {"email",
     "1.3.6.1.5.5.7.3.4",
     {"digitalSignature", "nonRepudiation", "keyEncipherment"},
     false},
    {"ocsp", "1.3.6.1.5.5.7.3.9", {"digitalSignature", "nonRepudiation"}, true},
});

void check_usage(const LoadedCertificate &certificate, const Purpose &purpose, Report &report) {
    const std::vector<Extension> &extensions = certificate.facts.extensions;
    if (find_value<KeyUsage>(extensions) == nullptr) {
        report.note("key usage: not limited");
        return;
    }
    std::string wanted;
    for (const std::string_view usage : purpose.usages) {
        if (!usage.empty() && has_usage(extensions, usage)) {
            report.check(true, "key usage: " + std::string(usage));
            return;
        }
        wanted += usage.empty() ? "" : (wanted.empty() ? "" : ", ") + std::string(usage);
    }
    report.check(false, "key usage: has none of " + wanted);
}

bool names_purpose(const Purposes &purposes, std::string_view oid) {
    return std::any_of(purposes.purposes.begin(), purposes.purposes.end(),
                       [oid](const NamedId &id) { return id.oid == oid || id.oid == kAnyPurpose; });
}

void check_named(const LoadedCertificate &certificate, const Purpose &purpose, bool first,
                 Report &report) {
    const auto *purposes = find_value<Purposes>(certificate.facts.extensions);
    if (purposes == nullptr) {
        if (first && purpose.must_be_named) {
            report.check(false, "purpose: not named");
        }
        return;
    }
    const bool named = names_purpose(*purposes, purpose.oid);
    report.check(named, "purpose of " + shown_subject(certificate) + ": " +
                            (named ? "may" : "may not") + " be used for " +
                            std::string(purpose.name));
}

}  // namespace

std::vector<std::string> purpose_names() {
    std::vector<std::string> names;
    for (const Purpose &purpose : kPurposes) {
        names.emplace_back(purpose.name);
    }
    return names;
}

void check_purpose(const Path &path, const std::string &name, Report &report) {
    const Purpose &purpose = *std::find_if(kPurposes.begin(), kPurposes.end(),
                                           [&](const Purpose &row) { return row.name == name; });
    report.heading("Purpose " + name);
    const LoadedCertificate &first = *path.certificates.front();
    check_usage(first, purpose, report);
    if (purpose.oid.empty()) {
        const auto *constraints = find_value<BasicConstraints>(first.facts.extensions);
        const bool ca = constraints != nullptr && constraints->ca;
        report.check(ca,
                     ca ? "CA: basic constraints say so" : "CA: basic constraints do not say so");
        return;
    }
    for (const LoadedCertificate *certificate : path.certificates) {
        check_named(*certificate, purpose, certificate == &first, report);
    }
}

}  // namespace tool
