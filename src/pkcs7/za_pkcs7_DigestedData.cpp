#include "pkcs7/za_pkcs7_DigestedData.hpp"

#include <zacert/pkcs7_digested.h>

#include "names/za_low_algorithm.hpp"
#include "names/za_low_oid.hpp"
#include "pkcs7/za_pkcs7_content_info.hpp"
#include "runtime/context.hpp"

#include <array>
#include <utility>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_DigestedData",
                                {za::pkcs7::kArrow, za::Status::invalid_item}};

}  // namespace

namespace za::pkcs7 {
namespace {

using asn1::Builder;
using asn1::Children;
using asn1::Element;
using Row = AttributeRow<DigestedData>;

void set_version(DigestedData &data, int32_t value) {
    data.fields.version = static_cast<uint32_t>(value);
    data.fields.changed();
}

Status get_version(const DigestedData &data, uint32_t &out) {
    out = data.fields.version;
    return Status::ok;
}

template <auto kMember>
Status set_field(DigestedData &data, const Row &, Bytes value) {
    ZA_PASS((data.fields.*kMember).assign(value));
    data.fields.changed();
    return Status::ok;
}

template <auto kMember>
Status get_field(DigestedData &data, const Row &, Bytes &out) {
    out = (data.fields.*kMember).bytes();
    return Status::ok;
}

// The log has no names for these.
#define FIELD(identifier, member)                                                           \
    Row {                                                                                   \
        identifier, ZA_ATTRIBUTE_UNLOGGED(identifier), set_field<member>, get_field<member> \
    }

constexpr std::array kRows{
    Row{PKCS7_DIGESTEDDATA_VERSION,
        ZA_ATTRIBUTE_TEXTS_AS(PKCS7_DIGESTEDDATA_VERSION, "PKCS7_VERSION"), nullptr, nullptr, 0,
        set_version, get_version},
    FIELD(PKCS7_DIGESTEDDATA_DIGEST_ALGO, &DigestedFields::algorithm),
    FIELD(PKCS7_DIGESTEDDATA_CONTENTTYPE, &DigestedFields::content_type),
    FIELD(PKCS7_DIGESTEDDATA_CONTENT, &DigestedFields::content),
    Row{PKCS7_DIGESTEDDATA_DIGEST, ZA_ATTRIBUTE_UNLOGGED(PKCS7_DIGESTEDDATA_DIGEST), nullptr,
        get_field<&DigestedFields::digest>},
};

#undef FIELD

constexpr AttributeTable<DigestedData> kAttributes{
    kRows,
    {"------>ZA_PKCS7_SetDigestedDataAttributeChar Err",
     "------>ZA_PKCS7_GetDigestedDataAttributeChar Err",
     "------>Set ZA_PKCS7_AttributeNotSupport Err", "------>Get ZA_PKCS7_AttributeNotSupport Err"}};
static_assert(kAttributes.ascending());

// The digest of a whole contentInfo element, header and all: RFC 2315 digests the content alone,
// but those who exchange these messages agree on this.
Status digest_content_info(const CryptSlot &hash, Bytes info, Secret &out) {
    ZA_TRY_AS("------>Digest Func is Error", run(trace, hash, info, 0, Status::digest, out));
    return Status::ok;
}

Status check_complete(const DigestedData &data) {
    if (data.fields.algorithm.empty()) {
        return trace.fail(Status::invalid_item, "------>Algorithm type is null");
    }
    if (data.fields.content_type.empty()) {
        return trace.fail(Status::invalid_item, "------>Content type is null");
    }
    return Status::ok;
}

void write_digested_data(const DigestedFields &fields, Bytes info, Bytes digest, Builder &out) {
    const auto content = [&] {
        out.integer(fields.version);
        // digestAlgorithm AlgorithmIdentifier, which has no parameters here, not even NULL
        out.sequence([&] { out.object_id(fields.algorithm.bytes()); });
        out.raw(info);
        out.octet_string(digest);
    };
    out.sequence(content, info.size());
}

Status encode_digested_data(DigestedData &data) {
    DigestedFields &fields = data.fields;
    Builder info;
    Secret digest;
    Octets message;
    ZA_PASS(check_complete(data));
    write_inner_content(fields.content_type.bytes(), fields.content.bytes(), info);
    ZA_PASS(info.status());
    if (!data.hash.installed()) {
        return trace.fail(Status::invalid_item, "------>Digest Func is null");
    }
    ZA_PASS(digest_content_info(data.hash, info.bytes(), digest));
    const auto content = [&](Builder &out) {
        write_digested_data(fields, info.bytes(), digest.bytes(), out);
        return Status::ok;
    };
    ZA_TRY(ZI_MakeContentToSequence,
           make_content_info(oid::kDigestedData, message, content, info.size()));
    fields.encoded.made(std::move(message));
    fields.digest.take(std::move(digest.value));
    return Status::ok;
}

// contentInfo ContentInfo
Status read_inner_info(const Element &in, DigestedFields &out) {
    ContentInfo info;
    ZA_TRY(ZI_MakeSequenceToContent, read_content_info(in, info));
    ZA_PASS(read_inner_content(trace, info, out.content));
    out.content_type.refer(info.type);
    return Status::ok;
}

// Views of the kept message; `info` is the contentInfo as it was received.
Status read_digested_data(const Element &in, DigestedFields &out, Element &info) {
    Children fields;
    Element algorithm;
    Element digest;
    Bytes algorithm_id;
    Bytes parameters;
    asn1::Content octets;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(in, fields));
    ZA_PASS(take_version(trace, fields, out.version));
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SEQUENCE, algorithm,
                       "------>Digest algorithm is null"));
    ZA_PASS(names::read_algorithm(algorithm, algorithm_id, parameters));
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_SEQUENCE, info, "------>Content Info is null"));
    ZA_PASS(read_inner_info(info, out));
    ZA_PASS(take_field(trace, fields, ZA_DER_ID_OCTETSTRING, digest, "------>Digest Info is null"));
    ZA_TRY(ZAsn1_ReadOctetString, asn1::read_string(digest, octets));
    if (!fields.empty()) {
        return trace.fail(Status::type);
    }
    out.algorithm.refer(algorithm_id);
    out.digest.refer(octets.octets);
    return Status::ok;
}

Status decode_digested_data(Bytes in, DigestedData &data) {
    DigestedFields fresh;
    Element message;
    Element info;
    ZA_PASS(open_message(trace, in, oid::kDigestedData, fresh.kept, message));
    ZA_PASS(read_digested_data(message, fresh, info));
    if (data.hash.installed()) {
        Secret digest;
        ZA_PASS(digest_content_info(data.hash, info.octets, digest));
        const bool same = equal(digest.bytes(), fresh.digest.bytes());
        fresh.result = same ? kDigestsEqual : kDigestsDiffer;
    }
    fresh.encoded.decoded(fresh.kept.bytes());
    data.fields = std::move(fresh);
    return Status::ok;
}

}  // namespace

const AttributeTable<DigestedData> &digested_attributes() {
    return kAttributes;
}

}  // namespace za::pkcs7

using za::Bytes;
using za::Status;
using za::pkcs7::digested_attributes;
using za::pkcs7::DigestedData;
using za::pkcs7::has_octets;

uint32_t ZA_PKCS7_CreateDigestedDataEncodeCtx(void **ctx) {
    return trace.exported([&] { return za::create_context<DigestedData>(trace, ctx); });
}

uint32_t ZA_PKCS7_CreateDigestedDataDecodeCtx(void **ctx) {
    return trace.exported([&] { return za::create_context<DigestedData>(trace, ctx); });
}

uint32_t ZA_PKCS7_SetDigestedDataAttributeInt(void *ctx, int32_t id, uint32_t value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        return digested_attributes().set_int(trace, *static_cast<DigestedData *>(ctx), id,
                                             static_cast<int32_t>(value));
    });
}

uint32_t ZA_PKCS7_GetDigestedDataAttributeInt(void *ctx, int32_t id, uint32_t *value) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, value));
        return digested_attributes().get_int(trace, *static_cast<DigestedData *>(ctx), id, value);
    });
}

uint32_t ZA_PKCS7_SetDigestedDataAttributeChar(void *ctx, int32_t id, const uint8_t *value,
                                               uint32_t len) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        if (!has_octets(value, len)) {
            return trace.fail(Status::invalid_item);
        }
        return digested_attributes().set(trace, *static_cast<DigestedData *>(ctx), id,
                                         Bytes(value, len));
    });
}

uint32_t ZA_PKCS7_GetDigestedDataAttributeChar(void *ctx, int32_t id, uint8_t *out,
                                               uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        return digested_attributes().get(trace, *static_cast<DigestedData *>(ctx), id, out, outLen);
    });
}

uint32_t ZA_PKCS7_SetDigestedDataHashFunc(void *ctx, ZA_CryptFunc func, const uint8_t *param,
                                          uint32_t paramLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        auto &data = *static_cast<DigestedData *>(ctx);
        ZA_PASS(data.hash.install(trace, func, param, paramLen));
        data.fields.encoded.forget_made();
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_EncodePKCS7DigestedData(void *ctx, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        if (ctx == nullptr) {
            return trace.fail(Status::invalid_item, "------>Digested Data is null");
        }
        ZA_PASS(trace.need(outLen));
        auto &data = *static_cast<DigestedData *>(ctx);
        if (data.fields.encoded.empty()) {
            ZA_PASS(za::pkcs7::encode_digested_data(data));
        }
        za::hand_out(data.fields.encoded.bytes(), out, outLen);
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_DecodePKCS7DigestedData(void *ctx, const uint8_t *der, uint32_t derLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        if (!has_octets(der, derLen)) {
            return trace.fail(Status::invalid_item);
        }
        return za::pkcs7::decode_digested_data(Bytes(der, derLen),
                                               *static_cast<DigestedData *>(ctx));
    });
}

uint32_t ZA_PKCS7_GetDigestedDataHashResult(void *ctx, uint32_t *result) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, result));
        *result = static_cast<DigestedData *>(ctx)->fields.result;
        return Status::ok;
    });
}

uint32_t ZA_PKCS7_DestoryDigestedDataEncodeCtx(void *ctx) {
    return trace.exported([&] { return za::destroy_context<DigestedData>(ctx); });
}

uint32_t ZA_PKCS7_DestoryDigestedDataDecodeCtx(void *ctx) {
    return trace.exported([&] { return za::destroy_context<DigestedData>(ctx); });
}
