// The context of a file: what callers set and read.
#include "pkcs12/za_pkcs12_pfx.hpp"

#include <zacert/pkcs12.h>

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs12_pfx", za::kLongStyle};

}  // namespace

namespace za::pkcs12 {
namespace {

// The octets of keys that are handed out: not those that are written.
constexpr std::array kReadableKeys{
    KeyLengths{601, 618},
    KeyLengths{1181, 1201},
    KeyLengths{107, 134},
};

Status get_private_key(const Pfx &pfx, uint8_t *out, uint32_t *out_len) {
    const Bytes key = pfx.key.bytes();
    for (const KeyLengths &lengths : kReadableKeys) {
        if (lengths.hold(key)) {
            hand_out(key, out, out_len);
            return Status::ok;
        }
    }
    return trace.fail(Status::private_key, kWrongKeyLength);
}

// The octets of an attribute, whose lengths are signed.
struct GivenAttribute {
    const uint8_t *type;
    int32_t type_len;
    const uint8_t *values;
    int32_t values_len;
};

Status take_attribute(const GivenAttribute &from, Attribute &out) {
    const auto type_len = static_cast<uint32_t>(from.type_len);
    const auto values_len = static_cast<uint32_t>(from.values_len);
    ZA_PASS(check_octets(trace, from.type, type_len));
    ZA_PASS(check_octets(trace, from.values, values_len));
    ZA_PASS(out.type.assign({from.type, type_len}));
    return out.values.assign({from.values, values_len});
}

// The octets of a password; none has no address.
Status check_password(const uint8_t *password, uint32_t len) {
    return len == 0 ? Status::ok : check_octets(trace, password, len);
}

// The frame of this family: a missing context has a line of its own.
template <class Body>
uint32_t with_pfx(void *ctx, const Body &body, const char *name = __builtin_FUNCTION(),
                  uint32_t line = __builtin_LINE()) {
    const auto with_context = [&] {
        return ctx == nullptr
                   ? trace.fail(Status::invalid_item, "------------>pTmpPfx == NULL", line)
                   : body(*static_cast<Pfx *>(ctx));
    };
    return trace.exported(with_context, name, line);
}

template <class Encode>
Status encode_for_caller(const Encode &encode, uint8_t *out, uint32_t *out_len) {
    Octets der;
    ZA_PASS(trace.need(out_len));
    ZA_PASS(encode(der));
    hand_out(der.bytes(), out, out_len);
    return Status::ok;
}

}  // namespace

Status add_certificate(Pfx &pfx, Bytes der) {
    Certificate certificate;
    ZA_PASS(certificate.der.assign(der));
    return pfx.certificates.append(trace, std::move(certificate));
}

// A number above all is that of the last certificate.
Status add_certificate_attribute(Pfx &pfx, Bytes type, Bytes values, uint32_t number) {
    if (number == 0 || pfx.certificates.empty()) {
        return add_attribute(trace, pfx.unwritten, type, values);
    }
    Certificate *certificate = pfx.certificates.item(number);
    Certificate &to = certificate == nullptr ? pfx.certificates.back() : *certificate;
    return add_attribute(trace, to.attributes, type, values);
}

}  // namespace za::pkcs12

namespace pkcs12 = za::pkcs12;
using pkcs12::Attribute;
using pkcs12::Certificate;
using pkcs12::Pfx;
using pkcs12::with_pfx;
using za::Bytes;
using za::hand_out;
using za::Octets;
using za::Status;

uint32_t ZA_PKCS12_CreateEncodePfx(void **ctx) {
    return trace.exported([&] { return za::create_context<Pfx>(trace, ctx); });
}

uint32_t ZA_PKCS12_CreateDecodePfx(void **ctx) {
    return trace.exported([&] { return za::create_context<Pfx>(trace, ctx); });
}

uint32_t ZA_PKCS12_SetPrivateKey(void *ctx, const uint8_t *key, uint32_t keyLen) {
    return with_pfx(ctx, [&](Pfx &pfx) {
        ZA_PASS(pkcs12::check_octets(trace, key, keyLen));
        return pfx.key.assign({key, keyLen});
    });
}

uint32_t ZA_PKCS12_SetPrivateKey_Attribute(void *ctx, const uint8_t *type, int32_t typeLen,
                                           const uint8_t *value, int32_t valueLen) {
    return with_pfx(ctx, [&](Pfx &pfx) {
        Attribute attribute;
        ZA_PASS(pkcs12::take_attribute({type, typeLen, value, valueLen}, attribute));
        return pfx.key_attributes.append(trace, std::move(attribute));
    });
}

uint32_t ZA_PKCS12_SetPrivateKeyBag_Attribute(void *ctx, const uint8_t *type, int32_t typeLen,
                                              const uint8_t *value, int32_t valueLen) {
    return with_pfx(ctx, [&](Pfx &pfx) {
        Attribute attribute;
        ZA_PASS(pkcs12::take_attribute({type, typeLen, value, valueLen}, attribute));
        return pfx.key_bag_attributes.append(trace, std::move(attribute));
    });
}

uint32_t ZA_PKCS12_SetCertificate(void *ctx, const uint8_t *cert, uint32_t certLen) {
    return with_pfx(ctx, [&](Pfx &pfx) {
        ZA_PASS(pkcs12::check_octets(trace, cert, certLen));
        return pkcs12::add_certificate(pfx, {cert, certLen});
    });
}

uint32_t ZA_PKCS12_SetCertificateBag_Attribute(void *ctx, const uint8_t *type, int32_t typeLen,
                                               const uint8_t *value, int32_t valueLen,
                                               uint32_t certNumber) {
    return with_pfx(ctx, [&](Pfx &pfx) {
        Attribute attribute;
        ZA_PASS(pkcs12::take_attribute({type, typeLen, value, valueLen}, attribute));
        return pkcs12::add_certificate_attribute(pfx, attribute.type.bytes(),
                                                 attribute.values.bytes(), certNumber);
    });
}

uint32_t ZA_PKCS12_EncodePFX(void *ctx, const uint8_t *password, uint32_t passwordLen, uint8_t *out,
                             uint32_t *outLen) {
    return with_pfx(ctx, [&](const Pfx &pfx) {
        ZA_PASS(pkcs12::check_password(password, passwordLen));
        const auto encode = [&](Octets &der) {
            return pkcs12::encode_pfx(pfx, {password, passwordLen}, der);
        };
        return pkcs12::encode_for_caller(encode, out, outLen);
    });
}

uint32_t ZA_PKCS12_EncodePFXNEW(void *ctx, uint32_t keyType, const uint8_t *password,
                                uint32_t passwordLen, uint8_t *out, uint32_t *outLen) {
    return with_pfx(ctx, [&](const Pfx &pfx) {
        ZA_PASS(pkcs12::check_password(password, passwordLen));
        const auto encode = [&](Octets &der) {
            return pkcs12::encode_pfx(pfx, keyType, {password, passwordLen}, der);
        };
        return pkcs12::encode_for_caller(encode, out, outLen);
    });
}

uint32_t ZA_PKCS12_DecodePFX(void *ctx, const uint8_t *password, uint32_t passwordLen,
                             const uint8_t *pfx, uint32_t pfxLen, uint32_t *macResult) {
    return with_pfx(ctx, [&](Pfx &into) {
        ZA_PASS(trace.need(macResult));
        // Told of a failure too: callers who look at it alone must not see an old verdict.
        pkcs12::Verdict verdict = pkcs12::Verdict::mismatch;
        *macResult = static_cast<uint32_t>(verdict);
        ZA_PASS(pkcs12::check_password(password, passwordLen));
        ZA_PASS(pkcs12::check_octets(trace, pfx, pfxLen));
        ZA_PASS(pkcs12::decode_pfx({pfx, pfxLen}, {password, passwordLen}, into, verdict));
        *macResult = static_cast<uint32_t>(verdict);
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_GetPrivateKey(void *ctx, uint8_t *key, uint32_t *keyLen) {
    return with_pfx(ctx, [&](const Pfx &pfx) {
        ZA_PASS(trace.need(keyLen));
        return pkcs12::get_private_key(pfx, key, keyLen);
    });
}

uint32_t ZA_PKCS12_GetPrivateKey_Attribute(void *ctx, uint8_t *type, uint32_t *typeLen,
                                           uint8_t *value, uint32_t *valueLen, uint32_t number) {
    return with_pfx(ctx, [&](const Pfx &pfx) {
        return hand_out_attribute(trace, pfx.key_attributes, number,
                                  {type, typeLen, value, valueLen});
    });
}

uint32_t ZA_PKCS12_GetPrivateKeyBag_Attribute(void *ctx, uint8_t *type, uint32_t *typeLen,
                                              uint8_t *value, uint32_t *valueLen, uint32_t number) {
    return with_pfx(ctx, [&](const Pfx &pfx) {
        return hand_out_attribute(trace, pfx.key_bag_attributes, number,
                                  {type, typeLen, value, valueLen});
    });
}

uint32_t ZA_PKCS12_GetCertificateBag_Attribute(void *ctx, uint8_t *type, uint32_t *typeLen,
                                               uint8_t *value, uint32_t *valueLen, uint32_t number,
                                               uint32_t certNumber) {
    return with_pfx(ctx, [&](const Pfx &pfx) {
        const Certificate *certificate = pfx.certificates.item(certNumber);
        if (certificate == nullptr) {
            return trace.fail(Status::invalid_item);
        }
        return hand_out_attribute(trace, certificate->attributes, number,
                                  {type, typeLen, value, valueLen});
    });
}

// Where there is no such certificate nothing is written, and it is no failure.
uint32_t ZA_PKCS12_GetCertificate(void *ctx, uint8_t *cert, uint32_t *certLen,
                                  uint32_t certNumber) {
    return trace.exported([&] {
        if (ctx == nullptr && cert == nullptr) {
            return trace.fail(Status::invalid_item);
        }
        ZA_PASS(trace.need(certLen));
        const uint32_t number = certNumber == 0 ? 1 : certNumber;
        const Certificate *certificate =
            ctx == nullptr ? nullptr : static_cast<Pfx *>(ctx)->certificates.item(number);
        if (certificate != nullptr) {
            hand_out(certificate->der.bytes(), cert, certLen);
        }
        return Status::ok;
    });
}

uint32_t ZA_PKCS12_DestroyEncodePFX(void *ctx) {
    return with_pfx(ctx, [](Pfx &pfx) { return za::destroy_context<Pfx>(&pfx); });
}

uint32_t ZA_PKCS12_DestroyDecodePFX(void *ctx) {
    return with_pfx(ctx, [](Pfx &pfx) { return za::destroy_context<Pfx>(&pfx); });
}
