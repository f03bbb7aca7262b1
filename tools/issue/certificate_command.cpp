#include <zacert.h>

#include "base/arguments.hpp"
#include "base/dates.hpp"
#include "base/der_writer.hpp"
#include "base/failure.hpp"
#include "base/write_file.hpp"
#include "check/signature_check.hpp"
#include "commands.hpp"
#include "issue/alternative_names.hpp"
#include "issue/certificate_writer.hpp"
#include "issue/identity_numbers.hpp"
#include "issue/issuer.hpp"
#include "issue/profile.hpp"
#include "issue/request_extensions.hpp"
#include "issue/serial_number.hpp"
#include "issue/subject_name.hpp"

#include <algorithm>
#include <iostream>

namespace tool {

namespace {

struct Options {
    std::string request;
    bool self = false;
    std::string subject;
    std::string ca;
    KeyOptions key;
    std::string profile;
    std::optional<uint8_t> path_length;
    std::optional<uint32_t> days;
    std::string not_before;
    std::string not_after;
    std::string serial;
    NameOptions names;
    std::vector<std::string> crl_urls;
    std::vector<std::string> ocsp_urls;
    std::vector<std::string> issuer_urls;
    std::string policy;
    std::vector<std::string> identities;
    OutputOptions output;
};

View view_of(const std::string &text) {
    return {reinterpret_cast<const uint8_t *>(text.data()), text.size()};
}

struct Validity {
    std::chrono::sys_seconds begin;
    std::chrono::sys_seconds end;
};

Validity wanted_validity(const Options &options) {
    constexpr uint32_t kDaysOfCa = 3650;
    constexpr uint32_t kDays = 365;
    const auto begin = options.not_before.empty() ? now() : parse_time(options.not_before);
    const std::chrono::days days(
        options.days.value_or(is_ca_profile(options.profile) ? kDaysOfCa : kDays));
    return {begin, options.not_after.empty() ? begin + days : parse_time(options.not_after)};
}

void cap(std::chrono::sys_seconds limit, const std::string &reason, Validity &validity) {
    if (validity.end > limit) {
        validity.end = limit;
        std::cerr << "zacert: notAfter is capped at " << shown_time(limit) << ", " << reason
                  << '\n';
    }
}

Validity validity_of(const Options &options, const LoadedCertificate *ca) {
    Validity validity = wanted_validity(options);
    if (ca != nullptr) {
        if (validity.begin < ca->facts.not_before) {
            throw Failure("expected a certificate that does not begin before the CA's own, at " +
                          shown_time(ca->facts.not_before));
        }
        if (ca->facts.not_after <= kLastTime) {
            cap(ca->facts.not_after, "the end of the CA certificate", validity);
        }
    }
    cap(kLastTime, "the end of the last whole day that can be written", validity);
    if (validity.begin > validity.end) {
        throw Failure("expected a certificate that ends after it begins");
    }
    return validity;
}

void set_subject_entries(const std::vector<NameEntry> &entries, int32_t first, int32_t types,
                         CertificateWriter &writer) {
    for (const NameEntry &entry : entries) {
        writer.set(first + entry.offset, entry.value);
    }
    writer.set(types, string_types(entries));
}

void set_key(const SubjectKey &key, CertificateWriter &writer) {
    writer.set(CERT_PUBLICKEY_ALGORITHM, key.algorithm);
    if (!key.parameters.empty()) {
        writer.set(CERT_ECC_PUBLICKEY_OID, key.parameters);
    }
    writer.set(CERT_SUBJECTPUBLICKEYINFO, key.value);
}

void set_urls(const std::vector<std::string> &urls, int32_t type, CertificateWriter &writer) {
    for (const std::string &url : urls) {
        const bool plain =
            std::all_of(url.begin(), url.end(), [](char c) { return c > ' ' && c <= '~'; });
        if (url.empty() || !plain) {
            throw Failure("expected a URI in ASCII without blanks, found " + url);
        }
        writer.set(type, view_of(url));
    }
}

void set_options(const Options &options, CertificateWriter &writer) {
    set_urls(options.crl_urls, CERTEX_CRLDIST_FULLNAME, writer);
    set_urls(options.ocsp_urls, CERTEX_AUTHORITYINFO_OCSP, writer);
    set_urls(options.issuer_urls, CERTEX_AUTHORITYINFO_CAISSUERS, writer);
    if (!options.policy.empty()) {
        writer.set(CERTEX_CERTPOLICYID, object_id_octets(options.policy));
    }
    set_identities(options.identities, writer);
}

// What does not depend on who issues and who is named.
void set_common(const Options &options, const Signer &signer, const SubjectKey &key,
                const Validity &validity, CertificateWriter &writer) {
    constexpr int32_t kVersion3 = 2;
    writer.set_number(CERT_VERSION, kVersion3);
    writer.set(CERT_SERIALNUMBER,
               options.serial.empty() ? random_serial() : parse_serial(options.serial));
    writer.set(CERT_INNER_SIGNATUREALGORITHM, signer.algorithm);
    writer.set(CERT_OUTER_SIGNATUREALGORITHM, signer.algorithm);
    writer.set_number(CERT_VALIDFROM, library_time(validity.begin));
    writer.set_number(CERT_VALIDTO, library_time(validity.end));
    set_key(key, writer);
    writer.set(CERTEX_SUBJECTKEYIDENTIFIER, key_identifier(key));
    set_profile(options.profile, key.kind, options.path_length, writer);
    set_options(options, writer);
}

void set_alternative_names(const Octets &names, CertificateWriter &writer) {
    if (!names.empty()) {
        writer.add_extension("2.5.29.17", names);
    }
}

Octets self_signed(const Options &options, Signer &signer) {
    const std::vector<NameEntry> entries = parse_subject(options.subject);
    CertificateWriter writer;
    set_common(options, signer, signer.key, validity_of(options, nullptr), writer);
    set_subject_entries(entries, CERT_ISSUER_COUNTRYNAME, CERT_ISSUER_DN_DER_ID_TAG, writer);
    set_subject_entries(entries, CERT_SUBJECT_COUNTRYNAME, CERT_SUBJCET_DN_DER_ID_TAG, writer);
    writer.set(CERTEX_AUTHORITYKEYIDENTIFIER, key_identifier(signer.key));
    set_alternative_names(general_names(options.names), writer);
    return writer.encoded(signer);
}

// A CA below another one has a path length below the other's.
void require_path_length(const Options &options, const LoadedCertificate &ca) {
    const auto *constraints = find_value<BasicConstraints>(ca.facts.extensions);
    if (!is_ca_profile(options.profile) || constraints == nullptr || !constraints->path_length) {
        return;
    }
    if (*constraints->path_length == 0) {
        throw Failure("the CA certificate's path length allows no CA below it");
    }
    if (options.path_length && *options.path_length >= *constraints->path_length) {
        throw Failure("expected a path length below that of the CA certificate, " +
                      std::to_string(*constraints->path_length));
    }
}

Octets load_request(const std::string &path) {
    Octets request = load_one(path, ObjectKind::request);
    const SignatureVerdict verdict = check_request_signature(request);
    if (!verdict.good) {
        throw Failure("the request is not signed by its own key: " + verdict.text);
    }
    return request;
}

void set_subject(const Options &options, const RequestParts &request, CertificateWriter &writer) {
    constexpr size_t kEmptyName = 2;
    if (!options.subject.empty()) {
        set_subject_entries(parse_subject(options.subject), CERT_SUBJECT_COUNTRYNAME,
                            CERT_SUBJCET_DN_DER_ID_TAG, writer);
        return;
    }
    if (request.subject.size() <= kEmptyName) {
        throw Failure("the request names nobody; give --subject");
    }
    writer.set(CERT_SUBJECT_DERDN, request.subject);
}

Octets issued(const Options &options, Signer &signer) {
    const Octets request = load_request(options.request);
    const LoadedCertificate ca = load_certificate(options.ca);
    require_issuer(options.ca, ca, signer, "keyCertSign");
    require_path_length(options, ca);
    const RequestParts parts = request_parts(request);
    const SubjectKey key = subject_key(parts.key);
    require_issuable(key);
    CertificateWriter writer(ca.der);
    set_common(options, signer, key, validity_of(options, &ca), writer);
    set_subject(options, parts, writer);
    writer.set(CERTEX_AUTHORITYKEYIDENTIFIER, authority_key_identifier(ca));
    const Octets names = general_names(options.names);
    set_alternative_names(names.empty() ? requested_names(request) : names, writer);
    return writer.encoded(signer);
}

bool run(const Options &options) {
    Signer signer = open_signer(options.key);
    const Octets certificate =
        options.self ? self_signed(options, signer) : issued(options, signer);
    write_object(options.output, certificate, "CERTIFICATE");
    return true;
}

void add_subject_options(Arguments &command, Options &options) {
    Option request =
        command.add_option("--request", options.request, "the request to be answered, PEM or DER")
            .type_name("FILE");
    Option self =
        command.add_flag("--self", options.self, "make a self-signed certificate instead");
    Option ca = command.add_option("--ca", options.ca, "the CA's certificate").type_name("FILE");
    Option subject =
        command.add_option("--subject", options.subject,
                           "name in UTF-8, in place of the request's; types: " + subject_types());
    self.excludes(request).excludes(ca).needs(subject);
    request.needs(ca);
    ca.needs(request);
}

void add_validity_options(Arguments &command, Options &options) {
    Option days = command.add_option("--days", options.days, "365 unless given; of a CA 3650")
                      .in_range(1, 100000);
    command
        .add_option("--not-before", options.not_before,
                    "2030-01-31 or 2030-01-31T23:59:59Z; now unless given")
        .type_name("DATE");
    command.add_option("--not-after", options.not_after, "in place of --days")
        .type_name("DATE")
        .excludes(days);
    command.add_option("--serial", options.serial, "hexadecimal; 16 random octets unless given")
        .type_name("HEX");
}

void add_content_options(Arguments &command, Options &options) {
    command.add_option("--profile", options.profile, "ca, server, client, email or ocsp")
        .required()
        .one_of(profile_names());
    command
        .add_option("--path-length", options.path_length, "how many CAs may stand below this one")
        .in_range(0, 127);
    add_name_options(command, options.names);
    command.add_repeatable("--crl-url", options.crl_urls, "where its CRL is; repeatable");
    command.add_repeatable("--ocsp-url", options.ocsp_urls, "where OCSP answers; repeatable");
    command.add_repeatable("--issuer-url", options.issuer_urls,
                           "where the CA's certificate is; repeatable");
    command.add_option("--policy", options.policy, "object identifier of a certificate policy")
        .type_name("OID");
    command.add_repeatable(
        "--identity", options.identities,
        "KIND=NUMBER, an identity number; repeatable; kinds: " + identity_kinds());
}

void require_consistent(const Options &options) {
    if (!options.self && options.request.empty()) {
        throw UsageError("--request or --self is required");
    }
    if (options.path_length && !is_ca_profile(options.profile)) {
        throw UsageError("--path-length is for the profile ca alone");
    }
}

}  // namespace

void add_certificate_command(Arguments &app) {
    Arguments group = app.add_commands("cert", "Issue certificates.");
    Arguments command = group.add_command("issue",
                                          "Issue a certificate from a request, whose "
                                          "alternative names it takes over unless names are "
                                          "given here, or a self-signed one.");
    const auto options = std::make_shared<Options>();
    add_subject_options(command, *options);
    add_key_options(command, "--ca-key,--key", options->key);
    add_content_options(command, *options);
    add_validity_options(command, *options);
    add_output_options(command, options->output);
    command.footer(R"(Examples:
  zacert cert issue --self --subject "C=CN,O=Example,CN=Root" --key root.key --profile ca --out root.pem
  zacert cert issue --request server.csr --ca root.pem --ca-key root.key --profile server --out server.pem)");
    command.runs([options] {
        require_consistent(*options);
        return run(*options);
    });
}

}  // namespace tool
