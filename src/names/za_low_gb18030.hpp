// GB18030, the form of callers' texts, through the iconv of the C library.
#pragma once

#include "names/za_low_unicode.hpp"

namespace za::names {

// Whether the C library has the converter; small installations may lack it.
bool has_gb18030();

Status read_gb18030(Bytes in, Characters &out);
Status write_gb18030(const Characters &in, Octets &out);

}  // namespace za::names
