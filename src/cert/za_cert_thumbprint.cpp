#include "asn1/za_asn2_writer.hpp"
#include "names/za_low_oid.hpp"
#include "runtime/trace.hpp"

using za::Bytes;
using za::Chain;
using za::Status;

namespace {

constexpr za::TraceSource trace{".\\src\\za_cert"};

// DigestInfo ::= SEQUENCE { SEQUENCE { algorithm OBJECT IDENTIFIER, NULL }, digest OCTET STRING }
Status encode_digest_info(Bytes algorithm, Bytes digest, Chain &out) {
    Chain identifier;
    Chain fields;
    ZA_TRY(ZAsn1_WriteObjectId, za::asn1::write_object_id(algorithm, identifier));
    ZA_TRY(ZAsn1_WriteNull, za::asn1::write_null(identifier));
    ZA_TRY(ZAsn1_WriteSequence, za::asn1::write_sequence(identifier.head(), fields));
    ZA_TRY(ZAsn1_WriteOctetString, za::asn1::write_octet_string(digest, fields));
    ZA_TRY(ZAsn1_WriteSequence, za::asn1::write_sequence(fields.head(), out));
    return Status::ok;
}

}  // namespace

uint32_t EnCodeThums(const char *algoOidText, uint32_t algoOidTextLen, const uint8_t *thumb,
                     uint32_t thumbLen, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(algoOidText, thumb, outLen));
        if (thumbLen == 0) {
            return trace.fail(Status::length);
        }
        za::Octets algorithm;
        Chain info;
        ZA_TRY(ZACert_GetOIDValue,
               za::names::oid_from_text(za::names::dotted_text(algoOidText, algoOidTextLen),
                                        algorithm));
        ZA_PASS(encode_digest_info(algorithm.bytes(), Bytes(thumb, thumbLen), info));
        za::hand_out(za::bytes_of(*info.head()), out, outLen);
        return Status::ok;
    });
}
