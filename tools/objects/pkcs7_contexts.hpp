// The library's contexts of PKCS#7 messages and their parts, which release themselves.
#pragma once

#include <zacert.h>

#include "base/context.hpp"
#include "base/failure.hpp"

#include <memory>

namespace tool {

// A context to be filled.
template <auto kCreate, auto kDestroy>
class Created {
  public:
    Created() {
        void *context = nullptr;
        check(kCreate(&context));
        context_.reset(context);
    }

    void *get() const { return context_.get(); }

    // Gives the context to another one: `take_over` is the function of the library that attaches it.
    // Where it fails, the context stays here.
    template <class TakeOver>
    void attach_to(void *owner, const TakeOver &take_over) {
        check(take_over(owner, context_.get()));
        static_cast<void>(context_.release());
    }

  private:
    struct Destroy {
        void operator()(void *context) const { kDestroy(context); }
    };
    std::unique_ptr<void, Destroy> context_;
};

// ---- To be encoded -----------------------------------------------------------------------------

using NewSigner = Created<ZA_PKCS7_CreateEncodeSignerInfo, ZA_PKCS7_DestoryEncodeSignerInfo>;
using NewRecipient =
    Created<ZA_PKCS7_CreateEncodeRecipientInfo, ZA_PKCS7_DestoryEncodeRecipientInfo>;
using NewEncryptedContent =
    Created<ZA_PKCS7_CreateEnocdeEncryptedContent, ZA_PKCS7_DestoryEncodeEncryptedContent>;

using NewSignedData =
    Created<ZA_PKCS7_CreateSignedDataEncodeCtx, ZA_PKCS7_DestroySignedDataEncodeCtx>;
using NewEnvelopedData =
    Created<ZA_PKCS7_CreateEnvelopedDataEncodeCtx, ZA_PKCS7_DestroyEnvelopedDataEncodeCtx>;
using NewEncryptedData =
    Created<ZA_PKCS7_CreateEncryptedDataEncodeCtx, ZA_PKCS7_DestoryEncryptedDataEncodeCtx>;
using NewDigestedData =
    Created<ZA_PKCS7_CreateDigestedDataEncodeCtx, ZA_PKCS7_DestoryDigestedDataEncodeCtx>;

// ---- Decoded -----------------------------------------------------------------------------------

using DecodedData =
    Decoded<ZA_PKCS7_CreateDataEncodeCtx, ZA_PKCS7_DecodePKCS7Data, ZA_PKCS7_DestoryDataDecodeCtx>;
using DecodedSignedData = Decoded<ZA_PKCS7_CreateSignedDataDecodeCtx, ZA_PKCS7_DecodeSignedData,
                                  ZA_PKCS7_DestroySignedDataDecodeCtx>;
using DecodedEnvelopedData =
    Decoded<ZA_PKCS7_CreateEnvelopedDataDecodeCtx, ZA_PKCS7_DecodePKCS7EnvelopedData,
            ZA_PKCS7_DestroyEnvelopedDataEncodeCtx>;
using DecodedSignedAndEnvelopedData =
    Decoded<ZA_PKCS7_CreateSignedAndEnvelopedDataDecodeCtx, ZA_PKCS7_DecodeSignedAndEnvelopedData,
            ZA_PKCS7_DestorySignedAndEnvelopedDataDecodeCtx>;
using DecodedEncryptedData =
    Decoded<ZA_PKCS7_CreateEncryptedDataDecodeCtx, ZA_PKCS7_DecodePKCS7EncryptedData,
            ZA_PKCS7_DestoryEncryptedDataDecodeCtx>;

// Nothing is compared: for that the digest function has to be there before decoding.
using DecodedDigestedData =
    Decoded<ZA_PKCS7_CreateDigestedDataDecodeCtx, ZA_PKCS7_DecodePKCS7DigestedData,
            ZA_PKCS7_DestoryDigestedDataDecodeCtx>;
using UndecodedDigestedData =
    Created<ZA_PKCS7_CreateDigestedDataDecodeCtx, ZA_PKCS7_DestoryDigestedDataDecodeCtx>;

// ---- Parts of decoded messages: borrowed, counted from 1 ---------------------------------------

template <class Getter>
void *part_of(void *context, size_t number, const Getter &getter) {
    void *part = nullptr;
    check(getter(context, &part, static_cast<int32_t>(number)));
    return part;
}

template <class Getter>
size_t count_of(void *context, const Getter &getter) {
    uint32_t count = 0;
    check(getter(context, &count));
    return count;
}

}  // namespace tool
