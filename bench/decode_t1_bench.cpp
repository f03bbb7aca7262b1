// The decoding call alone, with the trace it writes: both libraries' objects are created or
// destroyed outside the measured part where the call leaves that to the caller.
#include "certificates.hpp"
#include "log.hpp"

namespace {

double ours() {
    std::vector<void *> contexts;
    for (size_t i = 0; i < bench::bundle().size(); ++i) {
        contexts.push_back(bench::create_context());
    }
    const double spent = bench::nanoseconds([&] {
        for (size_t i = 0; i < contexts.size(); ++i) {
            bench::decode(contexts[i], bench::bundle()[i]);
        }
    });
    for (void *context : contexts) {
        bench::destroy_context(context);
    }
    return spent;
}

double with_openssl() {
    std::vector<X509 *> certificates(bench::bundle().size());
    const double spent = bench::nanoseconds([&] {
        for (size_t i = 0; i < certificates.size(); ++i) {
            certificates[i] = bench::decode_openssl(bench::bundle()[i]);
        }
    });
    for (X509 *certificate : certificates) {
        X509_free(certificate);
    }
    return spent;
}

void decode_call_against_openssl(benchmark::State &state) {
    if (!bench::log_opens()) {
        state.SkipWithError("the trace log cannot be written");
        return;
    }
    bench::compare(state, bench::per_certificate(0.25, "OpenSSL"), ours, with_openssl);
}

ZA_PAIRED_BENCHMARK(decode_call_against_openssl);

}  // namespace

int main(int argc, char **argv) {
    return bench::run(argc, argv);
}
