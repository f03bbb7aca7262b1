#include <zacert.h>

#include "base/der.hpp"
#include "base/der_writer.hpp"
#include "base/elements.hpp"
#include "base/write_file.hpp"
#include "commands.hpp"
#include "issue/alternative_names.hpp"
#include "issue/signer.hpp"
#include "issue/subject_name.hpp"
#include "objects/signed_object.hpp"

namespace tool {

namespace {

struct Options {
    std::string subject;
    KeyOptions key;
    NameOptions names;
    OutputOptions output;
};

class RequestWriter {
  public:
    RequestWriter() {
        void *context = nullptr;
        check(ZACert_CreateCsrEncodeCtx(&context));
        context_.reset(context);
    }

    void set(int32_t type, View value) {
        check(ZACert_SetCsrAttributeChar(context_.get(), type, value.data(),
                                         static_cast<int32_t>(value.size())));
    }

    Octets encoded(Signer &signer) {
        check(ZACert_SetCsrSignFunc(context_.get(), signer.function, signer.context.data(),
                                    signer.context_length()));
        return fetched([&](uint8_t *out, uint32_t *length) {
            return ZACert_EncodeCsr(context_.get(), out, length);
        });
    }

  private:
    struct Destroy {
        void operator()(void *context) const { ZACert_DestroyCsrEncodeCtx(context); }
    };
    std::unique_ptr<void, Destroy> context_;
};

Octets plain_request(const Options &options, Signer &signer) {
    RequestWriter writer;
    const std::vector<NameEntry> entries = parse_subject(options.subject);
    for (const NameEntry &entry : entries) {
        writer.set(CSR_SUBJECT_COUNTRYNAME + entry.offset, entry.value);
    }
    writer.set(CSR_DN_DER_ID_TAG, string_types(entries));
    writer.set(CSR_PUBLICKEY_ALGORITHM, signer.key.algorithm);
    if (!signer.key.parameters.empty()) {
        writer.set(CSR_ECC_PUBLICKEY_OID, signer.key.parameters);
    }
    writer.set(CSR_SUBJECTPUBLICKEYINFO, signer.key.value);
    writer.set(CSR_OUTER_SIGNATUREALGORITHM, signer.algorithm);
    return writer.encoded(signer);
}

// Attributes with the one that asks for alternative names.
Octets attributes(View names) {
    // Attribute ::= SEQUENCE { type OBJECT IDENTIFIER, values SET OF ANY }
    // Extensions ::= SEQUENCE OF SEQUENCE { extnID, extnValue OCTET STRING }
    const Octets name_id = der(ZA_DER_ID_OBJECTID, {object_id_octets("2.5.29.17")});
    const Octets value = der(ZA_DER_ID_OCTETSTRING, {names});
    const Octets extension = der(ZA_DER_ID_SEQUENCE, {name_id, value});
    const Octets extensions = der(ZA_DER_ID_SEQUENCE, {extension});
    const Octets type = der(ZA_DER_ID_OBJECTID, {object_id_octets("1.2.840.113549.1.9.14")});
    const Octets values = der(ZA_DER_ID_SET, {extensions});
    const Octets attribute = der(ZA_DER_ID_SEQUENCE, {type, values});
    return der(constructed(0), {attribute});
}

// The library writes values of attributes as OCTET STRINGs, in which other programs do not find the
// extensions. So the request is written without them first, and then again around its own parts.
Octets request_with_names(View plain, View names, Signer &signer) {
    // CertificationRequestInfo ::= SEQUENCE { version, subject, subjectPKInfo, attributes [0] }
    const SignedObject object = signed_object(plain);
    Elements fields(only_element(object.signed_part, ZA_DER_ID_SEQUENCE).content);
    const View version = fields.next().whole;
    const View subject = fields.next().whole;
    const View key = fields.next().whole;
    const Octets info = der(ZA_DER_ID_SEQUENCE, {version, subject, key, attributes(names)});
    const uint8_t no_unused_bits = 0;
    const Octets signature = signature_of(signer, info);
    const Octets bits = der(ZA_DER_ID_BITSTRING, {View(&no_unused_bits, 1), signature});
    return der(ZA_DER_ID_SEQUENCE, {info, object.algorithm, bits});
}

bool run(const Options &options) {
    const Octets names = general_names(options.names);
    Signer signer = open_signer(options.key);
    Octets request = plain_request(options, signer);
    if (!names.empty()) {
        request = request_with_names(request, names, signer);
    }
    write_object(options.output, request, "CERTIFICATE REQUEST");
    return true;
}

}  // namespace

void add_request_command(Arguments &app) {
    Arguments group = app.add_commands("request", "Make certificate requests.");
    Arguments command = group.add_command("new", "Make a certificate request (PKCS#10).");
    const auto options = std::make_shared<Options>();
    add_key_options(command, "--key", options->key);
    command
        .add_option("--subject", options->subject,
                    "name in UTF-8, such as \"C=CN,O=Example,CN=www.example.org\"; types: " +
                        subject_types())
        .required();
    add_name_options(command, options->names);
    add_output_options(command, options->output);
    command.footer(
        "Example:\n  zacert request new --key server.key --subject \"C=CN,CN=server\" --dns "
        "www.example.org --out server.csr");
    command.runs([options] { return run(*options); });
}

}  // namespace tool
