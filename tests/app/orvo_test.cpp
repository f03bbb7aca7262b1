#include "app/orvo_keys.hpp"
#include "support/heap.hpp"
#include "support/rows.hpp"
#include "support/trace.hpp"

#include <fstream>
#include <gmock/gmock.h>
#include <memory>
#include <openssl/evp.h>
#include <unistd.h>

namespace za::test {
namespace {

constexpr uint32_t kUntouched = 77;
constexpr const char *kKey = "000102030405060708090a0b0c0d0e0f";

const Row kNames{"PkgEncrypt",         "PkgDecrypt",   "PubKey_Encrypt",
                 "PrivateKey_Decrypt", "Pfx_SignData", "Pfx_VerifyData"};

// What a wrapper is called with; "-" stands for NULL.
struct Call {
    std::string name;
    std::string key;       // digits, or a path
    std::string password;  // or the data to verify
    std::string input;     // octets, or digits
};

uint32_t run(const Call &call, char *out, uint32_t *out_len) {
    const auto text = [](const std::string &cell) { return cell == "-" ? nullptr : cell.data(); };
    const char *key = text(call.key), *password = text(call.password), *in = text(call.input);
    const auto password_len = uint32_t(call.password.size()), len = uint32_t(call.input.size());
    const auto *octets = reinterpret_cast<const uint8_t *>(in);
    auto *plain = reinterpret_cast<uint8_t *>(out);
    switch (std::find(kNames.begin(), kNames.end(), call.name) - kNames.begin()) {
        case 0:
            return PkgEncrypt_KOVA(key, int32_t(call.key.size()), octets, len, out, out_len);
        case 1:
            return PkgDecrypt_KOVA(key, int32_t(call.key.size()), in, len, plain, out_len);
        case 2:
            return PubKey_Encrypt_KOVA(key, octets, len, out, out_len);
        case 3:
            return PrivateKey_Decrypt_KOVA(key, password, password_len, in, len, plain, out_len);
        case 4:
            return Pfx_SignData_KOVA(key, password, password_len, octets, len, out, out_len);
        default:
            return Pfx_VerifyData_KOVA(key, reinterpret_cast<const uint8_t *>(password),
                                       password_len, in, len);
    }
}

std::string last_given;

// What is written, and nothing beyond it or beside a failure.
uint32_t run(const Call &call) {
    std::string out(17000, '\xA5');
    uint32_t len = kUntouched;
    const uint32_t result = run(call, out.data(), &len);
    const size_t written = result == 0 ? len : 0;
    EXPECT_EQ(out.find_first_not_of('\xA5', written), out.npos);
    EXPECT_TRUE(result == 0 || len == kUntouched) << len;
    out.resize(written);
    last_given = out;
    return result;
}

std::string of(const Call &call) {
    EXPECT_EQ(run(call), 0u) << call.name;
    return last_given;
}

std::string at(const std::string &name) {
    return name == "-" ? name : ZACERT_TEST_DATA "/" + name;
}

std::string repeated(const std::string &cell) {
    const size_t star = cell.find('*');
    std::string text;
    for (size_t i = star == cell.npos ? 1 : std::stoul(cell.substr(star + 1)); i > 0; --i) {
        text += cell.substr(0, star);
    }
    return text;
}

std::string file_of(const Octets &octets) {
    const std::string path = testing::TempDir() + "orvo_test." + std::to_string(getpid());
    std::ofstream(path) << std::string(octets.begin(), octets.end());
    return path;
}

TEST(Wrappers, RefuseWhatTheirRowsSay) {
    const int lowest_free = dup(0);
    close(lowest_free);
    for (const Row &row : rows_of("app/refused.txt")) {
        SCOPED_TRACE(testing::PrintToString(row));
        const std::string key = row[0].starts_with("Pkg") ? row[1] : at(row[1]);
        const Call call{row[0], key, row[2], repeated(row[3])};
        const NoLeak no_leak;
        const TraceRecord record;
        EXPECT_EQ(run(call), number_of(row[4]));
        const Row expected = list_of(row[5]);
        Trail lines = record.lines();
        EXPECT_EQ(lines[0], "======>" + row[0] + "_KOVA Begin");
        std::erase_if(lines, [](const std::string &line) { return line.starts_with("======"); });
        ASSERT_GE(lines.size(), expected.size());
        EXPECT_EQ(Trail(lines.end() - long(expected.size()), lines.end()), expected);
    }
    EXPECT_EQ(dup(0), lowest_free) << "files left open";
}

TEST(Wrappers, NeedAPlaceForWhatTheyWrite) {
    std::string out(64, ' ');
    uint32_t len = 0;
    for (size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(run({kNames[i], kKey, "abc123", "00"}, nullptr, &len), 108u) << kNames[i];
        EXPECT_EQ(run({kNames[i], kKey, "abc123", "00"}, out.data(), nullptr), 108u) << kNames[i];
    }
    // No key but one of 32 digits is looked at, and no text as long as this one.
    auto *plain = reinterpret_cast<uint8_t *>(out.data());
    EXPECT_EQ(PkgEncrypt_KOVA("", -32, plain, 1, out.data(), &len), 1999u);
    EXPECT_EQ(PkgDecrypt_KOVA(kKey, 32, "", 0x80000001, plain, &len), 1998u);
}

TEST(Wrappers, EncryptPackagesLikeLibcrypto) {
    const Octets key = from_hex(kKey);
    for (const size_t size : {1u, 15u, 16u, 17u, 8176u, 8191u}) {
        const std::string data(size, 'x');
        const std::shared_ptr<EVP_CIPHER_CTX> aes(EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free);
        EVP_EncryptInit_ex(aes.get(), EVP_aes_128_ecb(), nullptr, key.data(), nullptr);
        Octets cipher(size + 16);
        int first = 0, last = 0;
        const auto *in = reinterpret_cast<const uint8_t *>(data.data());
        EVP_EncryptUpdate(aes.get(), cipher.data(), &first, in, int(size));
        EVP_EncryptFinal_ex(aes.get(), &cipher[size_t(first)], &last);
        cipher.resize(size_t(first + last));
        const std::string digits = of({"PkgEncrypt", kKey, "", data});
        EXPECT_EQ(from_hex(digits), cipher) << size;
        EXPECT_EQ(of({"PkgDecrypt", kKey, "", digits}), data) << size;
    }
    // The largest package is padded beyond what is decrypted.
    const Call longest{"PkgEncrypt", kKey, "", std::string(8192, 'x')};
    EXPECT_EQ(run({"PkgDecrypt", kKey, "", of(longest)}), 1998u);
}

TEST(Wrappers, SignAndEncryptWithFiles) {
    const std::string data = "what is signed";
    for (const std::string file : {"rsa1024", "rsa2048", "rsa1024_no_mac"}) {
        const std::string cert = at("app/" + file.substr(0, 7) + ".der");
        const std::string pfx = at("app/" + file + ".p12");
        const std::string signature = of({"Pfx_SignData", pfx, "abc123", data});
        EXPECT_EQ(run({"Pfx_VerifyData", cert, data, signature}), 0u);
        EXPECT_EQ(run({"Pfx_VerifyData", cert, data + "!", signature}), 0xFFFFFFFF);
        ZA_RSArefPublicKey pub;
        ZA_RSArefPrivateKey priv;
        EXPECT_EQ(app::key_of_certificate(cert.data(), pub), Status::ok);
        EXPECT_EQ(app::key_of_pfx(pfx.data(), {"abc123", 6}, priv), Status::ok);
        EXPECT_EQ(pub.bits, 4 * signature.size());
        EXPECT_EQ(priv.bits, pub.bits);
        for (const std::string &plain : {data, std::string(signature.size() / 2 - 11, '\0')}) {
            const std::string cipher = of({"PubKey_Encrypt", cert, "", plain});
            EXPECT_EQ(cipher.size(), signature.size());
            EXPECT_EQ(of({"PrivateKey_Decrypt", pfx, "abc123", cipher}), plain);
        }
    }
}

TEST(Wrappers, Read5000OctetsOfAFile) {
    const Octets good = data_file("app/rsa2048.der");
    // What stands behind the three fields is not looked at, but it counts.
    for (const auto &[size, result] : {std::pair(5000u, 0u), {5001u, 1002u}, {6000u, 1002u}}) {
        std::vector<Octets> fields = children_of(good);
        fields.push_back(element(4, Octets(size - good.size() - 4)));
        const TraceRecord record;
        EXPECT_EQ(run({"PubKey_Encrypt", file_of(sequence(fields)), "", "x"}), result);
        EXPECT_THAT(record.lines(),
                    testing::Contains("======>ZACert_DecodeCert Begin").Times(result == 0 ? 1 : 0));
    }
    EXPECT_EQ(run({"PubKey_Encrypt", file_of(join({good, Octets(9000)})), "", "x"}), 0u);
    for (const char *hex : {"30", "30 84", "30 84 7F FF FF FF", "30 84 FF FF FF FF"}) {
        EXPECT_EQ(run({"PubKey_Encrypt", file_of(from_hex(hex)), "", "x"}), 1002u) << hex;
    }
    EXPECT_EQ(run({"PubKey_Encrypt", file_of({}), "", "x"}), 1001u);
    const Octets pfx = data_file("app/rsa1024.p12");
    for (size_t size = 1; size < pfx.size(); size += 41) {
        const Octets cut(pfx.begin(), pfx.begin() + long(size));
        EXPECT_EQ(run({"Pfx_SignData", file_of(cut), "abc123", "x"}), 1013u) << size;
    }
    std::remove(file_of({}).data());
}

TEST(Wrappers, TakeNoKeyOfZeros) {
    Octets key = data_file("keys/rsa1024.der");
    constexpr long kModulus = 11;
    std::fill_n(key.begin() + kModulus, 128, uint8_t{0});
    Octets pfx(4096);
    auto size = uint32_t(pfx.size());
    void *ctx = nullptr;
    EXPECT_EQ(ZA_PKCS12_CreateEncodePfx(&ctx), 0u);
    EXPECT_EQ(ZA_PKCS12_SetPrivateKey(ctx, key.data(), uint32_t(key.size())), 0u);
    EXPECT_EQ(ZA_PKCS12_EncodePFX(ctx, nullptr, 0, pfx.data(), &size), 0u);
    EXPECT_EQ(ZA_PKCS12_DestroyEncodePFX(ctx), 0u);
    pfx.resize(size);
    const TraceRecord record;
    EXPECT_EQ(run({"Pfx_SignData", file_of(pfx), "", "x"}), 1017u);
    EXPECT_THAT(record.lines(), testing::Contains("------>GetRSAPriKeyFromPfx call "
                                                  "ZK_PRIVATEKEY2RSArefPrivateKey  Err"));
    std::remove(file_of({}).data());
}

TEST(Wrappers, SurviveWithoutMemoryAndWipeKeys) {
    const std::string cert = at("app/rsa1024.der"), pfx = at("app/rsa1024.p12");
    const Octets key = data_file("keys/rsa1024.der");
    const std::string data = "a secret of the caller";
    const std::string package = of({"PkgEncrypt", kKey, "", data});
    const std::string cipher = of({"PubKey_Encrypt", cert, "", data});
    const std::string signature = of({"Pfx_SignData", pfx, "abc123", data});
    const Call calls[]{
        {"PkgEncrypt", kKey, "", data},        {"PkgDecrypt", kKey, "", package},
        {"PubKey_Encrypt", cert, "", data},    {"PrivateKey_Decrypt", pfx, "abc123", cipher},
        {"Pfx_SignData", pfx, "abc123", data}, {"Pfx_VerifyData", cert, data, signature}};
    const Octets plain(data.begin(), data.end()), coefficient(key.end() - 24, key.end());
    for (const Octets &secret : {plain, coefficient, from_hex(kKey)}) {
        const NoSecret no_secret(secret);
        for (const Call &call : calls) {
            SCOPED_TRACE(call.name);
            std::set<uint32_t> results;
            expect_allocation_faults_survived([&] {
                const uint32_t result = run(call);
                results.insert(result);
                // Whose own codes take the place of the one that says why.
                return result >= 1002 && result <= 1016 ? 100 : result;
            });
            EXPECT_EQ(results.contains(1012), call.key == pfx);
        }
    }
}

}  // namespace
}  // namespace za::test
