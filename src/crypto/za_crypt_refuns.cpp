// Functions that callers install: each turns the arguments of their common type into those of one
// function of this room.
#include <zacert.h>

#include "crypto/za_crypt_pkcs12.hpp"
#include "crypto/za_crypt_pkcs7.hpp"
#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_crypt_refuns"};

}  // namespace

namespace za::crypto {
namespace {

static_assert(sizeof(ZA_RSArefPublicKey) == 516 && sizeof(ZA_RSArefPrivateKey) == 1412);
static_assert(sizeof(void *) != 8 || (sizeof(ZA_PBE_RECORD) == 48 && sizeof(ZA_HMAC_RECORD) == 24));

constexpr uint32_t kMostHmacKey = 200;

// The line of a missing context and the line of a failure.
struct Lines {
    const char *no_context;
    const char *failure;
};

// `call` gets the context as the record that it points to.
template <class Record, class Call>
Status with_context(const Lines &lines, void *context, const Call &call) {
    if (context == nullptr) {
        return trace.fail(Status::invalid_item, lines.no_context);
    }
    ZA_TRY_AS(lines.failure, call(*static_cast<const Record *>(context)));
    return Status::ok;
}

constexpr const char *kNoKey = "------>pKey == NULL  Err";
constexpr const char *kNoRecord = "------>pStandard == NULL  Err";

// Keys beyond this length have never been taken here; the function behind takes longer ones.
Status hmac_by_callback(const ZA_HMAC_RECORD &with, const uint8_t *in, uint32_t in_len,
                        uint8_t *out, uint32_t *out_len) {
    if (with.key != nullptr && with.keyLen > kMostHmacKey) {
        return trace.fail(Status::crypt);
    }
    return hmac(static_cast<uint32_t>(with.digest), with.key, with.keyLen, in, in_len, out,
                out_len);
}

}  // namespace
}  // namespace za::crypto

using namespace za::crypto;

namespace {

template <class Body>
int32_t called_back(const Body &body, const char *name = __builtin_FUNCTION(),
                    uint32_t line = __builtin_LINE()) {
    return static_cast<int32_t>(trace.exported(body, name, line));
}

}  // namespace

int32_t ZA_DigestFunc_Ref(const uint8_t *in, uint32_t inLen, uint8_t *out, uint32_t *outLen,
                          void *context) {
    constexpr Lines kLines{"------>degistAlgo == NULL  Err", "------>ZA_PKCS7_DigestMessage  Err"};
    return called_back([&] {
        return with_context<int32_t>(kLines, context, [&](int32_t digest) {
            return digest_message(digest, in, static_cast<int32_t>(inLen), out, outLen);
        });
    });
}

int32_t ZA_PrivateKeyEncFunc_Ref(const uint8_t *in, uint32_t inLen, uint8_t *out, uint32_t *outLen,
                                 void *context) {
    constexpr Lines kLines{kNoKey, "------>ZA_PKCS7_RSAPrivateEncrypt  Err"};
    return called_back([&] {
        return with_context<ZA_RSArefPrivateKey>(kLines, context, [&](const auto &key) {
            return rsa_private_encrypt(out, outLen, in, inLen, &key);
        });
    });
}

int32_t ZA_PrivateKeyDecryptFunc_Ref(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                     uint32_t *outLen, void *context) {
    constexpr Lines kLines{kNoKey, "------>ZA_PKCS7_RSAPrivateDecrypt  Err"};
    return called_back([&] {
        return with_context<ZA_RSArefPrivateKey>(kLines, context, [&](const auto &key) {
            return rsa_private_decrypt(out, outLen, in, inLen, &key);
        });
    });
}

int32_t ZA_PublicKeyDecryptFunc_Ref(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                    uint32_t *outLen, void *context) {
    constexpr Lines kLines{kNoKey, "------>ZA_PKCS7_RSAPublicDecrypt  Err"};
    return called_back([&] {
        return with_context<ZA_RSArefPublicKey>(kLines, context, [&](const auto &key) {
            return rsa_public_decrypt(out, outLen, in, inLen, &key);
        });
    });
}

int32_t ZA_PublicKeyEncryptFunc_Ref(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                    uint32_t *outLen, void *context) {
    constexpr Lines kLines{kNoKey, "------>ZA_PKCS7_RSAPublicEncrypt  Err"};
    return called_back([&] {
        return with_context<ZA_RSArefPublicKey>(kLines, context, [&](const auto &key) {
            return rsa_public_encrypt(out, outLen, in, inLen, &key);
        });
    });
}

int32_t ZA_DecryptFunc_Ref(const uint8_t *in, uint32_t inLen, uint8_t *out, uint32_t *outLen,
                           void *context) {
    constexpr Lines kLines{kNoRecord, "------>ZA_PKCS12_PbeWithDigestAlgoAndDecrypt  Err"};
    return called_back([&] {
        return with_context<ZA_PBE_RECORD>(kLines, context, [&](const auto &with) {
            return pbe_decrypt(with, in, inLen, out, outLen);
        });
    });
}

int32_t ZA_EncryptFunc_Ref(const uint8_t *in, uint32_t inLen, uint8_t *out, uint32_t *outLen,
                           void *context) {
    constexpr Lines kLines{kNoRecord, "------>ZA_PKCS12_PbeWithDigestAlgoAndEncrypt  Err"};
    return called_back([&] {
        return with_context<ZA_PBE_RECORD>(kLines, context, [&](const auto &with) {
            return pbe_encrypt(with, in, inLen, out, outLen);
        });
    });
}

int32_t ZA_HMACFunc_Ref(const uint8_t *in, uint32_t inLen, uint8_t *out, uint32_t *outLen,
                        void *context) {
    constexpr Lines kLines{kNoRecord, "------>ZA_PKCS12_HMAC  Err"};
    return called_back([&] {
        return with_context<ZA_HMAC_RECORD>(kLines, context, [&](const auto &with) {
            return hmac_by_callback(with, in, inLen, out, outLen);
        });
    });
}
