// GeneralName and GeneralNames (RFC 5280, 4.2.1.6).
#pragma once

#include "asn1/za_asn2_reader.hpp"
#include "names/za_low_name.hpp"
#include "runtime/anybuf.hpp"

#include <array>

namespace za::names {

constexpr size_t kNumForms = 8;

constexpr uint32_t kOtherName = 0;
constexpr uint32_t kRfc822Name = 1;
constexpr uint32_t kDnsName = 2;
constexpr uint32_t kDirectoryName = 4;
constexpr uint32_t kUri = 6;
constexpr uint32_t kIpAddress = 7;

// What a GeneralNames holds, as views of it. A form whose flag is set before decoding counts as
// found already and is passed over.
struct GeneralNames {
    std::array<uint8_t, kNumForms> present{};
    Bytes rfc822_name;
    Bytes dns_name;
    Bytes uri;
    Bytes ip_address;
    NameList directory;
};

// ZI_DecodeGeneralNameS. A failure changes nothing; `found` tells whether a form was stored.
Status decode_general_names(const asn1::Element &in, GeneralNames &out, bool &found);

// Both set the string types of the directory name's entries besides.
Status encode_general_name(ZI_GeneralName &record, Chain &out);   // ZI_EncodeGeneralName
Status encode_general_names(ZI_GeneralName &record, Chain &out);  // ZI_EncodeGeneralNameS

}  // namespace za::names
