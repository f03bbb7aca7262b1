#include "crypto/za_crypt_pkcs7_rsa.hpp"

#include <algorithm>
#include <bit>
#include <memory>
#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/err.h>
#include <openssl/params.h>

namespace za::crypto {
namespace {

// A field of a record, and what libcrypto calls the number in it.
template <class Octet>
struct Number {
    const char *name;
    std::span<Octet> field;
};

template <class Key>
using OctetOf = std::remove_reference_t<decltype(*std::declval<Key &>().modulus)>;

template <class Key>
auto public_numbers(Key &key) {
    return std::array<Number<OctetOf<Key>>, 2>{{
        {OSSL_PKEY_PARAM_RSA_N, key.modulus},
        {OSSL_PKEY_PARAM_RSA_E, key.exponent},
    }};
}

constexpr size_t kNumbersWithoutPrimes = 3;

template <class Key>
auto private_numbers(Key &key) {
    return std::array<Number<OctetOf<Key>>, 8>{{
        {OSSL_PKEY_PARAM_RSA_N, key.modulus},
        {OSSL_PKEY_PARAM_RSA_E, key.publicExponent},
        {OSSL_PKEY_PARAM_RSA_D, key.exponent},
        {OSSL_PKEY_PARAM_RSA_FACTOR1, key.prime1},
        {OSSL_PKEY_PARAM_RSA_FACTOR2, key.prime2},
        {OSSL_PKEY_PARAM_RSA_EXPONENT1, key.primeExponent1},
        {OSSL_PKEY_PARAM_RSA_EXPONENT2, key.primeExponent2},
        {OSSL_PKEY_PARAM_RSA_COEFFICIENT1, key.coefficient},
    }};
}

bool is_zero(Bytes field) {
    return std::ranges::all_of(field, [](uint8_t octet) { return octet == 0; });
}

class QuietErrors {
  public:
    QuietErrors() { ERR_set_mark(); }
    ~QuietErrors() { ERR_pop_to_mark(); }
    QuietErrors(const QuietErrors &) = delete;
    QuietErrors &operator=(const QuietErrors &) = delete;
};

struct FreeContext {
    void operator()(EVP_PKEY_CTX *context) const { EVP_PKEY_CTX_free(context); }
};
using Context = std::unique_ptr<EVP_PKEY_CTX, FreeContext>;

Context make_loader() {
    Context context(EVP_PKEY_CTX_new_from_name(nullptr, "RSA", nullptr));
    const bool ready = context != nullptr && EVP_PKEY_fromdata_init(context.get()) == 1;
    return ready ? std::move(context) : nullptr;
}

// Finding RSA by its name is a good third of what loading a public key costs, so every thread keeps
// what it found.
EVP_PKEY_CTX *loader() {
    thread_local Context context;
    if (context == nullptr) {
        context = make_loader();
    }
    return context.get();
}

// The octets of a number in the order in which the machine keeps numbers.
void reverse_where_little(Bytes big_endian, uint8_t *out) {
    if constexpr (std::endian::native == std::endian::little) {
        std::ranges::reverse_copy(big_endian, out);
    } else {
        std::ranges::copy(big_endian, out);
    }
}

EVP_PKEY *load_numbers(std::span<const Number<const uint8_t>> numbers, int selection) {
    EVP_PKEY_CTX *context = loader();
    if (context == nullptr) {
        return nullptr;
    }
    Wiped<std::array<uint8_t, sizeof(ZA_RSArefPrivateKey)>> native;
    std::array<OSSL_PARAM, 9> params;
    uint8_t *to = native.value.data();
    auto param = params.begin();
    for (const auto &[name, field] : numbers) {
        reverse_where_little(field, to);
        *param++ = OSSL_PARAM_construct_BN(name, to, field.size());
        to += field.size();
    }
    *param = OSSL_PARAM_construct_end();
    EVP_PKEY *key = nullptr;
    return EVP_PKEY_fromdata(context, &key, selection, params.data()) == 1 ? key : nullptr;
}

bool store_number(const EVP_PKEY *key, const Number<uint8_t> &number) {
    BIGNUM *value = nullptr;
    const auto width = static_cast<int>(number.field.size());
    const bool stored = EVP_PKEY_get_bn_param(key, number.name, &value) == 1 &&
                        BN_bn2binpad(value, number.field.data(), width) == width;
    BN_clear_free(value);
    return stored;
}

bool store_numbers(const EVP_PKEY *key, std::span<const Number<uint8_t>> numbers) {
    return std::ranges::all_of(numbers,
                               [&](const auto &number) { return store_number(key, number); });
}

}  // namespace

bool RsaKey::available() {
    const QuietErrors quiet;
    return loader() != nullptr;
}

bool RsaKey::generate(unsigned bits) {
    const QuietErrors quiet;
    key_ = EVP_PKEY_Q_keygen(nullptr, nullptr, "RSA", size_t{bits});
    return key_ != nullptr;
}

bool RsaKey::load(const ZA_RSArefPublicKey *record) {
    const QuietErrors quiet;
    key_ = record == nullptr ? nullptr : load_numbers(public_numbers(*record), EVP_PKEY_PUBLIC_KEY);
    return key_ != nullptr;
}

bool RsaKey::load(const ZA_RSArefPrivateKey *record) {
    const QuietErrors quiet;
    if (record == nullptr || is_zero(record->exponent)) {
        return false;
    }
    const auto all = private_numbers(*record);
    const std::span numbers(all);
    const bool primes = std::ranges::none_of(numbers.subspan(kNumbersWithoutPrimes),
                                             [](const auto &x) { return is_zero(x.field); });
    key_ = load_numbers(primes ? numbers : numbers.first(kNumbersWithoutPrimes), EVP_PKEY_KEYPAIR);
    return key_ != nullptr;
}

bool RsaKey::store(ZA_RSArefPublicKey &record) const {
    const QuietErrors quiet;
    record.bits = static_cast<uint32_t>(EVP_PKEY_get_bits(key_));
    return store_numbers(key_, public_numbers(record));
}

bool RsaKey::store(ZA_RSArefPrivateKey &record) const {
    const QuietErrors quiet;
    record.bits = static_cast<uint32_t>(EVP_PKEY_get_bits(key_));
    return store_numbers(key_, private_numbers(record));
}

bool RsaKey::run(const RsaOperation &operation, Bytes in, RsaBlock &out) const {
    const QuietErrors quiet;
    static char mode[] = OSSL_PKEY_RSA_PAD_MODE_PKCSV15;
    static const OSSL_PARAM padding[] = {
        OSSL_PARAM_utf8_string(OSSL_PKEY_PARAM_PAD_MODE, mode, sizeof mode - 1),
        OSSL_PARAM_END,
    };
    const Context context(EVP_PKEY_CTX_new_from_pkey(nullptr, key_, nullptr));
    out.size = out.octets.size();
    return context != nullptr && operation.prepare(context.get(), padding) == 1 &&
           operation.run(context.get(), out.octets.data(), &out.size, in.data(), in.size()) == 1;
}

}  // namespace za::crypto
