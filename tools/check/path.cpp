#include "check/path.hpp"

#include "base/dates.hpp"
#include "base/der.hpp"
#include "check/critical.hpp"
#include "objects/name_forms.hpp"
#include "objects/names.hpp"

#include <algorithm>

namespace tool {

namespace {

constexpr size_t kMaxPath = 16;

bool is_self_issued(const LoadedCertificate &certificate) {
    return same_name(certificate.parts.subject, certificate.parts.issuer);
}

bool may_be_issuer(const LoadedCertificate &issuer, const LoadedCertificate &certificate) {
    const auto *wanted = find_value<AuthorityKeyIdentifier>(certificate.facts.extensions);
    const auto *own = find_value<KeyIdentifier>(issuer.facts.extensions);
    return wanted == nullptr || own == nullptr || wanted->key_id.empty() ||
           wanted->key_id == own->key_id;
}

bool is_trusted(const LoadedCertificate &certificate, const TrustStore &store) {
    return std::any_of(store.roots.begin(), store.roots.end(),
                       [&](const auto &root) { return root->der == certificate.der; });
}

// The one whose key verifies; else any, so that there is a signature to be reported.
const LoadedCertificate *find_issuer(const LoadedCertificate &certificate, const TrustStore &store,
                                     const When &when, const Path &path) {
    const LoadedCertificate *any = nullptr;
    for (const LoadedCertificate *issuer : named_so(store, certificate.parts.issuer)) {
        const bool used = std::any_of(
            path.certificates.begin(), path.certificates.end(),
            [issuer](const LoadedCertificate *other) { return other->der == issuer->der; });
        if (used || !may_be_issuer(*issuer, certificate)) {
            continue;
        }
        if (check_certificate_signature(issuer->der, certificate.der, when.moment).good) {
            return issuer;
        }
        any = any == nullptr ? issuer : any;
    }
    return any;
}

void check_validity(const LoadedCertificate &certificate, const When &when, Report &report) {
    const auto begin = certificate.facts.not_before;
    const auto end = certificate.facts.not_after;
    if (when.time < begin) {
        report.check(false, "validity: begins at " + shown_time(begin));
    } else if (when.time > end) {
        report.check(false, "validity: expired at " + shown_time(end));
    } else {
        report.check(true, "validity: until " + shown_time(end));
    }
}

// `below` counts the CAs between the issuer and the certificate at the path's beginning.
void check_issuer(const LoadedCertificate &issuer, uint64_t below, Report &report) {
    const std::vector<Extension> &extensions = issuer.facts.extensions;
    const auto *constraints = find_value<BasicConstraints>(extensions);
    report.check(constraints != nullptr && constraints->ca,
                 constraints == nullptr ? "CA: there are no basic constraints"
                 : constraints->ca      ? "CA: basic constraints say so"
                                        : "CA: basic constraints deny it");
    if (constraints != nullptr && constraints->path_length) {
        report.check(below <= *constraints->path_length,
                     "path length: " + std::to_string(below) + " CAs below, " +
                         std::to_string(*constraints->path_length) + " allowed");
    }
    if (find_value<KeyUsage>(extensions) == nullptr) {
        report.note("key usage: not limited");
    } else {
        const bool signs = has_usage(extensions, "keyCertSign");
        report.check(signs, signs ? "key usage: keyCertSign" : "key usage: lacks keyCertSign");
    }
}

void check_signature(const LoadedCertificate &certificate, const LoadedCertificate &issuer,
                     const When &when, Report &report) {
    const SignatureVerdict verdict =
        check_certificate_signature(issuer.der, certificate.der, when.moment);
    report.check(verdict.good, "signature: " + verdict.text);
}

}  // namespace

Certificates load_certificates(const std::vector<std::string> &paths) {
    Certificates certificates;
    for (const std::string &path : paths) {
        for (Octets &der : load_all(path, ObjectKind::certificate)) {
            certificates.push_back(std::make_shared<LoadedCertificate>(std::move(der)));
        }
    }
    return certificates;
}

bool same_name(View left, View right) {
    if (same_octets(left, right)) {
        return true;
    }
    return one_line(read_name(record_of(left))) == one_line(read_name(record_of(right)));
}

std::vector<const LoadedCertificate *> named_so(const TrustStore &store, View name) {
    std::vector<const LoadedCertificate *> found;
    for (const Certificates *list : {&store.roots, &store.others}) {
        for (const auto &certificate : *list) {
            if (same_name(certificate->parts.subject, name)) {
                found.push_back(certificate.get());
            }
        }
    }
    return found;
}

Path find_path(const LoadedCertificate &certificate, const TrustStore &store, const When &when) {
    Path path;
    const LoadedCertificate *next = &certificate;
    while (next != nullptr && path.certificates.size() < kMaxPath) {
        path.certificates.push_back(next);
        if (is_trusted(*next, store)) {
            path.complete = true;
            break;
        }
        next = find_issuer(*next, store, when, path);
    }
    return path;
}

void check_path(const Path &path, const When &when, Report &report) {
    uint64_t below = 0;
    for (size_t i = 0; i < path.certificates.size(); ++i) {
        const LoadedCertificate &certificate = *path.certificates[i];
        const bool last = i + 1 == path.certificates.size();
        report.heading((i == 0 ? "Certificate " : "Issuer ") + shown_subject(certificate));
        check_validity(certificate, when, report);
        check_critical_extensions(certificate.facts.extensions, report);
        if (i > 0) {
            check_issuer(certificate, below, report);
            below += is_self_issued(certificate) ? 0 : 1;
        }
        if (!last) {
            check_signature(certificate, *path.certificates[i + 1], when, report);
        } else if (path.complete) {
            report.check(true, "trust: given as trusted");
        } else {
            report.check(false, "trust: there is no certificate of its issuer, " +
                                    one_line(certificate.facts.issuer));
        }
    }
}

std::string shown_subject(const LoadedCertificate &certificate) {
    return one_line(certificate.facts.subject);
}

}  // namespace tool
