#include "pkcs12/za_pkcs12_support.hpp"

#include <regex>
#include <set>

namespace za::test {
namespace {

using namespace pkcs12;

const std::set<uint32_t> kRefused{101, 102, 106, 108, 112, 113, 121, 122, 123, 0xFFFFFFFF};
const std::string kFolder = "pkcs12/rows/";

std::vector<std::string> families() {
    std::vector<std::string> all;
    for (const Exported &function : kFunctions) {
        if (function.starts("CreateEncode")) {
            all.push_back(function.name.substr(12));
        }
    }
    return all;
}

// Any arguments of the right shape.
Row any_cells(const Exported &function) {
    Row cells;
    for (size_t i = 0; i < function.shape.size(); ++i) {
        const char shape = function.shape[i];
        const bool length = shape == 'v' && i > 0 && function.shape[i - 1] == 'i';
        if (shape == 'i' || shape == 'f' || (shape == 'v' && !length)) {
            cells.push_back(shape == 'i' ? "AB" : shape == 'f' ? "crypt" : "1");
        }
    }
    return cells;
}

TEST(Pkcs12Arguments, AllFunctionsAreHere) {
    std::set<std::string> declared;
    std::set<std::string> known;
    for (const Exported &function : kFunctions) {
        known.insert(function.whole_name);
    }
    for (const std::string name : {"bags", "safe"}) {
        const Octets page =
            read_file(ZACERT_TEST_DATA "/../../include/zacert/pkcs12_" + name + ".h");
        const std::string text(page.begin(), page.end());
        const std::regex form("ZACERT_API uint32_t (\\w+)");
        for (std::sregex_iterator at(text.begin(), text.end(), form), end; at != end; ++at) {
            declared.insert((*at)[1]);
        }
    }
    EXPECT_EQ(known, declared);
}

// Every argument in turn is missing, and every length negative for those who count in signed
// numbers. What is NULL by right is room for octets, a function, and its block.
void expect_missing_refused(const Exported &function, void *context) {
    constexpr uint32_t kNegative = 0x80000000;
    const std::string &shape = function.shape;
    uint8_t any = 0;
    for (size_t i = 0; i < shape.size(); ++i) {
        const bool block = shape[i] == 'i' && i > 0 && shape[i - 1] == 'f';
        for (const bool null : {true, false}) {
            if (null ? block || std::string("ofv").find(shape[i]) != std::string::npos
                     : shape[i] != 'i') {
                continue;
            }
            SCOPED_TRACE(function.name + " " + std::to_string(i) + (null ? " NULL" : " long"));
            Call call(function, context, any_cells(function), &any);
            call.words[null ? i : i + 1] = null ? 0 : kNegative;
            const TraceRecord trace;
            EXPECT_EQ(function.call(call.words), 121u);
            EXPECT_EQ(trace.lines()[0], "============>" + function.whole_name + " Begin");
            EXPECT_EQ(trace.failures(), Trail{"------------>ZACERT_InvalidItem"});
            EXPECT_EQ(call.numbers, std::vector<uint32_t>(shape.size(), kUntouched));
        }
    }
}

TEST(Pkcs12Arguments, MissingOnesAreRefused) {
    std::unique_ptr<Structure> structure;
    void *context = nullptr;
    for (const Exported &function : kFunctions) {
        if (function.starts("CreateEncode")) {
            structure = std::make_unique<Structure>(function.name.substr(12));
            context = *structure;
            for (const Exported &setter : kFunctions) {
                if (setter.starts("Set" + structure->family()) && setter.shape != "hh") {
                    EXPECT_EQ((*structure)(setter.name, any_cells(setter)), 0u) << setter.name;
                }
            }
        }
        told = {};
        expect_missing_refused(function, context);
        // With all of them those that read what was set succeed.
        if (function.starts("Get") && function.shape.find('c') == std::string::npos) {
            EXPECT_EQ((*structure)(function.name, any_cells(function)), 0u) << function.name;
        }
    }
}

// Steps of a structure that "new | FAMILY" begins:
// "function | arguments | result | values | failures | calls of the caller's function". "$" is what
// was written last, "told | CODE; OCTETS" what the function does from now on, and "again" decodes
// what was written and tells what is seen then.
class Steps {
  public:
    uint32_t take(const Row &row, Row &values, Trail &failures) {
        if (row[0] == "new") {
            structure_.reset();
            structure_ = std::make_unique<Structure>(row[1]);
            told = {};
            return structure_->created;
        }
        if (row[0] == "told") {
            told = {number_of(list_of(row[1])[0]), number_of(list_of(row[1])[1])};
            return 0;
        }
        if (row[0] == "again") {
            const Structure decoded(structure_->family(), "Decode");
            const uint32_t result = decoded.decode(from_hex(written_));
            values = result == 0 ? split(decoded.seen(), ';') : Row{};
            return result;
        }
        Row cells = list_of(row[1]);
        std::ranges::replace(cells, "$", written_);
        cells.resize(std::max<size_t>(cells.size(), 4));
        const Exported &function = find(row[0]);
        const TraceRecord trace;
        const uint32_t result = (*structure_)(row[0], cells, &values);
        expect_frame(function, result, trace.lines());
        failures = trace.failures();
        written_ = result == 0 && row[0].find("ncode") == 1 ? values[0] : written_;
        return result;
    }

  private:
    static void expect_frame(const Exported &function, uint32_t result, const Trail &lines) {
        const std::string frame = "============>" + function.whole_name;
        EXPECT_EQ(lines.front(), frame + " Begin");
        EXPECT_EQ(lines.back() == frame + " End", result == 0);
    }

    std::unique_ptr<Structure> structure_;
    std::string written_;
};

Row in_hex(Row cells) {
    for (std::string &cell : cells) {
        cell = cell == "-" || cell[0] == '#' || cell[0] == '!'
                   ? cell
                   : contexts::plain_hex(from_hex(cell));
    }
    return cells;
}

void expect_steps(const std::vector<Row> &rows) {
    const NoLeak no_leak;
    Steps steps;
    bool all_succeed = true;
    for (const Row &row : rows) {
        SCOPED_TRACE(row[0] + "|" + row[1]);
        Row values;
        Trail failures;
        told.calls = 0;
        const uint32_t result = steps.take(row, values, failures);
        EXPECT_EQ(result, row.size() > 2 ? number_of(row[2]) : 0);
        EXPECT_EQ(values, in_hex(list_of(row.size() > 3 ? row[3] : "")));
        EXPECT_EQ(failures, list_of(row.size() > 4 ? row[4] : ""));
        EXPECT_EQ(told.calls, row.size() > 5 ? number_of(row[5]) : 0);
        all_succeed = all_succeed && result == 0;
    }
    if (all_succeed) {
        expect_allocation_faults_survived([&] {
            Steps again;
            uint32_t result = 0;
            for (auto row = rows.begin(); row != rows.end() && result == 0; ++row) {
                Row values;
                Trail failures;
                result = again.take(*row, values, failures);
            }
            return result;
        });
    }
}

// Whatever is secret in rows is sixteen times 5E.
const Octets kSecret(16, 0x5E);

TEST(Pkcs12Structures, StepsEndAsWritten) {
    const NoSecret no_secret(kSecret);
    for (const std::string name : {"bag_steps", "safe_steps"}) {
        std::vector<Row> rows;
        for (const Row &row : rows_of(kFolder + name)) {
            if (row[0] == "new" && !rows.empty()) {
                expect_steps(std::exchange(rows, {}));
            }
            rows.push_back(row);
        }
        expect_steps(rows);
    }
}

class Pkcs12Rows : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Families, Pkcs12Rows, testing::ValuesIn(families()),
                         [](const auto &family) { return family.param; });

TEST_P(Pkcs12Rows, DecodeAsWritten) {
    const NoSecret no_secret(kSecret);
    const std::string family = GetParam();
    const bool alike = family == "CrlBag" || family == "SecretContentsBag";
    const auto decode = [&](const Octets &in, std::string &out) {
        const Structure structure(family, "Decode");
        const uint32_t result = structure.decode(in);
        if (result == 0 && out.empty()) {  // not again for every damage
            out = std::regex_replace(structure.seen(), std::regex("(5E){16}"), "secret");
        }
        return result;
    };
    expect_decoded(kFolder + (alike ? "CertBag" : family), kRefused, decode);
}

TEST(Pkcs12Structures, DamagedParametersAreSurvived) {
    const std::map<std::string, std::string> rows{
        {"DecodeParameter", "30(04(0102) 02(0300))"},
        {"DecodeMac", "30(30(30(06(2A05)05())04(AABB)) 24(04(01)04(02)) 02(0300))"}};
    for (const auto &row : rows) {
        const Octets der = from_hex(row.second);
        const auto decode = [&](const Octets &in) {
            return Call(find(row.first), nullptr, {to_hex(in)}).run();
        };
        EXPECT_EQ(decode(der), 0u);
        expect_allocation_faults_survived([&] { return decode(der); });
        expect_damage_survived(der, kRefused, decode);
    }
}

}  // namespace
}  // namespace za::test
