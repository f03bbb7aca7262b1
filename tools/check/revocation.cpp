#include "check/revocation.hpp"

#include "base/dates.hpp"
#include "check/critical.hpp"

#include <algorithm>

namespace tool {

namespace {

constexpr std::string_view kRemoved = "removeFromCRL";

std::optional<uint64_t> number_in(const LoadedCrl &crl, std::string_view oid) {
    const Extension *extension = find_extension(crl.facts.extensions, oid);
    const auto *value = extension == nullptr ? nullptr : std::get_if<CrlNumber>(&extension->value);
    return value == nullptr ? std::nullopt : value->number.small();
}

std::optional<uint64_t> own_number(const LoadedCrl &crl) {
    return number_in(crl, "2.5.29.20");
}

bool is_delta(const LoadedCrl &crl) {
    return find_extension(crl.facts.extensions, "2.5.29.27") != nullptr;
}

std::vector<std::string> uris(const GeneralNames &names) {
    std::vector<std::string> texts;
    for (const GeneralName &name : names) {
        if (name.form == "uniformResourceIdentifier") {
            texts.push_back(name.value.value);
        }
    }
    return texts;
}

// A CRL for one of several distribution points tells nothing of certificates that name others.
bool shares_point(const DistributionPoint &point, const LoadedCertificate &certificate) {
    const auto *points = find_value<DistributionPoints>(certificate.facts.extensions);
    const std::vector<std::string> wanted = uris(point.full_name);
    if (points == nullptr || wanted.empty()) {
        return true;
    }
    return std::any_of(points->points.begin(), points->points.end(), [&](const auto &own) {
        const std::vector<std::string> texts = uris(own.full_name);
        return std::find_first_of(texts.begin(), texts.end(), wanted.begin(), wanted.end()) !=
               texts.end();
    });
}

bool covers(const LoadedCrl &crl, const LoadedCertificate &certificate) {
    if (!same_name(crl.parts.issuer, certificate.parts.issuer)) {
        return false;
    }
    const auto *scope = find_value<IssuingDistributionPoint>(crl.facts.extensions);
    if (scope == nullptr) {
        return true;
    }
    const auto *constraints = find_value<BasicConstraints>(certificate.facts.extensions);
    const bool ca = constraints != nullptr && constraints->ca;
    return !(ca ? scope->only_user_certificates : scope->only_ca_certificates) &&
           shares_point(scope->point, certificate);
}

struct Lists {
    const LoadedCrl *whole = nullptr;  // the newest
    std::vector<const LoadedCrl *> deltas;
};

Lists lists_for(const LoadedCertificate &certificate, const std::deque<LoadedCrl> &crls) {
    Lists lists;
    for (const LoadedCrl &crl : crls) {
        if (!covers(crl, certificate)) {
            continue;
        }
        if (is_delta(crl)) {
            lists.deltas.push_back(&crl);
        } else if (lists.whole == nullptr ||
                   crl.facts.this_update > lists.whole->facts.this_update) {
            lists.whole = &crl;
        }
    }
    std::sort(lists.deltas.begin(), lists.deltas.end(), [](const auto *left, const auto *right) {
        return own_number(*left).value_or(0) < own_number(*right).value_or(0);
    });
    return lists;
}

// A delta builds upon a CRL of its base number or a later one, and adds to those older than itself.
bool builds_upon(const LoadedCrl &delta, const LoadedCrl &whole) {
    const auto base = number_in(delta, "2.5.29.27");
    const auto number = own_number(whole);
    const auto own = own_number(delta);
    return base && number && own && *base <= *number && *number < *own;
}

void look_up(const LoadedCertificate &certificate, const LoadedCertificate &issuer,
             const Lists &lists, const When &when, Report &report) {
    std::optional<RevokedEntry> entry = entry_of(*lists.whole, certificate.facts.serial, report);
    for (const LoadedCrl *delta : lists.deltas) {
        if (!builds_upon(*delta, *lists.whole)) {
            report.note("delta CRL: does not build upon the CRL given, and is not used");
            continue;
        }
        check_crl(*delta, issuer, when, report);
        if (auto newer = entry_of(*delta, certificate.facts.serial, report)) {
            entry = newer->reason == kRemoved ? std::nullopt : std::move(newer);
        }
    }
    if (!entry) {
        report.check(true, "revocation: not revoked");
        return;
    }
    report.check(false, "revocation: revoked at " + shown_time(entry->date) +
                            (entry->reason.empty() ? "" : ", " + entry->reason));
}

}  // namespace

std::optional<RevokedEntry> entry_of(const LoadedCrl &crl, const Integer &serial, Report &report) {
    std::optional<RevokedEntry> found;
    for (RevokedEntries entries(crl.facts.revoked); !entries.at_end();) {
        RevokedEntry entry = entries.next();
        const bool strange = std::any_of(entry.extensions.begin(), entry.extensions.end(),
                                         [](const Extension &e) { return e.critical; });
        if (strange) {
            report.check(false,
                         "CRL: an entry has a critical extension that is not evaluated here");
            return std::nullopt;
        }
        if (entry.serial == serial) {
            found = std::move(entry);
        }
    }
    return found;
}

LoadedCrl::LoadedCrl(Octets octets)
    : der(std::move(octets)), parts(crl_parts(der)), facts(read_crl(der)) {}

void check_crl(const LoadedCrl &crl, const LoadedCertificate &issuer, const When &when,
               Report &report) {
    const std::vector<Extension> &extensions = issuer.facts.extensions;
    if (find_value<KeyUsage>(extensions) != nullptr && !has_usage(extensions, "cRLSign")) {
        report.check(false, "CRL: the issuer's key usage lacks cRLSign");
    }
    const SignatureVerdict verdict = check_crl_signature(issuer.der, crl.der);
    report.check(verdict.good, "CRL signature: " + verdict.text);
    if (when.time < crl.facts.this_update) {
        report.check(false, "CRL: made later, at " + shown_time(crl.facts.this_update));
    } else if (!crl.facts.next_update) {
        report.note("CRL: does not say when the next one comes");
    } else {
        const bool current = when.time <= *crl.facts.next_update;
        report.check(current, (current ? "CRL: the next one comes by " : "CRL: replaced since ") +
                                  shown_time(*crl.facts.next_update));
    }
    const auto *scope = find_value<IssuingDistributionPoint>(crl.facts.extensions);
    if (scope != nullptr &&
        (scope->indirect || scope->only_attribute_certificates || !scope->point.reasons.empty())) {
        report.check(false, "CRL: indirect, or for some reasons or attribute certificates alone");
    }
    check_critical_extensions(crl.facts.extensions, report);
}

void check_revocation(const Path &path, const std::deque<LoadedCrl> &crls, const When &when,
                      Report &report) {
    for (size_t i = 0; i + 1 < path.certificates.size(); ++i) {
        const LoadedCertificate &certificate = *path.certificates[i];
        const LoadedCertificate &issuer = *path.certificates[i + 1];
        const Lists lists = lists_for(certificate, crls);
        report.heading("Revocation of " + shown_subject(certificate));
        if (lists.whole != nullptr) {
            check_crl(*lists.whole, issuer, when, report);
            look_up(certificate, issuer, lists, when, report);
        } else if (i == 0) {
            report.check(false, "revocation: no CRL of its issuer is given");
        } else {
            report.note("revocation: no CRL of its issuer is given");
        }
    }
}

}  // namespace tool
