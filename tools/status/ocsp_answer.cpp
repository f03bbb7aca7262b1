#include <zacert.h>

#include "base/arguments.hpp"
#include "base/dates.hpp"
#include "base/der.hpp"
#include "base/der_writer.hpp"
#include "base/failure.hpp"
#include "base/wording.hpp"
#include "base/write_file.hpp"
#include "check/revocation.hpp"
#include "issue/crl_entries.hpp"
#include "issue/signer.hpp"
#include "objects/oid_names.hpp"
#include "objects/pkcs7_contexts.hpp"
#include "status/ocsp_command.hpp"
#include "status/responder.hpp"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace tool {

namespace {

using NewAnswer = Created<ZA_OCSP_CreateEncodeResponseList, ZA_OCSP_DestroyEncodeResponseList>;
using NewResponse = Created<ZA_OCSP_CreateEncodeResponse, ZA_OCSP_DestoryEncodeResponse>;

struct Options {
    std::string issuer;
    std::string crl;
    std::string serials;
    std::string signer;
    KeyOptions key;
    std::vector<std::string> chain;
    std::optional<uint32_t> days;
    bool pem = false;
    std::string out;
    std::string request;
};

// The first of the checks that fails becomes the Failure.
template <class Checks>
void require(const std::string &path, const Checks &checks) {
    constexpr std::string_view kFailed = "  FAILED  ";
    std::ostringstream lines;
    Report report(lines);
    checks(report);
    if (!report.all_good()) {
        const std::string text = lines.str();
        const size_t begin = text.find(kFailed) + kFailed.size();
        throw Failure(file_label(path) + ": " + text.substr(begin, text.find('\n', begin) - begin));
    }
}

// What answers are made from.
class Source {
  public:
    explicit Source(const Options &options)
        : options_(options),
          ca_(load_shared(options.issuer)),
          crl_(load_one(options.crl, ObjectKind::crl)),
          issued_(when_.time) {
        require(options.crl, [this](Report &report) { check_whole(report); });
        if (!options.serials.empty()) {
            issued_.add_file(options.serials);
        }
    }

    const SharedCertificate &ca() const { return ca_; }
    const When &when() const { return when_; }

    // The DER of a SingleResponse.
    Octets answer(const CertificateId &id) const {
        const NewAnswer answer;
        const auto set_time = [&answer](int32_t type, std::chrono::sys_seconds time) {
            check(ZA_OCSP_SetResponseListAttributeInt(answer.get(), type, library_time(time)));
        };
        check(ZA_OCSP_SetResponseListAttributeChar(answer.get(), OCSP_RESPONDERLIST_CERTID,
                                                   id.der.data(),
                                                   static_cast<uint32_t>(id.der.size())));
        set_status(id, answer);
        set_time(OCSP_RESPONDERLIST_THISUPDATE, crl_.facts.this_update);
        if (const auto next = next_update()) {
            set_time(OCSP_RESPONDERLIST_NEXTUPDATE, *next);
        }
        Anybuf *made = nullptr;
        check(ZA_OCSP_EncodeResponseList(answer.get(), &made));
        const Chain owner(made);
        return {made->data, made->data + made->dataLen};
    }

  private:
    // A CRL for some certificates or reasons alone does not tell that others are good.
    void check_whole(Report &report) const {
        const std::vector<Extension> &extensions = crl_.facts.extensions;
        report.check(same_name(crl_.parts.issuer, ca_->parts.subject), "CRL: of another issuer");
        report.check(find_extension(extensions, "2.5.29.27") == nullptr, "CRL: a delta CRL");
        report.check(find_extension(extensions, "2.5.29.28") == nullptr,
                     "CRL: for some certificates alone");
        check_crl(crl_, *ca_, when_, report);
    }

    // Nobody may rely on an answer for longer than on the CRL that it is from.
    std::optional<std::chrono::sys_seconds> next_update() const {
        std::optional<std::chrono::sys_seconds> next = crl_.facts.next_update;
        if (options_.days) {
            const auto asked = when_.time + std::chrono::days(*options_.days);
            next = std::min(asked, next.value_or(asked));
        }
        return next ? std::optional(std::min(*next, kLastTime)) : std::nullopt;
    }

    void set_status(const CertificateId &id, const NewAnswer &answer) const {
        if (!is_of_issuer(id, ca_->parts.subject, *ca_)) {
            set_unknown("not of this issuer", answer);
            return;
        }
        std::optional<RevokedEntry> revoked;
        require(options_.crl, [&](Report &report) { revoked = entry_of(crl_, id.serial, report); });
        if (revoked) {
            set_revoked(*revoked, answer);
        } else if (is_issued(id.serial)) {
            check(ZA_OCSP_SetResponseList_CertStatusGood(answer.get()));
        } else {
            set_unknown("not issued", answer);
        }
    }

    static void set_revoked(const RevokedEntry &entry, const NewAnswer &answer) {
        const uint8_t reason = entry.reason.empty() ? uint8_t{0} : reason_number(entry.reason);
        // RFC 5280, 5.3.1: "unspecified" is said by saying nothing.
        check(ZA_OCSP_SetResponseList_CertStatusRevoke(
            answer.get(), static_cast<uint32_t>(library_time(entry.date)), 0, &reason,
            reason == 0 ? 0 : 1));
    }

    static void set_unknown(std::string_view text, const NewAnswer &answer) {
        check(ZA_OCSP_SetResponseList_CertStatusUnInfo(
            answer.get(), reinterpret_cast<const uint8_t *>(text.data()),
            static_cast<uint32_t>(text.size())));
    }

    bool is_issued(const Integer &serial) const {
        const std::vector<CrlEntry> &list = issued_.list();
        return !serial.negative &&
               std::any_of(list.begin(), list.end(), [&serial](const CrlEntry &entry) {
                   return entry.serial == serial.magnitude;
               });
    }

    const Options &options_;
    When when_{now(), Moment::present};
    SharedCertificate ca_;
    LoadedCrl crl_;
    CrlEntries issued_;
};

class Responder {
  public:
    Responder(const Options &options, const Source &source)
        : certificate_(options.signer.empty() ? source.ca() : load_shared(options.signer)),
          signer_(open_signer(options.key)) {
        const std::string &path = options.signer.empty() ? options.issuer : options.signer;
        require(path, [&](Report &report) {
            check_responder(source.ca(), *certificate_, source.when(), report);
            report.check(subject_key(certificate_->parts.key) == signer_.key,
                         "the private key is not that of the certificate");
        });
        std::vector<Octets> certificates;
        if (certificate_->der != source.ca()->der) {
            certificates.push_back(certificate_->der);
        }
        for (const std::string &file : options.chain) {
            add_certificates(file, certificates);
        }
        for (const Octets &der : certificates) {
            certificates_.insert(certificates_.end(), der.begin(), der.end());
        }
    }

    // The DER of a BasicOCSPResponse. The context for whole responses has no place for a nonce, so
    // the records are used; they borrow what they name.
    Octets sign(const std::vector<Octets> &answers, std::optional<View> nonce,
                std::chrono::sys_seconds time) {
        const Octets nonce_id = object_id_octets(std::string(ocsp::kNonce));
        const Octets key_hash = key_identifier(subject_key(certificate_->parts.key));
        std::vector<Anybuf> chain(answers.size());
        for (size_t i = 0; i < answers.size(); ++i) {
            chain[i] = record_of(answers[i]);
            chain[i].next = i + 1 < answers.size() ? &chain[i + 1] : nullptr;
        }
        ZA_OCSP_BASICRESPONSE record{};
        record.data.responderId.nameDerFlag = 1;
        record.data.responderId.nameDer = record_of(certificate_->parts.subject);
        record.data.responderId.keyHashGivenFlag = 1;
        record.data.responderId.keyHash = record_of(key_hash);
        record.data.producedAt.value = library_time(time);
        record.data.responses = chain.data();
        if (nonce) {
            record.data.extensionsFlag = 1;
            record.data.extensions.nonceFlag = 1;
            record.data.extensions.nonceOid = record_of(nonce_id);
            record.data.extensions.nonce = record_of(*nonce);
        }
        record.algorithm = record_of(signer_.algorithm);
        record.signFunc = signer_.function;
        record.signArg = record_of(signer_.context.view());
        record.certsFlag = certificates_.empty() ? 0 : 1;
        record.certs = record_of(certificates_);
        return encoded(record);
    }

  private:
    static Octets encoded(ZA_OCSP_BASICRESPONSE &record) {
        Anybuf *made = nullptr;
        const uint32_t result = ZI_EncodeBasicResponse(&record, &made);
        const Chain owner(made);
        ZI_ClearAnybuf(&record.signature);
        check(result);
        return {made->data, made->data + made->dataLen};
    }

    SharedCertificate certificate_;
    Signer signer_;
    Octets certificates_;  // for the response, one behind the other
};

// RFC 6960, 4.4: a critical extension that is not understood is no reason to guess.
OcspRequest understood_request(const std::string &path) {
    OcspRequest request = read_ocsp_request(load_one(path, ObjectKind::ocsp_request));
    if (request.certificates.empty()) {
        throw Failure(file_label(path) + ": it asks for no certificate");
    }
    for (const Extension &extension : request.extensions) {
        if (extension.id.oid == ocsp::kNonce ? extension.octets.empty() : extension.critical) {
            throw Failure(file_label(path) + ": the extension " + label(extension.id) +
                          " is critical and not evaluated here, or empty");
        }
    }
    return request;
}

Octets status_only(uint64_t status) {
    const auto octet = static_cast<uint8_t>(status);
    const NewResponse response;
    check(ZA_OCSP_SetResponseAttributeChar(response.get(), OCSP_RESPONSE_STATUS, &octet, 1));
    return fetched([&](uint8_t *out, uint32_t *length) {
        return ZA_OCSP_EncodeResponse(response.get(), out, length);
    });
}

// OCSPResponse ::= SEQUENCE { responseStatus ENUMERATED, responseBytes [0] EXPLICIT SEQUENCE {
//     responseType OBJECT IDENTIFIER, response OCTET STRING } }
Octets successful(View basic) {
    const uint8_t status = ocsp::kSuccessful;
    const Octets type = object_id_octets(std::string(ocsp::kBasicResponse));
    const Octets bytes = der(
        ZA_DER_ID_SEQUENCE, {der(ZA_DER_ID_OBJECTID, {type}), der(ZA_DER_ID_OCTETSTRING, {basic})});
    return der(ZA_DER_ID_SEQUENCE,
               {der(ZA_DER_ID_ENUMERATED, {View(&status, 1)}), der(constructed(0), {bytes})});
}

void write(const Options &options, View response) {
    write_object({options.out, !options.pem}, response, "OCSP RESPONSE");
}

bool run(const Options &options) {
    const Source source(options);
    Responder responder(options, source);
    OcspRequest request;
    if (options.request != "-" && !std::ifstream(options.request)) {
        throw Failure(file_label(options.request) + ": expected an OCSP request: there is no file");
    }
    try {
        request = understood_request(options.request);
    } catch (const Failure &) {
        write(options, status_only(ocsp::kMalformedRequest));
        throw;
    }
    std::vector<Octets> answers;
    for (const CertificateId &id : request.certificates) {
        answers.push_back(source.answer(id));
    }
    write(options,
          successful(responder.sign(answers, nonce_in(request.extensions), source.when().time)));
    return true;
}

}  // namespace

void add_ocsp_answer(Arguments &ocsp) {
    Arguments command =
        ocsp.add_command("answer", "Answer a request from a CRL and a list of what was issued.");
    const auto options = std::make_shared<Options>();
    command.add_option("--issuer", options->issuer, "the CA's certificate")
        .type_name("CERT")
        .required();
    command.add_option("--crl", options->crl, "the CA's CRL: what stands in it is revoked")
        .required();
    command
        .add_option("--serials", options->serials,
                    "a file with the serial number of an issued certificate on each line: these "
                    "are good, and all others unknown")
        .type_name("FILE");
    command
        .add_option("--signer", options->signer,
                    "the certificate of who signs, if not the CA: for OCSP signing, issued by the "
                    "CA")
        .type_name("CERT");
    add_key_options(command, "--key", options->key);
    command
        .add_repeatable("--chain", options->chain,
                        "further certificates for the response; repeatable")
        .type_name("FILE");
    command
        .add_option("--next-update", options->days,
                    "days until newer answers, if the next CRL does not come earlier")
        .type_name("DAYS")
        .in_range(1, 100000);
    command.add_option("--out", options->out, "where to write it; - is standard output")
        .type_name("FILE")
        .required();
    command.add_flag("--pem", options->pem, "write PEM instead of DER");
    command.add_option("REQUEST", options->request, "DER or PEM; - is standard input").required();
    command.footer(
        "A request that cannot be read is answered with malformedRequest; the exit status is 1 "
        "then.\n"
        "Only this library reads answers; docs/zacert-ocsp.md tells why.\n"
        "Example:\n  zacert ocsp answer --issuer ca.pem --crl ca.crl --serials issued.txt "
        "--signer ocsp.pem --key ocsp.key --out server.ocr server.ocq");
    command.runs([options] { return run(*options); });
}

}  // namespace tool
