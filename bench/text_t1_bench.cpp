// Base64 and PEM against the libraries that programs use for them. These functions write no trace.
#include <zacert.h>

#include "paired.hpp"

#include <gnutls/gnutls.h>
#include <memory>
#include <openssl/evp.h>
#include <openssl/pem.h>

namespace {

constexpr size_t kOctets = 1 << 20;
constexpr const char *kHeader = "-----BEGIN CERTIFICATE-----";
constexpr const char *kFooter = "-----END CERTIFICATE-----";

// One repetition works on 1 MiB, so times are per MiB.
bench::Bar per_mebibyte(double most_ratio, const char *peer) {
    return {most_ratio, "MiB", 1, peer};
}

const std::vector<uint8_t> &octets() {
    static const std::vector<uint8_t> made = [] {
        std::vector<uint8_t> fresh(kOctets);
        uint32_t state = 1;
        for (uint8_t &octet : fresh) {
            state = state * 1664525 + 1013904223;
            octet = static_cast<uint8_t>(state >> 24);
        }
        return fresh;
    }();
    return made;
}

// What the peer writes is what both read.
const std::string &base64() {
    static const std::string made = [] {
        std::string fresh(kOctets / 3 * 4 + 5, '\0');
        const int size = EVP_EncodeBlock(reinterpret_cast<unsigned char *>(fresh.data()),
                                         octets().data(), static_cast<int>(kOctets));
        fresh.resize(static_cast<size_t>(size));
        return fresh;
    }();
    return made;
}

const std::string &pem() {
    static const std::string made = [] {
        const std::unique_ptr<BIO, decltype(&BIO_free)> file(BIO_new(BIO_s_mem()), BIO_free);
        char *text = nullptr;
        bench::check(PEM_write_bio(file.get(), "CERTIFICATE", "", octets().data(),
                                   static_cast<long>(kOctets)) > 0,
                     "PEM_write_bio");
        const auto size = static_cast<size_t>(BIO_get_mem_data(file.get(), &text));
        return std::string(text, size);
    }();
    return made;
}

void encode_against_openssl(benchmark::State &state) {
    std::vector<char> out(base64().size() + 1);
    const auto ours = [&] {
        return bench::nanoseconds([&] {
            bench::check(base64_encode(octets().data(), kOctets, out.data()) == 0, "base64_encode");
            benchmark::ClobberMemory();
        });
    };
    const auto theirs = [&] {
        return bench::nanoseconds([&] {
            bench::check(EVP_EncodeBlock(reinterpret_cast<unsigned char *>(out.data()),
                                         octets().data(), static_cast<int>(kOctets)) > 0,
                         "EVP_EncodeBlock");
            benchmark::ClobberMemory();
        });
    };
    bench::compare(state, per_mebibyte(0.75, "OpenSSL"), ours, theirs);
}

void decode_against_openssl(benchmark::State &state) {
    std::vector<uint8_t> out(base64().size());
    const auto ours = [&] {
        return bench::nanoseconds([&] {
            uint32_t size = 0;
            bench::check(base64_decode(base64().c_str(), out.data(), &size) == 0 && size == kOctets,
                         "base64_decode");
            benchmark::ClobberMemory();
        });
    };
    const auto theirs = [&] {
        return bench::nanoseconds([&] {
            bench::check(EVP_DecodeBlock(out.data(),
                                         reinterpret_cast<const unsigned char *>(base64().data()),
                                         static_cast<int>(base64().size())) > 0,
                         "EVP_DecodeBlock");
            benchmark::ClobberMemory();
        });
    };
    bench::compare(state, per_mebibyte(0.90, "OpenSSL"), ours, theirs);
}

// The peers below give memory of their own, so ours is given some afresh too.

void pem_writing_against_gnutls(benchmark::State &state) {
    const auto ours = [] {
        return bench::nanoseconds([] {
            uint32_t size = 0;
            const auto write = [&](char *out) {
                return DER2PEM_data_format(octets().data(), kOctets, out, &size, kHeader, kFooter);
            };
            bench::check(write(nullptr) == 0, "DER2PEM_data_format");
            const auto out = std::make_unique_for_overwrite<char[]>(size + 1);
            bench::check(write(out.get()) == 0, "DER2PEM_data_format");
            benchmark::DoNotOptimize(out.get());
        });
    };
    const auto theirs = [] {
        return bench::nanoseconds([] {
            const gnutls_datum_t in{const_cast<unsigned char *>(octets().data()), kOctets};
            gnutls_datum_t out{};
            bench::check(gnutls_pem_base64_encode2("CERTIFICATE", &in, &out) == 0,
                         "gnutls_pem_base64_encode2");
            benchmark::DoNotOptimize(out.data);
            gnutls_free(out.data);
        });
    };
    bench::compare(state, per_mebibyte(0.65, "GnuTLS"), ours, theirs);
}

void pem_reading_against_openssl(benchmark::State &state) {
    const auto ours = [] {
        return bench::nanoseconds([] {
            uint32_t size = 0;
            const auto out = std::make_unique_for_overwrite<uint8_t[]>(pem().size() / 4 * 3);
            bench::check(PEM2DER_data_format(pem().data(), static_cast<uint32_t>(pem().size()),
                                             out.get(), &size) == 0 &&
                             size == kOctets,
                         "PEM2DER_data_format");
            benchmark::DoNotOptimize(out.get());
        });
    };
    const auto theirs = [] {
        return bench::nanoseconds([] {
            const std::unique_ptr<BIO, decltype(&BIO_free)> file(
                BIO_new_mem_buf(pem().data(), static_cast<int>(pem().size())), BIO_free);
            char *name = nullptr;
            char *header = nullptr;
            unsigned char *out = nullptr;
            long size = 0;
            bench::check(PEM_read_bio(file.get(), &name, &header, &out, &size) == 1 &&
                             size == static_cast<long>(kOctets),
                         "PEM_read_bio");
            OPENSSL_free(name);
            OPENSSL_free(header);
            OPENSSL_free(out);
        });
    };
    bench::compare(state, per_mebibyte(0.45, "OpenSSL"), ours, theirs);
}

ZA_PAIRED_BENCHMARK(encode_against_openssl);
ZA_PAIRED_BENCHMARK(decode_against_openssl);
ZA_PAIRED_BENCHMARK(pem_writing_against_gnutls);
ZA_PAIRED_BENCHMARK(pem_reading_against_openssl);

}  // namespace

int main(int argc, char **argv) {
    return bench::run(argc, argv);
}
