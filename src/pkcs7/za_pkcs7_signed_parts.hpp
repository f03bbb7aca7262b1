// What signedData and signedAndEnvelopedData have in common: algorithms, certificates, lists and
// signers.
#pragma once

#include "asn1/za_asn2_builder.hpp"
#include "asn1/za_asn2_reader.hpp"
#include "pkcs7/za_pkcs7_base_signer.hpp"

namespace za::pkcs7 {

struct DigestAlgorithm {
    Field oid;       // an empty one counts and is not written
    Bytes received;  // decoded: the whole AlgorithmIdentifier, whatever its parameters are
};

struct SignedParts {
    List<DigestAlgorithm> digest_algorithms;
    List<Field> certificates;
    List<Field> crls;
    Attached<SignerInfo> signers;
};

// What the accessors of a message work on. A getter that finds nothing leaves `found` alone: then
// nothing is written for the caller, not even a length.
template <class Message>
struct Access {
    Message &message;
    int32_t index = 0;       // of a list's item, counted from 1
    bool has_octets = true;  // those that the caller's length tells of
    bool found = false;      // `value` is what was looked for
    Bytes value{};

    void find(Bytes octets) {
        value = octets;
        found = true;
    }
};

// The item with this number, counted from 1; NULL where there is none.
template <class T>
const T *item_of(const List<T> &list, int32_t number) {
    return number < 1 ? nullptr : list.item(static_cast<size_t>(number));
}

// Copies, appended.
Status add_octets(const TraceSource &trace, List<Field> &list, Bytes value);
Status add_algorithm(const TraceSource &trace, SignedParts &parts, Bytes oid);

// As many octets as the four functions below write, or some more. The signers must be encoded.
size_t written_size(const SignedParts &parts);

// digestAlgorithms SET OF AlgorithmIdentifier
void write_digest_algorithms(const SignedParts &parts, asn1::Builder &out);

// certificates [0] IMPLICIT SET OPTIONAL, crls [1] IMPLICIT SET OPTIONAL
void write_certificates(const SignedParts &parts, asn1::Builder &out);
void write_crls(const SignedParts &parts, asn1::Builder &out);

// signerInfos SET OF SignerInfo, from their kept encodings
void write_signers(const SignedParts &parts, asn1::Builder &out);

// Views of `in`, as all readers here.
Status read_digest_algorithms(const TraceSource &trace, const asn1::Element &in, SignedParts &out);

// The fields from certificates to signerInfos, behind which nothing may stand. An element of
// certificates that is there and empty is let pass, or is 121 with the line `no_certificates`.
Status read_from_certificates(const TraceSource &trace, asn1::Children &fields,
                              const char *no_certificates, SignedParts &out);

}  // namespace za::pkcs7
