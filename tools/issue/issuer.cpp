#include "issue/issuer.hpp"

#include "base/dates.hpp"
#include "base/failure.hpp"
#include "base/wording.hpp"

namespace tool {

namespace {

std::string problem_of(const LoadedCertificate &ca, const Signer &signer, std::string_view usage) {
    const std::vector<Extension> &extensions = ca.facts.extensions;
    const auto *constraints = find_value<BasicConstraints>(extensions);
    const auto *usages = find_value<KeyUsage>(extensions);
    if (constraints == nullptr || !constraints->ca) {
        return "the certificate is not a CA's";
    }
    if (usages == nullptr || !has_usage(extensions, usage)) {
        return "the CA's key usage lacks " + std::string(usage);
    }
    if (now() < ca.facts.not_before) {
        return "the CA certificate begins at " + shown_time(ca.facts.not_before);
    }
    if (now() > ca.facts.not_after) {
        return "the CA certificate expired at " + shown_time(ca.facts.not_after);
    }
    if (subject_key(ca.parts.key) != signer.key) {
        return "the private key is not that of the CA certificate";
    }
    return {};
}

}  // namespace

void require_issuer(const std::string &path, const LoadedCertificate &ca, const Signer &signer,
                    std::string_view usage) {
    const std::string problem = problem_of(ca, signer, usage);
    if (!problem.empty()) {
        throw Failure(file_label(path) + ": " + problem);
    }
}

Octets authority_key_identifier(const LoadedCertificate &ca) {
    const auto *own = find_value<KeyIdentifier>(ca.facts.extensions);
    return own != nullptr && !own->key_id.empty() ? own->key_id
                                                  : key_identifier(subject_key(ca.parts.key));
}

}  // namespace tool
