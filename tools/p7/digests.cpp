#include "p7/digests.hpp"

#include "base/failure.hpp"

#include <algorithm>
#include <array>

namespace tool {

namespace {

// The first ones are offered.
constexpr size_t kOffered = 3;
constexpr auto kDigests = std::to_array<MessageDigest>({
    {"sha256", "2.16.840.1.101.3.4.2.1", "1.2.840.113549.1.1.11", 9, EVP_sha256, Trust::full},
    {"sha384", "2.16.840.1.101.3.4.2.2", "1.2.840.113549.1.1.12", 11, EVP_sha384, Trust::full},
    {"sha512", "2.16.840.1.101.3.4.2.3", "1.2.840.113549.1.1.13", 13, EVP_sha512, Trust::full},
    {"sha224", "2.16.840.1.101.3.4.2.4", "1.2.840.113549.1.1.14", 0, EVP_sha224, Trust::full},
    {"sha1", "1.3.14.3.2.26", "1.2.840.113549.1.1.5", 7, EVP_sha1, Trust::doubtful},
    {"md5", "1.2.840.113549.2.5", "1.2.840.113549.1.1.4", 5, EVP_md5, Trust::none},
    {"md2", "1.2.840.113549.2.2", "1.2.840.113549.1.1.2", 3, nullptr, Trust::none},
});

}  // namespace

const MessageDigest *digest_of_id(std::string_view id) {
    const auto row = std::find_if(kDigests.begin(), kDigests.end(),
                                  [id](const MessageDigest &digest) { return digest.id == id; });
    return row == kDigests.end() ? nullptr : &*row;
}

const MessageDigest &digest_named(std::string_view name) {
    const auto end = kDigests.begin() + kOffered;
    const auto row = std::find_if(
        kDigests.begin(), end, [name](const MessageDigest &digest) { return digest.name == name; });
    if (row == end) {
        throw UsageError("no such digest: " + std::string(name));
    }
    return *row;
}

Option add_digest_option(Arguments &command, std::string &name) {
    return command.add_option("--digest", name, "sha256, sha384 or sha512")
        .one_of({"sha256", "sha384", "sha512"});
}

}  // namespace tool
