#include <zacert.h>

#include "base/callback.hpp"
#include "base/der.hpp"
#include "base/der_writer.hpp"
#include "base/failure.hpp"
#include "base/wording.hpp"
#include "base/write_file.hpp"
#include "check/report.hpp"
#include "objects/input.hpp"
#include "objects/loading.hpp"
#include "objects/oid_names.hpp"
#include "objects/pkcs7.hpp"
#include "objects/pkcs7_contexts.hpp"
#include "p7/digests.hpp"
#include "p7/p7_command.hpp"

#include <iostream>

namespace tool {

namespace {

struct Options {
    std::string digest = "sha256";
    std::string content;
    std::string out;
    bool pem = false;
    std::string message;
};

void install(const MessageDigest &digest, void *message) {
    const Secret number = octets_of_record(digest.number);
    check(ZA_PKCS7_SetDigestedDataHashFunc(message, ZA_DigestFunc_Ref, number.view().data(),
                                           static_cast<uint32_t>(number.size())));
}

bool make(const Options &options) {
    constexpr uint32_t kVersion = 0;
    if (options.content.empty() || options.out.empty()) {
        throw UsageError("expected --out and CONTENT, or --check");
    }
    const Octets content = read_file(options.content, "the content");
    if (content.empty()) {
        throw Failure(file_label(options.content) + ": expected content, the file is empty");
    }
    const MessageDigest &digest = digest_named(options.digest);
    NewDigestedData message;
    const auto set = [&message](int32_t id, View value) {
        check(ZA_PKCS7_SetDigestedDataAttributeChar(message.get(), id, value.data(),
                                                    static_cast<uint32_t>(value.size())));
    };
    check(
        ZA_PKCS7_SetDigestedDataAttributeInt(message.get(), PKCS7_DIGESTEDDATA_VERSION, kVersion));
    set(PKCS7_DIGESTEDDATA_DIGEST_ALGO, object_id_octets(std::string(digest.id)));
    set(PKCS7_DIGESTEDDATA_CONTENTTYPE, object_id_octets(std::string(pkcs7::kData)));
    set(PKCS7_DIGESTEDDATA_CONTENT, content);
    install(digest, message.get());
    write_object({options.out, !options.pem}, fetched([&](uint8_t *out, uint32_t *length) {
                     return ZA_PKCS7_EncodePKCS7DigestedData(message.get(), out, length);
                 }),
                 "PKCS7");
    return true;
}

bool compare(const Options &options) {
    const std::string label = file_label(options.message);
    const Octets der = load_one(options.message, ObjectKind::message);
    const Message facts = read_message(der);
    if (!facts.is(pkcs7::kDigestedData)) {
        throw Failure(label + ": expected digestedData, found " + tool::label(facts.type));
    }
    const NamedId &algorithm = facts.digest_algorithms.front();
    const MessageDigest *digest = digest_of_id(algorithm.oid);
    if (digest == nullptr || digest->number == 0) {
        throw Failure(label + ": the digest " + tool::label(algorithm) + " is not known here");
    }
    const UndecodedDigestedData message;
    install(*digest, message.get());
    check(ZA_PKCS7_DecodePKCS7DigestedData(message.get(), der.data(),
                                           static_cast<uint32_t>(der.size())));
    constexpr uint32_t kMatches = 200;
    uint32_t result = 0;
    check(ZA_PKCS7_GetDigestedDataHashResult(message.get(), &result));
    Report report(std::cout);
    report.heading(label);
    return report.check(
        result == kMatches,
        std::string("the digest ") + (result == kMatches ? "matches" : "does not match") +
            " the content: " + tool::label(algorithm) + " (" + std::to_string(result) + ")");
}

}  // namespace

void add_p7_digest(Arguments &p7) {
    Arguments command =
        p7.add_command("digest", "Put a file and its digest into one message (digestedData).");
    const auto options = std::make_shared<Options>();
    Option digest = add_digest_option(command, options->digest).shows_default();
    Option out =
        command.add_option("--out", options->out, "where to write it; - is standard output")
            .type_name("FILE");
    Option pem = command.add_flag("--pem", options->pem, "write PEM instead of DER");
    Option content =
        command.add_option("CONTENT", options->content, "what is digested; - is standard input");
    command
        .add_option("--check", options->message,
                    "tell whether the digest in this message is that of its content")
        .type_name("MESSAGE")
        .excludes(digest)
        .excludes(out)
        .excludes(pem)
        .excludes(content);
    command.footer(
        "Examples:\n  zacert p7 digest --out report.p7 report.pdf\n"
        "  zacert p7 digest --check report.p7");
    command.runs(
        [options] { return options->message.empty() ? make(*options) : compare(*options); });
}

}  // namespace tool
