#include "base/context.hpp"
#include "base/der.hpp"
#include "objects/certificate.hpp"
#include "objects/extensions.hpp"
#include "objects/names.hpp"
#include "objects/oid_names.hpp"
#include "objects/public_key.hpp"

#include <algorithm>

namespace tool {

namespace {

using std::chrono::sys_seconds;

// The library's window of two-digit years begins at 1970, that of X.509 at 1950.
sys_seconds from_utc_time(uint32_t library_time) {
    using std::chrono::January;
    using std::chrono::sys_days;
    using std::chrono::year;
    const sys_seconds time{std::chrono::seconds(library_time)};
    const sys_days end_of_window{year(2050) / January / 1};
    const sys_days begin_of_window{year(1950) / January / 1};
    return time < end_of_window ? time : time - (end_of_window - begin_of_window);
}

// The library gives the low 32 bits, which overflow within 2106, the last year it reads.
sys_seconds from_generalized_time(uint32_t library_time, std::string_view text) {
    constexpr std::chrono::seconds kOverflow{int64_t{1} << 32};
    const sys_seconds time{std::chrono::seconds(library_time)};
    const bool overflown =
        text.size() == 15 && text.starts_with("2106") && time < sys_seconds(std::chrono::years(1));
    return overflown ? time + kOverflow : time;
}

sys_seconds read_time(const Context &context, ZA_CertAttribute type, const Anybuf &element) {
    if (identifier_of(element) == ZA_DER_ID_UTCTIME) {
        return from_utc_time(context.number(type));
    }
    int32_t time = 0;
    check(ZAsn1_ReadGeneralizedTime(&element, &time));
    return from_generalized_time(static_cast<uint32_t>(time), text_of(content(element)));
}

NamedId algorithm_of(const Context &context, ZA_CertAttribute type) {
    const Octets oid = context.octets(type);
    return oid.empty() ? NamedId{} : named(object_id_text(oid));
}

Name name_of(const Context &context, ZA_CertAttribute type) {
    const Octets der = context.octets(type);
    return read_name(record_of(der));
}

// What no attribute gives in full: the sign of the serial number, times, the extensions' order.
void read_tbs(const Context &context, Certificate &out) {
    const Octets tbs = context.octets(CERT_TBS_CERTIFICATE);
    // TBSCertificate ::= SEQUENCE { version [0] DEFAULT v1, serialNumber, signature, issuer,
    //     validity, subject, subjectPublicKeyInfo, issuerUniqueID [1], subjectUniqueID [2],
    //     extensions [3] }
    Fields fields(sequence(record_of(tbs)));
    fields.optional(constructed(0));
    out.serial = Integer(content(fields.required(ZA_DER_ID_INTEGER)));
    fields.required(ZA_DER_ID_SEQUENCE);
    fields.required(ZA_DER_ID_SEQUENCE);
    Fields validity(sequence(fields.required(ZA_DER_ID_SEQUENCE)));
    out.not_before = read_time(context, CERT_VALIDFROM, validity.next());
    out.not_after = read_time(context, CERT_VALIDTO, validity.next());
    fields.required(ZA_DER_ID_SEQUENCE);
    fields.required(ZA_DER_ID_SEQUENCE);
    fields.optional(primitive(1));
    fields.optional(primitive(2));
    if (const Anybuf *wrapper = fields.optional(constructed(3))) {
        out.extensions = read_extensions(context, *wrapper);
    }
}

}  // namespace

Certificate read_certificate(View der) {
    const Context context(der);
    Certificate certificate;
    certificate.version = context.number(CERT_VERSION) + 1;
    certificate.signature_algorithm = algorithm_of(context, CERT_INNER_SIGNATUREALGORITHM);
    certificate.outer_signature_algorithm = algorithm_of(context, CERT_OUTER_SIGNATUREALGORITHM);
    certificate.issuer = name_of(context, CERT_ISSUER_DERDN);
    certificate.subject = name_of(context, CERT_SUBJECT_DERDN);
    certificate.key = read_public_key({context.octets(CERT_PUBLICKEY_ALGORITHM),
                                       context.octets(CERT_SUBJECTPUBLICKEYINFO),
                                       context.octets(CERT_ECC_PUBLICKEY_OID)});
    certificate.signature = context.octets(CERT_CA_SIGNATURE);
    read_tbs(context, certificate);
    return certificate;
}

}  // namespace tool
