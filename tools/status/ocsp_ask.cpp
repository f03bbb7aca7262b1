#include <zacert.h>

#include "base/callback.hpp"
#include "base/der.hpp"
#include "base/der_writer.hpp"
#include "base/failure.hpp"
#include "base/write_file.hpp"
#include "objects/pkcs7_contexts.hpp"
#include "objects/subject_key.hpp"
#include "p7/digests.hpp"
#include "status/ocsp_command.hpp"
#include "status/responder.hpp"

namespace tool {

namespace {

using NewEntry = Created<ZA_OCSP_CreateEncodeRequestList, ZA_OCSP_DestroyEncodeRequestList>;
using NewRequest = Created<ZA_OCSP_CreateEncodeRequest, ZA_OCSP_DestoryEncodeRequest>;

struct Options {
    std::string issuer;
    std::string digest = "sha1";
    bool nonce = true;
    bool pem = false;
    std::string out;
    std::vector<std::string> certificates;
};

const MessageDigest &digest_for(const std::string &name) {
    return name == "sha1" ? *digest_of_id("1.3.14.3.2.26") : digest_named(name);
}

// The hashes are over the name as the certificate has it, and over the key of who signed it.
void add_entry(const LoadedCertificate &certificate, const LoadedCertificate &ca,
               const MessageDigest &digest, const NewRequest &request) {
    constexpr uint8_t kNull[] = {ZA_DER_ID_NULL, 0};
    const NewEntry entry;
    const auto set = [&entry](int32_t id, View value) {
        check(ZA_OCSP_SetRequestListAttributeChar(entry.get(), id, value.data(),
                                                  static_cast<uint32_t>(value.size())));
    };
    const Secret number = octets_of_record(digest.number);
    check(ZA_OCSP_SetRequestListHashFunc(entry.get(), ZA_DigestFunc_Ref, number.view().data(),
                                         static_cast<uint32_t>(number.size())));
    set(OCSP_REQUESTLIST_HASHALGO, object_id_octets(std::string(digest.id)));
    set(OCSP_REQUESTLIST_PARAM, kNull);
    set(OCSP_REQUESTLIST_ISSUERNAME, certificate.parts.issuer);
    set(OCSP_REQUESTLIST_ISSUERKEY, subject_key(ca.parts.key).bits);
    set(OCSP_REQUESTLIST_SERIALNUMBER, certificate.facts.serial.magnitude);
    Anybuf *made = nullptr;
    check(ZA_OCSP_EncodeRequestList(entry.get(), &made));
    const Chain owner(made);
    check(ZA_OCSP_SetRequestSingleRequest(request.get(), made->data, made->dataLen));
}

// What the library takes becomes the extension's value, which RFC 8954 wants to be an OCTET STRING.
void add_nonce(const NewRequest &request) {
    const uint32_t size = 16;
    Octets octets(size);
    check(ZA_PKCS7_GenerateBytes(octets.data(), &size));
    const Octets value = der(ZA_DER_ID_OCTETSTRING, {octets});
    check(ZA_OCSP_SetRequestAttributeChar(request.get(), OCSP_EXT_NONCE, value.data(),
                                          static_cast<uint32_t>(value.size())));
}

bool run(const Options &options) {
    const LoadedCertificate ca = load_certificate(options.issuer);
    const NewRequest request;
    for (const std::string &path : options.certificates) {
        add_entry(load_issued(path, ca), ca, digest_for(options.digest), request);
    }
    if (options.nonce) {
        add_nonce(request);
    }
    write_object({options.out, !options.pem}, fetched([&](uint8_t *out, uint32_t *length) {
                     return ZA_OCSP_EncodeRequest(request.get(), out, length);
                 }),
                 "OCSP REQUEST");
    return true;
}

}  // namespace

void add_ocsp_ask(Arguments &ocsp) {
    Arguments command =
        ocsp.add_command("ask", "Make a request for the status of certificates of one issuer.");
    const auto options = std::make_shared<Options>();
    command.add_option("--issuer", options->issuer, "the certificate of who issued them")
        .type_name("CERT")
        .required();
    command
        .add_option("--digest", options->digest,
                    "what issuers are told by: sha1, which every responder knows, or sha256")
        .one_of({"sha1", "sha256"})
        .shows_default();
    command.add_flag("--nonce,!--no-nonce", options->nonce,
                     "random octets that the answer has to repeat, so that it is a new one; the "
                     "default");
    command.add_option("--out", options->out, "where to write it; - is standard output")
        .type_name("FILE")
        .required();
    command.add_flag("--pem", options->pem, "write PEM instead of DER");
    command.add_option("CERT", options->certificates, "the certificates, PEM or DER").required();
    command.footer(
        "Requests are not signed.\n"
        "Example:\n  zacert ocsp ask --issuer ca.pem --out server.ocq server.pem");
    command.runs([options] { return run(*options); });
}

}  // namespace tool
