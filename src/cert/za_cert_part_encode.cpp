#include "cert/za_cert_part_encode.hpp"

#include "keys/za_ext_ecc_key.hpp"
#include "names/za_low_algorithm.hpp"

namespace za::cert {

using asn1::Builder;

Status write_entries(const TraceSource &trace, Name &name, const uint8_t *string_types,
                     Builder &out) {
    ZI_Name &entries = *name.entries.holder();
    if (string_types == nullptr) {
        ZA_TRY(ZI_EncodeIssuerSuject, names::write_cert_issuer_suject(entries, nullptr, out));
    } else {
        ZA_TRY(ZI_EncodeCertIssuerSuject,
               names::write_cert_issuer_suject(entries, string_types, out));
    }
    return Status::ok;
}

Status write_name(const TraceSource &trace, Name &name, const uint8_t *string_types, Builder &out) {
    if (name.entries.empty() == name.der.empty()) {
        return trace.fail(Status::general);
    }
    if (name.entries.empty()) {
        out.raw(name.der.bytes());
        return Status::ok;
    }
    return write_entries(trace, name, string_types, out);
}

// Time ::= CHOICE { utcTime UTCTime, generalTime GeneralizedTime }
Status write_time(const TraceSource &trace, const Time &time, Builder &out) {
    int32_t seconds = 0;
    ZA_PASS(time.seconds(seconds));
    if (time.is_utc()) {
        ZA_TRY(ZAsn1_WriteUtcTime, out.utc_time(seconds));
    } else {
        ZA_TRY(ZAsn1_WriteGeneralizedTime, out.generalized_time(seconds));
    }
    return Status::ok;
}

namespace {

constexpr uint32_t kLastIntegerKind = 7;

Status write_key_parameters(const TraceSource &trace, const PublicKey &key, Builder &out) {
    const Bytes parameters = key.parameters.bytes();
    if (key.kind == kNamedCurve && !parameters.empty() && parameters[0] == ZA_DER_ID_SEQUENCE) {
        // Explicit parameters, as a decoded key gives them: as an OID they would be a broken key.
        return trace.fail(Status::general);
    }
    if (key.kind == kExplicitCurve) {
        out.raw(parameters);
    } else if (key.kind == kNamedCurve) {
        out.object_id(parameters);
    } else if (key.kind >= 1 && key.kind <= kLastIntegerKind) {
        out.integer(key.kind);
    } else {
        out.null();
    }
    return Status::ok;
}

// An elliptic-curve key is held in a form of its own; certificates carry the uncompressed point.
Status write_key_bits(const TraceSource &trace, const PublicKey &key, Builder &out) {
    if (key.kind == 0) {
        out.bit_string(key.bits.bytes());
        return Status::ok;
    }
    ZACERT_EccPubKey ecc{};
    ZA_TRY(ZACERT_DecodeEccPubKey, keys::decode_ecc_public_key(key.bits.bytes(), ecc));
    std::array<uint8_t, 1 + sizeof ecc.x + sizeof ecc.y> point{4};
    put(put(&point[1], ecc.x), ecc.y);
    out.bit_string(point);
    return Status::ok;
}

}  // namespace

// SubjectPublicKeyInfo ::= SEQUENCE { algorithm SEQUENCE { OBJECT IDENTIFIER, parameters },
//     subjectPublicKey BIT STRING }
Status write_public_key(const TraceSource &trace, const PublicKey &key, Builder &out) {
    return out.sequence([&] {
        const Status algorithm = out.sequence([&] {
            out.object_id(key.algorithm.bytes());
            return write_key_parameters(trace, key, out);
        });
        ZA_PASS(algorithm);
        return write_key_bits(trace, key, out);
    });
}

// SEQUENCE { toBeSigned, signatureAlgorithm AlgorithmIdentifier, signature BIT STRING }
Status write_signed(Bytes tbs, Bytes algorithm, Bytes signature, Octets &out) {
    constexpr size_t kHeadersAndAlgorithm = 64;
    const size_t size = tbs.size() + signature.size() + kHeadersAndAlgorithm;
    Builder whole;
    whole.reserve(size);
    const auto content = [&] {
        whole.raw(tbs);
        names::write_algorithm(algorithm, whole);
        whole.bit_string(signature);
    };
    whole.sequence(content, size);
    return whole.finish(out);
}

}  // namespace za::cert
