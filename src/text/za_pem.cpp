#include "text/za_pem.hpp"

#include <zacert.h>

#include "runtime/trace.hpp"
#include "text/za_pem_base64.hpp"

#include <algorithm>
#include <string_view>

namespace za::text {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr size_t kLineOctets = 48;  // 64 characters

uint64_t line_size(Bytes line) {
    return line.empty() ? 0 : uint64_t{line.size()} + kLineEnd.size();
}

uint64_t pem_size(Bytes der, const PemFrame &frame) {
    if (der.empty()) {
        return 0;
    }
    const uint64_t lines = (uint64_t{der.size()} + kLineOctets - 1) / kLineOctets;
    return line_size(frame.header) + base64_size(der.size()) + lines * kLineEnd.size() +
           line_size(frame.footer);
}

uint8_t *put_line(uint8_t *to, Bytes line) {
    return line.empty() ? to : put(put(to, line), bytes_of(kLineEnd));
}

uint8_t *put_pem(uint8_t *to, Bytes der, const PemFrame &frame) {
    to = put_line(to, frame.header);
    for (Bytes rest = der; !rest.empty();) {
        const Bytes line = rest.first(std::min(rest.size(), kLineOctets));
        to = put(base64_encode(line, to), bytes_of(kLineEnd));
        rest = rest.subspan(line.size());
    }
    return put_line(to, frame.footer);
}

// Cuts off all before the next dash; false: there is none.
bool skip_to_dash(Bytes &text) {
    const size_t dash = text_of(text).find('-');
    const bool found = dash != std::string_view::npos;
    text = text.subspan(found ? dash : text.size());
    return found;
}

// Cuts off the dashes that stand at one end of a header.
Bytes behind_dashes(Bytes text) {
    constexpr size_t kDashes = 5;
    return text.subspan(std::min(text.size(), kDashes));
}

// What stands between header and footer, or the whole text when there is no dash in it. The label
// is not looked at: it ends at its first dash, even one of its own.
Status body_of(Bytes text, Bytes &out) {
    Bytes rest = text;
    if (!skip_to_dash(rest)) {
        out = text;
        return Status::ok;
    }
    rest = behind_dashes(rest);
    if (!skip_to_dash(rest)) {
        return Status::text_invalid;
    }
    const Bytes body = behind_dashes(rest);
    rest = body;
    if (!skip_to_dash(rest)) {
        return Status::text_invalid;
    }
    out = body.first(body.size() - rest.size());
    return Status::ok;
}

}  // namespace

Status der_to_pem(Bytes der, const PemFrame &frame, Octets &out) {
    Octets pem;
    ZA_PASS(pem.allocate(pem_size(der, frame)));
    if (!pem.empty()) {
        put_pem(pem.data(), der, frame);
    }
    out = std::move(pem);
    return Status::ok;
}

Status pem_to_der(Bytes text, Octets &out) {
    Bytes body;
    ZA_PASS(body_of(text, body));
    Octets der;
    ZA_PASS(der.allocate(body.size() / 4 * 3));
    der.truncate(static_cast<size_t>(base64_decode(body, der.data()) - der.data()));
    out = std::move(der);
    return Status::ok;
}

}  // namespace za::text

using za::Bytes;
using za::text::kFailure;

namespace {

uint8_t *octets_at(char *text) {
    return reinterpret_cast<uint8_t *>(text);
}

Bytes characters(const char *text) {
    return za::bytes_of(std::string_view(text));
}

}  // namespace

// These functions write where the caller said and need no memory: what they write is often a key,
// and a work area would have to be wiped.

int32_t base64_encode(const uint8_t *in, uint32_t inLen, char *out) {
    if (out == nullptr || (in == nullptr && inLen > 0)) {
        return kFailure;
    }
    *za::text::base64_encode({in, inLen}, octets_at(out)) = 0;
    return 0;
}

int32_t base64_decode(const char *in, uint8_t *out, uint32_t *outLen) {
    if (in == nullptr || out == nullptr || outLen == nullptr) {
        return kFailure;
    }
    const Bytes text = characters(in);
    if (!za::fits_u32(uint64_t{text.size()} / 4 * 3)) {
        return kFailure;
    }
    const uint8_t *end = za::text::base64_decode(text, out);
    *outLen = za::to_u32(static_cast<uint64_t>(end - out));
    return 0;
}

int32_t DER2PEM_data_format(const uint8_t *der, uint32_t derLen, char *out, uint32_t *outLen,
                            const char *header, const char *footer) {
    if (outLen == nullptr) {
        return kFailure;
    }
    if (derLen == 0) {
        *outLen = 0;
        return 0;
    }
    if (der == nullptr || header == nullptr || footer == nullptr) {
        return kFailure;
    }
    const za::text::PemFrame frame{characters(header), characters(footer)};
    const uint64_t size = za::text::pem_size({der, derLen}, frame);
    if (!za::fits_u32(size)) {
        return kFailure;
    }
    if (out != nullptr) {
        *za::text::put_pem(octets_at(out), {der, derLen}, frame) = 0;
    }
    *outLen = za::to_u32(size);
    return 0;
}

int32_t PEM2DER_data_format(const char *text, uint32_t textLen, uint8_t *out, uint32_t *derLen) {
    if (derLen == nullptr || (text == nullptr && textLen > 0)) {
        return kFailure;
    }
    Bytes body;
    const Bytes whole = za::bytes_of(std::string_view(text, textLen));
    if (za::text::body_of(whole, body) != za::Status::ok) {
        return kFailure;
    }
    const uint64_t size = out == nullptr
                              ? za::text::base64_decoded_size(body)
                              : static_cast<uint64_t>(za::text::base64_decode(body, out) - out);
    *derLen = za::to_u32(size);
    return 0;
}
