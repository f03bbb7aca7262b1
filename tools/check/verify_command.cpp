#include "base/dates.hpp"
#include "base/failure.hpp"
#include "base/options.hpp"
#include "base/wording.hpp"
#include "check/path.hpp"
#include "check/purpose.hpp"
#include "check/revocation.hpp"
#include "commands.hpp"
#include "objects/input.hpp"
#include "objects/name_forms.hpp"

#include <deque>
#include <iostream>

namespace tool {

namespace {

struct Options {
    std::vector<std::string> roots;
    std::vector<std::string> intermediates;
    std::vector<std::string> crls;
    std::string at;
    std::string purpose;
    std::vector<std::string> files;
};

struct Session {
    const Options &options;
    TrustStore store;
    std::deque<LoadedCrl> crls;
    When when;
};

Certificates load_certificates(const std::vector<std::string> &paths) {
    Certificates certificates;
    for (const std::string &path : paths) {
        for (Octets &der : load_all(path, ObjectKind::certificate)) {
            certificates.push_back(std::make_shared<LoadedCertificate>(std::move(der)));
        }
    }
    return certificates;
}

void verify_certificate(const Session &session, std::vector<Octets> chain, Report &report) {
    const LoadedCertificate certificate(std::move(chain.front()));
    TrustStore store = session.store;
    for (size_t i = 1; i < chain.size(); ++i) {
        store.others.push_back(std::make_shared<LoadedCertificate>(std::move(chain[i])));
    }
    const Path path = find_path(certificate, store, session.when);
    check_path(path, session.when, report);
    if (!session.options.purpose.empty()) {
        check_purpose(path, session.options.purpose, report);
    }
    if (!session.crls.empty()) {
        check_revocation(path, session.crls, session.when, report);
    }
}

// The issuer's own path counts as well.
void verify_crl(const Session &session, Octets der, Report &report) {
    const LoadedCrl crl(std::move(der));
    const std::vector<const LoadedCertificate *> issuers =
        named_so(session.store, crl.parts.issuer);
    if (issuers.empty()) {
        report.check(false, "there is no certificate of its issuer, " + one_line(crl.facts.issuer));
        return;
    }
    const LoadedCertificate *issuer = issuers.front();
    for (const LoadedCertificate *candidate : issuers) {
        if (check_crl_signature(candidate->der, crl.der).good) {
            issuer = candidate;
            break;
        }
    }
    report.heading("CRL of " + one_line(crl.facts.issuer));
    check_crl(crl, *issuer, session.when, report);
    check_path(find_path(*issuer, session.store, session.when), session.when, report);
}

void verify_request(const Octets &der, Report &report) {
    const SignatureVerdict verdict = check_request_signature(der);
    report.heading("Request");
    report.check(verdict.good, "signature by its own key: " + verdict.text);
}

bool verify_file(const Session &session, const std::string &path) {
    const std::vector<Candidate> objects = objects_in(read_file(path));
    const ObjectKind kind = objects.front().kind;
    std::vector<Octets> ders;
    for (const Candidate &object : objects) {
        if (!object.problem.empty()) {
            throw Failure(object.problem);
        }
        if (object.kind == kind) {
            ders.push_back(object.der);
        }
    }
    const bool needs_issuer = kind == ObjectKind::certificate || kind == ObjectKind::crl;
    if (needs_issuer && session.options.roots.empty()) {
        throw UsageError("--ca is required for certificates and CRLs");
    }
    Report report(std::cout);
    switch (kind) {
        case ObjectKind::certificate:
            verify_certificate(session, std::move(ders), report);
            break;
        case ObjectKind::crl:
            verify_crl(session, std::move(ders.front()), report);
            break;
        case ObjectKind::request:
            verify_request(ders.front(), report);
            break;
        case ObjectKind::unknown:
            throw Failure("expected a certificate, CRL or request");
    }
    std::cout << file_label(path) << ": " << (report.all_good() ? "good" : "NOT GOOD") << '\n';
    return report.all_good();
}

// A file that cannot be read does not stop the others.
bool verify_or_say(const Session &session, const std::string &path) {
    try {
        return verify_file(session, path);
    } catch (const UsageError &) {
        throw;
    } catch (const std::runtime_error &error) {
        std::cerr << "zacert: " << file_label(path) << ": " << error.what() << '\n';
        return false;
    }
}

bool run(const Options &options) {
    const When when = options.at.empty() ? When{now(), Moment::present}
                                         : When{parse_time(options.at), Moment::other};
    Session session{options,
                    {load_certificates(options.roots), load_certificates(options.intermediates)},
                    {},
                    when};
    for (const std::string &path : options.crls) {
        for (Octets &der : load_all(path, ObjectKind::crl)) {
            session.crls.emplace_back(std::move(der));
        }
    }
    bool good = true;
    for (const std::string &path : options.files) {
        good = verify_or_say(session, path) && good;
    }
    std::cout.flush();
    return good && static_cast<bool>(std::cout);
}

}  // namespace

void add_verify_command(CLI::App &app, Command &chosen) {
    CLI::App *command = app.add_subcommand("verify",
                                           "Verify certificates up to a trusted one, CRLs by their "
                                           "issuer, requests by their own key.");
    const auto options = std::make_shared<Options>();
    add_repeatable(*command, "--ca", options->roots,
                   "trusted certificates, PEM or DER; repeatable");
    add_repeatable(*command, "--intermediate", options->intermediates,
                   "certificates that may stand between; repeatable");
    add_repeatable(*command, "--crl", options->crls,
                   "CRLs: certificates must not stand in them; repeatable");
    command->add_option("--at", options->at, "2030-01-31 or 2030-01-31T23:59:59Z instead of now");
    command->add_option("--purpose", options->purpose, "ca, server, client, email or ocsp")
        ->check(CLI::IsMember(purpose_names()));
    command
        ->add_option("FILE", options->files,
                     "certificates, of each file the first with the others as intermediates; CRLs; "
                     "requests")
        ->required();
    command->footer(
        "Exit status: 0 all is good, 1 something is not, 2 the arguments make no sense.\n"
        "Example:\n  zacert verify --ca root.pem --intermediate ca.pem --crl ca.crl --purpose "
        "server "
        "server.pem");
    command->callback([options, &chosen] { chosen = [options] { return run(*options); }; });
}

}  // namespace tool
