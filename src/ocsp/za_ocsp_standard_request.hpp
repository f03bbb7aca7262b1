// OCSPRequest ::= SEQUENCE { tbsRequest TBSRequest,
//     optionalSignature [0] EXPLICIT Signature OPTIONAL }
//     TBSRequest ::= SEQUENCE { version [0] EXPLICIT INTEGER OPTIONAL,
//         requestorName [1] EXPLICIT Name OPTIONAL, requestList SEQUENCE OF Request,
//         requestExtensions [2] EXPLICIT Extensions OPTIONAL }
#pragma once

#include "ocsp/za_ocsp_standard.hpp"

namespace za::ocsp {

struct Request {
    bool has_version = false;
    int32_t version = 0;
    names::NameList requestor;
    Field requestor_der;
    List<Field> entries;
    Owned<ZA_OCSP_EXTENSION> extensions;
    bool has_cutoff = false;  // any number is a time
    Field algorithm;
    Field parameter;  // never written
    Field certificates;
    CryptSlot sign;
    Field signed_octets;  // TBSRequest, as it was signed or decoded
    Field signature;
    Field encoded;
};

const AttributeTable<Request> &request_attributes();

Status write(Request &request, asn1::Builder &out);
Status read(Bytes in, Request &out);

}  // namespace za::ocsp
