#include "names/za_low_algorithm.hpp"

#include "runtime/trace.hpp"

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_low"};

}  // namespace

namespace za::names {

void write_algorithm(Bytes oid, asn1::Builder &out) {
    constexpr std::array<uint8_t, 2> kNull{ZA_DER_ID_NULL, 0};
    write_algorithm(oid, kNull, out);
}

void write_algorithm(Bytes oid, Bytes parameters, asn1::Builder &out) {
    out.sequence([&] {
        out.object_id(oid);
        out.raw(parameters);
    });
}

void write_algorithm_or_null(Bytes oid, Bytes parameters, asn1::Builder &out) {
    parameters.empty() ? write_algorithm(oid, out) : write_algorithm(oid, parameters, out);
}

Status read_algorithm(const asn1::Element &in, Bytes &oid, Bytes &parameters) {
    asn1::Children fields;
    asn1::Element algorithm;
    asn1::Element rest;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(in, fields));
    if (!fields.next(algorithm) || algorithm.type != asn1::kObjectId) {
        return trace.fail(Status::type);
    }
    ZA_TRY(ZAsn1_ReadObjectId, asn1::read_object_id(algorithm, oid));
    parameters = fields.next(rest) ? rest.octets : Bytes{};
    return Status::ok;
}

}  // namespace za::names
