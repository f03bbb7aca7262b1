#include "base/failure.hpp"
#include "base/wording.hpp"
#include "check/path_options.hpp"
#include "commands.hpp"
#include "objects/input.hpp"
#include "objects/name_forms.hpp"

#include <iostream>
#include <utility>

namespace tool {

namespace {

struct Options {
    PathOptions path;
    std::vector<std::string> files;
};

// Of a file's certificates the others may stand between.
void verify_certificate(const PathInputs &inputs, std::vector<Octets> chain, Report &report) {
    const LoadedCertificate certificate(std::move(chain.front()));
    Certificates others;
    for (size_t i = 1; i < chain.size(); ++i) {
        others.push_back(std::make_shared<LoadedCertificate>(std::move(chain[i])));
    }
    check_certificate(certificate, others, inputs, report);
}

// The issuer's own path counts as well.
void verify_crl(const PathInputs &inputs, Octets der, Report &report) {
    const LoadedCrl crl(std::move(der));
    const std::vector<const LoadedCertificate *> issuers = named_so(inputs.store, crl.parts.issuer);
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
    check_crl(crl, *issuer, inputs.when, report);
    check_path(find_path(*issuer, inputs.store, inputs.when), inputs.when, report);
}

void verify_request(const Octets &der, Report &report) {
    const SignatureVerdict verdict = check_request_signature(der);
    report.heading("Request");
    report.check(verdict.good, "signature by its own key: " + verdict.text);
}

bool verify_file(const PathInputs &inputs, const std::string &path) {
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
    if (needs_issuer && inputs.store.roots.empty()) {
        throw UsageError("--ca is required for certificates and CRLs");
    }
    Report report(std::cout);
    switch (kind) {
        case ObjectKind::certificate:
            verify_certificate(inputs, std::move(ders), report);
            break;
        case ObjectKind::crl:
            verify_crl(inputs, std::move(ders.front()), report);
            break;
        case ObjectKind::request:
            verify_request(ders.front(), report);
            break;
        case ObjectKind::message:
            throw Failure(
                "expected a certificate, CRL or request: \"zacert p7 verify\" verifies "
                "messages");
        case ObjectKind::ocsp_request:
        case ObjectKind::ocsp_response:
            throw Failure(
                "expected a certificate, CRL or request: \"zacert ocsp check\" verifies OCSP "
                "responses");
        case ObjectKind::pkcs12:
            throw Failure(pkcs12_instead_of("a certificate, CRL or request"));
        case ObjectKind::unknown:
            throw Failure("expected a certificate, CRL or request");
    }
    std::cout << file_label(path) << ": " << (report.all_good() ? "good" : "NOT GOOD") << '\n';
    return report.all_good();
}

// A file that cannot be read does not stop the others.
bool verify_or_say(const PathInputs &inputs, const std::string &path) {
    try {
        return verify_file(inputs, path);
    } catch (const UsageError &) {
        throw;
    } catch (const std::runtime_error &error) {
        std::cerr << "zacert: " << file_label(path) << ": " << error.what() << '\n';
        return false;
    }
}

bool run(const Options &options) {
    const PathInputs inputs(options.path);
    bool good = true;
    for (const std::string &path : options.files) {
        good = verify_or_say(inputs, path) && good;
    }
    std::cout.flush();
    return good && static_cast<bool>(std::cout);
}

}  // namespace

void add_verify_command(Arguments &app) {
    Arguments command = app.add_command("verify",
                                        "Verify certificates up to a trusted one, CRLs by their "
                                        "issuer, requests by their own key.");
    const auto options = std::make_shared<Options>();
    add_path_options(command, options->path);
    command
        .add_option("FILE", options->files,
                    "certificates, of each file the first with the others as intermediates; CRLs; "
                    "requests")
        .required();
    command.footer(
        "Exit status: 0 all is good, 1 something is not, 2 the arguments make no sense.\n"
        "Example:\n  zacert verify --ca root.pem --intermediate ca.pem --crl ca.crl --purpose "
        "server "
        "server.pem");
    command.runs([options] { return run(*options); });
}

}  // namespace tool
