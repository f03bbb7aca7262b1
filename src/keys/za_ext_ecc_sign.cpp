#include "keys/za_ext_ecc_sign.hpp"

#include <zacert.h>

#include "asn1/za_asn2_writer.hpp"
#include "keys/za_ext_number.hpp"
#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_ext"};

// The encoder announces itself by the name of another; programs that read the log know it so.
constexpr const char *kEncodeBegin = "======>ZA_Encode_PublicKey";
constexpr const char *kEncodeEnd = "=====>ZA_Encode_PublicKey End";
constexpr const char *kDecodeBegin = "======>ZA_Decode_SignDerDataTo SignStruct ";
constexpr const char *kDecodeEnd = "========>ZA_Decode_SignDerDataTo SignStruct End";

}  // namespace

namespace za::keys {
namespace {

static_assert(sizeof(ZA_ECCSignStruct) == 64);

Status write_half(Bytes half, Chain &out) {
    ZA_TRY(ZAsn1_WriteIntegerArray, asn1::write_integer_array(half, out));
    return Status::ok;
}

}  // namespace

// SEQUENCE { r INTEGER, s INTEGER }
Status encode_ecc_signature(const ZA_ECCSignStruct &signature, Octets &out) {
    trace.note(kEncodeBegin);
    const Bytes r = significant(signature.r);
    const Bytes s = significant(signature.s);
    if (r.empty()) {
        return trace.fail(Status::memory, "------>ZA_TraceZero");
    }
    if (s.empty()) {
        // Not a failure, unlike r: callers rely on 0 and on outputs that stay as they were.
        trace.note("------>ZA_TraceZero");
        return Status::ok;
    }
    Chain halves;
    ZA_TRY_AS("------>ZA_Integer_To_IntegerArray", write_half(r, halves));
    ZA_TRY_AS("------>ZA_Integer_To_IntegerArray", write_half(s, halves));
    Chain sequence;
    ZA_TRY(ZAsn1_WriteSequence, asn1::write_sequence(halves.head(), sequence));
    ZA_TRY_AS("------>ZACERT_MemoryErr", out.assign(bytes_of(*sequence.head())));
    trace.note(kEncodeEnd);
    return Status::ok;
}

Status decode_ecc_signature(Bytes der, ZA_ECCSignStruct &out) {
    trace.note(kDecodeBegin);
    if (der.empty()) {
        return trace.fail(Status::length, "------>pDerSignDataLen <= 0");
    }
    asn1::Children halves;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(asn1::Element(der), halves));
    ZA_ECCSignStruct signature{};
    ZA_PASS(read_number(halves, signature.r));
    ZA_PASS(read_number(halves, signature.s));
    out = signature;
    trace.note(kDecodeEnd);
    return Status::ok;
}

}  // namespace za::keys

using za::Status;

uint32_t ZA_Encode_ECCSignStructToDerData(const ZA_ECCSignStruct *sig, uint8_t *out,
                                          uint32_t *outLen) {
    return trace.unannounced([&] {
        if (sig == nullptr || outLen == nullptr) {
            trace.note(kEncodeBegin);
            return sig != nullptr ? trace.need(outLen)
                                  : trace.fail(Status::memory, "------>pSignStruct = NULL");
        }
        za::Octets der;
        ZA_PASS(za::keys::encode_ecc_signature(*sig, der));
        if (!der.empty()) {
            za::hand_out(der.bytes(), out, outLen);
        }
        return Status::ok;
    });
}

uint32_t ZA_Decode_DerDataToECCSignStruct(ZA_ECCSignStruct *sig, const uint8_t *der,
                                          int32_t derLen) {
    return trace.unannounced([&] {
        if (sig == nullptr || (derLen > 0 && der == nullptr)) {
            trace.note(kDecodeBegin);
            return sig != nullptr ? trace.need(der)
                                  : trace.fail(Status::memory, "------>pSignStruct is NULL");
        }
        return za::keys::decode_ecc_signature(za::keys::view(der, derLen), *sig);
    });
}
