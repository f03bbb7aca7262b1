#include "p7/secret_key.hpp"

#include "base/failure.hpp"

#include <algorithm>
#include <openssl/err.h>

namespace tool {

namespace {

Failure no_digits() {
    return Failure("expected a secret key as hexadecimal digits, two for each octet");
}

// Up to the end of the line.
Secret octets_of_digits(View text) {
    constexpr size_t kMaxDigits = 128;
    const auto end = std::find_if(text.begin(), text.end(),
                                  [](uint8_t octet) { return octet == '\n' || octet == '\r'; });
    const View line(text.begin(), end);
    if (line.empty() || line.size() > kMaxDigits) {
        throw no_digits();
    }
    Secret digits(line.size() + 1);  // libcrypto wants a zero behind
    std::copy(line.begin(), line.end(), digits.data());
    Secret octets(line.size() / 2);
    size_t written = 0;
    constexpr char kNoSeparator = '\0';
    if (OPENSSL_hexstr2buf_ex(octets.data(), octets.size(), &written, digits.text(),
                              kNoSeparator) != 1) {
        ERR_clear_error();
        throw no_digits();
    }
    return octets;
}

}  // namespace

void add_secret_key_options(Arguments &command, SecretKeyOptions &options) {
    command
        .add_option("--secret-key", options.digits,
                    "key of the cipher, which both sides know; others on this machine can see it "
                    "in the arguments")
        .type_name("HEX");
    command.add_option("--secret-key-file", options.file, "a file with these digits instead")
        .type_name("FILE");
}

Secret secret_key(const SecretKeyOptions &options) {
    constexpr size_t kMaxFile = 1024;
    if (options.file.empty()) {
        return octets_of_digits(
            {reinterpret_cast<const uint8_t *>(options.digits.data()), options.digits.size()});
    }
    return octets_of_digits(read_secret(options.file, kMaxFile, "a secret key").view());
}

}  // namespace tool
