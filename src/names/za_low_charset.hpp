// Conversions between GB18030 and the two Unicode forms, with GB18030 as the pivot of all of them.
#pragma once

#include "runtime/bytes.hpp"
#include "runtime/status.hpp"

namespace za::names {

// The first character that fails ends a conversion with Status::text_invalid or
// Status::text_not_representable and the line "------>iconv", whichever code met it.

// Longer inputs are Status::length. The work areas are sized from the input, so that nothing else
// limits an output.
constexpr size_t kMostChinese = 2048;
constexpr size_t kMostUnicode = 4096;

Status chinese_to_bmp(Bytes in, Octets &out);   // ZI_Chinese2BmpString
Status bmp_to_chinese(Bytes in, Octets &out);   // ZI_BmpString2Chinese
Status chinese_to_utf8(Bytes in, Octets &out);  // ZI_Chinese2UTF8String
Status utf8_to_chinese(Bytes in, Octets &out);  // ZI_UTF8String2Chinese
Status bmp_to_utf8(Bytes in, Octets &out);      // ZI_BmpString2UTF8
Status utf8_to_bmp(Bytes in, Octets &out);      // ZI_UTF82BmpString

}  // namespace za::names
