// PEM (RFC 7468): blocks of Base64 between lines that carry a label.
#pragma once

#include "base/octets.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

struct PemBlock {
    std::string label;
    Octets octets;
    std::string problem;  // why there are no octets; else empty
};

// All blocks in order. Text around them is ignored; lines end in LF or CR LF.
std::vector<PemBlock> pem_blocks(std::string_view text);

// Strict: the alphabet of RFC 4648 with padding, spare bits zero; blanks and line ends are skipped.
std::optional<Octets> base64_octets(std::string_view text);

}  // namespace tool
