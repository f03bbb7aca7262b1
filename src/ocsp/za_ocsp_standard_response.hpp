// OCSPResponse ::= SEQUENCE { responseStatus ENUMERATED,
//     responseBytes [0] EXPLICIT SEQUENCE { responseType OBJECT IDENTIFIER, response OCTET STRING }
//         OPTIONAL }
#pragma once

#include "ocsp/za_ocsp_standard.hpp"

namespace za::ocsp {

struct Response {
    Field status;  // content octets
    Field type;
    bool has_body = false;
    Owned<ZA_OCSP_BASICRESPONSE> basic;
    names::NameList name;
    Field public_key;
    Anybuf *last_entry = nullptr;  // of those in the record, which setters append to
    Field parameter;               // of the signature's algorithm, never written
    CryptSlot hash;
    CryptSlot sign;
    Field encoded;
};

// The line of the setter and the getter of numbers.
constexpr const char *kInvalidNumber = "------------>The OCSPAttribute is invalid";

const AttributeTable<Response> &response_attributes();

Status write(Response &response, asn1::Builder &out);
Status read(Bytes in, Response &out);

}  // namespace za::ocsp
