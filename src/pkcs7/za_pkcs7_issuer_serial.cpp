#include "pkcs7/za_pkcs7_issuer_serial.hpp"

#include "pkcs7/za_pkcs7_content_info.hpp"
#include "pkcs7/za_pkcs7_part.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_base", {za::pkcs7::kArrow}};

}  // namespace

namespace za::pkcs7 {

Status write_issuer_and_serial(IssuerAndSerial &who, asn1::Builder &out) {
    return out.sequence([&] {
        // issuer Name
        if (who.issuer.empty()) {
            ZA_TRY(ZI_EncodeIssuerSuject,
                   names::write_cert_issuer_suject(*who.entries.holder(), nullptr, out));
        } else {
            out.raw(who.issuer.bytes());
        }
        // serialNumber INTEGER
        out.integer(who.serial.bytes());
        return Status::ok;
    });
}

Status read_issuer_and_serial(const asn1::Element &in, IssuerAndSerial &out) {
    asn1::Children fields;
    asn1::Element issuer;
    asn1::Element serial;
    asn1::Content number;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(in, fields));
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SEQUENCE, issuer));
    ZA_TRY(ZI_DecodeIssuerSubject, names::decode_issuer_subject(issuer, out.entries));
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_INTEGER, serial));
    ZA_TRY(ZAsn1_ReadIntegerArray, asn1::read_integer_array(serial, number));
    out.issuer.refer(issuer.octets);
    out.serial.refer(number.octets);
    return Status::ok;
}

Status add_issuer_entry(IssuerAndSerial &who, uint32_t kind, Bytes value) {
    return who.entries.append(kind, value, asn1::kPrintableString);
}

}  // namespace za::pkcs7
