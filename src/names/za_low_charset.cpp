#include "names/za_low_charset.hpp"

#include "names/za_low_gb18030.hpp"
#include "names/za_low_unicode.hpp"
#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_low"};

}  // namespace

namespace za::names {
namespace {

using Reader = Status (*)(Bytes, Characters &);
using Writer = Status (*)(const Characters &, Octets &);

Status convert(Bytes in, Reader read, Writer write, Octets &out) {
    Characters text;
    ZA_PASS(read(in, text));
    Octets written;
    ZA_PASS(write(text, written));
    if (text.invalid()) {
        return trace.fail(Status::text_invalid, "------>iconv");
    }
    out.swap(written);
    return Status::ok;
}

Status check_chinese(Bytes in) {
    return in.size() > kMostChinese ? trace.fail(Status::length, "------>inDataLen>2048")
                                    : Status::ok;
}

Status check_unicode(Bytes in) {
    return in.size() > kMostUnicode ? trace.fail(Status::length, "------>inDataLen>4096")
                                    : Status::ok;
}

}  // namespace

Status chinese_to_bmp(Bytes in, Octets &out) {
    ZA_PASS(check_chinese(in));
    return convert(in, read_gb18030, write_ucs2, out);
}

Status bmp_to_chinese(Bytes in, Octets &out) {
    ZA_PASS(check_unicode(in));
    return convert(in, read_ucs2, write_gb18030, out);
}

Status chinese_to_utf8(Bytes in, Octets &out) {
    ZA_PASS(check_chinese(in));
    return convert(in, read_gb18030, write_utf8, out);
}

Status utf8_to_chinese(Bytes in, Octets &out) {
    ZA_PASS(check_unicode(in));
    return convert(in, read_utf8, write_gb18030, out);
}

// Both of the following go through GB18030 in full: some characters of the private use area come
// out as the ones that GB18030 has for them.
Status bmp_to_utf8(Bytes in, Octets &out) {
    ZA_PASS(check_unicode(in));
    Octets chinese;
    ZA_PASS(convert(in, read_ucs2, write_gb18030, chinese));
    return convert(chinese.bytes(), read_gb18030, write_utf8, out);
}

Status utf8_to_bmp(Bytes in, Octets &out) {
    ZA_PASS(check_unicode(in));
    Octets chinese;
    ZA_PASS(convert(in, read_utf8, write_gb18030, chinese));
    return convert(chinese.bytes(), read_gb18030, write_ucs2, out);
}

namespace {

using Conversion = Status (*)(Bytes, Octets &);

Status convert_for_caller(Conversion conversion, const uint8_t *in, int32_t in_len, uint8_t *out,
                          uint32_t *out_len) {
    ZA_PASS(trace.need(out_len));
    Octets text;
    if (in_len > 0) {
        ZA_PASS(trace.need(in));
        ZA_PASS(conversion({in, static_cast<size_t>(in_len)}, text));
    }
    hand_out(text.bytes(), out, out_len);
    return Status::ok;
}

}  // namespace
}  // namespace za::names

using namespace za::names;

uint32_t ZI_Chinese2BmpString(const uint8_t *in, int32_t inLen, uint8_t *out, uint32_t *outLen) {
    return trace.exported(
        [&] { return convert_for_caller(chinese_to_bmp, in, inLen, out, outLen); });
}

uint32_t ZI_BmpString2Chinese(const uint8_t *in, int32_t inLen, uint8_t *out, uint32_t *outLen) {
    return trace.exported(
        [&] { return convert_for_caller(bmp_to_chinese, in, inLen, out, outLen); });
}

uint32_t ZI_Chinese2UTF8String(const uint8_t *in, int32_t inLen, uint8_t *out, uint32_t *outLen) {
    return trace.exported(
        [&] { return convert_for_caller(chinese_to_utf8, in, inLen, out, outLen); });
}

uint32_t ZI_UTF8String2Chinese(const uint8_t *in, int32_t inLen, uint8_t *out, uint32_t *outLen) {
    return trace.exported(
        [&] { return convert_for_caller(utf8_to_chinese, in, inLen, out, outLen); });
}

uint32_t ZI_BmpString2UTF8(const uint8_t *in, int32_t inLen, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] { return convert_for_caller(bmp_to_utf8, in, inLen, out, outLen); });
}

uint32_t ZI_UTF82BmpString(const uint8_t *in, int32_t inLen, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] { return convert_for_caller(utf8_to_bmp, in, inLen, out, outLen); });
}
