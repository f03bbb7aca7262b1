#include "key.hpp"

#include <openssl/asn1.h>
#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/param_build.h>

namespace zacert_pkcs11 {
namespace {

using Number = std::unique_ptr<BIGNUM, Release<BN_free>>;
using Certificate = std::unique_ptr<X509, Release<X509_free>>;

Number number_of(const std::vector<uint8_t> &octets) {
    return Number(BN_bin2bn(octets.data(), static_cast<int>(octets.size()), nullptr));
}

PublicKey rsa_of(const Session &session, CK_OBJECT_HANDLE object) {
    std::vector<uint8_t> modulus;
    std::vector<uint8_t> exponent;
    if (!session.read(object, CKA_MODULUS, modulus) ||
        !session.read(object, CKA_PUBLIC_EXPONENT, exponent)) {
        return nullptr;
    }
    const Number n = number_of(modulus);
    const Number e = number_of(exponent);
    const std::unique_ptr<OSSL_PARAM_BLD, Release<OSSL_PARAM_BLD_free>> builder(
        OSSL_PARAM_BLD_new());
    if (!n || !e || !builder ||
        OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_RSA_N, n.get()) != 1 ||
        OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_RSA_E, e.get()) != 1) {
        return nullptr;
    }
    const std::unique_ptr<OSSL_PARAM, Release<OSSL_PARAM_free>> params(
        OSSL_PARAM_BLD_to_param(builder.get()));
    const std::unique_ptr<EVP_PKEY_CTX, Release<EVP_PKEY_CTX_free>> context(
        EVP_PKEY_CTX_new_from_name(nullptr, "RSA", nullptr));
    EVP_PKEY *key = nullptr;
    if (!params || !context || EVP_PKEY_fromdata_init(context.get()) != 1 ||
        EVP_PKEY_fromdata(context.get(), &key, EVP_PKEY_PUBLIC_KEY, params.get()) != 1) {
        return nullptr;
    }
    return PublicKey(key);
}

// CKA_EC_POINT is an OCTET STRING around the point; some tokens give the point alone, whose first
// octet reads like that tag, so its length decides.
Bytes point_of(const std::vector<uint8_t> &value, size_t coordinate,
               std::unique_ptr<ASN1_OCTET_STRING, Release<ASN1_OCTET_STRING_free>> &owner) {
    if (value.size() == 1 + 2 * coordinate) {
        return value;
    }
    const uint8_t *end = value.data();
    owner.reset(d2i_ASN1_OCTET_STRING(nullptr, &end, static_cast<long>(value.size())));
    if (!owner) {
        return {};
    }
    return {ASN1_STRING_get0_data(owner.get()),
            static_cast<size_t>(ASN1_STRING_length(owner.get()))};
}

PublicKey ec_of(const Session &session, CK_OBJECT_HANDLE object, size_t coordinate) {
    std::vector<uint8_t> parameters;
    std::vector<uint8_t> value;
    if (!session.read(object, CKA_EC_PARAMS, parameters) ||
        !session.read(object, CKA_EC_POINT, value)) {
        return nullptr;
    }
    PublicKey key = curve_of(parameters);
    std::unique_ptr<ASN1_OCTET_STRING, Release<ASN1_OCTET_STRING_free>> owner;
    const Bytes point = point_of(value, coordinate, owner);
    if (!key || EVP_PKEY_set1_encoded_public_key(key.get(), point.data(), point.size()) != 1) {
        return nullptr;
    }
    return key;
}

// What one object tells of the key; NULL where it does not.
PublicKey told_by(const Session &session, const TokenKey &key, CK_OBJECT_HANDLE object) {
    return key.rsa ? rsa_of(session, object) : ec_of(session, object, key.coordinate);
}

PublicKey certified_by(const Session &session, CK_OBJECT_HANDLE object) {
    std::vector<uint8_t> der;
    if (!session.read(object, CKA_VALUE, der)) {
        return nullptr;
    }
    const uint8_t *end = der.data();
    const Certificate certificate(d2i_X509(nullptr, &end, static_cast<long>(der.size())));
    return PublicKey(certificate ? X509_get_pubkey(certificate.get()) : nullptr);
}

// The first object of the class with the key's identifier.
CK_OBJECT_HANDLE sibling(const Session &session, CK_OBJECT_CLASS kind, std::vector<uint8_t> &id) {
    std::vector<CK_OBJECT_HANDLE> found;
    const uint32_t code =
        session.find({{CKA_CLASS, &kind, sizeof kind}, {CKA_ID, id.data(), id.size()}}, found);
    return code != 0 || found.empty() ? CK_INVALID_HANDLE : found.front();
}

PublicKey find_public_key(const Session &session, const TokenKey &key) {
    std::vector<uint8_t> id;
    const bool has_id = session.read(key.object, CKA_ID, id);
    const auto with_id = [&](CK_OBJECT_CLASS kind) {
        return has_id ? sibling(session, kind, id) : CK_OBJECT_HANDLE{CK_INVALID_HANDLE};
    };
    for (const CK_OBJECT_HANDLE object : {with_id(CKO_PUBLIC_KEY), key.object}) {
        if (PublicKey found = told_by(session, key, object)) {
            return found;
        }
    }
    return certified_by(session, with_id(CKO_CERTIFICATE));
}

}  // namespace

PublicKey curve_of(const std::vector<uint8_t> &parameters) {
    const uint8_t *end = parameters.data();
    return PublicKey(
        d2i_KeyParams(EVP_PKEY_EC, nullptr, &end, static_cast<long>(parameters.size())));
}

uint32_t describe(const Session &session, CK_OBJECT_HANDLE object, TokenKey &out) {
    CK_KEY_TYPE type = 0;
    if (!session.read_number(object, CKA_KEY_TYPE, type)) {
        return ZACERT_InvalidSignatureAlgErr;
    }
    std::vector<uint8_t> value;
    if (type == CKK_RSA && session.read(object, CKA_MODULUS, value)) {
        const Number modulus = number_of(value);
        out.rsa = true;
        out.most = modulus ? static_cast<size_t>(BN_num_bytes(modulus.get())) : 0;
    }
    if (type == CKK_EC && session.read(object, CKA_EC_PARAMS, value)) {
        const PublicKey curve = curve_of(value);
        const int bits = curve ? EVP_PKEY_get_bits(curve.get()) : 0;
        out.most = static_cast<size_t>(curve ? EVP_PKEY_get_size(curve.get()) : 0);
        out.coordinate = (static_cast<size_t>(std::max(bits, 0)) + 7) / 8;
    }
    out.object = object;
    return out.most > 0 ? session.list_mechanisms(out.mechanisms)
                        : uint32_t{ZACERT_InvalidSignatureAlgErr};
}

uint32_t read_public_key(const Session &session, const TokenKey &key, std::vector<uint8_t> &out) {
    const PublicKey found = find_public_key(session, key);
    const int len = found ? i2d_PUBKEY(found.get(), nullptr) : 0;
    if (len <= 0) {
        return ZACERT_ItemMissingErr;
    }
    out.resize(static_cast<size_t>(len));
    uint8_t *end = out.data();
    return i2d_PUBKEY(found.get(), &end) == len ? 0 : uint32_t{ZACERT_MemoryErr};
}

}  // namespace zacert_pkcs11
