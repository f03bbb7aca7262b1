// The log as a program meets it: the real file, written by the shared library.
#include <zacert.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <regex>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

fs::path trace_log() {
    return std::getenv("ZACERT_LOG");
}

fs::path value_log() {
    return trace_log().replace_filename("cert.log");
}

std::string text_of(const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

// Each test begins without a log.
class Log : public testing::Test {
  protected:
    Log() {
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
    EXPECT_EQ(ZAsn1_WriteNull(nullptr), 108u);
    EXPECT_EQ(ZI_FreeAnybuf(nullptr), 0u);
    EXPECT_EQ(std::regex_replace(text_of(trace_log()), std::regex("Line \\d+"), ""),
              "File .\\src\\za_asn2;  # ======>ZAsn1_WriteNull Begin\n"
              "File .\\src\\za_asn2;  # ------>ZACERT_GeneralErr\n"
              "File .\\src\\za_low;  # ======>ZI_FreeAnybuf Begin\n"
              "File .\\src\\za_low;  # ======>ZI_FreeAnybuf End\n");
}

// The text is anyone's: only "%%" stands for something else.
TEST_F(Log, ValueLineTakesNoFormat) {
    const fs::path other = value_log().replace_filename("other.log");
    fs::remove(other);
    EXPECT_EQ(
        ZAPR_DebugValMessage(nullptr, "a.c", 7, "100%% %s %n %%%d%", 0, -1, INT32_MIN, INT32_MAX),
        0u);
    EXPECT_EQ(ZAPR_DebugValMessage(other.c_str(), nullptr, 0, nullptr, 1, 2, 3, 4), 0u);
    EXPECT_EQ(text_of(value_log()),
              "File a.c; Line 7 # 100% %s %n %%d%0,-1,-2147483648,2147483647\n");
    EXPECT_EQ(text_of(other), "File ; Line 0 # 1,2,3,4\n");
    fs::remove(other);
    EXPECT_FALSE(fs::exists(trace_log()));
}

TEST_F(Log, DumpHasSixteenOctetsToALine) {
    const uint8_t octets[] = {0x00, 0x01, 0x0A, 0x7F, 0x80, 0xFF, 6,  7, 8,
                              9,    10,   11,   12,   13,   14,   15, 16};
    const std::string first = "\n    00 01 0A 7F 80 FF 06 07 08 09 0A 0B 0C 0D 0E 0F ";
    EXPECT_EQ(ZAPR_DebugDumpData(nullptr, octets, 17, 4), 0u);
    EXPECT_EQ(ZAPR_DebugDumpData(nullptr, octets, 16, 4), 0u);
    EXPECT_EQ(ZAPR_DebugDumpData(nullptr, octets, 0, 2), 0u);
    EXPECT_EQ(ZAPR_DebugDumpData(nullptr, nullptr, 5, 0), 0u);
    EXPECT_EQ(text_of(value_log()), first + "\n    10 \n" + first + "\n\n  \n\n\n");
}

// Lines of all lengths around the one that leaves the stack, from two processes at once.
TEST_F(Log, TwoProcessesAppendWholeLines) {
    constexpr uint32_t kLines = 400;
    const pid_t child = fork();
    const char own = child == 0 ? 'a' : 'b';
    for (uint32_t i = 0; i < kLines; ++i) {
        ZAPR_DebugMessage(nullptr, "p", i, std::string(i * 29 + 1, own).c_str());
    }
    if (child == 0) {
        _exit(0);
    }
    int status = 1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
    std::ifstream log(trace_log());
    std::map<char, uint32_t> next;
    for (std::string line; std::getline(log, line);) {
        const uint32_t i = next[line.back()]++;
        ASSERT_EQ(line, "File p; Line " + std::to_string(i) + " # " +
                            std::string(i * 29 + 1, line.back()));
    }
    EXPECT_EQ(next, (std::map<char, uint32_t>{{'a', kLines}, {'b', kLines}}));
}

// What a log in the way must not change: a folder, and a link that leads elsewhere.
TEST_F(Log, ThatCannotBeOpenedChangesNoResult) {
    const fs::path elsewhere = trace_log().replace_filename("elsewhere");
    fs::remove(elsewhere);
    for (const bool link : {false, true}) {
        link ? fs::create_symlink(elsewhere, trace_log())
             : static_cast<void>(fs::create_directory(trace_log()));
        errno = 77;
        Anybuf *out = nullptr;
        uint32_t value = 0;
        EXPECT_EQ(ZAsn1_WriteInteger(5, &out), 0u);
        EXPECT_EQ(ZAsn1_ReadInteger(out, &value), 0u);
        EXPECT_EQ(value, 5u);
        EXPECT_EQ(ZAsn1_ReadSequence(out, &out), 108u);
        EXPECT_EQ(ZI_FreeAnybuf(out), 0u);
        EXPECT_EQ(errno, 77);
        EXPECT_FALSE(fs::exists(elsewhere));
        fs::remove(trace_log());
    }
    const uint8_t octet = 0;
    EXPECT_EQ(ZAPR_DebugValMessage("/dev/null/x", "a.c", 1, "text", 1, 2, 3, 4), 0u);
    EXPECT_EQ(ZAPR_DebugDumpData("/dev/null/x", &octet, 1, 0), 0u);
    // An indent no memory could hold.
    EXPECT_EQ(ZAPR_DebugDumpData(nullptr, &octet, 1, 0xFFFFFFFF), 0u);
    EXPECT_FALSE(fs::exists(value_log()));
}

// Callers fill records partly and count on the rest.
TEST(Memory, IsZeroFilledWhateverWasThere) {
    EXPECT_EQ(ZAPR_Free(nullptr) + ZAPR_Display_memory(), 0u);
    for (const uint32_t size : {0u, 1u, 40u, 100000u, 0u, 1u, 40u, 100000u}) {
        auto *block = static_cast<uint8_t *>(ZAPR_Malloc("a.c", 1, size));
        const size_t usable = std::max(size, 1u);
        ASSERT_EQ(std::count(block, block + usable, 0), usable);
        std::fill_n(block, usable, 0xEE);
        EXPECT_EQ(ZAPR_Free(block), 0u);
    }
}

}  // namespace
