// The page of attributes is made from the rows, so that it cannot tell another story than the code.
#include "cert/za_cert_attributes.hpp"
#include "support/bytes.hpp"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace za::test {
namespace {

std::string page() {
    std::ostringstream out;
    out << "# Attributes of a certificate\n\n"
           "Made from the table of the library; include/zacert/cert_attributes.h tells what each "
           "value is.\nInt: `ZACert_Set/GetCertAttributeInt`. "
           "Char: `ZACert_Set/GetCertAttributeChar`.\n\n"
           "| number | identifier | accessor | set | read |\n|---|---|---|---|---|\n";
    const auto mark = [](bool there) { return there ? "yes" : ""; };
    for (const auto &row : cert::attributes().rows()) {
        const bool is_int = row.set_int != nullptr;
        out << "| " << row.id << " | `" << row.texts.name << "` | " << (is_int ? "Int" : "Char")
            << " | " << mark(is_int || row.set != nullptr) << " | "
            << mark(row.get_int != nullptr || row.get != nullptr) << " |\n";
    }
    return out.str();
}

// ZACERT_WRITE_PAGES=1 in the environment writes the page instead of comparing it.
TEST(CertificateAttributes, ThePageIsMadeFromTheRows) {
    const std::string path = ZACERT_TEST_DATA "/../../docs/attributes.md";
    if (std::getenv("ZACERT_WRITE_PAGES") != nullptr) {
        std::ofstream(path) << page();
    }
    const Octets written = read_file(path);
    EXPECT_EQ(std::string(written.begin(), written.end()), page());
}

}  // namespace
}  // namespace za::test
