#include <zacert.h>

#include "base/arguments.hpp"
#include "base/failure.hpp"
#include "base/wording.hpp"
#include "base/write_file.hpp"
#include "objects/input.hpp"
#include "objects/oid_names.hpp"
#include "objects/pkcs7_contexts.hpp"
#include "p7/p7_command.hpp"
#include "p7/signer_check.hpp"

#include <iostream>

namespace tool {

namespace {

struct Options {
    PathOptions path;
    bool no_path = false;
    std::vector<std::string> certificates;
    std::string content;
    std::string out;
    std::string message;
};

Octets content_in(void *context) {
    uint32_t length = 0;
    // Asked for the length alone, the getter tells it and gives 101.
    ZA_PKCS7_GetSignedDataAttributeChar(context, PKCS7_CONTENT, nullptr, &length, 1);
    Octets octets(length);
    if (length != 0) {
        check(
            ZA_PKCS7_GetSignedDataAttributeChar(context, PKCS7_CONTENT, octets.data(), &length, 1));
    }
    return octets;
}

Failure in_message(const Options &options, const std::string &problem) {
    return Failure(file_label(options.message) + ": " + problem);
}

Octets content_of(const Options &options, const Message &message, void *context) {
    if (message.content_size && !options.content.empty()) {
        throw in_message(options,
                         "expected a message without its content, since --content names one");
    }
    if (!message.content_size && options.content.empty()) {
        throw in_message(
            options, "expected the content: it is not in the message, and --content names none");
    }
    return message.content_size ? content_in(context) : read_file(options.content, "the content");
}

// What is no certificate is of no use, and does not stop the others.
Certificates certificates_in(const Message &message, Report &report) {
    Certificates certificates;
    for (size_t i = 0; i < message.certificates.size(); ++i) {
        try {
            certificates.push_back(std::make_shared<LoadedCertificate>(message.certificates[i]));
        } catch (const LibraryError &error) {
            report.note("certificate " + std::to_string(i + 1) +
                        " of the message: not decoded: " + error.what());
        }
    }
    return certificates;
}

// With a detached content the library gets what it would have found inside.
void *signer_at(void *context, size_t number, const SignedContent &content) {
    void *signer = part_of(context, number, ZA_PKCS7_GetSignedData_SignerInfo);
    if (!content.inside) {
        check(ZA_PKCS7_SetSignerInfoAttributeChar(signer, PKCS7_SIGNER_CONTENT,
                                                  content.octets.data(),
                                                  static_cast<uint32_t>(content.octets.size())));
    }
    return signer;
}

Message signed_message(const Options &options, View der) {
    Message message = read_message(der);
    if (!message.is(pkcs7::kSignedData)) {
        throw in_message(options, "expected signedData, found " + label(message.type));
    }
    if (message.signers.empty()) {
        throw in_message(options, "expected a signed message: there is no signer in it");
    }
    return message;
}

// The content that all signers have signed is written, once all is good.
class Verification {
  public:
    explicit Verification(const Options &options)
        : options_(options),
          inputs_(options.path),
          certificates_{load_certificates(options.certificates), {}},
          out_(options.out == "-" ? std::cerr : std::cout),
          report_(out_) {}

    bool run() {
        const Octets der = load_one(options_.message, ObjectKind::message);
        const Message message = signed_message(options_, der);
        const DecodedSignedData decoded(der);
        const Octets octets = content_of(options_, message, decoded.get());
        const SignedContent content{message.content_type, octets, message.content_size.has_value()};
        certificates_.in_message = certificates_in(message, report_);
        std::optional<View> covered;
        for (size_t i = 0; i < message.signers.size(); ++i) {
            const SignerOutcome outcome =
                check_signer(i + 1, message.signers[i], signer_at(decoded.get(), i + 1, content),
                             content, certificates_, report_);
            check_certificate_of(outcome);
            check_same(outcome.covered, covered);
        }
        return finish(*covered);
    }

  private:
    void check_certificate_of(const SignerOutcome &outcome) {
        if (options_.no_path) {
            report_.note("path: not checked, as --no-path asks");
        } else if (outcome.certificate != nullptr) {
            Certificates others = certificates_.in_message;
            others.insert(others.end(), certificates_.given.begin(), certificates_.given.end());
            check_certificate(*outcome.certificate, others, inputs_, report_);
        }
    }

    // Of a content that is no data, signers may have signed the element or what is inside it.
    void check_same(View octets, std::optional<View> &covered) {
        if (covered && covered->data() != octets.data() && report_.all_good()) {
            report_.check(false, "content: the signers have not signed the same octets of it");
        }
        covered = octets;
    }

    bool finish(View covered) {
        const bool good = report_.all_good();
        if (good && !options_.out.empty()) {
            constexpr mode_t kMode = 0666;
            write_file(options_.out, covered, kMode, Existing::replaced);
        }
        out_ << file_label(options_.message) << ": " << (good ? "good" : "NOT GOOD") << '\n';
        out_.flush();
        return good && static_cast<bool>(out_);
    }

    const Options &options_;
    PathInputs inputs_;
    SignerCertificates certificates_;
    std::ostream &out_;
    Report report_;
};

bool run(const Options &options) {
    if (options.path.roots.empty() == !options.no_path) {
        throw UsageError("either --ca or --no-path is required");
    }
    try {
        return Verification(options).run();
    } catch (const LibraryError &error) {
        throw in_message(options, std::string("expected a signed message: ") + error.what());
    }
}

}  // namespace

void add_p7_verify(Arguments &p7) {
    Arguments command = p7.add_command(
        "verify", "Verify a signed PKCS#7 message: every signer, its content and certificates.");
    const auto options = std::make_shared<Options>();
    add_path_options(command, options->path);
    command.add_flag("--no-path", options->no_path,
                     "do not check whose the signers' certificates are, instead of --ca");
    command.add_repeatable("--cert", options->certificates,
                           "certificates of signers that are not in the message; repeatable");
    command.add_option("--content", options->content, "the content, where it is not in the message")
        .type_name("FILE");
    command
        .add_option("--out", options->out,
                    "write the content there if all is good; - is standard output, and the report "
                    "goes to standard error")
        .type_name("FILE");
    command.add_option("MESSAGE", options->message, "DER or PEM; - is standard input").required();
    command.footer(
        "Exit status: 0 all is good, 1 something is not, 2 the arguments make no sense.\n"
        "Example:\n  zacert p7 verify --ca root.pem --content contract.pdf contract.p7s");
    command.runs([options] { return run(*options); });
}

}  // namespace tool
