// IssuerAndSerialNumber ::= SEQUENCE { issuer Name, serialNumber INTEGER }: how signers and
// recipients are told.
#pragma once

#include "asn1/za_asn2_builder.hpp"
#include "asn1/za_asn2_reader.hpp"
#include "names/za_low_name.hpp"
#include "runtime/field.hpp"

namespace za::pkcs7 {

struct IssuerAndSerial {
    Field issuer;             // the whole Name, which wins over entries
    names::NameList entries;  // in the order they were set in; e-mail as PrintableString
    Field serial;             // magnitude

    bool complete() const { return (!issuer.empty() || !entries.empty()) && !serial.empty(); }
};

Status write_issuer_and_serial(IssuerAndSerial &who, asn1::Builder &out);

// Views of `in`.
Status read_issuer_and_serial(const asn1::Element &in, IssuerAndSerial &out);

// A name entry of this kind, appended.
Status add_issuer_entry(IssuerAndSerial &who, uint32_t kind, Bytes value);

}  // namespace za::pkcs7
