#include "keys/za_ext_ecc_private.hpp"

#include <zacert.h>

#include "keys/za_ext_curves.hpp"
#include "keys/za_ext_ecc_key.hpp"
#include "keys/za_ext_number.hpp"
#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_ext"};

}  // namespace

namespace za::keys {
namespace {

static_assert(sizeof(ZACERT_EccPriKey) == 292);

constexpr const char *kTextD = "----->ZACERT_DecodeEccPriKey: \262\316\312\375d";

constexpr uint32_t kContext1 = asn1::constructed(1);

// A private key of any form: the record, and what the record has no place for.
struct PrivateKey {
    ZACERT_EccPriKey record{};
    Bytes curve_oid;
};

enum class Form { explicit_curve, container, sec1 };

// The first two elements tell the form; the outer SEQUENCE is the same.
Status read_form(asn1::Children fields, Form &out) {
    asn1::Element first;
    asn1::Element second;
    if (!fields.next(first) || !fields.next(second)) {
        return trace.fail(Status::item_missing);
    }
    if (first.type == asn1::kSequence || first.type == asn1::kNull) {
        out = Form::explicit_curve;
        return Status::ok;
    }
    const bool numbered = first.type == asn1::kInteger;
    if (numbered && second.type == asn1::kOctetString) {
        out = Form::sec1;
        return Status::ok;
    }
    if (numbered && (second.type == asn1::kObjectId || second.type == asn1::kPrintableString)) {
        out = Form::container;
        return Status::ok;
    }
    return trace.fail(Status::type);
}

// SEQUENCE { curve Curve, x PrintableString, y PrintableString, d PrintableString }
Status read_explicit_form(asn1::Children fields, PrivateKey &out) {
    ZA_PASS(read_curve_and_point(fields, out.record.pub));
    ZA_PASS(read_field(fields, out.record.d, kTextD));
    out.curve_oid = find_curve_oid(out.record.pub.curve);
    return Status::ok;
}

// A number of the container: a string as everywhere, or an INTEGER.
Status read_container_field(asn1::Children &fields, std::span<uint8_t> out, const char *text) {
    asn1::Children ahead = fields;
    asn1::Element field;
    if (!ahead.next(field)) {
        return trace.fail(Status::item_missing, text);
    }
    if (field.type == asn1::kInteger) {
        ZA_TRY_AS(text, read_number(fields, out));
        return Status::ok;
    }
    if (field.type != asn1::kPrintableString && field.type != asn1::kOctetString) {
        return trace.fail(Status::type, text);
    }
    return read_field(fields, out, text);
}

// SEQUENCE { version INTEGER, curve OBJECT IDENTIFIER OPTIONAL, d PrintableString,
//     x PrintableString, y PrintableString }
Status read_container_form(asn1::Children fields, PrivateKey &out) {
    asn1::Element field;
    fields.next(field);
    asn1::Children behind_oid = fields;
    if (behind_oid.next(field) && field.type == asn1::kObjectId) {
        ZA_TRY(ZAsn1_ReadObjectId, asn1::read_object_id(field, out.curve_oid));
        fields = behind_oid;
    }
    find_curve(out.curve_oid, out.record.pub.curve);
    ZA_PASS(read_container_field(fields, out.record.d, kTextD));
    ZA_PASS(read_container_field(fields, out.record.pub.x, kTextX));
    return read_container_field(fields, out.record.pub.y, kTextY);
}

// ECParameters ::= CHOICE { namedCurve OBJECT IDENTIFIER, specifiedCurve SEQUENCE }
Status read_sec1_curve(const asn1::Element &in, PrivateKey &out) {
    asn1::Element parameters;
    uint32_t tag = 0;
    ZA_TRY(ZAsn1_ReadExplicit, asn1::read_explicit(in, parameters, tag));
    if (parameters.type == asn1::kObjectId) {
        ZA_TRY(ZAsn1_ReadObjectId, asn1::read_object_id(parameters, out.curve_oid));
        find_curve(out.curve_oid, out.record.pub.curve);
    } else if (parameters.type == asn1::kSequence) {
        read_explicit_curve(parameters, out.record.pub.curve);
    }
    return Status::ok;
}

Status read_sec1_point(const asn1::Element &in, PrivateKey &out) {
    asn1::Element bits;
    uint32_t tag = 0;
    ZA_TRY(ZAsn1_ReadExplicit, asn1::read_explicit(in, bits, tag));
    asn1::Content point;
    ZA_TRY(ZAsn1_ReadBitString, asn1::read_bit_string(bits, point));
    // A point in another form stays out like a missing one: the secret number is what counts.
    read_point(point.octets, out.record.pub.x, out.record.pub.y);
    return Status::ok;
}

// ECPrivateKey ::= SEQUENCE { version INTEGER, privateKey OCTET STRING,
//     parameters [0] ECParameters OPTIONAL, publicKey [1] BIT STRING OPTIONAL }
Status read_sec1_form(asn1::Children fields, PrivateKey &out) {
    asn1::Element field;
    fields.next(field);
    fields.next(field);
    asn1::Content d;
    ZA_TRY_AS(kTextD, asn1::read_string(field, d));
    if (!right_align(d.octets, out.record.d)) {
        return trace.fail(Status::length, kTextD);
    }
    out.record.pub.curve = unknown_curve();
    while (fields.next(field)) {
        if (field.type == asn1::constructed(0)) {
            ZA_PASS(read_sec1_curve(field, out));
        } else if (field.type == kContext1) {
            ZA_PASS(read_sec1_point(field, out));
        }
    }
    return Status::ok;
}

Status read_form_of(asn1::Children fields, Form form, PrivateKey &out) {
    switch (form) {
        case Form::explicit_curve:
            return read_explicit_form(fields, out);
        case Form::container:
            return read_container_form(fields, out);
        case Form::sec1:
            return read_sec1_form(fields, out);
    }
    return Status::ok;
}

Status write_private_key(const ZACERT_EccPriKey &key, Octets &out) {
    const auto structure = [&](DerWriter &der) {
        der.wrapped(ZA_DER_ID_SEQUENCE, [&](DerWriter &fields) {
            write_curve_and_point(key.pub, fields);
            write_field(key.d, fields);
        });
    };
    ZA_TRY_AS("----->ZACERT_EncodeEccPrivateKey", write_der(structure, out));
    return Status::ok;
}

Status write_sec1(const PrivateKey &key, Octets &out) {
    constexpr uint8_t kContextIdentifier0 = asn1::constructed(0);
    constexpr uint8_t kContextIdentifier1 = kContext1;
    constexpr uint8_t kPointPrefix[] = {0, kUncompressed};  // behind the count of unused bits
    const auto structure = [&](DerWriter &der) {
        der.wrapped(ZA_DER_ID_SEQUENCE, [&](DerWriter &fields) {
            fields.integer(1);
            fields.element(ZA_DER_ID_OCTETSTRING, key.record.d);
            if (!key.curve_oid.empty()) {
                fields.wrapped(kContextIdentifier0, [&](DerWriter &parameters) {
                    parameters.element(ZA_DER_ID_OBJECTID, key.curve_oid);
                });
            }
            fields.wrapped(kContextIdentifier1, [&](DerWriter &public_key) {
                public_key.wrapped(ZA_DER_ID_BITSTRING, [&](DerWriter &bits) {
                    bits.raw(kPointPrefix);
                    bits.raw(key.record.pub.x);
                    bits.raw(key.record.pub.y);
                });
            });
        });
    };
    return write_der(structure, out);
}

bool has_point(const ZACERT_EccPubKey &key) {
    return !significant(key.x).empty() || !significant(key.y).empty();
}

}  // namespace

Status encode_ecc_private_key(const ZACERT_EccPriKey &key, Octets &out) {
    ZA_TRY_AS("----->ZACERT_EncodeEccPriKey", write_private_key(key, out));
    return Status::ok;
}

Status decode_ecc_private_key(Bytes der, ZACERT_EccPriKey &out) {
    if (der.empty()) {
        return trace.fail(Status::general,
                          "----->ZACERT_DecodeEccPriKey: pDerEccPri == NULL || iDerEccPriLen<=0");
    }
    if (der[0] != ZA_DER_ID_SEQUENCE) {
        return trace.fail(Status::general, "----->ZACERT_DecodeEccPriKey: pDerEccPri[0] != 0x30");
    }
    asn1::Children fields;
    ZA_PASS(read_key_sequence(der, fields));
    Wiped<PrivateKey> key;
    ZA_PASS(read_explicit_form(fields, key.value));
    out = key.value.record;
    return Status::ok;
}

Status decode_any_ecc_private_key(Bytes der, ZACERT_EccPriKey &out) {
    if (der.empty()) {
        return trace.fail(
            Status::general,
            "----->ZACERT_DecodeEccPriKey_New: pDerEccPri == NULL || iDerEccPriLen<=0");
    }
    asn1::Children fields;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(asn1::Element(der), fields));
    Form form{};
    ZA_PASS(read_form(fields, form));
    Wiped<PrivateKey> key;
    ZA_PASS(read_form_of(fields, form, key.value));
    out = key.value.record;
    return Status::ok;
}

Status to_sec1_private_key(Bytes der, Octets &out) {
    if (der.empty()) {
        return trace.fail(Status::general);
    }
    asn1::Children fields;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(asn1::Element(der), fields));
    Form form{};
    ZA_PASS(read_form(fields, form));
    // Converted before: a key may pass here more than once on its way.
    if (form == Form::sec1) {
        return out.assign(der);
    }
    Wiped<PrivateKey> key;
    ZA_PASS(read_form_of(fields, form, key.value));
    if (!has_point(key.value.record.pub)) {
        return trace.fail(Status::item_missing);
    }
    if (form == Form::explicit_curve && key.value.curve_oid.empty()) {
        return trace.fail(Status::type);
    }
    return write_sec1(key.value, out);
}

}  // namespace za::keys

using za::Status;

namespace {

void hand_out_record(const ZACERT_EccPriKey &key, ZACERT_EccPriKey *rec, uint32_t *out_len) {
    if (rec != nullptr) {
        *rec = key;
    }
    *out_len = sizeof key;
}

}  // namespace

uint32_t ZACERT_EncodeEccPriKey(const ZACERT_EccPriKey *rec, int32_t recLen, uint8_t *out,
                                uint32_t *outLen) {
    return trace.exported([&] {
        if (rec == nullptr || recLen < 1) {
            return trace.fail(Status::general, "----->ZACERT_EncodeEccPriKey");
        }
        if (recLen != sizeof *rec) {
            return trace.fail(Status::length, "----->ZACERT_EncodeEccPriKey");
        }
        ZA_PASS(trace.need(outLen));
        za::Wiped<za::Octets> der;
        ZA_PASS(za::keys::encode_ecc_private_key(*rec, der.value));
        za::hand_out(der.value.bytes(), out, outLen);
        return Status::ok;
    });
}

uint32_t ZACERT_DecodeEccPriKey(const uint8_t *der, int32_t derLen, ZACERT_EccPriKey *rec,
                                uint32_t *outLen) {
    return trace.exported([&] {
        za::Wiped<ZACERT_EccPriKey> key;
        ZA_PASS(za::keys::decode_ecc_private_key(za::keys::view(der, derLen), key.value));
        ZA_PASS(trace.need(outLen));
        hand_out_record(key.value, rec, outLen);
        return Status::ok;
    });
}

uint32_t ZACERT_DecodeEccPriKey_New(const uint8_t *der, int32_t derLen, ZACERT_EccPriKey *rec,
                                    uint32_t *outLen) {
    return trace.exported([&] {
        za::Wiped<ZACERT_EccPriKey> key;
        ZA_PASS(za::keys::decode_any_ecc_private_key(za::keys::view(der, derLen), key.value));
        ZA_PASS(trace.need(outLen));
        hand_out_record(key.value, rec, outLen);
        return Status::ok;
    });
}

uint32_t ZACERT_EcPrivateZqcspDerToCertDer(const uint8_t *der, uint32_t derLen, uint8_t *out,
                                           uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(der, outLen));
        za::Wiped<za::Octets> sec1;
        ZA_PASS(za::keys::to_sec1_private_key({der, derLen}, sec1.value));
        za::hand_out(sec1.value.bytes(), out, outLen);
        return Status::ok;
    });
}
