#include "check/path_options.hpp"

#include "base/arguments.hpp"
#include "base/dates.hpp"
#include "check/purpose.hpp"

#include <utility>

namespace tool {

void add_path_options(Arguments &command, PathOptions &options) {
    command.add_repeatable("--ca", options.roots, "trusted certificates, PEM or DER; repeatable");
    command.add_repeatable("--intermediate", options.intermediates,
                           "certificates that may stand between; repeatable");
    command.add_repeatable("--crl", options.crls,
                           "CRLs: certificates must not stand in them; repeatable");
    command.add_option("--at", options.at, "2030-01-31 or 2030-01-31T23:59:59Z instead of now");
    command.add_option("--purpose", options.purpose, "ca, server, client, email or ocsp")
        .one_of(purpose_names());
}

PathInputs::PathInputs(const PathOptions &options)
    : store{load_certificates(options.roots), load_certificates(options.intermediates)},
      when(options.at.empty() ? When{now(), Moment::present}
                              : When{parse_time(options.at), Moment::other}),
      purpose(options.purpose) {
    for (const std::string &path : options.crls) {
        for (Octets &der : load_all(path, ObjectKind::crl)) {
            crls.emplace_back(std::move(der));
        }
    }
}

void check_certificate(const LoadedCertificate &certificate, const Certificates &others,
                       const PathInputs &inputs, Report &report) {
    TrustStore store = inputs.store;
    store.others.insert(store.others.end(), others.begin(), others.end());
    const Path path = find_path(certificate, store, inputs.when);
    check_path(path, inputs.when, report);
    if (!inputs.purpose.empty()) {
        check_purpose(path, inputs.purpose, report);
    }
    if (!inputs.crls.empty()) {
        check_revocation(path, inputs.crls, inputs.when, report);
    }
}

}  // namespace tool
