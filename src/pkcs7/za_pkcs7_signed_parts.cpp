#include "pkcs7/za_pkcs7_signed_parts.hpp"

#include "names/za_low_algorithm.hpp"
#include "pkcs7/za_pkcs7_content_info.hpp"

#include <utility>

namespace za::pkcs7 {

using asn1::Builder;
using asn1::Children;
using asn1::Element;

namespace {

constexpr uint8_t kCertificates = 0xA0;
constexpr uint8_t kCrls = 0xA1;

// The most that a header takes.
constexpr size_t kHeader = 1 + asn1::kMostLengthOctets;

size_t total(const List<Field> &list) {
    size_t size = 0;
    for (const Field &item : list) {
        size += item.bytes().size();
    }
    return size;
}

size_t total(const Attached<SignerInfo> &signers) {
    size_t size = 0;
    for (const SignerInfo *signer : signers) {
        size += signer->fields.encoded.bytes().size();
    }
    return size;
}

size_t total(const List<DigestAlgorithm> &list) {
    constexpr size_t kAround = 2 * kHeader + 2;
    size_t size = 0;
    for (const DigestAlgorithm &algorithm : list) {
        size += algorithm.received.size() + algorithm.oid.bytes().size() + kAround;
    }
    return size;
}

void write_each(uint8_t identifier, const List<Field> &list, Builder &out) {
    if (list.empty()) {
        return;
    }
    const auto items = [&] {
        for (const Field &item : list) {
            out.raw(item.bytes());
        }
    };
    out.wrapped(identifier, items, total(list));
}

}  // namespace

Status add_octets(const TraceSource &trace, List<Field> &list, Bytes value) {
    Field item;
    ZA_PASS(item.assign(value));
    return list.append(trace, std::move(item));
}

Status add_algorithm(const TraceSource &trace, SignedParts &parts, Bytes oid) {
    DigestAlgorithm algorithm;
    ZA_PASS(algorithm.oid.assign(oid));
    return parts.digest_algorithms.append(trace, std::move(algorithm));
}

size_t written_size(const SignedParts &parts) {
    constexpr size_t kSets = 4;
    return total(parts.digest_algorithms) + total(parts.certificates) + total(parts.crls) +
           total(parts.signers) + kSets * kHeader;
}

void write_digest_algorithms(const SignedParts &parts, Builder &out) {
    out.wrapped(ZA_DER_ID_SET, [&] {
        for (const DigestAlgorithm &algorithm : parts.digest_algorithms) {
            if (!algorithm.received.empty()) {
                out.raw(algorithm.received);
            } else if (!algorithm.oid.empty()) {
                names::write_algorithm(algorithm.oid.bytes(), out);
            }
        }
    });
}

void write_certificates(const SignedParts &parts, Builder &out) {
    write_each(kCertificates, parts.certificates, out);
}

void write_crls(const SignedParts &parts, Builder &out) {
    write_each(kCrls, parts.crls, out);
}

void write_signers(const SignedParts &parts, Builder &out) {
    const auto signers = [&] {
        for (const SignerInfo *signer : parts.signers) {
            out.raw(signer->fields.encoded.bytes());
        }
    };
    out.wrapped(ZA_DER_ID_SET, signers, total(parts.signers));
}

Status read_digest_algorithms(const TraceSource &trace, const Element &in, SignedParts &out) {
    Children algorithms;
    ZA_PASS(read_elements(trace, in, algorithms));
    for (Element algorithm; algorithms.next(algorithm);) {
        Bytes oid;
        Bytes parameters;
        DigestAlgorithm found;
        ZA_PASS(names::read_algorithm(algorithm, oid, parameters));
        found.oid.refer(oid);
        found.received = algorithm.octets;
        ZA_PASS(out.digest_algorithms.append(trace, std::move(found)));
    }
    return Status::ok;
}

namespace {

// IMPLICIT SET: its elements one by one, whatever they are.
Status read_each(const TraceSource &trace, const Element &in, List<Field> &out) {
    Children items;
    ZA_PASS(read_elements(trace, in, items));
    for (Element item; items.next(item);) {
        Field found;
        found.refer(item.octets);
        ZA_PASS(out.append(trace, std::move(found)));
    }
    return Status::ok;
}

Status read_signers(const TraceSource &trace, const Element &in, SignedParts &out) {
    Children signers;
    ZA_PASS(read_elements(trace, in, signers));
    for (Element element; signers.next(element);) {
        SignerInfo *signer = nullptr;
        ZA_PASS(out.signers.add(trace, signer));
        ZA_TRY(ZA_PKCS7_DecodeSignerInfo, decode_signer_info(element, *signer));
    }
    return Status::ok;
}

}  // namespace

Status read_from_certificates(const TraceSource &trace, Children &fields,
                              const char *no_certificates, SignedParts &out) {
    Element field;
    // certificates [0] IMPLICIT SET OPTIONAL
    if (take_optional(fields, kCertificates, field)) {
        ZA_PASS(read_each(trace, field, out.certificates));
        if (out.certificates.empty() && no_certificates != nullptr) {
            return trace.fail(Status::invalid_item, no_certificates);
        }
    }
    // crls [1] IMPLICIT SET OPTIONAL
    if (take_optional(fields, kCrls, field)) {
        ZA_PASS(read_each(trace, field, out.crls));
    }
    // signerInfos SET OF SignerInfo
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SET, field));
    ZA_PASS(read_signers(trace, field, out));
    return fields.empty() ? Status::ok : trace.fail(Status::type);
}

}  // namespace za::pkcs7
