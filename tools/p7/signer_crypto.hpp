// The functions that the library calls for one signer of a message: RSA by libcrypto, whatever the
// size of the key, and SM2 with SM3 by zacert-gm.
#pragma once

#include <zacert.h>
#include <zacert/gm.h>

#include "base/evp.hpp"
#include "base/secret.hpp"
#include "objects/loading.hpp"
#include "objects/pkcs7.hpp"
#include "p7/digests.hpp"

namespace tool {

class SignerCrypto {
  public:
    // The functions that check this signer's signature by the certificate's key. Throws Failure where
    // there are none: "ecdsa-with-SHA256 ... cannot be verified".
    SignerCrypto(const LoadedCertificate &certificate, const MessageSigner &signer);

    // Into the signer of a decoded message, which then refers to this object.
    void install(void *signer) const;

    // As this signer digests content and attributes.
    Octets digest(View octets) const;

    // "RSA 2048 with SHA-256"
    const std::string &text() const { return text_; }

    // What is to be said of the digest besides; mostly nothing.
    const std::string &doubt() const { return doubt_; }

  private:
    void prepare_rsa(View key_info, const MessageDigest *digest, std::string_view algorithm);
    void prepare_sm2(const Octets &point);

    ZA_CryptFunc digest_function_ = nullptr;
    Secret digest_block_;  // what the function is given, as the two below
    ZA_CryptFunc open_function_ = nullptr;
    ZA_PKCS7_EcVerifyFunc verify_function_ = nullptr;
    Secret verify_block_;
    EvpKey key_;
    std::string text_;
    std::string doubt_;
};

}  // namespace tool
