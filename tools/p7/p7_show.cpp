#include "base/failure.hpp"
#include "base/wording.hpp"
#include "base/write_file.hpp"
#include "objects/loading.hpp"
#include "objects/pkcs7.hpp"
#include "p7/p7_command.hpp"
#include "show/show.hpp"

#include <memory>

namespace tool {

namespace {

struct Options {
    std::string format = "text";
    std::string certificates;
    std::vector<std::string> files;
};

// Those of the message in PEM, one block behind the other.
Octets certificates_of(const std::string &path) {
    Octets blocks;
    for (const Octets &der : load_all(path, ObjectKind::message)) {
        for (const Octets &certificate : read_message(der).certificates) {
            certificate_brief(certificate);
            const Octets block = pem(certificate, "CERTIFICATE");
            blocks.insert(blocks.end(), block.begin(), block.end());
        }
    }
    if (blocks.empty()) {
        throw Failure("expected a certificate in the message, found none");
    }
    return blocks;
}

bool write_certificates(const Options &options) {
    constexpr mode_t kMode = 0666;
    Octets blocks;
    for (const std::string &path : options.files) {
        try {
            const Octets more = certificates_of(path);
            blocks.insert(blocks.end(), more.begin(), more.end());
        } catch (const LibraryError &error) {
            throw Failure(file_label(path) + ": expected a certificate: " + error.what());
        }
    }
    write_file(options.certificates, blocks, kMode, Existing::replaced);
    return true;
}

bool run(const Options &options) {
    return options.certificates.empty()
               ? show(options.files, formats().at(options.format), ObjectKind::message)
               : write_certificates(options);
}

}  // namespace

void add_p7_show(Arguments &p7) {
    Arguments command = p7.add_command("show", "Show PKCS#7 messages in DER or PEM.");
    const auto options = std::make_shared<Options>();
    add_format_option(command, options->format);
    command
        .add_option("--certs", options->certificates,
                    "write the certificates of the messages as PEM instead; - is standard output")
        .type_name("FILE");
    command.add_option("FILE", options->files, "DER or PEM; - is standard input").required();
    command.footer(
        "Nothing is verified, and contents are not shown.\n"
        "Example:\n  zacert p7 show --certs chain.pem message.p7s");
    command.runs([options] { return run(*options); });
}

}  // namespace tool
