#include "input.hpp"

#include <zacert.h>

#include "failure.hpp"
#include "pem.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace tool {

namespace {

constexpr size_t kMaxFile = 64u * 1024 * 1024;
constexpr size_t kMaxHeader = 11;

struct Close {
    void operator()(FILE *file) const { std::fclose(file); }
};

Octets read_all(FILE *file) {
    Octets octets;
    std::array<uint8_t, 65536> buffer{};
    while (const size_t count = std::fread(buffer.data(), 1, buffer.size(), file)) {
        octets.insert(octets.end(), buffer.begin(), buffer.begin() + count);
        if (octets.size() > kMaxFile) {
            throw Failure("expected at most 64 MiB");
        }
    }
    if (std::ferror(file) != 0) {
        throw Failure(std::string("expected a certificate: ") + std::strerror(errno));
    }
    return octets;
}

// The length that the element's header announces. The library reads a header without an end to it.
uint32_t announced_length(View element) {
    std::array<uint8_t, kMaxHeader> header{};
    std::copy_n(element.begin(), std::min(element.size(), header.size()), header.begin());
    uint32_t length = 0;
    check(ZAsn1_GetCertLength(header.data(), &length));
    return length;
}

enum class Trailer { forbidden, allowed };

std::string sizes(size_t announced, size_t held) {
    return "expected a certificate of " + std::to_string(announced) + " octets, found " +
           std::to_string(held) + ": ";
}

Candidate measured(Octets octets, Trailer trailer) {
    try {
        if (octets.empty() || octets.front() != ZA_DER_ID_SEQUENCE) {
            throw LibraryError(ZACERT_TagErr);
        }
        const uint32_t length = announced_length(octets);
        if (length > octets.size() || (length < octets.size() && trailer == Trailer::forbidden)) {
            return {{},
                    sizes(length, octets.size()) + LibraryError(ZACERT_LengthNotEqualErr).what()};
        }
        octets.resize(length);
        return {std::move(octets), {}};
    } catch (const LibraryError &error) {
        return {{}, std::string("expected a certificate: ") + error.what()};
    }
}

bool is_certificate_label(std::string_view label) {
    return label == "CERTIFICATE" || label == "X509 CERTIFICATE" || label == "TRUSTED CERTIFICATE";
}

Candidate candidate_of(PemBlock block) {
    if (!block.problem.empty()) {
        return {{}, "expected a certificate: " + block.problem};
    }
    // A trusted certificate carries settings of its owner behind it.
    const bool trusted = block.label == "TRUSTED CERTIFICATE";
    return measured(std::move(block.octets), trusted ? Trailer::allowed : Trailer::forbidden);
}

std::vector<Candidate> certificates_in_pem(std::vector<PemBlock> blocks) {
    std::vector<Candidate> candidates;
    for (PemBlock &block : blocks) {
        if (is_certificate_label(block.label)) {
            candidates.push_back(candidate_of(std::move(block)));
        }
    }
    if (candidates.empty()) {
        throw Failure("expected a PEM block CERTIFICATE, found " + blocks.front().label);
    }
    return candidates;
}

}  // namespace

Octets read_file(const std::string &path) {
    if (path == "-") {
        return read_all(stdin);
    }
    const std::unique_ptr<FILE, Close> file(std::fopen(path.c_str(), "rbe"));
    if (file == nullptr) {
        throw Failure(std::string("expected a certificate: ") + std::strerror(errno));
    }
    return read_all(file.get());
}

std::vector<Candidate> certificates_in(Octets file) {
    if (file.empty()) {
        throw Failure("expected a certificate: the file is empty");
    }
    std::vector<PemBlock> blocks;
    // Text may begin with the digit zero, which is the identifier of a SEQUENCE.
    Candidate der = measured(file, Trailer::forbidden);
    if (!der.problem.empty()) {
        blocks = pem_blocks({reinterpret_cast<const char *>(file.data()), file.size()});
    }
    if (!blocks.empty()) {
        return certificates_in_pem(std::move(blocks));
    }
    if (file.front() != ZA_DER_ID_SEQUENCE) {
        throw Failure(std::string("expected a certificate in DER or PEM: ") +
                      LibraryError(ZACERT_TagErr).what());
    }
    return {std::move(der)};
}

}  // namespace tool
