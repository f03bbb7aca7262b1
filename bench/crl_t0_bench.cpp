// What revocation lists of a million entries cost by themselves: time and memory.
#include <zacert.h>

#include "paired.hpp"

#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <malloc.h>
#include <mbedtls/x509_crl.h>
#include <memory>
#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509v3.h>
#include <random>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using bench::check;
using Der = std::vector<uint8_t>;

constexpr size_t kMillion = 1000000;
constexpr size_t kReasonEvery = 8;
constexpr std::string_view kIssuer = "Benchmark CA";

struct Revocation {
    std::array<uint8_t, 16> serial;
    int32_t date;
};

// Dates of three years in no order, as in lists that are sorted by serial number.
const std::vector<Revocation> &revocations() {
    static const std::vector<Revocation> all = [] {
        std::mt19937_64 random(1);
        std::vector<Revocation> made(kMillion);
        for (Revocation &revocation : made) {
            const std::array<uint64_t, 2> number{random(), random()};
            std::memcpy(revocation.serial.data(), number.data(), sizeof number);
            revocation.serial[0] = static_cast<uint8_t>(revocation.serial[0] & 0x7F) | 1;
            revocation.date = static_cast<int32_t>(1700000000 + random() % (3 * 365 * 86400));
        }
        return made;
    }();
    return all;
}

int32_t sign(const uint8_t *, uint32_t, uint8_t *out, uint32_t *out_len, void *) {
    *out_len = 256;
    if (out != nullptr) {
        std::memset(out, 1, *out_len);
    }
    return 0;
}

void set(void *crl, int32_t id, const void *value, size_t size) {
    check(ZACert_SetCrlAttributeChar(crl, id, static_cast<const uint8_t *>(value),
                                     static_cast<int32_t>(size)) == 0,
          "ZACert_SetCrlAttributeChar");
}

void set(void *crl, int32_t id, int32_t value) {
    check(ZACert_SetCrlAttributeInt(crl, id, value) == 0, "ZACert_SetCrlAttributeInt");
}

// Into a buffer of the caller's, which grows where it must; returns the length.
size_t build(size_t num_entries, Der &out) {
    constexpr std::array<uint8_t, 9> kSha256WithRsa{0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 1, 1, 11};
    constexpr uint8_t kKeyCompromise = 1;
    void *crl = nullptr;
    uint32_t len = 0;
    check(ZACert_CreateCrlEncodeCtx(&crl) == 0, "ZACert_CreateCrlEncodeCtx");
    set(crl, CRL_VERSION, 1);
    set(crl, CRL_INNER_SIGNATUREALGORITHM, kSha256WithRsa.data(), kSha256WithRsa.size());
    set(crl, CRL_OUTER_SIGNATUREALGORITHM, kSha256WithRsa.data(), kSha256WithRsa.size());
    set(crl, CRL_ISSUER_COMMONNAME, kIssuer.data(), kIssuer.size());
    set(crl, CRL_THISUPDATE, 1800000000);
    set(crl, CRL_NEXTUPDATE, 1810000000);
    for (size_t i = 0; i < num_entries; ++i) {
        const Revocation &revocation = revocations()[i];
        set(crl, CRL_CERT_SERIALNUMBER, revocation.serial.data(), revocation.serial.size());
        set(crl, CRL_REVOCATIONDATE, revocation.date);
        if (i % kReasonEvery == 0) {
            set(crl, CRLEX_CRLREASON, &kKeyCompromise, 1);
        }
    }
    check(ZACert_SetCrlSignFunc(crl, sign, nullptr, 0) == 0, "ZACert_SetCrlSignFunc");
    check(ZACert_EncodeCrl(crl, nullptr, &len) == 0, "ZACert_EncodeCrl");
    out.resize(std::max<size_t>(out.size(), len));
    check(ZACert_EncodeCrl(crl, out.data(), &len) == 0, "ZACert_EncodeCrl");
    check(ZACert_DestroyCrlEncodeCtx(crl) == 0, "ZACert_DestroyCrlEncodeCtx");
    return len;
}

Der build(size_t num_entries) {
    Der der;
    der.resize(build(num_entries, der));
    return der;
}

template <class Type, void (*kFree)(Type *)>
struct Freed {
    void operator()(Type *object) const { kFree(object); }
};
template <class Type, void (*kFree)(Type *)>
using Owned = std::unique_ptr<Type, Freed<Type, kFree>>;

EVP_PKEY *rsa_key() {
    static const Owned<EVP_PKEY, EVP_PKEY_free> key(EVP_RSA_gen(2048));
    return key.get();
}

Der build_with_openssl(size_t num_entries) {
    const Owned<X509_CRL, X509_CRL_free> crl(X509_CRL_new());
    const Owned<X509_NAME, X509_NAME_free> name(X509_NAME_new());
    const Owned<ASN1_TIME, ASN1_TIME_free> time(ASN1_TIME_set(nullptr, 1800000000));
    const Owned<ASN1_INTEGER, ASN1_INTEGER_free> serial(ASN1_INTEGER_new());
    const Owned<ASN1_ENUMERATED, ASN1_ENUMERATED_free> reason(ASN1_ENUMERATED_new());
    check(X509_NAME_add_entry_by_txt(name.get(), "CN", MBSTRING_ASC,
                                     reinterpret_cast<const unsigned char *>(kIssuer.data()),
                                     static_cast<int>(kIssuer.size()), -1, 0) == 1 &&
              X509_CRL_set_version(crl.get(), 1) == 1 &&
              X509_CRL_set_issuer_name(crl.get(), name.get()) == 1 &&
              X509_CRL_set1_lastUpdate(crl.get(), time.get()) == 1 &&
              X509_CRL_set1_nextUpdate(crl.get(), time.get()) == 1 &&
              ASN1_ENUMERATED_set(reason.get(), 1) == 1,
          "X509_CRL");
    for (size_t i = 0; i < num_entries; ++i) {
        const Revocation &revocation = revocations()[i];
        X509_REVOKED *entry = X509_REVOKED_new();
        check(ASN1_STRING_set(serial.get(), revocation.serial.data(), 16) == 1 &&
                  ASN1_TIME_set(time.get(), revocation.date) != nullptr &&
                  X509_REVOKED_set_serialNumber(entry, serial.get()) == 1 &&
                  X509_REVOKED_set_revocationDate(entry, time.get()) == 1 &&
                  (i % kReasonEvery != 0 ||
                   X509_REVOKED_add1_ext_i2d(entry, NID_crl_reason, reason.get(), 0, 0) == 1) &&
                  X509_CRL_add0_revoked(crl.get(), entry) == 1,
              "X509_REVOKED");
    }
    check(X509_CRL_sign(crl.get(), rsa_key(), EVP_sha256()) > 0, "X509_CRL_sign");
    uint8_t *octets = nullptr;
    const int len = i2d_X509_CRL(crl.get(), &octets);
    check(len > 0, "i2d_X509_CRL");
    Der der(octets, octets + len);
    OPENSSL_free(octets);
    return der;
}

const Der &list_of(size_t num_entries) {
    static const Der million = build(kMillion);
    static const Der small = build(kMillion / 100);
    return num_entries == kMillion ? million : small;
}

void *decode(const Der &der) {
    void *crl = nullptr;
    check(ZACert_CreateCrlDecodeCtx(&crl) == 0, "ZACert_CreateCrlDecodeCtx");
    check(ZACert_DecodeCrl(crl, der.data(), static_cast<uint32_t>(der.size())) == 0,
          "ZACert_DecodeCrl");
    return crl;
}

double decode_lists(size_t num_entries) {
    const Der &der = list_of(num_entries);
    return bench::nanoseconds([&] {
        for (size_t done = 0; done < kMillion; done += num_entries) {
            ZACert_DestroyCrlDecodeCtx(decode(der));
        }
    });
}

// Every serial number, from the first entry to behind the last.
double walk_lists(size_t num_entries) {
    void *crl = nullptr;
    double time = 0;
    for (size_t done = 0; done < kMillion; done += num_entries) {
        crl = decode(list_of(num_entries));
        time += bench::nanoseconds([&] {
            std::array<uint8_t, 32> serial;
            uint32_t len = 0;
            size_t count = 0;
            for (uint32_t more = 1; more > 0; ++count) {
                ZACert_GetCrlAttributeChar(crl, CRL_CERT_SERIALNUMBER, serial.data(), &len);
                ZACert_GetCrlAttributeChar(crl, CRL_CERT_NEXT, nullptr, &more);
            }
            check(count == num_entries, "CRL_CERT_NEXT");
        });
        ZACert_DestroyCrlDecodeCtx(crl);
    }
    return time;
}

double decode_with_mbedtls() {
    const Der &der = list_of(kMillion);
    return bench::nanoseconds([&] {
        mbedtls_x509_crl crl;
        mbedtls_x509_crl_init(&crl);
        check(mbedtls_x509_crl_parse_der(&crl, der.data(), der.size()) == 0,
              "mbedtls_x509_crl_parse_der");
        mbedtls_x509_crl_free(&crl);
    });
}

double decode_with_openssl() {
    const Der &der = list_of(kMillion);
    return bench::nanoseconds([&] {
        const uint8_t *at = der.data();
        const Owned<X509_CRL, X509_CRL_free> crl(
            d2i_X509_CRL(nullptr, &at, static_cast<long>(der.size())));
        check(crl != nullptr, "d2i_X509_CRL");
    });
}

double build_lists(size_t num_entries) {
    static Der buffer(list_of(kMillion).size());
    return bench::nanoseconds([&] {
        for (size_t done = 0; done < kMillion; done += num_entries) {
            build(num_entries, buffer);
        }
    });
}

template <class Ours, class Theirs>
void compare(benchmark::State &state, double most, const char *peer, const Ours &ours,
             const Theirs &theirs) {
    list_of(kMillion);
    rsa_key();
    bench::compare(state, {most, "entry", kMillion, peer}, ours, theirs);
}

void decode_against_mbedtls(benchmark::State &state) {
    compare(
        state, 1.0, "mbedTLS", [] { return decode_lists(kMillion); }, decode_with_mbedtls);
}

void decode_against_openssl(benchmark::State &state) {
    compare(
        state, 0.15, "OpenSSL", [] { return decode_lists(kMillion); }, decode_with_openssl);
}

void decode_against_short_lists(benchmark::State &state) {
    compare(
        state, 1.5, "10,000 entries", [] { return decode_lists(kMillion); },
        [] { return decode_lists(kMillion / 100); });
}

void walk_against_short_lists(benchmark::State &state) {
    compare(
        state, 1.5, "10,000 entries", [] { return walk_lists(kMillion); },
        [] { return walk_lists(kMillion / 100); });
}

void build_against_openssl(benchmark::State &state) {
    const auto theirs = [] { return bench::nanoseconds([] { build_with_openssl(kMillion); }); };
    compare(
        state, 0.30, "OpenSSL", [] { return build_lists(kMillion); }, theirs);
}

void build_against_short_lists(benchmark::State &state) {
    compare(
        state, 1.2, "100,000 entries", [] { return build_lists(kMillion); },
        [] { return build_lists(kMillion / 10); });
}

double peak() {
    rusage usage{};
    check(getrusage(RUSAGE_SELF, &usage) == 0, "getrusage");
    return static_cast<double>(usage.ru_maxrss) * 1024;
}

// How far `work` raises the resident memory of a process of its own.
double peak_of(const std::function<void()> &work) {
    std::array<int, 2> ends{};
    check(pipe(ends.data()) == 0, "pipe");
    // Free memory that the process still holds would hide what is taken.
    malloc_trim(0);
    const pid_t child = fork();
    if (child == 0) {
        const double before = peak();
        work();
        const double raised = peak() - before;
        _exit(write(ends[1], &raised, sizeof raised) == sizeof raised ? 0 : 1);
    }
    double raised = 0;
    int status = 0;
    check(waitpid(child, &status, 0) == child && status == 0, "child");
    check(read(ends[0], &raised, sizeof raised) == sizeof raised, "read");
    close(ends[0]);
    close(ends[1]);
    return raised;
}

void memory(benchmark::State &state, double most, const std::function<void()> &work) {
    const auto size = static_cast<double>(list_of(kMillion).size());
    double ratio = 0;
    for (auto _ : state) {
        ratio = peak_of(work) / size;
        state.SetIterationTime(1e-9);
    }
    std::array<char, 80> text{};
    std::snprintf(text.data(), text.size(), "peak %.2f times the DER, bar %.1f: %s", ratio, most,
                  ratio <= most ? "met" : "not met");
    state.SetLabel(text.data());
}

void decode_memory(benchmark::State &state) {
    memory(state, 2.5, [] { decode(list_of(kMillion)); });
}

void build_memory(benchmark::State &state) {
    static Der buffer(list_of(kMillion).size());
    memory(state, 4.0, [] { build(kMillion, buffer); });
}

// A repetition of these takes a second, so there are fewer.
constexpr int kLongPairs = 21;

#define ZA_LONG_BENCHMARK(function, pairs) \
    BENCHMARK(function)->Iterations(pairs)->UseManualTime()->Unit(benchmark::kNanosecond)

ZA_LONG_BENCHMARK(decode_memory, 1);
ZA_LONG_BENCHMARK(build_memory, 1);
ZA_LONG_BENCHMARK(decode_against_mbedtls, kLongPairs);
ZA_LONG_BENCHMARK(decode_against_openssl, kLongPairs);
ZA_LONG_BENCHMARK(decode_against_short_lists, kLongPairs);
ZA_LONG_BENCHMARK(walk_against_short_lists, kLongPairs);
ZA_LONG_BENCHMARK(build_against_openssl, kLongPairs);
ZA_LONG_BENCHMARK(build_against_short_lists, kLongPairs);

}  // namespace

int main(int argc, char **argv) {
    return bench::run(argc, argv);
}
