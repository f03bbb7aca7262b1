// AuthenticatedSafe of two types: a file as a whole.
#include <zacert.h>

#include "names/za_low_oid_catalogue.hpp"
#include "pkcs12/za_pkcs12_code.hpp"
#include "pkcs12/za_pkcs12_der.hpp"
#include "pkcs7/za_pkcs7_Data.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs12_code", za::kLongStyle};

}  // namespace

namespace za::pkcs12 {

using asn1::Builder;
using asn1::Children;
using asn1::Element;

namespace {

constexpr uint32_t kPfxVersion = 3;
constexpr uint32_t kSignedDataVersion = 1;

// AuthenticatedSafe ::= SEQUENCE OF ContentInfo
Status write_content_infos(const List<Secret> &infos, Octets &out) {
    if (infos.empty()) {
        return trace.fail(Status::invalid_item);
    }
    return write_structure(out, [&](Builder &all) { write_items(infos, all); });
}

// The octets that are covered by a MAC or a signature may have indefinite lengths of their own.
Status read_content_infos(Bytes in, List<Secret> &out) {
    return read_structure(trace, in, out, [](Children &infos, List<Secret> &fresh) {
        return read_items(trace, infos, fresh);
    });
}

// version INTEGER (3), authSafe ContentInfo, macData MacData OPTIONAL
Status write_file(Bytes auth_safe, Bytes mac_data, Octets &out) {
    return write_structure(out, [&](Builder &fields) {
        fields.integer(kPfxVersion);
        fields.raw(auth_safe);
        fields.raw(mac_data);
    });
}

// The version of a file decides nothing.
Status take_auth_safe(Children &fields, Bytes &out) {
    uint32_t version = 0;
    Element info;
    ZA_PASS(pkcs7::take_version(trace, fields, version));
    ZA_PASS(pkcs7::take_field(trace, fields, ZA_DER_ID_SEQUENCE, info));
    out = info.octets;
    return Status::ok;
}

// What a file holds beside the functions that callers install.
struct Received {
    List<Secret> content_infos;
    MacData mac_data;
    Secret covered;
    bool has_mac = false;
};

Status read_data_safe(Children &fields, Received &out) {
    Bytes info;
    Element mac_data;
    ZA_PASS(take_auth_safe(fields, info));
    ZA_PASS(ZA_MESSAGE(ZA_PKCS7_DecodePKCS7Data, read_data(trace, info, out.covered)));
    ZA_PASS(read_content_infos(out.covered.bytes(), out.content_infos));
    out.has_mac = pkcs7::take_optional(fields, ZA_DER_ID_SEQUENCE, mac_data);
    if (out.has_mac) {
        ZA_PASS(ZA_CALL(ZA_PKCS12_DecodeMac, decode(mac_data.octets, out.mac_data)));
    }
    return end_of(trace, fields);
}

Status read_signed_safe(Children &fields, SignedSafe &out) {
    Bytes info;
    ZA_PASS(take_auth_safe(fields, info));
    ZA_PASS(ZA_MESSAGE(ZA_PKCS7_DecodeSignedData, pkcs7::decode_signed_data(info, out.message)));
    ZA_PASS(read_content_infos(out.message.content.bytes(), out.content_infos));
    return end_of(trace, fields);
}

}  // namespace

// The MAC covers the octets inside the OCTET STRING of the message.
Status encode(const DataSafe &safe, Octets &out) {
    Secret content;
    Secret auth_safe;
    Octets mac_data;
    MacData fresh;
    ZA_PASS(write_content_infos(safe.content_infos, content.value));
    ZA_PASS(
        ZA_MESSAGE(ZA_PKCS7_EncodePKCS7Data, pkcs7::encode_data(content.bytes(), auth_safe.value)));
    ZA_PASS(fresh.digest.assign(safe.mac_data.digest.bytes()));
    ZA_PASS(fresh.parameter.salt.assign(safe.mac_data.parameter.salt.bytes()));
    fresh.parameter.iterations = safe.mac_data.parameter.iterations;
    ZA_PASS(ZA_CALL(ZA_PKCS12_EncodeMac,
                    make_mac_data(safe.generate_mac, content.bytes(), fresh, mac_data)));
    return write_file(auth_safe.bytes(), mac_data.bytes(), out);
}

Status decode(Bytes in, DataSafe &out) {
    Received fresh;
    ZA_PASS(read_structure(trace, in, fresh, read_data_safe));
    out.content_infos = std::move(fresh.content_infos);
    out.mac_data = std::move(fresh.mac_data);
    out.covered = std::move(fresh.covered);
    out.has_mac = fresh.has_mac;
    out.verified = false;
    return Status::ok;
}

// A match is remembered; another verdict may change with the function.
Status verify_mac(DataSafe &safe, Verdict &out) {
    Secret mac;
    if (!safe.has_mac) {
        out = Verdict::mismatch;
        return Status::ok;
    }
    if (!safe.verified && !safe.parse_mac.installed()) {
        out = Verdict::not_compared;
        return Status::ok;
    }
    if (!safe.verified) {
        ZA_PASS(compute_mac(safe.parse_mac, safe.covered.bytes(), mac));
        safe.verified = equal(mac.bytes(), safe.mac_data.mac.bytes());
    }
    out = safe.verified ? Verdict::match : Verdict::mismatch;
    return Status::ok;
}

Status encode(SignedSafe &safe, Octets &out) {
    Octets content;
    Octets auth_safe;
    Builder built;
    pkcs7::SignedData &message = safe.message;
    ZA_PASS(write_content_infos(safe.content_infos, content));
    message.content.take(std::move(content));
    message.content_type.refer(oid::kData);
    message.has_content_info = true;
    message.version = kSignedDataVersion;
    message.has_version = true;
    ZA_PASS(ZA_MESSAGE(ZA_PKCS7_EncodePKCS7SignedData,
                       pkcs7::encode_signed_data(message, nullptr, built)));
    ZA_PASS(built.finish(auth_safe));
    return write_file(auth_safe.bytes(), {}, out);
}

Status decode(Bytes in, SignedSafe &out) {
    return read_structure(trace, in, out, read_signed_safe);
}

}  // namespace za::pkcs12
