// Reading what certificates, CRLs and requests have in common. What is kept are views: the elements
// handed in must be octets that the context keeps.
#pragma once

#include "asn1/za_asn2_reader.hpp"
#include "cert/za_cert_parts.hpp"
#include "runtime/trace.hpp"

namespace za::cert {

// Whose lines a failure writes, and the code of an object that ends before a field it must have.
struct Walk {
    const TraceSource &trace;
    Status missing;
};

// A copy of the object at the start of `in`, which may hold more behind it, kept in a context.
Status keep_object(const Walk &walk, Bytes in, Kept &kept, Bytes &whole);

// Runs a body on a copy of the caller's element that lives as long as the context.
template <class Context, class Decode>
Status decode_kept(const Walk &walk, void *ctx, const Anybuf *element, const Decode &decode) {
    ZA_PASS(walk.trace.need(ctx, element));
    auto &context = *static_cast<Context *>(ctx);
    Bytes copy;
    ZA_PASS(context.kept.keep(walk.trace, bytes_of(*element), copy));
    return decode(context, asn1::Element(copy));
}

// The next field of a structure that must have one.
Status take_field(const Walk &walk, asn1::Children &fields, asn1::Element &out);

Status decode_algorithm(const Walk &walk, asn1::Children fields, Field &out);
Status decode_name(const Walk &walk, const asn1::Element &name, Name &out);
Status decode_time(const Walk &walk, const asn1::Element &time, Time &out);
Status decode_public_key(const Walk &walk, const asn1::Element &info, PublicKey &out);

// What stands behind that which was signed: each may be missing. `text` is the line of an algorithm
// that is no SEQUENCE.
Status decode_signature(const Walk &walk, asn1::Children fields, const char *text, Field &algorithm,
                        Field &signature);

// ---- Extensions

struct Extension {
    Bytes oid;
    uint8_t critical = 0;
    Bytes value;
};

// The extensions inside their context tag, whichever it is; false where the tag holds nothing.
Status open_extensions(const Walk &walk, const asn1::Element &wrapper, bool &found,
                       asn1::Children &out);

// The elements of one extension's SEQUENCE.
Status open_extension(const Walk &walk, asn1::Children elements, Extension &out);

// The first child with a context tag, opened; nothing is found where there is none.
Status find_implicit(const Walk &walk, asn1::Children children, uint32_t type, bool &found,
                     asn1::Implicit &out);

// The first URI of a structure that begins with a DistributionPointName.
Status find_uri(const Walk &walk, const asn1::Element &point, bool &found, Bytes &out);

}  // namespace za::cert
