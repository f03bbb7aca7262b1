// Bags between their structures and DER.
#include "pkcs12/za_pkcs12_base.hpp"

#include "asn1/za_asn2_builder.hpp"
#include "names/za_low_algorithm.hpp"
#include "pkcs12/za_pkcs12_der.hpp"
#include "pkcs7/za_pkcs7_content_info.hpp"

#include <utility>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs12_base", za::kLongStyle};

}  // namespace

namespace za::pkcs12 {

using asn1::Builder;
using asn1::Children;
using asn1::Element;
using pkcs7::take_algorithm;
using pkcs7::take_optional;

namespace {

constexpr uint8_t kKeyAttributes = 0xA0;
constexpr uint8_t kBagAttributes = ZA_DER_ID_SET;
constexpr uint8_t kValue = 0xA0;

// attributes [0] IMPLICIT SET OF Attribute OPTIONAL, bagAttributes SET OF Attribute OPTIONAL
//     Attribute ::= SEQUENCE { type OBJECT IDENTIFIER, values SET OF ANY }
void write_attributes(uint8_t identifier, const Attributes &attributes, Builder &out) {
    const auto all = [&] {
        for (const Attribute &attribute : attributes) {
            out.sequence([&] {
                out.object_id(attribute.type.bytes());
                out.raw(attribute.values.bytes());
            });
        }
    };
    if (!attributes.empty()) {
        out.wrapped(identifier, all);
    }
}

Status read_attribute(const Element &in, Attributes &out) {
    Children fields;
    Bytes type;
    Element values;
    ZA_PASS(ZA_BODY(ZAsn1_ReadSequence, asn1::read_sequence(in, fields)));
    ZA_PASS(take_object_id(trace, fields, type));
    // Values without their SET come back as they were set.
    if (!fields.next(values)) {
        return trace.fail(Status::invalid_item);
    }
    return add_attribute(trace, out, type, values.octets);
}

Status read_attributes(uint8_t identifier, Children &fields, Attributes &out) {
    Element all;
    Children attributes;
    Element attribute;
    if (!take_optional(fields, identifier, all)) {
        return Status::ok;
    }
    ZA_PASS(pkcs7::read_elements(trace, all, attributes));
    while (attributes.next(attribute)) {
        ZA_PASS(read_attribute(attribute, out));
    }
    return Status::ok;
}

void write_key_bag(const KeyBag &bag, Builder &out) {
    // version INTEGER
    out.integer(bag.version);
    // privateKeyAlgorithm AlgorithmIdentifier: with NULL for elliptic curves too
    names::write_algorithm(bag.algorithm.bytes(), out);
    // privateKey OCTET STRING
    out.octet_string(bag.key.bytes());
    write_attributes(kKeyAttributes, bag.attributes, out);
}

// Parameters of the algorithm are let pass: others write the curve there. So is a public key behind
// the attributes.
Status read_key_bag(Children &fields, KeyBag &out) {
    Field algorithm;
    // version INTEGER
    ZA_PASS(pkcs7::take_version(trace, fields, out.version));
    // privateKeyAlgorithm AlgorithmIdentifier
    ZA_PASS(take_algorithm(trace, fields, algorithm));
    ZA_PASS(out.algorithm.assign(algorithm.bytes()));
    // privateKey OCTET STRING
    ZA_PASS(take_secret(trace, fields, out.key));
    return read_attributes(kKeyAttributes, fields, out.attributes);
}

void write_enc_key_bag(const EncKeyBag &bag, Builder &out) {
    // encryptionAlgorithm AlgorithmIdentifier
    names::write_algorithm_or_null(bag.algorithm.bytes(), bag.parameter.bytes(), out);
    // encryptedData OCTET STRING
    out.octet_string(bag.encrypted_key.bytes());
}

Status read_enc_key_bag(Children &fields, EncKeyBag &out) {
    Field algorithm;
    Field parameter;
    // encryptionAlgorithm AlgorithmIdentifier
    ZA_PASS(take_algorithm(trace, fields, algorithm, &parameter));
    ZA_PASS(out.algorithm.assign(algorithm.bytes()));
    ZA_PASS(out.parameter.assign(parameter.bytes()));
    // encryptedData OCTET STRING
    ZA_PASS(take_secret(trace, fields, out.encrypted_key));
    return end_of(trace, fields);
}

void write_value_bag(const ValueBag &bag, Builder &out) {
    // type OBJECT IDENTIFIER
    out.object_id(bag.type.bytes());
    // value [0] EXPLICIT OCTET STRING
    out.wrapped(kValue, [&] { out.octet_string(bag.value.bytes()); });
}

Status read_value_bag(Children &fields, ValueBag &out) {
    Bytes type;
    Children inside;
    // type OBJECT IDENTIFIER
    ZA_PASS(take_object_id(trace, fields, type));
    ZA_PASS(out.type.assign(type));
    // value [0] EXPLICIT OCTET STRING
    ZA_PASS(open_field(trace, fields, kValue, inside));
    ZA_PASS(take_secret(trace, inside, out.value));
    ZA_PASS(end_of(trace, inside));
    return end_of(trace, fields);
}

void write_safe_bag(const SafeBag &bag, Builder &out) {
    // bagId OBJECT IDENTIFIER
    out.object_id(bag.type.bytes());
    // bagValue [0] EXPLICIT ANY
    out.wrapped(kValue, [&] { out.raw(bag.content.bytes()); });
    write_attributes(kBagAttributes, bag.attributes, out);
}

Status read_safe_bag(Children &fields, SafeBag &out) {
    Bytes type;
    Children inside;
    Element content;
    // bagId OBJECT IDENTIFIER
    ZA_PASS(take_object_id(trace, fields, type));
    ZA_PASS(out.type.assign(type));
    // bagValue [0] EXPLICIT ANY
    ZA_PASS(open_field(trace, fields, kValue, inside));
    if (!inside.next(content)) {
        return trace.fail(Status::invalid_item);
    }
    ZA_PASS(out.content.assign(content.octets));
    ZA_PASS(end_of(trace, inside));
    ZA_PASS(read_attributes(kBagAttributes, fields, out.attributes));
    return end_of(trace, fields);
}

}  // namespace

Status encode(const KeyBag &bag, Octets &out) {
    ZA_PASS(need_octets(trace, bag.algorithm, bag.key));
    return write_structure(out, [&](Builder &fields) { write_key_bag(bag, fields); });
}

Status encode(const EncKeyBag &bag, Octets &out) {
    ZA_PASS(need_octets(trace, bag.algorithm, bag.encrypted_key));
    return write_structure(out, [&](Builder &fields) { write_enc_key_bag(bag, fields); });
}

Status encode(const ValueBag &bag, Octets &out) {
    ZA_PASS(need_octets(trace, bag.type, bag.value));
    return write_structure(out, [&](Builder &fields) { write_value_bag(bag, fields); });
}

Status encode(const SafeBag &bag, Octets &out) {
    ZA_PASS(need_octets(trace, bag.type, bag.content));
    return write_structure(out, [&](Builder &fields) { write_safe_bag(bag, fields); });
}

Status encode(const SafeContents &contents, Octets &out) {
    return write_structure(out, [&](Builder &bags) { write_items(contents.bags, bags); });
}

Status decode(Bytes in, KeyBag &out) {
    return read_structure(trace, in, out, read_key_bag);
}

Status decode(Bytes in, EncKeyBag &out) {
    return read_structure(trace, in, out, read_enc_key_bag);
}

Status decode(Bytes in, ValueBag &out) {
    return read_structure(trace, in, out, read_value_bag);
}

Status decode(Bytes in, SafeBag &out) {
    return read_structure(trace, in, out, read_safe_bag);
}

Status decode(Bytes in, SafeContents &out) {
    return read_structure(trace, in, out, [](Children &bags, SafeContents &fresh) {
        return read_items(trace, bags, fresh.bags);
    });
}

}  // namespace za::pkcs12
