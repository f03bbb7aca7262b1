#include "objects/loading.hpp"

#include "base/failure.hpp"
#include "base/wording.hpp"
#include "objects/input.hpp"
#include "objects/ocsp.hpp"
#include "objects/pkcs7.hpp"

#include <algorithm>

namespace tool {

namespace {

Failure in_file(const std::string &path, const std::string &problem) {
    return Failure(file_label(path) + ": " + problem);
}

std::string expected(ObjectKind kind, const std::string &problem) {
    return "expected " + std::string(noun(kind)) + ": " + problem;
}

// Reading once tells whether the object is what it says; what is read is not kept.
void require_kind(ObjectKind kind, View der) {
    switch (kind) {
        case ObjectKind::certificate:
            read_certificate(der);
            break;
        case ObjectKind::crl:
            read_crl(der);
            break;
        case ObjectKind::message:
            read_message(der);
            break;
        case ObjectKind::ocsp_request:
            read_ocsp_request(der);
            break;
        case ObjectKind::ocsp_response:
            read_ocsp_response(der);
            break;
        default:
            request_parts(der);
    }
}

}  // namespace

std::vector<Octets> load_all(const std::string &path, ObjectKind kind) {
    try {
        std::vector<Octets> objects;
        for (Candidate &candidate : objects_in(read_file(path, noun(kind)))) {
            if (!candidate.problem.empty()) {
                throw Failure(candidate.problem);
            }
            if (candidate.kind == ObjectKind::pkcs12) {
                throw Failure(pkcs12_instead_of(noun(kind)));
            }
            if (candidate.kind == kind) {
                require_kind(kind, candidate.der);
                objects.push_back(std::move(candidate.der));
            }
        }
        if (objects.empty()) {
            throw Failure(expected(kind, "there is none in the file"));
        }
        return objects;
    } catch (const LibraryError &error) {
        throw in_file(path, expected(kind, error.what()));
    } catch (const Failure &failure) {
        throw in_file(path, failure.what());
    }
}

Octets load_one(const std::string &path, ObjectKind kind) {
    std::vector<Octets> objects = load_all(path, kind);
    if (objects.size() != 1) {
        throw in_file(path, "expected " + std::string(noun(kind)) + ", found " +
                                std::to_string(objects.size()));
    }
    return std::move(objects.front());
}

LoadedCertificate::LoadedCertificate(Octets octets)
    : der(std::move(octets)), parts(certificate_parts(der)), facts(read_certificate(der)) {}

LoadedCertificate load_certificate(const std::string &path) {
    return LoadedCertificate(load_one(path, ObjectKind::certificate));
}

void add_certificates(const std::string &path, std::vector<Octets> &certificates) {
    for (Octets &der : load_all(path, ObjectKind::certificate)) {
        if (std::find(certificates.begin(), certificates.end(), der) == certificates.end()) {
            certificates.push_back(std::move(der));
        }
    }
}

const Extension *find_extension(const std::vector<Extension> &extensions, std::string_view oid) {
    const auto found = std::find_if(extensions.begin(), extensions.end(),
                                    [oid](const Extension &entry) { return entry.id.oid == oid; });
    return found == extensions.end() ? nullptr : &*found;
}

bool has_usage(const std::vector<Extension> &extensions, std::string_view usage) {
    const auto *value = find_value<KeyUsage>(extensions);
    return value != nullptr &&
           std::find(value->usages.begin(), value->usages.end(), usage) != value->usages.end();
}

}  // namespace tool
