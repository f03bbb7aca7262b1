// From a certificate over its issuers to one that is trusted (RFC 5280, 6.1).
#pragma once

#include "check/report.hpp"
#include "check/signature_check.hpp"
#include "objects/loading.hpp"

#include <chrono>
#include <memory>
#include <vector>

namespace tool {

// Copies share the certificates.
using Certificates = std::vector<std::shared_ptr<const LoadedCertificate>>;

// Every certificate of every file.
Certificates load_certificates(const std::vector<std::string> &paths);

struct TrustStore {
    Certificates roots;
    Certificates others;
};

struct When {
    std::chrono::sys_seconds time;
    Moment moment;
};

// The certificate first, the trusted one last; that one is missing where `complete` is false.
struct Path {
    std::vector<const LoadedCertificate *> certificates;
    bool complete = false;
};

// By the octets, or by the text of equal entries in other string types.
bool same_name(View left, View right);

// The issuers whose name is the one given, those trusted first.
std::vector<const LoadedCertificate *> named_so(const TrustStore &store, View name);

Path find_path(const LoadedCertificate &certificate, const TrustStore &store, const When &when);

// One line for each check of each certificate: the path itself, signatures, validity, extensions, and
// of issuers whether they may issue.
void check_path(const Path &path, const When &when, Report &report);

// "CN=..., O=..."
std::string shown_subject(const LoadedCertificate &certificate);

}  // namespace tool
