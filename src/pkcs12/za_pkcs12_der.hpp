// DER of PKCS#12: what its structures are written and read with.
#pragma once

#include "asn1/za_asn2_builder.hpp"
#include "asn1/za_asn2_fields.hpp"
#include "asn1/za_asn2_reader.hpp"
#include "pkcs12/za_pkcs12_part.hpp"
#include "pkcs7/za_pkcs7_content_info.hpp"

#include <utility>

namespace za::pkcs12 {

using asn1::end_of;
using asn1::open_field;

// Values that must be there before anything is written.
template <class... Values>
Status need_octets(const TraceSource &trace, const Values &...values) {
    return (!values.bytes().empty() && ...) ? Status::ok : trace.fail(Status::invalid_item);
}

// SEQUENCE; `fields` writes what stands inside.
template <class Fields>
Status write_structure(Octets &out, const Fields &fields) {
    asn1::Builder built(asn1::Builder::Contents::secret);
    built.sequence([&] { fields(built); });
    return built.finish(out);
}

// Opens a SEQUENCE for `fields`, which reads what stands inside into a new structure.
template <class T, class Fields>
Status read_structure(const TraceSource &trace, Bytes in, T &out, const Fields &fields) {
    Secret kept;
    asn1::Children children;
    T fresh;
    if (in.empty()) {
        return trace.fail(Status::invalid_item);
    }
    ZA_PASS(pkcs7::take_der(trace, in, kept.value));
    const asn1::Element whole(kept.bytes());
    ZA_PASS(ZA_BODY(ZAsn1_ReadSequence, asn1::read_sequence(whole, children)));
    ZA_PASS(fields(children, fresh));
    out = std::move(fresh);
    return Status::ok;
}

// SEQUENCE OF ANY, with the elements as they stand.
void write_items(const List<Secret> &items, asn1::Builder &out);
Status read_items(const TraceSource &trace, asn1::Children &elements, List<Secret> &out);

// OBJECT IDENTIFIER: its content octets.
Status take_object_id(const TraceSource &trace, asn1::Children &fields, Bytes &out);

// OCTET STRING, in one piece or in several.
Status take_secret(const TraceSource &trace, asn1::Children &fields, Secret &out);

// The content of a ContentInfo of type data. What stands in it may be a key, so that nothing of it
// stays in a block that is given back to the heap.
Status read_data(const TraceSource &trace, Bytes in, Secret &out);

// The fields of the next one, a SEQUENCE.
Status open_sequence(const TraceSource &trace, asn1::Children &fields, asn1::Children &out);

}  // namespace za::pkcs12
