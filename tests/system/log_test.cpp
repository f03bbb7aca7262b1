// The log as a program meets it: the real file, written by the shared library.
#include <zacert.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

fs::path trace_log() {
    const char *path = std::getenv("ZACERT_LOG");
    return path == nullptr ? throw std::runtime_error("ZACERT_LOG is not set") : path;
}

fs::path value_log() {
    return trace_log().replace_filename("cert.log");
}

std::string text_of(const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

// Each test begins and ends without a log.
class Log : public testing::Test {
  protected:
    Log() { clear(); }
    ~Log() override { clear(); }

  private:
    static void clear() {
        fs::remove_all(trace_log());
        fs::remove(value_log());
    }
};

TEST_F(Log, LineNamesFileLineAndMessage) {
    errno = 77;
    EXPECT_EQ(ZAPR_DebugMessage("ignored.log", ".\\src\\a", 4294967295u, "------>100 %s%n"), 0u);
    EXPECT_EQ(ZAPR_DebugMessage(nullptr, nullptr, 0, nullptr), 0u);
    EXPECT_EQ(errno, 77);
    EXPECT_EQ(text_of(trace_log()),
              "File .\\src\\a; Line 4294967295 # ------>100 %s%n\nFile ; Line 0 # \n");
    EXPECT_EQ(fs::status(trace_log()).permissions() & fs::perms::others_write, fs::perms::none);
    EXPECT_FALSE(fs::exists("ignored.log"));
}

TEST_F(Log, FunctionsNameTheirFamily) {
    Anybuf *record = nullptr;
    EXPECT_EQ(ZAsn1_Low_CreateAnyBuf(&record), 0u);
    EXPECT_EQ(ZAsn1_WriteNull(nullptr), 108u);
    EXPECT_EQ(ZI_FreeAnybuf(record), 0u);
    const std::string log = std::regex_replace(text_of(trace_log()), std::regex("Line \\d+"), "");
    EXPECT_EQ(log,
              "File .\\src\\za_asn2;  # ======>ZAsn1_Low_CreateAnyBuf Begin\n"
              "File .\\src\\za_asn2;  # ======>ZAsn1_Low_CreateAnyBuf End\n"
              "File .\\src\\za_asn2;  # ======>ZAsn1_WriteNull Begin\n"
              "File .\\src\\za_asn2;  # ------>ZACERT_GeneralErr\n"
              "File .\\src\\za_low;  # ======>ZI_FreeAnybuf Begin\n"
              "File .\\src\\za_low;  # ======>ZI_FreeAnybuf End\n");
}

// The text is anyone's: only "%%" stands for something else.
TEST_F(Log, ValueLineTakesNoFormat) {
    EXPECT_EQ(
        ZAPR_DebugValMessage(nullptr, "a.c", 7, "100%% %s %n %%%d%", 0, -1, INT32_MIN, INT32_MAX),
        0u);
    const std::string line = "File a.c; Line 7 # 100% %s %n %%d%0,-1,-2147483648,2147483647\n";
    EXPECT_EQ(text_of(value_log()), line);
    const fs::path other = value_log().replace_filename("other.log");
    fs::remove(other);
    EXPECT_EQ(ZAPR_DebugValMessage(other.c_str(), nullptr, 0, nullptr, 1, 2, 3, 4), 0u);
    EXPECT_EQ(text_of(other), "File ; Line 0 # 1,2,3,4\n");
    fs::remove(other);
    EXPECT_EQ(text_of(value_log()), line);
    EXPECT_FALSE(fs::exists(trace_log()));
}

TEST_F(Log, DumpHasSixteenOctetsToALine) {
    const std::vector<uint8_t> octets{0x00, 0x01, 0x0A, 0x7F, 0x80, 0xFF, 6,  7, 8,
                                      9,    10,   11,   12,   13,   14,   15, 16};
    const std::string first = "    00 01 0A 7F 80 FF 06 07 08 09 0A 0B 0C 0D 0E 0F ";
    std::string expected;
    const auto dump = [&](const uint8_t *data, uint32_t length, uint32_t indent) {
        EXPECT_EQ(ZAPR_DebugDumpData(nullptr, data, length, indent), 0u);
    };
    dump(octets.data(), 17, 4);
    expected += "\n" + first + "\n    10 \n";
    dump(octets.data(), 16, 4);
    expected += "\n" + first + "\n";
    dump(octets.data(), 0, 2);
    expected += "\n  \n";
    dump(nullptr, 5, 0);
    expected += "\n\n";
    EXPECT_EQ(text_of(value_log()), expected);
}

// Lines of all lengths around the one that leaves the stack, from two processes at once.
TEST_F(Log, TwoProcessesAppendWholeLines) {
    constexpr uint32_t kLines = 400;
    for (const char name : {'a', 'b'}) {
        if (fork() == 0) {
            for (uint32_t i = 0; i < kLines; ++i) {
                const std::string text(i * 29 + 1, name);
                ZAPR_DebugMessage(nullptr, "p", i, text.c_str());
            }
            _exit(0);
        }
    }
    int status = 0;
    for (const char *child : {"first", "second"}) {
        ASSERT_GT(wait(&status), 0) << child;
        ASSERT_EQ(status, 0) << child;
    }
    std::ifstream log(trace_log());
    uint32_t next[2] = {};
    for (std::string line; std::getline(log, line);) {
        const char name = line.back();
        uint32_t &number = next[name == 'a' ? 0 : 1];
        ASSERT_EQ(line, "File p; Line " + std::to_string(number) + " # " +
                            std::string(number * 29 + 1, name));
        ++number;
    }
    EXPECT_EQ(next[0], kLines);
    EXPECT_EQ(next[1], kLines);
}

// What a log in the way must not change: a folder, and a link that leads elsewhere.
TEST_F(Log, ThatCannotBeOpenedChangesNoResult) {
    const fs::path elsewhere = trace_log().replace_filename("elsewhere");
    for (const bool link : {false, true}) {
        if (link) {
            fs::create_symlink(elsewhere, trace_log());
        } else {
            fs::create_directory(trace_log());
        }
        errno = 77;
        Anybuf *out = nullptr;
        EXPECT_EQ(ZAPR_DebugMessage(nullptr, "a.c", 1, "text"), 0u);
        EXPECT_EQ(ZAsn1_WriteInteger(5, &out), 0u);
        uint32_t value = 0;
        EXPECT_EQ(ZAsn1_ReadInteger(out, &value), 0u);
        EXPECT_EQ(value, 5u);
        EXPECT_EQ(ZAsn1_ReadSequence(out, &out), 108u);
        EXPECT_EQ(ZI_FreeAnybuf(out), 0u);
        EXPECT_EQ(errno, 77);
        EXPECT_FALSE(fs::exists(elsewhere));
        fs::remove(trace_log());
    }
    const uint8_t octet = 0;
    const std::string below = "/dev/null/x.log";
    EXPECT_EQ(ZAPR_DebugValMessage(below.c_str(), "a.c", 1, "text", 1, 2, 3, 4), 0u);
    EXPECT_EQ(ZAPR_DebugDumpData(below.c_str(), &octet, 1, 0), 0u);
    // An indent no memory could hold.
    EXPECT_EQ(ZAPR_DebugDumpData(nullptr, &octet, 1, 0xFFFFFFFF), 0u);
    EXPECT_FALSE(fs::exists(value_log()));
}

// Callers fill records partly and count on the rest.
TEST(Memory, IsZeroFilledWhateverWasThere) {
    EXPECT_EQ(ZAPR_Free(nullptr), 0u);
    EXPECT_EQ(ZAPR_Display_memory(), 0u);
    for (const uint32_t size : {0u, 1u, 40u, 100000u}) {
        for (int round = 0; round < 3; ++round) {
            auto *block = static_cast<uint8_t *>(ZAPR_Malloc("a.c", 1, size));
            ASSERT_NE(block, nullptr);
            for (uint32_t i = 0; i < std::max(size, 1u); ++i) {
                ASSERT_EQ(block[i], 0);
                block[i] = 0xEE;
            }
            EXPECT_EQ(ZAPR_Free(block), 0u);
        }
    }
}

}  // namespace
