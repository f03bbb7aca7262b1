#include "base/context.hpp"
#include "base/der.hpp"
#include "base/times.hpp"
#include "objects/crl.hpp"
#include "objects/extensions.hpp"
#include "objects/names.hpp"
#include "objects/oid_names.hpp"

#include <algorithm>

namespace tool {

namespace {

using CrlContext = Decoded<ZACert_CreateCrlDecodeCtx, ZACert_DecodeCrl, ZACert_DestroyCrlDecodeCtx>;

NamedId algorithm_of(const CrlContext &context) {
    const Octets oid = fetched([&](uint8_t *out, uint32_t *length) {
        return ZACert_GetCrlAttributeChar(context.get(), CRL_INNER_SIGNATUREALGORITHM, out, length);
    });
    return oid.empty() ? NamedId{} : named(object_id_text(oid));
}

size_t number_of(RevokedEntries entries) {
    size_t number = 0;
    for (; !entries.at_end(); entries.next()) {
        ++number;
    }
    return number;
}

// What no attribute gives, or not in full: the issuer's DER, late times, the order and criticality
// of extensions. The entries come from here too, since every call of a getter leaves a trace.
void read_tbs(View der, Crl &out) {
    // TBSCertList ::= SEQUENCE { version INTEGER OPTIONAL, signature, issuer, thisUpdate,
    //     nextUpdate OPTIONAL, revokedCertificates SEQUENCE OF OPTIONAL,
    //     crlExtensions [0] OPTIONAL }
    Elements list(only_element(der, ZA_DER_ID_SEQUENCE).content);
    Elements fields(list.required(ZA_DER_ID_SEQUENCE).content);
    fields.optional(ZA_DER_ID_INTEGER);
    fields.required(ZA_DER_ID_SEQUENCE);
    out.issuer = read_name(record_of(fields.required(ZA_DER_ID_SEQUENCE).whole));
    out.this_update = read_time(fields.next());
    if (is_time(fields.identifier())) {
        out.next_update = read_time(fields.next());
    }
    if (const auto revoked = fields.optional(ZA_DER_ID_SEQUENCE)) {
        out.revoked = revoked->content;
        out.num_revoked = number_of(RevokedEntries(out.revoked));
    }
    if (const auto wrapper = fields.optional(constructed(0))) {
        out.extensions = read_extensions(wrapper->content);
    }
}

}  // namespace

RevokedEntry RevokedEntries::next() {
    // SEQUENCE { userCertificate INTEGER, revocationDate, crlEntryExtensions OPTIONAL }
    Elements fields(elements_.required(ZA_DER_ID_SEQUENCE).content);
    RevokedEntry entry;
    entry.serial = Integer(fields.required(ZA_DER_ID_INTEGER).content);
    entry.date = read_time(fields.next());
    if (const auto list = fields.optional(ZA_DER_ID_SEQUENCE)) {
        entry.extensions = read_extensions(list->whole);
    }
    const auto reason =
        std::find_if(entry.extensions.begin(), entry.extensions.end(),
                     [](const Extension &e) { return std::holds_alternative<Reason>(e.value); });
    if (reason != entry.extensions.end()) {
        entry.reason = std::get<Reason>(reason->value).name;
        if (!reason->critical) {
            entry.extensions.erase(reason);
        }
    }
    return entry;
}

Crl read_crl(View der) {
    const CrlContext context(der);
    Crl crl;
    check(ZACert_GetCrlAttributeInt(context.get(), CRL_VERSION, &crl.version));
    ++crl.version;
    crl.signature_algorithm = algorithm_of(context);
    read_tbs(der, crl);
    return crl;
}

}  // namespace tool
