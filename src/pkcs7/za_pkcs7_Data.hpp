// ContentInfo { data, [0] OCTET STRING }
#pragma once

#include "pkcs7/za_pkcs7_content_info.hpp"

namespace za::pkcs7 {

struct Data {
    Octets kept;
    bool has_content = false;  // one that was decoded may be empty
    Field content;
};

// ZA_PKCS7_EncodePKCS7Data
Status encode_data(Bytes content, Octets &out);

// ZA_PKCS7_DecodePKCS7Data
Status decode_data(Bytes in, Data &out);

}  // namespace za::pkcs7
