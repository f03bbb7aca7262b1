#include "p7/signer_check.hpp"

#include <zacert.h>

#include "base/dates.hpp"
#include "base/elements.hpp"
#include "base/failure.hpp"
#include "objects/name_forms.hpp"
#include "objects/oid_names.hpp"
#include "p7/signer_crypto.hpp"

#include <algorithm>
#include <array>

namespace tool {

namespace {

// ---- Whose certificate -------------------------------------------------------------------------

View without_zeros(View number) {
    const auto first =
        std::find_if(number.begin(), number.end(), [](uint8_t octet) { return octet != 0; });
    return number.subspan(static_cast<size_t>(first - number.begin()));
}

bool is_of(const LoadedCertificate &certificate, const IssuerSerial &told) {
    return same_octets(without_zeros(certificate.parts.serial),
                       without_zeros(told.serial.magnitude)) &&
           same_name(certificate.parts.issuer, told.issuer);
}

struct Candidate {
    std::shared_ptr<const LoadedCertificate> certificate;
    std::string_view origin;
};

// Anybody can put a certificate of the same issuer and serial number beside the signer's.
std::vector<Candidate> candidates_for(const MessageSigner &signer,
                                      const SignerCertificates &certificates) {
    std::vector<Candidate> found;
    const auto add = [&](const Certificates &list, std::string_view origin) {
        for (const auto &certificate : list) {
            if (is_of(*certificate, signer.certificate)) {
                found.push_back({certificate, origin});
            }
        }
    };
    add(certificates.given, "given by --cert");
    add(certificates.in_message, "in the message");
    return found;
}

// ---- The signature -----------------------------------------------------------------------------

struct Attempt {
    Candidate by;
    std::unique_ptr<SignerCrypto> crypto;  // none where the key or the algorithms do not serve
    bool good = false;
    std::string text;
};

// The library's verdict, which it gives beside its result.
bool is_good(void *context) {
    constexpr uint32_t kGood = 200;
    constexpr uint32_t kBad = 300;
    uint32_t verdict = kBad;
    check(ZA_PKCS7_VerifySignerSignature(context, &verdict));
    return verdict == kGood;
}

Attempt attempt(const Candidate &candidate, const MessageSigner &signer, void *context,
                bool empty_content) {
    Attempt result{candidate, nullptr, false, ""};
    try {
        result.crypto = std::make_unique<SignerCrypto>(*candidate.certificate, signer);
        if (signer.attributes.empty() && empty_content) {
            throw Failure("an empty content signed without attributes cannot be verified");
        }
        result.crypto->install(context);
        result.good = is_good(context);
        const bool plain = signer.attributes.empty();
        result.text = result.crypto->text();
        result.text += result.good ? (plain ? ", over the content" : ", over the attributes")
                                   : std::string(": does not verify over ") +
                                         (plain ? "the content" : "attributes and content");
    } catch (const LibraryError &error) {
        result.text = error.what();
    } catch (const Failure &failure) {
        result.text = failure.what();
    }
    return result;
}

// By the certificate whose key verifies; else by the first, so that there is something to report.
Attempt best_attempt(const std::vector<Candidate> &candidates, const MessageSigner &signer,
                     void *context, bool empty_content) {
    Attempt best = attempt(candidates.front(), signer, context, empty_content);
    for (size_t i = 1; i < candidates.size() && !best.good; ++i) {
        Attempt other = attempt(candidates[i], signer, context, empty_content);
        if (other.good) {
            best = std::move(other);
        }
    }
    return best;
}

// ---- What the signature covers -----------------------------------------------------------------

// The one attribute of a type that must be there once, with one value; else a failed check.
template <class Read>
auto single(const MessageSigner &signer, std::string_view oid, const std::string &name,
            const Read &read, Report &report) -> decltype(read(MessageAttribute{})) {
    const auto found = attributes_of_type(signer.attributes, oid);
    if (found.size() != 1) {
        report.check(false, name + ": " + (found.empty() ? "is missing" : "is there twice") +
                                " among the attributes");
        return std::nullopt;
    }
    const auto value = read(*found.front());
    if (!value) {
        report.check(false, name + ": the attribute has not one value of its kind");
    }
    return value;
}

bool check_content_type(const MessageSigner &signer, const SignedContent &content, Report &report) {
    const auto type = single(signer, pkcs7::kContentType, "content type", object_id_in, report);
    return type && report.check(type->oid == content.type.oid,
                                "content type: " + label(content.type) +
                                    (type->oid == content.type.oid
                                         ? ", as the attributes say"
                                         : ", but the attributes say " + label(*type)));
}

// Of content that is no data most writers digest what is inside the element, and some all of it.
std::vector<View> readings(const SignedContent &content) {
    std::vector<View> views = {content.octets};
    if (content.inside && content.type.oid != pkcs7::kData) {
        Elements elements(content.octets);
        views.insert(views.begin(), elements.next().content);
    }
    return views;
}

std::optional<View> check_message_digest(const MessageSigner &signer, const SignedContent &content,
                                         const SignerCrypto &crypto, Report &report) {
    const auto stated = single(signer, pkcs7::kMessageDigest, "message digest", octets_in, report);
    if (!stated) {
        return std::nullopt;
    }
    for (const View octets : readings(content)) {
        if (same_octets(crypto.digest(octets), *stated)) {
            report.check(true, "message digest: that of the content, " +
                                   std::to_string(octets.size()) + " octets");
            return octets;
        }
    }
    report.check(false, "message digest: is not that of the content");
    return std::nullopt;
}

// SET OF SEQUENCE { OBJECT IDENTIFIER, SET }, as signers sign it.
bool looks_like_attributes(View content) {
    try {
        Elements list(only_element(content, ZA_DER_ID_SET).content);
        bool any = false;
        while (!list.at_end()) {
            Elements fields(list.required(ZA_DER_ID_SEQUENCE).content);
            fields.required(ZA_DER_ID_OBJECTID);
            fields.required(ZA_DER_ID_SET);
            any = true;
        }
        return any;
    } catch (const LibraryError &) {
        return false;
    }
}

// Without attributes the signature is over the content itself, which must be data (RFC 2315, 9.2).
// Content that reads as attributes may have been taken from another message, where its digest was
// signed: there the signer signed what those attributes are about, and not this.
std::optional<View> check_plain_content(const SignedContent &content, Report &report) {
    if (content.type.oid != pkcs7::kData) {
        report.check(false, "content type: " + label(content.type) +
                                ", which has to be signed with attributes");
        return std::nullopt;
    }
    if (looks_like_attributes(content.octets)) {
        report.check(false,
                     "content: reads as the attributes of a signer, and may be taken from "
                     "another message");
        return std::nullopt;
    }
    report.check(true, "content type: data, signed without attributes");
    return content.octets;
}

std::optional<View> check_coverage(const MessageSigner &signer, const SignedContent &content,
                                   const SignerCrypto &crypto, Report &report) {
    if (signer.attributes.empty()) {
        return check_plain_content(content, report);
    }
    const bool type_is_good = check_content_type(signer, content, report);
    const auto covered = check_message_digest(signer, content, crypto, report);
    return type_is_good ? covered : std::nullopt;
}

// ---- What else there is to say -----------------------------------------------------------------

void check_key_usage(const LoadedCertificate &certificate, Report &report) {
    const std::vector<Extension> &extensions = certificate.facts.extensions;
    if (find_extension(extensions, "2.5.29.15") == nullptr) {
        report.note("key usage: not limited");
        return;
    }
    for (const std::string_view usage : {"digitalSignature", "nonRepudiation"}) {
        if (has_usage(extensions, usage)) {
            report.check(true, "key usage: " + std::string(usage));
            return;
        }
    }
    report.check(false, "key usage: has none of digitalSignature, nonRepudiation");
}

void note_claims(const MessageSigner &signer, Report &report) {
    for (const MessageAttribute *attribute :
         attributes_of_type(signer.attributes, pkcs7::kSigningTime)) {
        const auto time = time_in(*attribute);
        report.note("signing time: " +
                    (time ? shown_time(*time) + ", as the signer says" : "cannot be read"));
    }
    if (!signer.unsigned_attributes.empty()) {
        report.note("unsigned attributes: not looked at, " +
                    std::to_string(signer.unsigned_attributes.size()));
    }
}

}  // namespace

SignerOutcome check_signer(size_t number, const MessageSigner &signer, void *context,
                           const SignedContent &content, const SignerCertificates &certificates,
                           Report &report) {
    report.heading("Signer " + std::to_string(number) + ", serial " +
                   signer.certificate.serial.hex(":") + " of " + one_line(signer.certificate.name));
    const std::vector<Candidate> candidates = candidates_for(signer, certificates);
    if (candidates.empty()) {
        report.check(false, "certificate: neither in the message nor given by --cert");
        return {};
    }
    const Attempt best = best_attempt(candidates, signer, context, content.octets.empty());
    report.check(true, "certificate: " + shown_subject(*best.by.certificate) + ", " +
                           std::string(best.by.origin));
    check_key_usage(*best.by.certificate, report);
    SignerOutcome outcome{best.by.certificate, {}};
    std::optional<View> covered;
    if (best.crypto != nullptr) {
        covered = check_coverage(signer, content, *best.crypto, report);
        if (!best.crypto->doubt().empty()) {
            report.note(best.crypto->doubt());
        }
    }
    report.check(best.good, "signature: " + best.text);
    note_claims(signer, report);
    if (best.good && covered) {
        outcome.covered = *covered;
    }
    return outcome;
}

}  // namespace tool
