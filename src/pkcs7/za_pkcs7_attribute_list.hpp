// The attributes of a signer: Attributes ::= SET OF SEQUENCE { type OBJECT IDENTIFIER, values SET }
#pragma once

#include "asn1/za_asn2_builder.hpp"
#include "asn1/za_asn2_reader.hpp"
#include "runtime/field.hpp"
#include "runtime/list.hpp"
#include "runtime/trace.hpp"

namespace za::pkcs7 {

struct Attribute {
    Field type;
    Field value;  // all that stands in its SET of values
};

struct AttributeList {
    List<Attribute> list;
    bool present = false;
};

// One value in place of the first of its type, or behind all others, while a list is written.
struct Replacement {
    Bytes type;
    Bytes value;
};

// The elements of the SET, in the order of the list: the header is the caller's to write.
void write_attributes(const List<Attribute> &list, const Replacement *replacement,
                      asn1::Builder &out);

// ZI_PKCS7_DecodeAttributes: views of `attributes`, the elements inside the SET.
Status read_attributes(asn1::Children attributes, AttributeList &out);

// The attribute of this type; NULL where there is none, or more than one.
const Attribute *find_attribute(const AttributeList &attributes, Bytes type);

}  // namespace za::pkcs7
