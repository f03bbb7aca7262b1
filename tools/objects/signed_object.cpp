#include "objects/signed_object.hpp"

#include <zacert.h>

#include "base/der.hpp"
#include "base/elements.hpp"

namespace tool {

namespace {

Elements fields_of(View der) {
    return Elements(only_element(signed_object(der).signed_part, ZA_DER_ID_SEQUENCE).content);
}

}  // namespace

SignedObject signed_object(View der) {
    Elements parts(only_element(der, ZA_DER_ID_SEQUENCE).content);
    SignedObject object;
    object.signed_part = parts.required(ZA_DER_ID_SEQUENCE).whole;
    const Element algorithm = parts.required(ZA_DER_ID_SEQUENCE);
    object.algorithm = algorithm.whole;
    object.algorithm_id =
        object_id_text(Elements(algorithm.content).required(ZA_DER_ID_OBJECTID).content);
    const View bits = parts.required(ZA_DER_ID_BITSTRING).content;
    if (!parts.at_end() || bits.empty() || bits.front() != 0) {
        throw LibraryError(ZACERT_InvalidSignatureLenErr);
    }
    object.signature = bits.subspan(1);
    return object;
}

CertificateParts certificate_parts(View der) {
    // TBSCertificate ::= SEQUENCE { version [0] DEFAULT v1, serialNumber, signature, issuer,
    //     validity, subject, subjectPublicKeyInfo, ... }
    Elements fields = fields_of(der);
    CertificateParts parts;
    fields.optional(constructed(0));
    parts.serial = fields.required(ZA_DER_ID_INTEGER).content;
    parts.algorithm = fields.required(ZA_DER_ID_SEQUENCE).whole;
    parts.issuer = fields.required(ZA_DER_ID_SEQUENCE).whole;
    fields.required(ZA_DER_ID_SEQUENCE);
    parts.subject = fields.required(ZA_DER_ID_SEQUENCE).whole;
    parts.key = fields.required(ZA_DER_ID_SEQUENCE).whole;
    return parts;
}

CrlParts crl_parts(View der) {
    // TBSCertList ::= SEQUENCE { version INTEGER OPTIONAL, signature, issuer, ... }
    Elements fields = fields_of(der);
    CrlParts parts;
    fields.optional(ZA_DER_ID_INTEGER);
    parts.algorithm = fields.required(ZA_DER_ID_SEQUENCE).whole;
    parts.issuer = fields.required(ZA_DER_ID_SEQUENCE).whole;
    return parts;
}

RequestParts request_parts(View der) {
    // CertificationRequestInfo ::= SEQUENCE { version, subject, subjectPKInfo, attributes [0] }
    Elements fields = fields_of(der);
    RequestParts parts;
    fields.required(ZA_DER_ID_INTEGER);
    parts.subject = fields.required(ZA_DER_ID_SEQUENCE).whole;
    parts.key = fields.required(ZA_DER_ID_SEQUENCE).whole;
    return parts;
}

}  // namespace tool
