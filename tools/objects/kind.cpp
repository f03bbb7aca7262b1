#include "objects/kind.hpp"

#include <zacert.h>

#include "base/der.hpp"
#include "base/elements.hpp"
#include "base/times.hpp"

#include <algorithm>
#include <array>

namespace tool {

namespace {

struct Label {
    std::string_view text;
    ObjectKind kind;
};

constexpr auto kLabels = std::to_array<Label>({
    {"CERTIFICATE", ObjectKind::certificate},
    {"X509 CERTIFICATE", ObjectKind::certificate},
    {"TRUSTED CERTIFICATE", ObjectKind::certificate},
    {"X509 CRL", ObjectKind::crl},
    {"CERTIFICATE REQUEST", ObjectKind::request},
    {"NEW CERTIFICATE REQUEST", ObjectKind::request},
    {"PKCS7", ObjectKind::message},
    {"CMS", ObjectKind::message},
    {"OCSP REQUEST", ObjectKind::ocsp_request},
    {"OCSP RESPONSE", ObjectKind::ocsp_response},
});

// The part of the SEQUENCE's content that is there; nothing where it is no SEQUENCE.
View inside(View sequence) {
    const std::optional<Header> header = header_of(sequence);
    if (!header || header->identifier != ZA_DER_ID_SEQUENCE) {
        return {};
    }
    const View content = sequence.subspan(header->length);
    return content.first(std::min(content.size(), header->content_length));
}

// The same where the length may be indefinite.
View inside_any_length(View sequence) {
    return has_indefinite_length(sequence) ? sequence.subspan(2) : inside(sequence);
}

// PFX ::= SEQUENCE { version INTEGER (3), authSafe ContentInfo, ... }
bool is_pkcs12(View content) {
    constexpr auto kBeginning =
        std::to_array<uint8_t>({ZA_DER_ID_INTEGER, 1, 3, ZA_DER_ID_SEQUENCE});
    return content.size() > kBeginning.size() &&
           std::equal(kBeginning.begin(), kBeginning.end(), content.begin());
}

// Of the first elements; 0 stands for those that are not there.
using Identifiers = std::array<uint8_t, 4>;

Identifiers first_identifiers(View elements) {
    Identifiers identifiers{};
    for (uint8_t &identifier : identifiers) {
        const std::optional<Header> header = header_of(elements);
        if (!header) {
            break;
        }
        identifier = header->identifier;
        const View rest = elements.subspan(header->length);
        elements = rest.subspan(std::min(rest.size(), header->content_length));
    }
    return identifiers;
}

bool is_complete(View element) {
    const std::optional<Header> header = header_of(element);
    return header && header->content_length <= element.size() - header->length;
}

// Behind an INTEGER, which is a version or the serial number of a certificate of version 1.
ObjectKind kind_behind_integer(const Identifiers &identifiers, View der) {
    if (identifiers[1] != ZA_DER_ID_SEQUENCE || identifiers[2] != ZA_DER_ID_SEQUENCE) {
        return ObjectKind::unknown;
    }
    const uint8_t last = identifiers[3];
    if (is_time(last)) {
        return ObjectKind::crl;
    }
    // Some write no attributes at all where there are none.
    if (last == constructed(0) || (last == 0 && is_complete(der))) {
        return ObjectKind::request;
    }
    return last == ZA_DER_ID_SEQUENCE ? ObjectKind::certificate : ObjectKind::unknown;
}

// A list of SEQUENCEs: an AlgorithmIdentifier, which CRLs have in this place, begins with an object
// identifier.
bool is_request_list(View element) {
    const View entry = inside(element);
    return !entry.empty() && entry.front() == ZA_DER_ID_SEQUENCE;
}

}  // namespace

std::string_view noun(ObjectKind kind) {
    constexpr auto kNouns = std::to_array<std::string_view>(
        {"a certificate, CRL, request, PKCS#7 message or OCSP message", "a certificate", "a CRL",
         "a request", "a PKCS#7 message", "an OCSP request", "an OCSP response", "a PKCS#12 file"});
    return kNouns[static_cast<size_t>(kind)];
}

std::string pkcs12_instead_of(std::string_view expected) {
    return "expected " + std::string(expected) +
           ", found a PKCS#12 file: \"zacert pfx show\" shows it, \"zacert pfx open\" takes out "
           "what is inside";
}

ObjectKind kind_of_label(std::string_view label) {
    const auto row = std::find_if(kLabels.begin(), kLabels.end(),
                                  [label](const Label &entry) { return entry.text == label; });
    return row == kLabels.end() ? ObjectKind::unknown : row->kind;
}

ObjectKind kind_of_der(View der) {
    // ContentInfo ::= SEQUENCE { contentType OBJECT IDENTIFIER, content [0] OPTIONAL }
    const View content = inside_any_length(der);
    const uint8_t first = content.empty() ? uint8_t{0} : content.front();
    if (first == ZA_DER_ID_OBJECTID) {
        return ObjectKind::message;
    }
    // OCSPResponse ::= SEQUENCE { responseStatus ENUMERATED, responseBytes [0] OPTIONAL }
    if (first == ZA_DER_ID_ENUMERATED) {
        return ObjectKind::ocsp_response;
    }
    if (is_pkcs12(content)) {
        return ObjectKind::pkcs12;
    }
    // TBSCertificate ::= SEQUENCE { version [0] DEFAULT v1, serialNumber INTEGER, signature,
    //     issuer, validity SEQUENCE, ... }
    // TBSCertList ::= SEQUENCE { version INTEGER OPTIONAL, signature, issuer, thisUpdate, ... }
    // CertificationRequestInfo ::= SEQUENCE { version INTEGER, subject, subjectPKInfo,
    //     attributes [0] }
    // TBSRequest ::= SEQUENCE { version [0] DEFAULT v1, requestorName [1] OPTIONAL,
    //     requestList SEQUENCE OF Request, requestExtensions [2] OPTIONAL }
    const View elements = inside(inside(der));
    const Identifiers identifiers = first_identifiers(elements);
    switch (identifiers[0]) {
        case constructed(0):
            return identifiers[1] == ZA_DER_ID_SEQUENCE || identifiers[1] == constructed(1)
                       ? ObjectKind::ocsp_request
                       : ObjectKind::certificate;
        case constructed(1):
            return ObjectKind::ocsp_request;
        case ZA_DER_ID_INTEGER:
            return kind_behind_integer(identifiers, der);
        case ZA_DER_ID_SEQUENCE:
            if (is_request_list(elements)) {
                return ObjectKind::ocsp_request;
            }
            return identifiers[1] == ZA_DER_ID_SEQUENCE && is_time(identifiers[2])
                       ? ObjectKind::crl
                       : ObjectKind::unknown;
        default:
            return ObjectKind::unknown;
    }
}

}  // namespace tool
