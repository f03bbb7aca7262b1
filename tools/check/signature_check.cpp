#include "check/signature_check.hpp"

#include <zacert.h>
#include <zacert/gm.h>

#include "base/der.hpp"
#include "base/failure.hpp"
#include "check/evp_verify.hpp"
#include "objects/oid_names.hpp"
#include "objects/signed_object.hpp"
#include "objects/subject_key.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>

namespace tool {

namespace {

constexpr size_t kMaxLibraryBits = 2048;

struct RsaAlgorithm {
    std::string_view id;
    int32_t digest;  // the library's number
    std::string_view digest_id;
};

constexpr auto kRsaAlgorithms = std::to_array<RsaAlgorithm>({
    {"1.2.840.113549.1.1.5", 7, "1.3.14.3.2.26"},
    {"1.2.840.113549.1.1.11", 9, "2.16.840.1.101.3.4.2.1"},
    {"1.2.840.113549.1.1.12", 11, "2.16.840.1.101.3.4.2.2"},
    {"1.2.840.113549.1.1.13", 13, "2.16.840.1.101.3.4.2.3"},
});

constexpr auto kBrokenAlgorithms = std::to_array<std::string_view>({
    "1.2.840.113549.1.1.2",  // MD2
    "1.2.840.113549.1.1.4",  // MD5
});

constexpr auto kNotTrusted = ": others can make such signatures; none is trusted";

const RsaAlgorithm *rsa_algorithm(std::string_view id) {
    const auto row = std::find_if(kRsaAlgorithms.begin(), kRsaAlgorithms.end(),
                                  [id](const RsaAlgorithm &entry) { return entry.id == id; });
    return row == kRsaAlgorithms.end() ? nullptr : &*row;
}

int32_t length_of(View octets) {
    return static_cast<int32_t>(octets.size());
}

uint32_t size_of(View octets) {
    return static_cast<uint32_t>(octets.size());
}

// The library's functions for one kind of object.
struct Verifiers {
    std::function<uint32_t()> rsa;
    std::function<uint32_t()> ecc;
};

ZA_RSArefPublicKey rsa_record(const SubjectKey &key) {
    ZA_RSAPublicKey plain{};
    check(ZA_Decode_PublicKey(&plain, key.value.data(), length_of(key.value)));
    ZA_RSArefPublicKey record{};
    record.bits = static_cast<uint32_t>(rsa_bits(key));
    std::copy(std::begin(plain.modulus), std::end(plain.modulus), std::begin(record.modulus));
    std::copy(std::begin(plain.exponent), std::end(plain.exponent), std::begin(record.exponent));
    return record;
}

Octets digest_info(const RsaAlgorithm &algorithm, View signed_part) {
    std::array<uint8_t, 64> digest{};
    uint32_t length = digest.size();
    check(ZA_PKCS7_DigestMessage(algorithm.digest, signed_part.data(), length_of(signed_part),
                                 digest.data(), &length));
    return fetched([&](uint8_t *out, uint32_t *out_len) {
        return EnCodeThums(
            algorithm.digest_id.data(),
            size_of(View(reinterpret_cast<const uint8_t *>(algorithm.digest_id.data()),
                         algorithm.digest_id.size())),
            digest.data(), length, out, out_len);
    });
}

// The library looks at the beginning of the opened block; octets behind it would let forgers in who
// know a key with a small exponent.
bool whole_block_matches(const RsaAlgorithm &algorithm, const SubjectKey &key,
                         const SignedObject &object) {
    const ZA_RSArefPublicKey record = rsa_record(key);
    std::array<uint8_t, 256> block{};
    uint32_t length = block.size();
    check(ZA_PKCS7_RSAPublicDecrypt(block.data(), &length, object.signature.data(),
                                    size_of(object.signature), &record));
    const Octets expected = digest_info(algorithm, object.signed_part);
    return std::equal(block.begin(), block.begin() + std::min<size_t>(length, block.size()),
                      expected.begin(), expected.end());
}

SignatureVerdict verdict(uint32_t result, const std::string &name) {
    return result == 0 ? SignatureVerdict{true, name}
                       : SignatureVerdict{false, name + ": " + LibraryError(result).what()};
}

SignatureVerdict check_rsa(const RsaAlgorithm &algorithm, const SubjectKey &key,
                           const SignedObject &object, const Verifiers &verifiers,
                           const std::string &name) {
    SignatureVerdict result = verdict(verifiers.rsa(), name);
    if (result.good && !whole_block_matches(algorithm, key, object)) {
        return {false, name + ": there are octets behind the digest in the opened block"};
    }
    return result;
}

bool library_takes_curve(KeyKind kind, std::string_view algorithm) {
    return (kind == KeyKind::p256 && algorithm == "1.2.840.10045.4.3.2") ||
           (kind == KeyKind::sm2 && algorithm == "1.2.156.10197.1.501");
}

bool is_broken(std::string_view algorithm) {
    return std::find(kBrokenAlgorithms.begin(), kBrokenAlgorithms.end(), algorithm) !=
           kBrokenAlgorithms.end();
}

SignatureVerdict check_by_libcrypto(View key_info, const SignedObject &object,
                                    const std::string &name) {
    const EvpVerdict outcome = evp_verify(key_info, object);
    return {outcome == EvpVerdict::good,
            name + (outcome == EvpVerdict::good  ? ", verified by libcrypto alone"
                    : outcome == EvpVerdict::bad ? ": the signature does not verify (libcrypto)"
                                                 : ": key and algorithm are not supported")};
}

SignatureVerdict check_by(View key_info, View der, const Verifiers &verifiers) {
    const SignedObject object = signed_object(der);
    const std::string name = label(named(object.algorithm_id));
    if (is_broken(object.algorithm_id)) {
        return {false, name + kNotTrusted};
    }
    const SubjectKey key = subject_key(key_info);
    const RsaAlgorithm *rsa = rsa_algorithm(object.algorithm_id);
    if (rsa != nullptr && key.kind == KeyKind::rsa && rsa_bits(key) <= kMaxLibraryBits) {
        return check_rsa(*rsa, key, object, verifiers, name);
    }
    if (library_takes_curve(key.kind, object.algorithm_id)) {
        return verdict(verifiers.ecc(), name);
    }
    return check_by_libcrypto(key_info, object, name);
}

SignatureVerdict guarded(const std::function<SignatureVerdict()> &body) {
    try {
        return body();
    } catch (const LibraryError &error) {
        return {false, error.what()};
    }
}

constexpr auto kTwoAlgorithms = "the algorithms inside and outside of the signed part differ";

}  // namespace

SignatureVerdict check_certificate_signature(View issuer, View certificate, Moment moment) {
    return guarded([&]() -> SignatureVerdict {
        if (!same_octets(certificate_parts(certificate).algorithm,
                         signed_object(certificate).algorithm)) {
            return {false, kTwoAlgorithms};
        }
        const View key_info = certificate_parts(issuer).key;
        const SubjectKey key = subject_key(key_info);
        // The verifiers of whole certificates also want the certificate's validity within the
        // issuer's, which renewed issuers do not give, and names of the same string types; then the
        // signature alone decides. Times and names are checked apart from it.
        const auto whole_or_key = [&](uint32_t whole, const std::function<uint32_t()> &by_key) {
            return whole == ZACERT_TimeOutRangeErr || whole == ZACERT_DnNotEqualErr ? by_key()
                                                                                    : whole;
        };
        const auto rsa_by_key = [&] {
            return VerifyUserCertByCACert(certificate.data(), length_of(certificate),
                                          key.value.data(), length_of(key.value));
        };
        const auto ecc_by_key = [&] {
            return ZA_ECC_VerifyCertForSpeed(key.value.data(), size_of(key.value),
                                             certificate.data(), size_of(certificate),
                                             zacert_gm_verify);
        };
        const bool present = moment == Moment::present;
        return check_by(
            key_info, certificate,
            {[&] {
                 return present
                            ? whole_or_key(ZA_VerifyCert(issuer.data(), size_of(issuer),
                                                         certificate.data(), size_of(certificate)),
                                           rsa_by_key)
                            : rsa_by_key();
             },
             [&] {
                 return present
                            ? whole_or_key(ZA_ECC_VerifyCert(
                                               issuer.data(), size_of(issuer), certificate.data(),
                                               size_of(certificate), zacert_gm_verify),
                                           ecc_by_key)
                            : ecc_by_key();
             }});
    });
}

SignatureVerdict check_crl_signature(View issuer, View crl) {
    return guarded([&]() -> SignatureVerdict {
        if (!same_octets(crl_parts(crl).algorithm, signed_object(crl).algorithm)) {
            return {false, kTwoAlgorithms};
        }
        return check_by(
            certificate_parts(issuer).key, crl,
            {[&] { return ZA_VerifyCrl(issuer.data(), size_of(issuer), crl.data(), size_of(crl)); },
             [&] {
                 return ZA_ECC_VerifyCrl(issuer.data(), size_of(issuer), crl.data(), size_of(crl),
                                         zacert_gm_verify);
             }});
    });
}

SignatureVerdict check_request_signature(View request) {
    return guarded([&] {
        return check_by(
            request_parts(request).key, request,
            {[&] { return ZA_VerifyCsr_Sign(request.data(), length_of(request)); },
             [&] { return ZA_VerifyECCsr(request.data(), length_of(request), zacert_gm_verify); }});
    });
}

SignatureVerdict check_octets_signature(View key_info, const SignedObject &object) {
    const std::string name = label(named(object.algorithm_id));
    return is_broken(object.algorithm_id) ? SignatureVerdict{false, name + kNotTrusted}
                                          : check_by_libcrypto(key_info, object, name);
}

}  // namespace tool
