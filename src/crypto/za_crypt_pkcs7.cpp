#include "crypto/za_crypt_pkcs7.hpp"

#include <zacert.h>

#include "crypto/za_crypt_pkcs7_digest.hpp"
#include "crypto/za_crypt_pkcs7_rsa.hpp"
#include "runtime/trace.hpp"

#include <algorithm>
#include <climits>
#include <openssl/rand.h>

namespace {

constexpr za::TraceSource trace{".\\src\\za_crypt_pkcs7"};

}  // namespace

namespace za::crypto {
namespace {

constexpr const char *kDigestLine = "------>ZACERT_DigestedErr  Err";
constexpr const char *kLoadPublicLine = "------>RSAref_Public_ref2eay  Err";
constexpr const char *kLoadPrivateLine = "------>RSAref_Private_ref2eay  Err";

// What a place for a length holds after an RSA operation failed: callers read it as -1.
constexpr uint32_t kNoLength = 0xFFFFFFFF;

Status find(int32_t number, const Digest *&out) {
    out = find_digest(static_cast<uint32_t>(number));
    return out != nullptr ? Status::ok : trace.fail(Status::digest, kDigestLine);
}

Status hash(const Digest &digest, Bytes data, uint8_t *out) {
    const bool done = Hasher(digest, Hasher::First::libcrypto).run({data}, out);
    return done ? Status::ok : trace.fail(Status::digest, kDigestLine);
}

Status view(const uint8_t *data, uint32_t len, Bytes &out) {
    if (len > 0) {
        ZA_PASS(trace.need(data));
    }
    out = {data, len};
    return Status::ok;
}

Status view_signed(const uint8_t *data, int32_t len, Bytes &out) {
    if (len < 0) {
        return trace.fail(Status::length);
    }
    return view(data, static_cast<uint32_t>(len), out);
}

// DigestInfo ::= SEQUENCE { SEQUENCE { algorithm, NULL }, OCTET STRING of the digest }
struct DigestInfo {
    std::array<uint8_t, 19 + kMostDigest> octets;
    size_t size;

    Bytes bytes() const { return Bytes(octets).first(size); }
};

Status make_digest_info(const Digest &digest, Bytes data, DigestInfo &out) {
    out.size = digest.info_prefix.size() + digest.size;
    return hash(digest, data, put(out.octets.data(), digest.info_prefix));
}

struct RsaLines {
    const char *load;
    const char *run;
};

Status run_rsa(const RsaKey &key, const RsaOperation &operation, const char *failure, Bytes in,
               uint8_t *out, uint32_t *out_len) {
    if (out == nullptr) {
        *out_len = key.modulus_octets();
        return Status::ok;
    }
    Wiped<RsaBlock> block;
    if (!key.run(operation, in, block.value)) {
        // The one output of a failure: the length is stored before it is judged.
        *out_len = kNoLength;
        return trace.fail(Status::crypt, failure);
    }
    hand_out(block.value.bytes(), out, out_len);
    return Status::ok;
}

template <class Record>
Status rsa(const RsaOperation &operation, const RsaLines &lines, uint8_t *out, uint32_t *out_len,
           const uint8_t *in, uint32_t in_len, const Record *record) {
    ZA_PASS(trace.need(out_len));
    Bytes octets;
    ZA_PASS(view(in, in_len, octets));
    RsaKey key;
    if (!key.load(record)) {
        return trace.fail(Status::crypt, lines.load);
    }
    return run_rsa(key, operation, lines.run, octets, out, out_len);
}

Status sign_data(const Digest &digest, Bytes data, uint8_t *out, uint32_t *out_len,
                 const ZA_RSArefPrivateKey *record) {
    DigestInfo info;
    ZA_PASS(make_digest_info(digest, data, info));
    if (record == nullptr) {
        return trace.fail(Status::rsa_private_key, "------>RSAref_Private Is NULL  Err");
    }
    RsaKey key;
    if (!key.load(record)) {
        return trace.fail(Status::rsa_private_key, kLoadPrivateLine);
    }
    return run_rsa(key, kPrivateEncrypt, "------>RSA_private_encrypt  Err", info.bytes(), out,
                   out_len);
}

// Only as many octets of what was opened are looked at as the DigestInfo has: callers depend on
// signatures with octets behind it being taken.
Status verify(const Digest &digest, Bytes data, Bytes signature, const ZA_RSArefPublicKey *record,
              bool &match) {
    DigestInfo info;
    ZA_PASS(make_digest_info(digest, data, info));
    RsaKey key;
    if (!key.load(record)) {
        return trace.fail(Status::verify, kLoadPublicLine);
    }
    RsaBlock opened{};
    const bool opens = key.run(kPublicDecrypt, signature, opened);
    match = opens && equal(Bytes(opened.octets).first(info.size), info.bytes());
    return Status::ok;
}

// Both records or none: half of a key pair is of no use.
Status generate_key_pair(unsigned bits, ZA_RSArefPublicKey *out_public,
                         ZA_RSArefPrivateKey *out_private) {
    ZA_PASS(trace.need(out_public, out_private));
    RsaKey key;
    ZA_RSArefPublicKey public_key{};
    Wiped<ZA_RSArefPrivateKey> private_key;
    if (!key.generate(bits) || !key.store(public_key) || !key.store(private_key.value)) {
        return trace.fail(Status::rsa_public_key, "------>RSAref_Public_eay2ref  Err");
    }
    *out_public = public_key;
    *out_private = private_key.value;
    return Status::ok;
}

}  // namespace

Status digest_message(int32_t digest, Bytes data, std::span<uint8_t> out, uint32_t &out_len) {
    const Digest *row = nullptr;
    ZA_PASS(find(digest, row));
    ZA_PASS(hash(*row, data, out.data()));
    out_len = row->size;
    return Status::ok;
}

Status digest_message(int32_t digest, const uint8_t *data, int32_t data_len, uint8_t *out,
                      uint32_t *out_len) {
    const Digest *row = nullptr;
    ZA_PASS(find(digest, row));
    ZA_PASS(trace.need(out_len));
    Bytes octets;
    ZA_PASS(view_signed(data, data_len, octets));
    std::array<uint8_t, kMostDigest> value;
    if (out != nullptr) {
        ZA_PASS(hash(*row, octets, value.data()));
    }
    hand_out(Bytes(value).first(row->size), out, out_len);
    return Status::ok;
}

Status verify_signature(int32_t digest, Bytes data, Bytes signature, const ZA_RSArefPublicKey &key,
                        bool &match) {
    const Digest *row = nullptr;
    ZA_PASS(find(digest, row));
    return verify(*row, data, signature, &key, match);
}

Status random_bytes(std::span<uint8_t> out) {
    while (!out.empty()) {
        const size_t size = std::min<size_t>(out.size(), INT_MAX);
        if (RAND_bytes(out.data(), static_cast<int>(size)) != 1) {
            return trace.fail(Status::crypt);
        }
        out = out.subspan(size);
    }
    return Status::ok;
}

Status rsa_public_encrypt(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                          const ZA_RSArefPublicKey *key) {
    if (!RsaKey::available()) {
        return trace.fail(Status::crypt, "------>rsa == NULL  Err");
    }
    const RsaLines lines{kLoadPublicLine, "------>RSA_public_encrypt  Err"};
    return rsa(kPublicEncrypt, lines, out, out_len, in, in_len, key);
}

Status rsa_public_decrypt(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                          const ZA_RSArefPublicKey *key) {
    const RsaLines lines{kLoadPublicLine, "------>RSA_public_decrypt  Err"};
    return rsa(kPublicDecrypt, lines, out, out_len, in, in_len, key);
}

Status rsa_private_encrypt(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                           const ZA_RSArefPrivateKey *key) {
    const RsaLines lines{kLoadPrivateLine, "------>RSA_private_encrypt  Err"};
    return rsa(kPrivateEncrypt, lines, out, out_len, in, in_len, key);
}

Status rsa_private_decrypt(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                           const ZA_RSArefPrivateKey *key) {
    const RsaLines lines{kLoadPrivateLine, "------>RSA_private_decrypt  Err"};
    return rsa(kPrivateDecrypt, lines, out, out_len, in, in_len, key);
}

}  // namespace za::crypto

using za::Bytes;
using za::Status;
namespace crypto = za::crypto;

uint32_t ZA_PKCS7_GenRSAKeyPair(ZA_RSArefPublicKey *pub, ZA_RSArefPrivateKey *priv) {
    return trace.exported([&] { return crypto::generate_key_pair(1024, pub, priv); });
}

uint32_t ZA_PKCS7_GenRSAKeyPair_2048(ZA_RSArefPublicKey *pub, ZA_RSArefPrivateKey *priv) {
    return trace.exported([&] { return crypto::generate_key_pair(2048, pub, priv); });
}

uint32_t ZA_PKCS7_RSAPublicEncrypt(uint8_t *out, uint32_t *outLen, const uint8_t *in,
                                   uint32_t inLen, const ZA_RSArefPublicKey *key) {
    return trace.exported([&] { return crypto::rsa_public_encrypt(out, outLen, in, inLen, key); });
}

uint32_t ZA_PKCS7_RSAPublicDecrypt(uint8_t *out, uint32_t *outLen, const uint8_t *in,
                                   uint32_t inLen, const ZA_RSArefPublicKey *key) {
    return trace.exported([&] { return crypto::rsa_public_decrypt(out, outLen, in, inLen, key); });
}

uint32_t ZA_PKCS7_RSAPrivateEncrypt(uint8_t *out, uint32_t *outLen, const uint8_t *in,
                                    uint32_t inLen, const ZA_RSArefPrivateKey *key) {
    return trace.exported([&] { return crypto::rsa_private_encrypt(out, outLen, in, inLen, key); });
}

uint32_t ZA_PKCS7_RSAPrivateDecrypt(uint8_t *out, uint32_t *outLen, const uint8_t *in,
                                    uint32_t inLen, const ZA_RSArefPrivateKey *key) {
    return trace.exported([&] { return crypto::rsa_private_decrypt(out, outLen, in, inLen, key); });
}

uint32_t ZA_PKCS7_GenerateBytes(uint8_t *out, const uint32_t *count) {
    return trace.exported([&] {
        ZA_PASS(trace.need(count));
        if (*count > 0) {
            ZA_PASS(trace.need(out));
        }
        return crypto::random_bytes({out, *count});
    });
}

uint32_t ZA_PKCS7_DigestMessage(int32_t digest, const uint8_t *data, int32_t dataLen, uint8_t *out,
                                uint32_t *outLen) {
    return trace.exported(
        [&] { return crypto::digest_message(digest, data, dataLen, out, outLen); });
}

uint32_t ZA_PKCS7_SignedData(int32_t digest, const uint8_t *data, int32_t dataLen, uint8_t *sig,
                             uint32_t *sigLen, const ZA_RSArefPrivateKey *key) {
    return trace.exported([&] {
        const crypto::Digest *row = nullptr;
        ZA_PASS(crypto::find(digest, row));
        ZA_PASS(trace.need(sigLen));
        Bytes octets;
        ZA_PASS(crypto::view_signed(data, dataLen, octets));
        return crypto::sign_data(*row, octets, sig, sigLen, key);
    });
}

uint32_t ZA_PKCS7_VerifySignature(int32_t digest, const uint8_t *data, int32_t dataLen,
                                  const uint8_t *sig, uint32_t sigLen,
                                  const ZA_RSArefPublicKey *key, uint32_t *verdict) {
    return trace.exported([&] {
        const crypto::Digest *row = nullptr;
        ZA_PASS(crypto::find(digest, row));
        ZA_PASS(trace.need(verdict));
        Bytes octets;
        ZA_PASS(crypto::view_signed(data, dataLen, octets));
        Bytes signature;
        ZA_PASS(crypto::view(sig, sigLen, signature));
        bool match = false;
        ZA_PASS(crypto::verify(*row, octets, signature, key, match));
        *verdict = match ? 1 : 0;
        return Status::ok;
    });
}
