#include "pkcs7/za_pkcs7_digest_info.hpp"

#include "names/za_low_algorithm.hpp"
#include "names/za_low_oid.hpp"
#include "pkcs7/za_pkcs7_part.hpp"
#include "runtime/trace.hpp"

#include <algorithm>
#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_pkcs7_base", {za::pkcs7::kArrow}};

}  // namespace

namespace za::pkcs7 {
namespace {

struct Sm2Row {
    const oid::Oid &algorithm;
    const char *line;
};

constexpr std::array kSm2Rows{
    Sm2Row{oid::kSm2WithSm3, "======>ZI_MakeDigestInfo Alg Is SM3WithSM2"},
    Sm2Row{oid::kSm2WithSha1, "======>ZI_MakeDigestInfo Alg Is Sha1WithSM2"},
    Sm2Row{oid::kSm2WithSha256, "======>ZI_MakeDigestInfo Alg Is Sha256WithSM2"},
};

const Sm2Row *find_sm2(Bytes algorithm) {
    const auto row = std::ranges::find_if(
        kSm2Rows, [&](const Sm2Row &candidate) { return equal(candidate.algorithm, algorithm); });
    return row == kSm2Rows.end() ? nullptr : &*row;
}

// DigestInfo ::= SEQUENCE { digestAlgorithm AlgorithmIdentifier, digest OCTET STRING }
Status wrap_digest(Bytes algorithm, Bytes digest, Octets &out) {
    asn1::Builder info;
    info.sequence([&] {
        names::write_algorithm(algorithm, info);
        info.octet_string(digest);
    });
    return info.finish(out);
}

}  // namespace

bool is_sm2_signature(Bytes algorithm) {
    return find_sm2(algorithm) != nullptr;
}

Status make_digest_info(Bytes algorithm, Bytes digest, Octets &out) {
    const Sm2Row *sm2 = find_sm2(algorithm);
    ZA_TRY_AS("------>ZAPR_MALLOC",
              sm2 != nullptr ? out.assign(digest) : wrap_digest(algorithm, digest, out));
    if (sm2 != nullptr) {
        trace.note(sm2->line);
    }
    return Status::ok;
}

}  // namespace za::pkcs7

using za::Status;

uint32_t ZI_MakeDigestInfo(const ZA_AlgorithmIdentifier *alg, const uint8_t *digest,
                           uint32_t digestLen, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(alg, digest, outLen));
        const za::Bytes algorithm = za::bytes_of(alg->parameters);
        if (algorithm.empty() || !za::pkcs7::has_octets(digest, digestLen)) {
            return trace.fail(Status::length);
        }
        za::Octets info;
        ZA_PASS(za::pkcs7::make_digest_info(algorithm, {digest, digestLen}, info));
        za::hand_out(info.bytes(), out, outLen);
        return Status::ok;
    });
}
