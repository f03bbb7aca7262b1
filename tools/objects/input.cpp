#include "objects/input.hpp"

#include <zacert.h>

#include "base/der.hpp"
#include "base/elements.hpp"
#include "base/failure.hpp"
#include "base/pem.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sys/stat.h>

namespace tool {

namespace {

constexpr size_t kMaxFile = size_t{256} * 1024 * 1024;
constexpr size_t kMaxHeader = 11;

struct Close {
    void operator()(FILE *file) const { static_cast<void>(std::fclose(file)); }
};

std::string expected(ObjectKind kind, std::string_view problem) {
    return "expected " + std::string(noun(kind)) + ": " + std::string(problem);
}

Failure system_failure(std::string_view wanted) {
    return Failure("expected " + std::string(wanted) + ": " + std::strerror(errno));
}

// The size of a regular file, so that large ones are read into one block; 0 for what has no size.
size_t size_of(FILE *file) {
    struct stat status {};
    const bool regular = fstat(fileno(file), &status) == 0 && S_ISREG(status.st_mode);
    return regular ? std::min(static_cast<size_t>(status.st_size), kMaxFile) : 0;
}

Octets read_all(FILE *file, std::string_view wanted) {
    Octets octets;
    octets.reserve(size_of(file));
    std::array<uint8_t, 65536> buffer{};
    while (const size_t count = std::fread(buffer.data(), 1, buffer.size(), file)) {
        octets.insert(octets.end(), buffer.begin(), buffer.begin() + count);
        if (octets.size() > kMaxFile) {
            throw Failure("expected at most 256 MiB");
        }
    }
    if (std::ferror(file) != 0) {
        throw system_failure(wanted);
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

std::string sizes(ObjectKind kind, size_t announced, size_t held) {
    return "expected " + std::string(noun(kind)) + " of " + std::to_string(announced) +
           " octets, found " + std::to_string(held) + ": " +
           LibraryError(ZACERT_LengthNotEqualErr).what();
}

// What is wrong with the size of the element; nothing when it is there whole.
std::string size_problem(ObjectKind kind, View octets, Trailer trailer) {
    try {
        if (octets.empty() || octets.front() != ZA_DER_ID_SEQUENCE) {
            throw LibraryError(ZACERT_TagErr);
        }
        const uint32_t length = announced_length(octets);
        const bool cut = length > octets.size();
        const bool more = length < octets.size() && trailer == Trailer::forbidden;
        return cut || more ? sizes(kind, length, octets.size()) : "";
    } catch (const LibraryError &error) {
        return expected(kind, error.what());
    }
}

// Many write PKCS#7 with indefinite lengths: what follows sees definite ones alone. The message is
// taken apart and put together again, because what rewrites lengths gives nothing longer than it
// got, and from 64 KiB on definite lengths take more octets.
Octets definite(View message) {
    Octets type;
    Octets content;
    uint32_t type_length = 0;
    uint32_t content_length = 0;
    const auto take_apart = [&](uint8_t *type_out, uint8_t *content_out) {
        check(ZA_PKCS7_DecodePKCS7DerTypeData(message.data(), static_cast<uint32_t>(message.size()),
                                              type_out, &type_length, content_out,
                                              &content_length));
    };
    take_apart(nullptr, nullptr);
    type.resize(type_length);
    content.resize(content_length);
    take_apart(type.data(), content.data());
    return fetched([&](uint8_t *out, uint32_t *length) {
        return ZA_PKCS7_EncodePKCS7DerTypeData(content.data(), content_length, type.data(),
                                               type_length, out, length);
    });
}

std::string problem_of(ObjectKind kind, Octets &octets, Trailer trailer) {
    if (kind == ObjectKind::pkcs12) {
        return "";  // those who open it will see
    }
    if (kind != ObjectKind::message || !has_indefinite_length(octets)) {
        return size_problem(kind, octets, trailer);
    }
    try {
        octets = definite(octets);
        return "";
    } catch (const LibraryError &error) {
        return expected(kind, error.what());
    }
}

Candidate candidate_of(PemBlock block) {
    Candidate candidate;
    candidate.kind = kind_of_label(block.label);
    // A trusted certificate carries settings of its owner behind it.
    const bool trusted = block.label == "TRUSTED CERTIFICATE";
    candidate.problem = block.problem.empty()
                            ? problem_of(candidate.kind, block.octets,
                                         trusted ? Trailer::allowed : Trailer::forbidden)
                            : expected(candidate.kind, block.problem);
    if (candidate.problem.empty()) {
        block.octets.resize(announced_length(block.octets));
        candidate.der = std::move(block.octets);
    }
    return candidate;
}

std::vector<Candidate> objects_in_pem(std::vector<PemBlock> blocks) {
    std::vector<Candidate> candidates;
    for (PemBlock &block : blocks) {
        if (kind_of_label(block.label) != ObjectKind::unknown) {
            candidates.push_back(candidate_of(std::move(block)));
        }
    }
    if (candidates.empty()) {
        throw Failure(
            "expected a PEM block CERTIFICATE, X509 CRL, CERTIFICATE REQUEST, PKCS7, CMS, OCSP "
            "REQUEST or OCSP RESPONSE, found " +
            blocks.front().label);
    }
    return candidates;
}

}  // namespace

Octets read_file(const std::string &path, std::string_view wanted) {
    if (path == "-") {
        return read_all(stdin, wanted);
    }
    const std::unique_ptr<FILE, Close> file(std::fopen(path.c_str(), "rbe"));
    if (file == nullptr) {
        throw system_failure(wanted);
    }
    return read_all(file.get(), wanted);
}

std::vector<Candidate> objects_in(Octets file) {
    if (file.empty()) {
        throw Failure(expected(ObjectKind::unknown, "the file is empty"));
    }
    Candidate der;
    der.kind = kind_of_der(file);
    der.problem = problem_of(der.kind, file, Trailer::forbidden);
    // Text may begin with the digit zero, which is the identifier of a SEQUENCE.
    if (!der.problem.empty()) {
        std::vector<PemBlock> blocks =
            pem_blocks({reinterpret_cast<const char *>(file.data()), file.size()});
        if (!blocks.empty()) {
            return objects_in_pem(std::move(blocks));
        }
    }
    if (file.front() != ZA_DER_ID_SEQUENCE) {
        throw Failure("expected " + std::string(noun(ObjectKind::unknown)) +
                      " in DER or PEM: " + LibraryError(ZACERT_TagErr).what());
    }
    der.der = std::move(file);
    std::vector<Candidate> candidates;
    candidates.push_back(std::move(der));
    return candidates;
}

}  // namespace tool
