#include "base/dates.hpp"
#include "base/failure.hpp"
#include "base/wording.hpp"
#include "check/signature_check.hpp"
#include "objects/oid_names.hpp"
#include "objects/subject_key.hpp"
#include "status/ocsp_command.hpp"
#include "status/responder.hpp"

#include <algorithm>
#include <iostream>

namespace tool {

namespace {

struct Options {
    std::string issuer;
    std::string request;
    std::string signer;
    std::string at;
    std::string response;
    std::vector<std::string> certificates;
};

bool same_certificate(const CertificateId &left, const CertificateId &right) {
    return left.hash_algorithm.oid == right.hash_algorithm.oid &&
           left.name_hash == right.name_hash && left.key_hash == right.key_hash &&
           left.serial == right.serial;
}

class Checking {
  public:
    explicit Checking(const Options &options)
        : options_(options),
          ca_(load_shared(options.issuer)),
          when_(options.at.empty() ? When{now(), Moment::present}
                                   : When{parse_time(options.at), Moment::other}),
          report_(std::cout) {
        if (!options.request.empty()) {
            request_ = read_ocsp_request(load_one(options.request, ObjectKind::ocsp_request));
        }
    }

    bool run() {
        const OcspResponse response =
            read_ocsp_response(load_one(options_.response, ObjectKind::ocsp_response));
        const bool has_answers = response.body && response.status == ocsp::kSuccessful;
        report_.heading("Response of " + file_label(options_.response));
        report_.check(has_answers, "response status: " + response_status(response.status) +
                                       (has_answers ? "" : ", so there are no answers"));
        if (has_answers) {
            check_body(*response.body);
        }
        const bool good = report_.all_good();
        std::cout << file_label(options_.response) << ": " << (good ? "good" : "NOT GOOD") << '\n';
        std::cout.flush();
        return good && static_cast<bool>(std::cout);
    }

  private:
    void check_body(const OcspBody &body) {
        report_.check(body.type.oid == ocsp::kBasicResponse, "type: " + label(body.type));
        check_nonce(body);
        const SharedCertificate responder = check_signature(body);
        check_answers(body.answers);
        if (responder != nullptr) {
            check_responder(ca_, *responder, when_, report_);
        }
    }

    void check_nonce(const OcspBody &body) {
        const std::optional<View> answered = nonce_in(body.extensions);
        if (!request_) {
            report_.note("nonce: no request is given to compare it with");
            return;
        }
        const std::optional<View> asked = nonce_in(request_->extensions);
        if (!answered) {
            report_.note(asked ? "nonce: the response has none, so it may be an old one"
                               : "nonce: neither request nor response has one");
        } else {
            const bool same = asked && same_octets(*asked, *answered);
            report_.check(same,
                          same ? "nonce: that of the request" : "nonce: not that of the request");
        }
    }

    // Who may have signed. What cannot be read is of no use, and does not stop the others.
    Certificates candidates(const OcspBody &body) {
        if (!options_.signer.empty()) {
            return {load_shared(options_.signer)};
        }
        Certificates list{ca_};
        for (const Octets &der : body.certificates) {
            try {
                list.push_back(std::make_shared<LoadedCertificate>(der));
            } catch (const LibraryError &error) {
                report_.note(std::string("a certificate of the response: not decoded: ") +
                             error.what());
            }
        }
        return list;
    }

    static bool is_responder(const LoadedCertificate &certificate, const OcspBody &body) {
        return (body.responder_name.empty() ||
                same_name(body.responder_name, certificate.parts.subject)) &&
               (body.responder_key.empty() ||
                body.responder_key == key_identifier(subject_key(certificate.parts.key)));
    }

    // By the certificate that the response names. Nothing where there is none.
    SharedCertificate check_signature(const OcspBody &body) {
        const SignedObject object{body.signed_part, {}, body.signature_algorithm, body.signature};
        for (const SharedCertificate &candidate : candidates(body)) {
            if (is_responder(*candidate, body)) {
                const SignatureVerdict verdict =
                    check_octets_signature(candidate->parts.key, object);
                report_.check(verdict.good,
                              "signature of " + shown_subject(*candidate) + ": " + verdict.text);
                return candidate;
            }
        }
        report_.check(false, "signature: there is no certificate of the responder named");
        return nullptr;
    }

    // The certificates given, else what the request asked for, else all that there are.
    void check_answers(const std::vector<OcspAnswer> &answers) {
        if (!options_.certificates.empty()) {
            for (const std::string &path : options_.certificates) {
                check_answers_for(answers, load_issued(path, *ca_));
            }
        } else if (request_) {
            for (const CertificateId &id : request_->certificates) {
                check_answers_if(answers, "serial " + id.serial.hex(":"),
                                 [&](const CertificateId &own) {
                                     return same_certificate(own, id) && is_of_ca(own);
                                 });
            }
        } else {
            report_.check(!answers.empty(), "answers: " + std::to_string(answers.size()));
            for (const OcspAnswer &answer : answers) {
                check_answer(answer);
            }
        }
    }

    void check_answers_for(const std::vector<OcspAnswer> &answers,
                           const LoadedCertificate &certificate) {
        check_answers_if(answers, shown_subject(certificate), [&](const CertificateId &id) {
            return id.serial == certificate.facts.serial &&
                   is_of_issuer(id, certificate.parts.issuer, *ca_);
        });
    }

    // All that are about one certificate have to be good.
    template <class IsAbout>
    void check_answers_if(const std::vector<OcspAnswer> &answers, const std::string &what,
                          const IsAbout &is_about) {
        bool answered = false;
        for (const OcspAnswer &answer : answers) {
            if (is_about(answer.certificate)) {
                check_answer(answer);
                answered = true;
            }
        }
        if (!answered) {
            report_.check(false, "answers: there is none for " + what);
        }
    }

    bool is_of_ca(const CertificateId &id) const {
        return is_of_issuer(id, ca_->parts.subject, *ca_);
    }

    void check_answer(const OcspAnswer &answer) {
        report_.heading("Certificate of serial " + answer.certificate.serial.hex(":"));
        if (options_.certificates.empty()) {
            const bool own = is_of_ca(answer.certificate);
            report_.check(own, own ? "issuer: the one given" : "issuer: not the one given");
        }
        std::string text = "status: " + std::string(status_name(answer.status));
        text += answer.revoked ? " at " + shown_time(*answer.revoked) : "";
        text += answer.reason.empty() ? "" : ", " + answer.reason;
        report_.check(answer.status == OcspStatus::good, text);
        check_times(answer);
    }

    // Clocks differ a little.
    void check_times(const OcspAnswer &answer) {
        constexpr auto kAllowance = std::chrono::minutes(5);
        const bool begun = answer.this_update <= when_.time + kAllowance;
        report_.check(begun, (begun ? "this update: " : "this update: later, at ") +
                                 shown_time(answer.this_update));
        if (!answer.next_update) {
            report_.note("next update: not told, so newer answers may be there at any time");
            return;
        }
        const bool current = when_.time <= *answer.next_update + kAllowance;
        report_.check(current, (current ? "next update: by " : "next update: was due at ") +
                                   shown_time(*answer.next_update));
    }

    const Options &options_;
    SharedCertificate ca_;
    When when_;
    std::optional<OcspRequest> request_;
    Report report_;
};

}  // namespace

void add_ocsp_check(Arguments &ocsp) {
    Arguments command =
        ocsp.add_command("check", "Check a response: who signed it, when, and what it says.");
    const auto options = std::make_shared<Options>();
    command.add_option("--issuer", options->issuer, "the CA's certificate, which is trusted")
        .type_name("CERT")
        .required();
    command
        .add_option("--request", options->request,
                    "the request: its certificates and nonce have to be answered")
        .type_name("FILE");
    command
        .add_option("--signer", options->signer,
                    "the certificate of who signed, if it is not the CA's nor in the response")
        .type_name("CERT");
    command.add_option("--at", options->at, "2030-01-31 or 2030-01-31T23:59:59Z instead of now")
        .type_name("DATE");
    command.add_option("RESPONSE", options->response, "DER or PEM; - is standard input").required();
    command.add_option("CERT", options->certificates,
                       "the certificates; without any those of the request, without that all "
                       "that are answered");
    command.footer(
        "Exit status: 0 all are good, 1 one is not or the response is not, 2 the arguments make no "
        "sense.\n"
        "Example:\n  zacert ocsp check --issuer ca.pem --request server.ocq server.ocr server.pem");
    command.runs([options] { return Checking(*options).run(); });
}

}  // namespace tool
