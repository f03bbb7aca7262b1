// Parameters of password-based encryption, and MacData.
#include <zacert/pkcs12_safe.h>

#include "asn1/za_asn2_indefinite.hpp"
#include "names/za_low_algorithm.hpp"
#include "pkcs12/za_pkcs12_code.hpp"
#include "pkcs12/za_pkcs12_der.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs12_code", za::kLongStyle};

}  // namespace

namespace za::pkcs12 {

using asn1::Builder;
using asn1::Children;

namespace {

// salt OCTET STRING, iterations INTEGER
void write_parameter(const Parameter &parameter, Builder &out) {
    out.octet_string(parameter.salt.bytes());
    out.integer(parameter.iterations);
}

Status read_iterations(Children &fields, uint32_t &out) {
    asn1::Element iterations;
    if (!fields.next(iterations)) {
        return trace.fail(Status::invalid_item);
    }
    return ZA_BODY(ZAsn1_ReadInteger, asn1::read_integer(iterations, out));
}

// Of two fields whatever they are: that the parameters are those of an algorithm unknown here is
// told by its identifier, where they are used.
Status read_parameter(Children &fields, Parameter &out) {
    asn1::Element salt;
    asn1::Content content;
    if (pkcs7::take_optional(fields, ZA_DER_ID_OCTETSTRING | asn1::kConstructed, salt)) {
        ZA_PASS(
            ZA_BODY(ZAsn1_ReadOctetString, asn1::join_octet_string(salt.octets, out.salt.value)));
        return read_iterations(fields, out.iterations);
    }
    if (!fields.next(salt)) {
        return trace.fail(Status::invalid_item);
    }
    ZA_PASS(ZA_BODY(ZAsn1_ReadOctetString, asn1::read_string(salt, content)));
    ZA_PASS(out.salt.assign(content.octets));
    return read_iterations(fields, out.iterations);
}

// mac DigestInfo ::= SEQUENCE { digestAlgorithm AlgorithmIdentifier, digest OCTET STRING }
void write_mac(const MacData &data, Builder &out) {
    out.sequence([&] {
        names::write_algorithm(data.digest.bytes(), out);
        out.octet_string(data.mac.bytes());
    });
}

Status read_mac(Children &fields, MacData &out) {
    Children inside;
    Field digest;
    ZA_PASS(open_sequence(trace, fields, inside));
    ZA_PASS(pkcs7::take_algorithm(trace, inside, digest));
    ZA_PASS(out.digest.assign(digest.bytes()));
    ZA_PASS(take_secret(trace, inside, out.mac));
    return end_of(trace, inside);
}

Status read_mac_data(Children &fields, MacData &out) {
    ZA_PASS(read_mac(fields, out));
    // macSalt OCTET STRING
    ZA_PASS(take_secret(trace, fields, out.parameter.salt));
    // iterations INTEGER DEFAULT 1
    out.parameter.iterations = 1;
    if (!fields.empty()) {
        ZA_PASS(read_iterations(fields, out.parameter.iterations));
    }
    return end_of(trace, fields);
}

}  // namespace

Status encode(const Parameter &parameter, Octets &out) {
    return write_structure(out, [&](Builder &fields) { write_parameter(parameter, fields); });
}

Status decode(Bytes in, Parameter &out) {
    return read_structure(trace, in, out, read_parameter);
}

Status split_parameter(Bytes der, Parameter &out) {
    return der.empty() ? trace.fail(Status::invalid_item) : decode(der, out);
}

Status set_parameter(const TraceSource &trace, const GivenParameter &from, Parameter &out) {
    ZA_PASS(check_octets(trace, from.salt, from.salt_len));
    ZA_PASS(out.salt.assign({from.salt, from.salt_len}));
    out.iterations = from.iterations;
    return Status::ok;
}

// The iterations stand there even where they are what their absence means.
Status encode(const MacData &data, Octets &out) {
    ZA_PASS(need_octets(trace, data.digest, data.mac));
    return write_structure(out, [&](Builder &fields) {
        write_mac(data, fields);
        write_parameter(data.parameter, fields);
    });
}

Status decode(Bytes in, MacData &out) {
    return read_structure(trace, in, out, read_mac_data);
}

Status compute_mac(const CryptSlot &function, Bytes data, Secret &out) {
    if (!function.installed() || data.empty()) {
        return trace.fail(Status::invalid_item);
    }
    ZA_TRY_AS("------------>func",
              pkcs7::run(trace, function, data, /*room=*/0, Status::crypt, out));
    return Status::ok;
}

Status make_mac_data(const CryptSlot &function, Bytes data, MacData &mac_data, Octets &out) {
    ZA_PASS(need_octets(trace, mac_data.digest));
    ZA_PASS(compute_mac(function, data, mac_data.mac));
    return encode(mac_data, out);
}

}  // namespace za::pkcs12

using za::Bytes;
using za::hand_out;
using za::Octets;
using za::Status;
using za::pkcs12::check_octets;
using za::pkcs12::install_function;
using za::pkcs12::MacData;
using za::pkcs12::Parameter;

uint32_t ZA_PKCS12_EncodeParameter(const uint8_t *salt, uint32_t saltLen, uint32_t iterations,
                                   uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        Parameter parameter;
        Octets der;
        ZA_PASS(trace.need(outLen));
        ZA_PASS(set_parameter(trace, {salt, saltLen, iterations}, parameter));
        ZA_PASS(encode(parameter, der));
        hand_out(der.bytes(), out, outLen);
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_DecodeParameter(const uint8_t *der, uint32_t derLen, uint8_t *salt,
                                   uint32_t *saltLen, uint32_t *iterations) {
    return trace.exported([&] {
        Parameter parameter;
        ZA_PASS(trace.need(saltLen, iterations));
        ZA_PASS(check_octets(trace, der, derLen));
        ZA_PASS(decode(Bytes(der, derLen), parameter));
        hand_out(parameter.salt.bytes(), salt, saltLen);
        *iterations = parameter.iterations;
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_EncodeMac(ZA_CryptFunc macFunc, const uint8_t *macParam, uint32_t macParamLen,
                             const uint8_t *digestOid, uint32_t digestOidLen, const uint8_t *data,
                             uint32_t dataLen, const uint8_t *salt, uint32_t saltLen,
                             uint32_t iterations, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        za::CryptSlot function;
        MacData mac_data;
        Octets der;
        ZA_PASS(trace.need(outLen));
        ZA_PASS(check_octets(trace, digestOid, digestOidLen));
        ZA_PASS(check_octets(trace, data, dataLen));
        ZA_PASS(install_function(trace, function, macFunc, macParam, macParamLen));
        ZA_PASS(mac_data.digest.assign({digestOid, digestOidLen}));
        ZA_PASS(set_parameter(trace, {salt, saltLen, iterations}, mac_data.parameter));
        ZA_PASS(make_mac_data(function, {data, dataLen}, mac_data, der));
        hand_out(der.bytes(), out, outLen);
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_DecodeMac(const uint8_t *der, uint32_t derLen, uint8_t *digestOid,
                             uint32_t *digestOidLen, uint8_t *mac, uint32_t *macLen, uint8_t *salt,
                             uint32_t *saltLen, uint32_t *iterations) {
    return trace.exported([&] {
        MacData mac_data;
        ZA_PASS(trace.need(digestOidLen, macLen, saltLen, iterations));
        ZA_PASS(check_octets(trace, der, derLen));
        ZA_PASS(decode(Bytes(der, derLen), mac_data));
        hand_out(mac_data.digest.bytes(), digestOid, digestOidLen);
        hand_out(mac_data.mac.bytes(), mac, macLen);
        hand_out(mac_data.parameter.salt.bytes(), salt, saltLen);
        *iterations = mac_data.parameter.iterations;
        return Status::ok;
    });
}
