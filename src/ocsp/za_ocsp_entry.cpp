#include "ocsp/za_ocsp_entry.hpp"

#include "names/za_low_algorithm.hpp"
#include "ocsp/za_ocsp_base.hpp"

namespace za::ocsp {

using asn1::Builder;
using asn1::Children;
using asn1::Element;

namespace {

constexpr size_t kHashRoom = 512;

Status check(const TraceSource &trace, const HashTexts &texts, const CertId &id) {
    if (!id.hash.installed()) {
        return trace.fail(Status::invalid_item, texts.missing);
    }
    const bool complete = !id.algorithm.empty() && !id.issuer_name.empty() &&
                          !id.issuer_key.empty() && !id.serial.empty();
    return complete ? Status::ok : trace.fail(Status::invalid_item);
}

Status hash_issuer(const TraceSource &trace, const HashTexts &texts, CertId &id) {
    Secret name;
    Secret key;
    ZA_PASS(hash(trace, id.hash, id.issuer_name.bytes(), kHashRoom, texts.failed, name));
    ZA_PASS(hash(trace, id.hash, id.issuer_key.bytes(), kHashRoom, texts.failed, key));
    id.name_hash.take(std::move(name.value));
    id.key_hash.take(std::move(key.value));
    return Status::ok;
}

// hashAlgorithm, without parameters where none were set: both forms are read everywhere.
void write_algorithm(const CertId &id, Builder &out) {
    names::write_algorithm(id.algorithm.bytes(), id.parameter.bytes(), out);
}

}  // namespace

Status write_cert_id(const TraceSource &trace, const HashTexts &texts, CertId &id, Builder &out) {
    if (!id.whole.empty()) {
        out.raw(id.whole.bytes());
        return Status::ok;
    }
    ZA_PASS(check(trace, texts, id));
    ZA_PASS(hash_issuer(trace, texts, id));
    out.sequence([&] {
        write_algorithm(id, out);
        out.octet_string(id.name_hash.bytes());
        out.octet_string(id.key_hash.bytes());
        out.integer(id.serial.bytes());
    });
    return Status::ok;
}

Status read_cert_id(const TraceSource &trace, const Element &in, CertId &out) {
    Children fields;
    Element algorithm;
    Element serial;
    asn1::Content content;
    Bytes identifier;
    Bytes parameter;
    Bytes name_hash;
    Bytes key_hash;
    ZA_PASS(open_sequence(trace, in, fields));
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SEQUENCE, algorithm));
    ZA_PASS(names::read_algorithm(algorithm, identifier, parameter));
    ZA_PASS(take_octets(trace, fields, name_hash, "------------>The hashed Issuer name is null"));
    ZA_PASS(take_octets(trace, fields, key_hash, "------------>The hashed Issuer key is null"));
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_INTEGER, serial,
                       "------------>The hashed Issuer serial nummber is null"));
    ZA_PASS(ZA_BODY(ZAsn1_ReadIntegerArray, read_integer_array(serial, content)));
    ZA_PASS(end_of(trace, fields));
    out.algorithm.refer(identifier);
    out.parameter.refer(parameter);
    out.name_hash.refer(name_hash);
    out.key_hash.refer(key_hash);
    out.serial.refer(content.octets);
    out.whole.refer(in.octets);
    return Status::ok;
}

}  // namespace za::ocsp
