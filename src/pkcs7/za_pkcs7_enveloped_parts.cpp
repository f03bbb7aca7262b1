#include "pkcs7/za_pkcs7_enveloped_parts.hpp"

#include <zacert.h>

namespace za::pkcs7 {

using asn1::Builder;
using asn1::Element;

Status write_recipients(const TraceSource &trace, EnvelopedParts &parts, Builder &out) {
    constexpr const char *kFailed = "------>ZI_MakeRecipientInfoToSequence";
    if (parts.recipients.empty()) {
        return trace.fail(Status::invalid_item, kFailed);
    }
    const auto write_each = [&] {
        for (RecipientInfo *recipient : parts.recipients) {
            Bytes der;
            ZA_PASS(give_key(*recipient, parts.key.bytes()));
            ZA_TRY(ZA_PKCS7_EncodeRecipientInfo, encode_recipient_info(*recipient, der));
            out.raw(der);
        }
        return Status::ok;
    };
    ZA_PASS(out.wrapped(ZA_DER_ID_SET, write_each));
    ZA_TRY_AS(kFailed, out.status());
    return Status::ok;
}

Status read_recipients(const TraceSource &trace, const Element &in, const char *missing,
                       EnvelopedParts &out) {
    asn1::Children recipients;
    ZA_TRY(ZAsn1_ReadSet, asn1::read_set(in, recipients));
    if (recipients.empty()) {
        return trace.fail(Status::invalid_item, missing);
    }
    for (Element der; recipients.next(der);) {
        RecipientInfo *recipient = nullptr;
        ZA_PASS(out.recipients.add(trace, recipient));
        ZA_TRY(ZA_PKCS7_DecodeRecipientInfo, decode_recipient_info(der, *recipient));
    }
    return Status::ok;
}

}  // namespace za::pkcs7
