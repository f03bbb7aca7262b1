#include "keys/za_ext_ecc_key.hpp"

#include <zacert.h>

#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_ext"};

}  // namespace

namespace za::keys {
namespace {

static_assert(sizeof(ZACERT_EccPubKey) == 260);

// The lines are GB18030: "prime p", "parameter a" and so on. The one of a missing curve says that
// the data structure of a private key is empty, whichever key it is.
constexpr const char *kTextSequence = "----->ZACERT_DecodeEccCurve: ZAsn1_ReadSequence";
constexpr const char *kTextNullCurve =
    "----->ZACERT_DecodeEccCurve: "
    "\313\275\324\277DER\312\375\276\335\275\341\271\271\316\252\277\325";
constexpr const char *kTextLength = "----->ZACERT_DecodeEccCurve: \262\316\312\375len";

struct CurveField {
    uint8_t (ZACERT_EccCurve::*octets)[32];
    const char *text;
};

constexpr CurveField kCurveFields[] = {
    {&ZACERT_EccCurve::p, "----->ZACERT_DecodeEccCurve: \313\330\312\375p"},
    {&ZACERT_EccCurve::a, "----->ZACERT_DecodeEccCurve: \262\316\312\375a"},
    {&ZACERT_EccCurve::b, "----->ZACERT_DecodeEccCurve: \262\316\312\375b"},
    {&ZACERT_EccCurve::gx, kTextX},
    {&ZACERT_EccCurve::gy, kTextY},
    {&ZACERT_EccCurve::n, "----->ZACERT_DecodeEccCurve: \262\316\312\375n"},
};

// Curve ::= SEQUENCE { p, a, b, gx, gy, n PrintableString, len1 INTEGER, len2 INTEGER }
void write_curve(const ZACERT_EccCurve &curve, DerWriter &out) {
    out.wrapped(ZA_DER_ID_SEQUENCE, [&](DerWriter &fields) {
        for (const CurveField &field : kCurveFields) {
            write_field(curve.*field.octets, fields);
        }
        fields.integer(curve.len1);
        fields.integer(curve.len2);
    });
}

Status read_length(asn1::Children &fields, uint16_t &out) {
    asn1::Element field;
    uint32_t value = 0;
    if (!fields.next(field)) {
        return trace.fail(Status::item_missing, kTextLength);
    }
    ZA_TRY_AS(kTextLength, asn1::read_integer(field, value));
    out = static_cast<uint16_t>(value & 0xFFFF);
    return Status::ok;
}

Status read_curve(const asn1::Element &in, ZACERT_EccCurve &out) {
    if (in.octets[0] == ZA_DER_ID_NULL) {
        return trace.fail(Status::general, kTextNullCurve);
    }
    asn1::Children fields;
    ZA_TRY_AS(kTextSequence, asn1::read_sequence(in, fields));
    for (const CurveField &field : kCurveFields) {
        ZA_PASS(read_field(fields, out.*field.octets, field.text));
    }
    ZA_PASS(read_length(fields, out.len1));
    return read_length(fields, out.len2);
}

}  // namespace

void write_field(Bytes field, DerWriter &out) {
    out.element(ZA_DER_ID_PRINTABLESTRING, significant(field).empty() ? Bytes{} : field);
}

Status read_field(asn1::Children &fields, std::span<uint8_t> out, const char *text) {
    asn1::Element field;
    if (!fields.next(field)) {
        return trace.fail(Status::item_missing, text);
    }
    asn1::Content string;
    ZA_TRY_AS(text, asn1::read_string(field, string));
    if (string.octets.size() > out.size()) {
        return trace.fail(Status::length, text);
    }
    put(out.data(), string.octets);
    return Status::ok;
}

Status read_key_sequence(Bytes der, asn1::Children &out) {
    ZA_TRY_AS(kTextSequence, asn1::read_sequence(asn1::Element(der), out));
    return Status::ok;
}

void write_curve_and_point(const ZACERT_EccPubKey &key, DerWriter &out) {
    write_curve(key.curve, out);
    write_field(key.x, out);
    write_field(key.y, out);
}

Status read_curve_and_point(asn1::Children &fields, ZACERT_EccPubKey &out) {
    asn1::Element curve;
    if (!fields.next(curve)) {
        return trace.fail(Status::item_missing, kTextSequence);
    }
    ZA_PASS(read_curve(curve, out.curve));
    ZA_PASS(read_field(fields, out.x, kTextX));
    return read_field(fields, out.y, kTextY);
}

namespace {

// SEQUENCE { curve Curve, x PrintableString, y PrintableString }
Status write_public_key(const ZACERT_EccPubKey &key, Octets &out) {
    const auto structure = [&](DerWriter &der) {
        der.wrapped(ZA_DER_ID_SEQUENCE,
                    [&](DerWriter &fields) { write_curve_and_point(key, fields); });
    };
    ZA_TRY_AS("----->ZACERT_EncodeEccPublicKey", write_der(structure, out));
    return Status::ok;
}

}  // namespace

Status encode_ecc_public_key(const ZACERT_EccPubKey &key, Octets &out) {
    ZA_TRY_AS("----->ZACERT_EncodeEccPubKey", write_public_key(key, out));
    return Status::ok;
}

Status decode_ecc_public_key(Bytes der, ZACERT_EccPubKey &out) {
    if (der.empty()) {
        return trace.fail(Status::general,
                          "----->ZACERT_DecodeEccPubKey: pDerEccPub == NULL || iDerEccPubLen<=0");
    }
    if (der[0] != ZA_DER_ID_SEQUENCE) {
        return trace.fail(Status::general, "----->ZACERT_DecodeEccPubKey: pDerEccPub[0] != 0x30");
    }
    asn1::Children fields;
    ZA_PASS(read_key_sequence(der, fields));
    ZACERT_EccPubKey key{};
    ZA_PASS(read_curve_and_point(fields, key));
    out = key;
    return Status::ok;
}

}  // namespace za::keys

using za::Status;

uint32_t ZACERT_EncodeEccPubKey(const ZACERT_EccPubKey *rec, int32_t recLen, uint8_t *out,
                                uint32_t *outLen) {
    return trace.exported([&] {
        if (rec == nullptr || recLen < 1) {
            return trace.fail(Status::general, "----->ZACERT_EncodeEccPubKey");
        }
        if (recLen != sizeof *rec) {
            return trace.fail(Status::length, "----->ZACERT_EncodeEccPubKey");
        }
        ZA_PASS(trace.need(outLen));
        za::Octets der;
        ZA_PASS(za::keys::encode_ecc_public_key(*rec, der));
        za::hand_out(der.bytes(), out, outLen);
        return Status::ok;
    });
}

uint32_t ZACERT_DecodeEccPubKey(const uint8_t *der, int32_t derLen, ZACERT_EccPubKey *rec,
                                uint32_t *outLen) {
    return trace.exported([&] {
        ZACERT_EccPubKey key{};
        ZA_PASS(za::keys::decode_ecc_public_key(za::keys::view(der, derLen), key));
        ZA_PASS(trace.need(outLen));
        if (rec != nullptr) {
            *rec = key;
        }
        *outLen = sizeof key;
        return Status::ok;
    });
}
