// ContentInfo for callers who bring its content themselves.
#include <zacert/pkcs7.h>

#include "asn1/za_asn2_writer.hpp"
#include "pkcs7/za_pkcs7_content_info.hpp"
#include "pkcs7/za_pkcs7_part.hpp"

using za::Bytes;
using za::Chain;
using za::Octets;
using za::Status;
using za::asn1::Builder;
using za::asn1::Element;
using za::pkcs7::ContentInfo;

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_other", {za::pkcs7::kArrow}};

// ContentInfo, its content in the context tag with this number, or missing where there is none.
void write_any_content(Bytes type, Bytes content, uint32_t number, Builder &out) {
    constexpr uint8_t kContextTag = 0xA0;
    constexpr uint32_t kNumber = 0x1F;
    const auto identifier = static_cast<uint8_t>(kContextTag | (number & kNumber));
    const auto info = [&] {
        out.object_id(type);
        if (!content.empty()) {
            out.element(identifier, content);
        }
    };
    out.sequence(info, content.size());
}

// Octets that must be there.
Status need_octets(const uint8_t *octets, uint32_t len) {
    ZA_PASS(trace.need(octets));
    return za::pkcs7::has_octets(octets, len) ? Status::ok : trace.fail(Status::length);
}

Status make_content_to_sequence(const Anybuf *content, Bytes type, uint32_t tag, Anybuf **out) {
    return za::asn1::hand_out_built(out, [&](Builder &info) {
        write_any_content(type, content == nullptr ? Bytes{} : za::bytes_of(*content), tag, info);
        return Status::ok;
    });
}

Status make_sequence_to_content(const Anybuf &in, Anybuf **type, Anybuf **content) {
    ContentInfo info;
    Chain type_record;
    Chain content_record;
    // By its first octet: a record may say that it is something else.
    ZA_PASS(read_content_info(Element(za::bytes_of(in)), info));
    ZA_PASS(za::asn1::to_record({info.type, za::asn1::kObjectId}, type_record));
    if (info.has_content) {
        ZA_PASS(za::asn1::to_record({info.content.octets, info.content.type}, content_record));
    }
    *type = type_record.release();
    *content = content_record.release();
    return Status::ok;
}

}  // namespace

uint32_t ZI_MakeContentToSequence(Anybuf *content, const uint8_t *oid, uint32_t oidLen,
                                  Anybuf **out, uint32_t tag) {
    return trace.exported([&] {
        ZA_PASS(trace.need(out));
        ZA_PASS(need_octets(oid, oidLen));
        return make_content_to_sequence(content, Bytes(oid, oidLen), tag, out);
    });
}

uint32_t ZI_MakeSequenceToContent(Anybuf *contentInfo, Anybuf **oid, Anybuf **content) {
    return trace.exported([&] {
        ZA_PASS(trace.need(contentInfo, oid, content));
        return make_sequence_to_content(*contentInfo, oid, content);
    });
}

uint32_t ZA_PKCS7_EncodePKCS7DerTypeData(const uint8_t *content, uint32_t contentLen,
                                         const uint8_t *oid, uint32_t oidLen, uint8_t *out,
                                         uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(outLen));
        ZA_PASS(need_octets(oid, oidLen));
        ZA_PASS(contentLen > 0 ? need_octets(content, contentLen) : Status::ok);
        Builder info;
        Octets der;
        write_any_content(Bytes(oid, oidLen), Bytes(content, contentLen), 0, info);
        ZA_TRY(ZI_MakeContentToSequence, info.finish(der));
        za::hand_out(der.bytes(), out, outLen);
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_DecodePKCS7DerTypeData(const uint8_t *der, uint32_t derLen, uint8_t *oid,
                                         uint32_t *oidLen, uint8_t *content, uint32_t *contentLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(oidLen, contentLen));
        ZA_PASS(need_octets(der, derLen));
        Octets kept;
        ContentInfo info;
        ZA_PASS(za::pkcs7::take_der(trace, Bytes(der, derLen), kept));
        ZA_TRY(ZI_MakeSequenceToContent, read_content_info(Element(kept.bytes()), info));
        za::hand_out(info.type, oid, oidLen);
        za::hand_out(info.content.octets, content, contentLen);
        return Status::ok;
    });
}
