#include <zacert.h>

#include "base/arguments.hpp"
#include "base/dates.hpp"
#include "base/der.hpp"
#include "base/failure.hpp"
#include "base/wording.hpp"
#include "base/write_file.hpp"
#include "check/signature_check.hpp"
#include "commands.hpp"
#include "issue/crl_entries.hpp"
#include "issue/issuer.hpp"

#include <algorithm>
#include <iostream>

namespace tool {

namespace {

struct Options {
    std::string ca;
    KeyOptions key;
    std::vector<std::string> revoked;
    std::vector<std::string> certificates;
    std::string reason;
    std::string list;
    std::string previous;
    std::optional<uint64_t> number;
    std::optional<uint64_t> base;
    uint32_t days = 30;
    OutputOptions output;
};

class CrlWriter {
  public:
    explicit CrlWriter(View ca) {
        void *context = nullptr;
        check(ZACert_CreateCrlEncodeCtx_Ex(&context, ca.data(), static_cast<uint32_t>(ca.size())));
        context_.reset(context);
    }

    void set(int32_t type, View value) {
        check(ZACert_SetCrlAttributeChar(context_.get(), type, value.data(),
                                         static_cast<int32_t>(value.size())));
    }

    void set_octet(int32_t type, uint8_t value) { set(type, View(&value, 1)); }

    void set_number(int32_t type, int32_t value) {
        check(ZACert_SetCrlAttributeInt(context_.get(), type, value));
    }

    Octets encoded(Signer &signer) {
        check(ZACert_SetCrlSignFunc(context_.get(), signer.function, signer.context.data(),
                                    signer.context_length()));
        return fetched([&](uint8_t *out, uint32_t *length) {
            return ZACert_EncodeCrl(context_.get(), out, length);
        });
    }

  private:
    struct Destroy {
        void operator()(void *context) const { ZACert_DestroyCrlEncodeCtx(context); }
    };
    std::unique_ptr<void, Destroy> context_;
};

// Big-endian, at least one octet.
Octets octets_of_number(uint64_t number) {
    Octets octets;
    for (; number > 0 || octets.empty(); number >>= 8) {
        octets.insert(octets.begin(), static_cast<uint8_t>(number));
    }
    return octets;
}

struct Previous {
    Octets der;
    Crl crl;
};

Previous load_previous(const Options &options, const LoadedCertificate &ca) {
    Previous previous{load_one(options.previous, ObjectKind::crl), {}};
    const SignatureVerdict verdict = check_crl_signature(ca.der, previous.der);
    if (!verdict.good) {
        throw Failure(file_label(options.previous) +
                      ": the CRL is not signed by the CA: " + verdict.text);
    }
    previous.crl = read_crl(previous.der);
    if (find_extension(previous.crl.extensions, "2.5.29.27") != nullptr) {
        throw Failure(file_label(options.previous) + ": expected a whole CRL, found a delta CRL");
    }
    return previous;
}

uint64_t number_of(const Options &options, const Crl *previous) {
    if (options.number) {
        return *options.number;
    }
    const auto *last = previous == nullptr ? nullptr : find_value<CrlNumber>(previous->extensions);
    if (last == nullptr) {
        return options.base.value_or(0) + 1;
    }
    const std::optional<uint64_t> value = last->number.small();
    if (!value || *value == UINT64_MAX) {
        throw Failure("the previous CRL's number is too large; give the new one with --number");
    }
    return *value + 1;
}

void add_certificates(const Options &options, const LoadedCertificate &ca,
                      std::chrono::sys_seconds date, CrlEntries &entries) {
    for (const std::string &path : options.certificates) {
        const LoadedCertificate certificate = load_certificate(path);
        const View issuer = certificate.parts.issuer;
        if (!std::equal(issuer.begin(), issuer.end(), ca.parts.subject.begin(),
                        ca.parts.subject.end())) {
            throw Failure(file_label(path) + ": the certificate is not one of this CA");
        }
        const uint8_t reason = options.reason.empty() ? uint8_t{0} : reason_number(options.reason);
        entries.add({certificate.facts.serial.magnitude, date,
                     reason == 0 ? std::nullopt : std::optional(reason)});
    }
}

void add_previous(const Crl &crl, CrlEntries &entries) {
    const size_t dropped = entries.add_all(crl);
    if (dropped > 0) {
        std::cerr
            << "zacert: " << dropped
            << " extensions of the previous CRL's entries besides reasons are not taken over\n";
    }
}

void set_entries(const CrlEntries &entries, CrlWriter &writer) {
    for (const CrlEntry &entry : entries.list()) {
        writer.set(CRL_CERT_SERIALNUMBER, entry.serial);
        writer.set_number(CRL_REVOCATIONDATE, library_time(entry.date));
        if (entry.reason) {
            writer.set_octet(CRLEX_CRLREASON, *entry.reason);
        }
    }
}

void set_fields(const Options &options, const LoadedCertificate &ca, const Signer &signer,
                uint64_t number, std::chrono::sys_seconds begin, CrlWriter &writer) {
    constexpr int32_t kVersion2 = 1;
    const auto end = std::min(begin + std::chrono::days(options.days), kLastTime);
    if (end == kLastTime) {
        std::cerr << "zacert: nextUpdate is capped at " << shown_time(kLastTime)
                  << ", the end of the last whole day that can be written\n";
    }
    writer.set_number(CRL_VERSION, kVersion2);
    writer.set(CRL_INNER_SIGNATUREALGORITHM, signer.algorithm);
    writer.set(CRL_OUTER_SIGNATUREALGORITHM, signer.algorithm);
    writer.set_number(CRL_THISUPDATE, library_time(begin));
    writer.set_number(CRL_NEXTUPDATE, library_time(end));
    writer.set(CRLEX_AUTHORITY_KEYIDENTIFIER, authority_key_identifier(ca));
    writer.set(CRLEX_CRLNUMBER, octets_of_number(number));
    if (options.base) {
        writer.set(CRLEX_DELTACRLINDICATOR, octets_of_number(*options.base));
        // RFC 5280, 5.2.4: who does not know delta CRLs must not take this for a whole one.
        writer.set_octet(CRLEX_DELTACRLINDICATOR_CRITICAL, 1);
    }
}

bool run(const Options &options) {
    const LoadedCertificate ca = load_certificate(options.ca);
    const auto begin = now();
    CrlEntries entries(begin);
    std::optional<Previous> previous;
    Signer signer = open_signer(options.key);
    require_issuer(options.ca, ca, signer, "cRLSign");
    if (!options.previous.empty()) {
        previous.emplace(load_previous(options, ca));
        add_previous(previous->crl, entries);
    }
    if (!options.list.empty()) {
        entries.add_file(options.list);
    }
    for (const std::string &text : options.revoked) {
        entries.add_text(text);
    }
    add_certificates(options, ca, begin, entries);
    if (!options.base) {
        entries.drop_removed();
    }
    const uint64_t number = number_of(options, previous ? &previous->crl : nullptr);
    if (options.base && *options.base >= number) {
        throw Failure("expected a number above that of the base CRL");
    }
    CrlWriter writer(ca.der);
    set_fields(options, ca, signer, number, begin, writer);
    set_entries(entries, writer);
    write_object(options.output, writer.encoded(signer), "X509 CRL");
    return true;
}

}  // namespace

void add_crl_command(Arguments &app) {
    Arguments group = app.add_commands("crl", "Make certificate revocation lists.");
    Arguments command = group.add_command("make", "Make a certificate revocation list.");
    const auto options = std::make_shared<Options>();
    command.add_option("--ca", options->ca, "the CA's certificate").required();
    add_key_options(command, "--ca-key,--key", options->key);
    command.add_repeatable(
        "--revoke", options->revoked,
        "SERIAL[,DATE[,REASON]]: hexadecimal, such as 2030-01-31, such as keyCompromise; "
        "repeatable");
    command.add_repeatable("--revoke-cert", options->certificates,
                           "the certificate itself, now; repeatable");
    command.add_option("--reason", options->reason, "the reason for those of --revoke-cert");
    command.add_option("--list", options->list, "a file with an entry as of --revoke on each line");
    Option previous = command.add_option("--previous", options->previous,
                                         "a CRL of this CA whose entries and number go on");
    command.add_option("--number", options->number,
                       "number of the CRL; the previous one's plus 1, or 1, unless given");
    command.add_option("--delta", options->base, "make a delta CRL to the CRL of this number")
        .excludes(previous);
    command.add_option("--days", options->days, "until the next CRL at the latest")
        .in_range(1, 100000)
        .shows_default();
    add_output_options(command, options->output);
    command.footer(
        "Example:\n  zacert crl make --ca root.pem --ca-key root.key --previous root.crl "
        "--revoke-cert server.pem --reason keyCompromise --out root.crl");
    command.runs([options] { return run(*options); });
}

}  // namespace tool
