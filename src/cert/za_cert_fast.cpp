#include "cert/za_cert_fast.hpp"

#include "cert/za_cert_part_decode.hpp"
#include "keys/za_ext_curves.hpp"
#include "keys/za_ext_public_key.hpp"
#include "names/za_low_oid_catalogue.hpp"
#include "runtime/trace.hpp"

#include <array>

// Programs are linked against these layouts.
static_assert(sizeof(ZA_CERTINFO) == 4380 && offsetof(ZA_CERTINFO, publicKey) == 1168 &&
              offsetof(ZA_CERTINFO, keyAlgOid) == 4248);
static_assert(sizeof(ZA_ECCKEYBLOCK) == 412);

namespace {

constexpr za::TraceSource trace{".\\src\\za_cert"};

}  // namespace

namespace za::cert {
namespace {

using asn1::Children;
using asn1::Element;

constexpr Walk kWalk{trace, Status::certificate_not_end};

// What a mode selects.
constexpr uint32_t kSerial = 1;
constexpr uint32_t kIssuerDer = 2;
constexpr uint32_t kIssuerName = 4;
constexpr uint32_t kValidity = 8;
constexpr uint32_t kSubjectName = 16;
constexpr uint32_t kKey = 32;

constexpr std::array<uint32_t, 8> kSelections{
    0,
    kValidity | kKey,
    kIssuerName | kValidity | kKey,
    kSerial | kIssuerName | kValidity | kKey,
    kValidity | kSubjectName | kKey,
    kSerial | kIssuerDer | kIssuerName | kValidity | kKey,
    kValidity,
    kKey,
};

struct Parse {
    uint32_t selection;
    ZA_CERTINFO &info;
    bool ended = false;  // early, and well

    bool selects(uint32_t part) const { return (selection & part) != 0; }
};

// What is longer than its field is refused and not cut.
Status copy(Bytes value, std::span<uint8_t> field, uint32_t &len) {
    if (value.size() > field.size()) {
        return trace.fail(Status::length);
    }
    put(field.data(), value);
    len = to_u32(value.size());
    return Status::ok;
}

Status parse_serial(Parse &parse, const Element &in) {
    if (!parse.selects(kSerial)) {
        return Status::ok;
    }
    asn1::Content serial;
    ZA_TRY(ZAsn1_ReadIntegerArray, asn1::read_integer_array(in, serial));
    return copy(serial.octets, parse.info.serial, parse.info.serialLen);
}

Status skip(Parse &, const Element &) {
    return Status::ok;
}

// A name without a common name ends the whole parse.
Status parse_common_name(Parse &parse, const Element &in, std::span<uint8_t> field) {
    Name name;
    ZA_PASS(decode_name(kWalk, in, name));
    const ZI_NameEntry *entry = name.entries.first();
    while (entry != nullptr && entry->attrKind != names::kCommonName) {
        entry = entry->nextEntry;
    }
    parse.ended = entry == nullptr;
    if (parse.ended) {
        return Status::ok;
    }
    uint32_t len = 0;
    ZA_PASS(copy(bytes_of(entry->attrValue), field.first(field.size() - 1), len));
    field[len] = 0;
    return Status::ok;
}

Status parse_issuer(Parse &parse, const Element &in) {
    if (parse.selects(kIssuerDer)) {
        ZA_PASS(copy(in.octets, parse.info.issuerDer, parse.info.issuerDerLen));
    }
    return parse.selects(kIssuerName) ? parse_common_name(parse, in, parse.info.issuerCN)
                                      : Status::ok;
}

Status parse_time(Children &times, int32_t &out) {
    Element in;
    Time time;
    ZA_PASS(take_field(kWalk, times, in));
    ZA_PASS(decode_time(kWalk, in, time));
    return time.utc(out);
}

// Validity ::= SEQUENCE { notBefore Time, notAfter Time }
Status parse_validity(Parse &parse, const Element &in) {
    if (!parse.selects(kValidity)) {
        return Status::ok;
    }
    Children times;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(in, times));
    ZA_PASS(parse_time(times, parse.info.notBefore));
    return parse_time(times, parse.info.notAfter);
}

Status parse_subject(Parse &parse, const Element &in) {
    return parse.selects(kSubjectName) ? parse_common_name(parse, in, parse.info.subjectCN)
                                       : Status::ok;
}

// The lengths of RSA keys of 1024 and 2048 bits tell them whatever the algorithm says.
bool is_elliptic_curve(const keys::PublicKeyInfo &key) {
    constexpr size_t kRsa1024 = 140;
    constexpr size_t kRsa2048 = 270;
    if (key.raw_bits.size() == kRsa1024 || key.raw_bits.size() == kRsa2048) {
        return false;
    }
    ZACERT_EccCurve curve;
    return equal(key.algorithm, oid::kEcPublicKey) || keys::find_curve(key.algorithm, curve);
}

Status copy_ecc_key(const keys::PublicKeyInfo &key, ZA_CERTINFO &info) {
    constexpr uint32_t kShortestExplicit = 30;
    ZA_ECCKEYBLOCK block{};
    ZA_PASS(copy(key.raw_bits, block.bits, block.bitsLen));
    ZA_PASS(copy(key.parameters, block.param, block.paramLen));
    block.kind = block.paramLen < kShortestExplicit ? kNamedCurve : kExplicitCurve;
    const auto *octets = reinterpret_cast<const uint8_t *>(&block);
    return copy(Bytes(octets, sizeof block), info.publicKey, info.publicKeyLen);
}

Status parse_key(Parse &parse, const Element &in) {
    if (!parse.selects(kKey)) {
        return Status::ok;
    }
    keys::PublicKeyInfo key;
    ZA_TRY(ZI_DecodePubKey, keys::decode_public_key_info(in, key));
    if (is_elliptic_curve(key)) {
        ZA_PASS(copy_ecc_key(key, parse.info));
    } else {
        ZA_PASS(copy(key.raw_bits, parse.info.publicKey, parse.info.publicKeyLen));
    }
    return copy(key.algorithm, parse.info.keyAlgOid, parse.info.keyAlgOidLen);
}

// The fields of a TBSCertificate behind its version, of which the second is the algorithm.
constexpr std::array kFields{parse_serial,   skip,          parse_issuer,
                             parse_validity, parse_subject, parse_key};

}  // namespace

Status parse_tbs_fast(uint32_t mode, const Element &tbs, ZA_CERTINFO &info) {
    Children fields;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(tbs, fields));
    if (fields.empty()) {
        return Status::ok;
    }
    Element field;
    Children behind_version = fields;
    if (behind_version.next(field) && field.type == asn1::constructed(0)) {
        fields = behind_version;
    }
    Parse parse{mode < kSelections.size() ? kSelections[mode] : 0, info};
    for (const auto &parse_field : kFields) {
        ZA_PASS(take_field(kWalk, fields, field));
        ZA_PASS(parse_field(parse, field));
        if (parse.ended) {
            break;
        }
    }
    return Status::ok;
}

namespace {

Status parse_certificate(uint32_t mode, Bytes in, ZA_CERTINFO &info) {
    trace.note("======>ZACert_DecodeCert_ForSpead Begin");
    asn1::Header header;
    ZA_TRY(ZAsn1_GetCertLength, asn1::read_header(in, header));
    if (header.total > in.size()) {
        return trace.fail(Status::length_not_equal);
    }
    Children fields;
    Element tbs;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(Element(in.first(header.total)), fields));
    if (fields.next(tbs)) {
        ZA_TRY(ZI_Cert_DecodeTBS_ForSpead, parse_tbs_fast(mode, tbs, info));
    }
    trace.note("======>ZACert_DecodeCert_ForSpead End");
    return Status::ok;
}

}  // namespace

Status parse_fast(uint32_t mode, Bytes in, ZA_CERTINFO &info) {
    ZA_TRY_AS("------>ZACert_DecodeCert_ForSpead", parse_certificate(mode, in, info));
    ZAPR_Display_memory();
    return Status::ok;
}

}  // namespace za::cert

using za::Status;

uint32_t UserCertParse(uint32_t mode, const uint8_t *der, int32_t derLen, ZA_CERTINFO *info) {
    return trace.exported([&] {
        if (derLen < 1 || der == nullptr) {
            return trace.fail(Status::general, "------>iDerCertLen<=0 || pDerCert==NUL");
        }
        if (info == nullptr) {
            return trace.fail(Status::general, "------>pStCertInfo==NULLL");
        }
        return za::cert::parse_fast(mode, {der, static_cast<size_t>(derLen)}, *info);
    });
}

uint32_t ZI_Cert_DecodeTBS_ForSpead(uint32_t mode, ZA_CERTINFO *info, void *scratchCtx,
                                    Anybuf *tbs) {
    return trace.exported([&] {
        ZA_PASS(trace.need(info, scratchCtx, tbs));
        return za::cert::parse_tbs_fast(mode, za::asn1::Element(*tbs), *info);
    });
}
