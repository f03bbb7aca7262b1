#include "za_crypt_calls.hpp"

#include "crypto/za_crypt_pkcs12_cipher.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <openssl/err.h>

namespace za::test {
namespace {

#define ZA_NAMED(function) \
    { #function, callable(function) }

const std::map<std::string, Callable> kFunctions{
    ZA_NAMED(ZA_PKCS7_RSAPublicEncrypt),
    ZA_NAMED(ZA_PKCS7_RSAPublicDecrypt),
    ZA_NAMED(ZA_PKCS7_RSAPrivateEncrypt),
    ZA_NAMED(ZA_PKCS7_RSAPrivateDecrypt),
    ZA_NAMED(ZA_PKCS7_DigestMessage),
    ZA_NAMED(ZA_PKCS7_SignedData),
    ZA_NAMED(ZA_PKCS7_VerifySignature),
    ZA_NAMED(ZA_PKCS12_ACIItoUNI),
    ZA_NAMED(ZA_PKCS12_GenRandomFromPassword),
    ZA_NAMED(ZA_PKCS12_PbeWithDigestAlgoAndEncrypt),
    ZA_NAMED(ZA_PKCS12_PbeWithDigestAlgoAndDecrypt),
    ZA_NAMED(ZA_PKCS12_DESEncrypt),
    ZA_NAMED(ZA_PKCS12_DESDecrypt),
    ZA_NAMED(ZA_PKCS12_AESEncrypt),
    ZA_NAMED(ZA_PKCS12_AESDecrypt),
    ZA_NAMED(ZA_PKCS12_HMAC),
    ZA_NAMED(ZA_PKCS12_AddPad),
    ZA_NAMED(ZA_PKCS12_DecPad),
    ZA_NAMED(ZA_DigestFunc_Ref),
    ZA_NAMED(ZA_PrivateKeyEncFunc_Ref),
    ZA_NAMED(ZA_PrivateKeyDecryptFunc_Ref),
    ZA_NAMED(ZA_PublicKeyDecryptFunc_Ref),
    ZA_NAMED(ZA_PublicKeyEncryptFunc_Ref),
    ZA_NAMED(ZA_DecryptFunc_Ref),
    ZA_NAMED(ZA_EncryptFunc_Ref),
    ZA_NAMED(ZA_HMACFunc_Ref),
};

constexpr uint32_t kUntouched = 77;
constexpr size_t kRoom = 9000;

bool is_failure(const std::string &outcome) {
    return outcome.find(':') != outcome.npos;
}

// Octets as hex, or "101: line; line". A failure must leave its outputs alone, but for a length of
// -1, which stands behind the result then; a success writes no more than it says.
std::string outcome(const Callable &function, const Row &cells) {
    static const Octets kBlank(kRoom, 0xA5);
    Octets out = kBlank;
    uint32_t len = kUntouched;
    const TraceRecord record;
    ERR_clear_error();
    const uint32_t result = function.call(cells, out.data(), &len);
    EXPECT_EQ(ERR_peek_error(), 0u) << "left in libcrypto's queue";
    if (result == 0 && !function.writes_octets) {
        return std::to_string(len);
    }
    const size_t written = result == 0 ? len : 0;
    EXPECT_EQ(memcmp(out.data() + written, kBlank.data(), kRoom - written), 0) << "beyond the end";
    if (result == 0) {
        return to_hex(std::span(out).first(written));
    }
    std::string text = std::to_string(result) + (len == kUntouched ? ":" : " -1:");
    EXPECT_TRUE(len == kUntouched || len == 0xFFFFFFFF);
    for (const std::string &line : record.lines()) {
        text += line.starts_with("=") ? "" : (text.ends_with(":") ? " " : "; ") + line;
    }
    return text;
}

// What holds for every good call: a NULL output asks for the length or is refused, a NULL place for
// the length is refused, no failing allocation does harm.
void expect_sound(const std::string &name, const Row &cells, const std::string &expected) {
    const Callable &function = kFunctions.at(name);
    const bool aes = name.starts_with("ZA_PKCS12_AES");
    const auto size = uint32_t(from_hex(expected).size());
    static const Octets kBlank(kRoom, 0xA5);
    Octets out = kBlank;
    uint32_t len = kUntouched;
    if (!function.gives_number) {
        EXPECT_EQ(function.call(cells, nullptr, &len), size == 0 ? 0u : 126u);
    } else {
        EXPECT_EQ(function.call(cells, nullptr, &len), aes ? 108u : 0u);
        // Of what an RSA block holds only its own size is known before.
        EXPECT_TRUE(aes ? len == kUntouched : len == size || len == 128 || len == 256) << len;
        EXPECT_EQ(function.call(cells, out.data(), nullptr),
                  name == "ZA_PKCS12_ACIItoUNI" ? 0u : 108u);
    }
    expect_allocation_faults_survived([&] {
        const uint32_t result = function.call(cells, out.data(), &len);
        return result == 126 ? 100 : result;  // the only code of the key derivation
    });
}

void expect_outcome(const std::string &name, const Row &cells, const std::string &expected) {
    SCOPED_TRACE(name + " " + testing::PrintToString(cells));
    const Callable &function = kFunctions.at(name);
    if (is_failure(expected) || !function.writes_octets) {
        // What editions of libcrypto do differently has one outcome "or" another.
        const std::string given = outcome(function, cells);
        EXPECT_NE((expected + " or ").find(given + " or "), expected.npos) << given;
    } else {
        EXPECT_EQ(outcome(function, cells), to_hex(from_hex(expected)));
        expect_sound(name, cells, expected);
    }
}

TEST(Crypt, GivesWhatItsRowsSay) {
    for (const char *file : {"known_answers", "boundaries", "rsa", "callbacks"}) {
        for (const Row &row : rows_of(std::string("crypto/") + file + ".txt")) {
            expect_outcome("ZA_" + row.at(0), split(row.at(1), ';'), row.at(2));
        }
    }
}

TEST(Crypt, TakesKeysOfRc2ByTheirEffectiveBits) {
    for (const Row &row : rows_of("crypto/rc2.txt")) {
        crypto::CipherKey key{};
        const Octets octets = from_hex(row[2]), text = from_hex(row[3]);
        key.size = octets.size();
        std::copy(octets.begin(), octets.end(), key.octets.begin());
        Octets block(8);
        const uint32_t bits = number_of(row[1]);
        EXPECT_TRUE(crypto::rc2(bits, key, crypto::Direction::encrypt, text, block.data()));
        EXPECT_EQ(to_hex(block), to_hex(from_hex(row[4]))) << row[0];
        EXPECT_TRUE(crypto::rc2(bits, key, crypto::Direction::decrypt, block, block.data()));
        EXPECT_EQ(block, text) << row[0];
    }
}

// Whether what is left of a cipher ends like a padded text is chance.
TEST(Crypt, SurvivesDamagedCiphers) {
    for (const Row &row : rows_of("crypto/known_answers.txt")) {
        Row cells = split(row[1], ';');
        if (row[0] == "PKCS12_DESDecrypt" && cells[0].starts_with("2A864886F70D010C")) {
            expect_damage_survived(from_hex(cells[3]), {0, 101, 139}, [&](const Octets &cipher) {
                cells[3] = to_hex(cipher);
                const std::string text = outcome(kFunctions.at("ZA_PKCS12_DESDecrypt"), cells);
                return is_failure(text) ? number_of(text.substr(0, 3)) : 0;
            });
        }
    }
}

TEST(Crypt, LeavesNoSecretOnTheHeap) {
    for (const char *hex : {"546869727465656E206F637473", "00D600D000B900FA0061", "5A*13"}) {
        const Octets secret = from_hex(hex);
        const NoSecret no_secret(secret);
        for (const char *file : {"known_answers", "boundaries"}) {
            for (const Row &row : rows_of(std::string("crypto/") + file + ".txt")) {
                outcome(kFunctions.at("ZA_" + row[0]), split(row[1], ';'));
            }
        }
    }
}

TEST(Crypt, WidensPasswordsUpTo32Bits) {
    const uint8_t octet = 0x61;
    for (const auto &[len, wide] : {std::pair(0x7FFFFFF0u, 0xFFFFFFE2u), {0x7FFFFFF1u, 0u}}) {
        uint32_t out_len = kUntouched;
        EXPECT_EQ(ZA_PKCS12_ACIItoUNI(&octet, len, nullptr, &out_len), 0u);
        EXPECT_EQ(out_len, wide);
    }
}

// Both directions write the line of one of them, and neither Begin nor End.
TEST(Crypt, TellsAesByOneLine) {
    for (const char *function : {"ZA_PKCS12_AESEncrypt", "ZA_PKCS12_AESDecrypt"}) {
        for (const char *mode : {"1", "3"}) {
            Octets out(32);
            uint32_t len = 0;
            const TraceRecord record;
            const uint32_t result =
                kFunctions.at(function).call({mode, "11*16", "NULL", "00*16"}, out.data(), &len);
            const size_t lines = result == 0 ? 2 : 1;
            std::vector<std::string> expected(lines, "=====>ZA_PKCS12_AESEncrypt");
            expected.insert(expected.end(), 2 - lines, "----->algMode");
            EXPECT_EQ(record.lines(), expected);
        }
    }
}

}  // namespace
}  // namespace za::test
