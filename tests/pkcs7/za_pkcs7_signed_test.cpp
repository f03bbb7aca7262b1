#include "pkcs7/za_pkcs7_SignedData.hpp"
#include "pkcs7/za_pkcs7_signed_support.hpp"

#include <openssl/cms.h>

namespace za::test {
namespace {

const std::string kFolder = "pkcs7/signed/";
const std::string kText = "signed by others";
const Octets kShort(kText.begin(), kText.end());
const std::set<uint32_t> kReadersCodes{101, 102, 106, 108,        112,       113,
                                       121, 122, 123, 0xFFFFFFFE, 0xFFFFFFFF};

uint32_t fill(void *message, const Octets &content, const Octets &type = kDataOid) {
    const uint32_t result = kSigned.set_int(message, PKCS7_SIGNEDDATA_VERSION, 1);
    return result != 0 ? result
                       : set_all(kSigned.set, message,
                                 {{PKCS7_SIGNEDDATA_DIGEST_ALGO, kSha256Oid},
                                  {PKCS7_SIGNEDDATA_CONTENTTYPE, type},
                                  {PKCS7_CONTENT, content}});
}

void attach(const Message &message, void *signer) {
    EXPECT_EQ(message->attach(message, signer), 0u);
}

Octets put_data(const Message &message, const Octets &content) {
    uint32_t status = 7;
    const auto put = [&](uint8_t *out, uint32_t *len) {
        return ZA_PKCS7_EncodePKCS7SignedDataPutData(message, content.data(),
                                                     uint32_t(content.size()), out, len);
    };
    const Octets der = two_calls(put, &status);
    EXPECT_EQ(status, 0u);
    return der;
}

// The verdicts of all signers, by the content where it is not in the message.
std::string verdicts(const Message &message, const Octets &content) {
    std::string all;
    const bool detached = message.get(PKCS7_CONTENT).empty();
    for (int32_t i = 1; i <= std::stoi(split(message.counts(), ' ').at(3)); ++i) {
        all += (i == 1 ? "" : " ") + verdict(message.signer(i), detached ? content : Octets{});
    }
    return all;
}

Octets definite(const Octets &in) {
    return two_calls([&](uint8_t *out, uint32_t *len) {
        return ZAsn1_IndefiniteToDefinite(in.data(), uint32_t(in.size()), out, len);
    });
}

TEST(SignedDataFields, StepsEndAsWritten) {
    expect_steps(kSigned, kFolder + "steps");
}

TEST(SignedDataFields, NullIsRefused) {
    const Message message(kSigned);
    uint8_t out = 7;
    uint32_t n = 7;
    EXPECT_EQ(message.set(PKCS7_SIGNEDDATA_CERTIFICATE, {1}), 0u);
    const auto put = ZA_PKCS7_EncodePKCS7SignedDataPutData;
    expect_null_refused(
        kSigned, false,
        {ZA_PKCS7_CreateSignedDataDecodeCtx(nullptr),
         kSigned.get(message, PKCS7_SIGNEDDATA_CERTIFICATE, &out, nullptr, 1),
         put(nullptr, &out, 1, &out, &n), put(message, &out, 1, &out, nullptr),
         put(message, nullptr, 1, &out, &n), put(message, &out, 1u << 31, &out, &n)});
    EXPECT_EQ(ZA_PKCS7_DestroySignedDataEncodeCtx(nullptr), 0u);
    EXPECT_TRUE(out == 7 && n == 7);
}

TEST(SignedDataFields, LinesHaveTheirNamesAndArrows) {
    const Message message(kSigned);
    EXPECT_EQ(fill(message, {}), 0u);
    const Octets der = message.encode();
    const TraceRecord trace;
    put_data(message, kShort);
    message.decode(der);
    fail_allocation(1);
    message.decode(der);
    const std::string encode = "======>ZA_PKCS7_EncodePKCS7SignedData";
    const std::string decode = "=========>ZA_PKCS7_DecodeSignedData";
    EXPECT_EQ(trace.lines(),
              (Trail{encode + " Begin", encode + " End", encode + " Begin", encode + " End",
                     decode + " Begin", decode + " End", decode + " Begin", "------>ZAPR_Malloc",
                     "------------>ZACERT_MemoryErr"}));
}

// "file | content | counts | verdicts | whether changes are tried": messages of openssl.
TEST(SignedDataOfOthers, IsVerifiedAndWrittenAgain) {
    for (const Row &row : rows_of(kFolder + "others")) {
        SCOPED_TRACE(row[0]);
        const Octets der = data_file(kFolder + row[0]);
        const Octets content = row[1] == "short" ? kShort : Octets(9000, 'Z');
        const bool inside = row[1] != "none" && row[0].find("detached") == row[0].npos;
        const Message message(kSigned);
        ASSERT_EQ(message.decode(der), 0u);
        EXPECT_EQ(message.counts(), row[2]);
        EXPECT_EQ(message.get(PKCS7_SIGNEDDATA_CONTENTTYPE), kDataOid);
        EXPECT_EQ(message.get(PKCS7_CONTENT), inside ? content : Octets{});
        EXPECT_EQ(message.encode(), definite(der));
        EXPECT_EQ(verdicts(message, content), row[3]);
        const Message again(kSigned);
        ASSERT_EQ(again.decode(der), 0u);
        Octets other = content;
        other.back() ^= 1;
        EXPECT_EQ(verdicts(again, other).find("200"), inside ? 2 : std::string::npos);
    }
}

// What the signature covers: content, attributes, the algorithm of the digest and itself.
std::string covered(const Message &message) {
    void *signer = message.signer(1);
    // Of a type other than data the content is the whole element; its header is not covered.
    const Octets content = message.get(PKCS7_CONTENT);
    const size_t size = std::min(content.size(), kShort.size());
    std::string all = to_hex(Octets(content.end() - long(size), content.end()));
    for (const int32_t id : {PKCS7_SIGNER_DIGEST_ALGO, PKCS7_SIGNER_SIGNATURE}) {
        all += "/" + to_hex(get_signer(signer, id));
    }
    return all + "/" +
           to_hex(join(get_attributes(signer, ZA_PKCS7_GetSignerInfoAttributesNum,
                                      ZA_PKCS7_GetSignerAttribute)));
}

TEST(SignedDataOfOthers, NoChangeOfWhatIsSignedVerifies) {
    for (const std::string name : {"plain.der", "smime.der"}) {
        const Octets der = data_file(kFolder + name);
        const Message original(kSigned);
        ASSERT_EQ(original.decode(der), 0u);
        std::map<std::string, size_t> ends;
        for (size_t bit = 0; bit < 8 * der.size(); ++bit) {
            Octets changed = der;
            changed[bit / 8] ^= uint8_t(1 << bit % 8);
            const Message message(kSigned);
            const std::string end =
                message.decode(changed) == 0 ? verdicts(message, {}) : "unreadable";
            ++ends[end];
            EXPECT_TRUE(end != "0/200" || covered(message) == covered(original)) << "bit " << bit;
        }
        EXPECT_GT(ends["unreadable"], 0u);
        EXPECT_GT(ends["0/200"], 0u) << "nothing verifies, so that nothing was tested";
    }
}

TEST(SignedDataOfOthers, DamageAndNoMemoryAreSurvived) {
    for (const std::string name : {"plain.der", "detached.der"}) {
        const Octets der = data_file(kFolder + name);
        const auto decode = [](const Octets &octets) {
            pkcs7::SignedData message;
            const uint32_t result =
                kSigned.decode(&message, octets.data(), uint32_t(octets.size()));
            EXPECT_TRUE(result == 0 || (!message.has_version && message.kept.empty()));
            return result;
        };
        expect_allocation_faults_survived([&] { return decode(der); });
        expect_damage_survived(der, kReadersCodes, decode);
        EXPECT_NE(decode(join({der, der})), 0u);
    }
}

// A signer that comes later signs beside the ones that came with the message.
TEST(SignedDataOfOthers, TakesFurtherSigners) {
    for (const std::string name : {"attributes.der", "detached.der"}) {
        SCOPED_TRACE(name);
        const bool detached = name == "detached.der";
        const Message message(kSigned);
        ASSERT_EQ(message.decode(data_file(kFolder + name)), 0u);
        void *signer = new_signer("rsa2048", true);
        attach(message, signer);
        EXPECT_EQ(message->attach(message, signer), 121u);
        EXPECT_EQ(ZA_PKCS7_DestoryEncodeSignerInfo(signer), 0u) << "goes with the message";
        const Octets der = detached ? put_data(message, kShort) : message.encode();
        const Message again(kSigned);
        ASSERT_EQ(again.decode(der), 0u);
        EXPECT_EQ(verdicts(again, kShort), "0/200 0/200");
    }
}

// CMS_verify() of libcrypto by the certificates of the keys alone; NULL: no detached content.
bool libcrypto_verifies(const Octets &der, const Octets *detached) {
    const uint8_t *at = der.data();
    const std::shared_ptr<CMS_ContentInfo> cms(d2i_CMS_ContentInfo(nullptr, &at, long(der.size())),
                                               CMS_ContentInfo_free);
    const std::shared_ptr<STACK_OF(X509)> certificates(
        sk_X509_new_null(), [](STACK_OF(X509) * all) { sk_X509_pop_free(all, X509_free); });
    for (const char *key : {"rsa1024", "rsa2048"}) {
        const Octets certificate = certificate_for(key);
        const uint8_t *first = certificate.data();
        sk_X509_push(certificates.get(), d2i_X509(nullptr, &first, long(certificate.size())));
    }
    const std::shared_ptr<BIO> content(
        detached == nullptr ? nullptr : BIO_new_mem_buf(detached->data(), int(detached->size())),
        BIO_free);
    const std::shared_ptr<BIO> sink(BIO_new(BIO_s_null()), BIO_free);
    return CMS_verify(cms.get(), certificates.get(), nullptr, content.get(), sink.get(),
                      CMS_BINARY | CMS_NO_SIGNER_CERT_VERIFY) == 1;
}

TEST(SignedDataWritten, IsVerifiedByBothSides) {
    for (const bool attributes : {false, true}) {
        for (const bool detached : {false, true}) {
            for (const size_t size : {1u, 127u, 128u, 65534u, 65535u, 65536u, 200000u}) {
                SCOPED_TRACE(std::to_string(attributes) + std::to_string(detached) + " " +
                             std::to_string(size));
                const Octets content(size, 0x5A);
                const Message message(kSigned);
                EXPECT_EQ(fill(message, detached ? Octets{} : content), 0u);
                attach(message, new_signer("rsa2048", attributes));
                attach(message, new_signer("rsa1024", !attributes));
                const Octets der = detached ? put_data(message, content) : message.encode();
                EXPECT_TRUE(libcrypto_verifies(der, detached ? &content : nullptr));
                const Message read(kSigned);
                ASSERT_EQ(read.decode(der), 0u);
                EXPECT_EQ(read.encode(), der);
                EXPECT_EQ(verdicts(read, content), "0/200 0/200");
            }
        }
    }
}

// Of other types CMS digests what is inside the element: it is passed beside the element then.
TEST(SignedDataWritten, OfAnotherTypeIsSignedAsOthersDo) {
    const Octets inside(100, 0x5A);
    const Message message(kSigned);
    EXPECT_EQ(fill(message, element(4, inside), from_hex("2A864886F70D010704")), 0u);
    void *signer = new_signer("rsa2048", false);
    EXPECT_EQ(add_content_type(signer, from_hex("2A864886F70D010704")), 0u);
    attach(message, signer);
    const Octets der = put_data(message, inside);
    EXPECT_TRUE(libcrypto_verifies(der, nullptr));
    const Message read(kSigned);
    ASSERT_EQ(read.decode(der), 0u);
    EXPECT_EQ(verdicts(read, {}), "0/200");
    uint32_t status = 0;
    attach(message, new_signer("rsa2048", false));
    const TraceRecord trace;
    message.encode(&status);
    EXPECT_EQ(status, 108u) << "no place for the type without attributes";
    EXPECT_EQ(trace.failures(),
              (Trail{"------>Content and attributes error", "------>ZA_PKCS7_EncodeSignerInfo"}));
}

uint32_t calls = 0;

// A signature that is longer with every call.
int32_t sign_longer(const uint8_t *, uint32_t, uint8_t *out, uint32_t *len, void *) {
    *len = 60 + 40 * ++calls;
    std::fill_n(out, *len, uint8_t(calls));
    return 0;
}

TEST(SignedDataWritten, LengthAndOctetsAgreeAndAreSignedOnce) {
    const Message message(kSigned);
    EXPECT_EQ(fill(message, kShort), 0u);
    attach(message, new_signer("rsa1024", false, sign_longer));
    attach(message, new_signer("rsa1024", true, sign_longer));
    calls = 0;
    const Octets der = message.encode();
    EXPECT_EQ(message.encode(), der);
    EXPECT_EQ(calls, 2u);
    const Octets put = put_data(message, {'p', 'u', 't'});
    EXPECT_EQ(put_data(message, {'p', 'u', 't'}), put);
    EXPECT_EQ(calls, 4u);
    EXPECT_NE(put_data(message, {'p', 'u', 'u'}), put);
    EXPECT_EQ(calls, 6u);
    EXPECT_EQ(message.set(PKCS7_SIGNEDDATA_CERTIFICATE, {0x30, 0}), 0u);
    EXPECT_NE(message.encode(), der);
    EXPECT_EQ(message.set(PKCS7_CRL, {0x30, 0}), 0u);
    EXPECT_FALSE(message.encode().empty());
    EXPECT_EQ(calls, 8u) << "signed once more after the other content, and not for lists";
    EXPECT_EQ(message.set(PKCS7_CONTENT, {}), 0u);
    uint32_t len = 7;
    EXPECT_EQ(message->encode(message, nullptr, &len), 108u) << "nothing to sign";
}

TEST(SignedDataWritten, AllocationFaultsAreReported) {
    for (const bool detached : {false, true}) {
        const auto call = [&] {
            pkcs7::SignedData message;
            void *signer = new_signer("rsa1024", true);
            uint32_t len = 7;
            uint32_t result =
                signer == nullptr ? 100 : fill(&message, detached ? Octets{} : kShort);
            result =
                result != 0
                    ? result
                    : set_all(kSigned.set, &message,
                              {{PKCS7_SIGNEDDATA_CERTIFICATE, {0x30, 0}}, {PKCS7_CRL, {0x30, 0}}});
            result = result != 0 ? result : kSigned.attach(&message, signer);
            const bool attached = !message.parts.signers.empty();
            result = result != 0 ? result
                     : detached ? ZA_PKCS7_EncodePKCS7SignedDataPutData(&message, kShort.data(), 16,
                                                                        nullptr, &len)
                                : kSigned.encode(&message, nullptr, &len);
            EXPECT_TRUE(result == 0 || len == 7);
            EXPECT_EQ(attached ? 0u : ZA_PKCS7_DestoryEncodeSignerInfo(signer), 0u);
            return result;
        };
        EXPECT_EQ(call(), 0u);
        expect_allocation_faults_survived(call);
    }
}

TEST(SignedDataWritten, LargeMessagesTakeOneCopy) {
    constexpr size_t kSize = 8u << 20;
    const Octets content(kSize, 0x5A);
    const Message message(kSigned);
    EXPECT_EQ(fill(message, {}), 0u);
    attach(message, new_signer("rsa2048", true));
    EXPECT_LT(heap_peak([&] { put_data(message, content); }), 64u << 10);
    EXPECT_EQ(message.set(PKCS7_CONTENT, content), 0u);
    EXPECT_EQ(message.encode().size() / kSize, 1u);
    EXPECT_LT(heap_peak([&] { message.encode(); }), kSize + (64u << 10))
        << "the signer has its own";
    const Octets der = message.encode();
    const Message read(kSigned);
    EXPECT_LT(heap_peak([&] { EXPECT_EQ(read.decode(der), 0u); }), kSize + (64u << 10));
    EXPECT_EQ(verdict(read.signer(1)), "0/200");
}

TEST(SignedDataWritten, ManyCertificatesComeAndGo) {
    const NoLeak no_leak;
    constexpr size_t kMany = 100000;
    const Message message(kSigned);
    EXPECT_EQ(fill(message, {}), 0u);
    for (size_t i = 0; i < kMany; ++i) {
        ASSERT_EQ(message.set(PKCS7_SIGNEDDATA_CERTIFICATE, {0x30, 1, uint8_t(i)}), 0u);
    }
    const Octets der = message.encode();
    ASSERT_GT(der.size(), 3 * kMany);
    const Message read(kSigned);
    ASSERT_EQ(read.decode(der), 0u);
    EXPECT_EQ(read.counts(), "1 100000 0 0");
    EXPECT_EQ(read.get(PKCS7_SIGNEDDATA_CERTIFICATE, kMany), (Octets{0x30, 1, uint8_t(kMany - 1)}));
}

}  // namespace
}  // namespace za::test
