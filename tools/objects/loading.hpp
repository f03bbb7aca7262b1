// Objects that a command needs whole and good.
#pragma once

#include "objects/certificate.hpp"
#include "objects/crl.hpp"
#include "objects/kind.hpp"
#include "objects/signed_object.hpp"

#include <string>
#include <vector>

namespace tool {

// Every object of one kind in the file, at least one; each is known to be the kind. A Failure names
// the file.
std::vector<Octets> load_all(const std::string &path, ObjectKind kind);

// The file's only one.
Octets load_one(const std::string &path, ObjectKind kind);

// A certificate decoded, with the octets it came from.
struct LoadedCertificate {
    Octets der;
    CertificateParts parts;  // into `der`
    Certificate facts;

    explicit LoadedCertificate(Octets octets);
    LoadedCertificate(LoadedCertificate &&) = default;
    LoadedCertificate &operator=(LoadedCertificate &&) = default;
    LoadedCertificate(const LoadedCertificate &) = delete;
    LoadedCertificate &operator=(const LoadedCertificate &) = delete;
};

LoadedCertificate load_certificate(const std::string &path);

// Appends those of the file that are not there yet.
void add_certificates(const std::string &path, std::vector<Octets> &certificates);

// The extension, or nullptr.
const Extension *find_extension(const std::vector<Extension> &extensions, std::string_view oid);

// The value of the extension of this kind, or nullptr where it is not there or not understood.
template <class Value>
const Value *find_value(const std::vector<Extension> &extensions) {
    for (const Extension &extension : extensions) {
        if (const Value *value = std::get_if<Value>(&extension.value)) {
            return value;
        }
    }
    return nullptr;
}

bool has_usage(const std::vector<Extension> &extensions, std::string_view usage);

}  // namespace tool
