#include "ocsp/za_ocsp_support.hpp"

#include <map>

namespace za::test {
namespace {

using namespace test::ocsp;

TEST(OcspRequest, StepsEndAsWritten) {
    expect_steps(kRequest, "ocsp/request");
}

TEST(OcspRequest, RowsDecodeAsWritten) {
    expect_contexts_decoded(kRequest, "ocsp/decode/request");
}

// What contexts say of a missing one, of octets, of other identifiers and, setting and getting, of
// other numbers.
struct Texts {
    std::string context, octets, identifier, number;
};

const std::string kArrow = "------------>";
const std::string kMissing = kArrow + "ZACERT_InvalidItem";
const std::string kEntry = kArrow + "OCSPAttributeType is Invalid Item";
const Texts kEntryTexts{kEntry, kEntry, kEntry, "------------->The attribute type is Invalid Item"};
const std::map<std::string, Texts> kTexts{
    {"RequestList", kEntryTexts},
    {"ResponseList", kEntryTexts},
    {"Request",
     {kArrow + "The input is invalid ", kArrow + "The input is invalid ",
      kArrow + "The OCSPAttributeValue InvalidItem",
      kArrow + "The OCSPAttributeValue InvalidItem"}},
    {"Response",
     {kArrow + "The input is invalid item", kArrow + "The input item is invalid",
      kArrow + "The OCSPAttribute Type not support", kArrow + "The OCSPAttribute is invalid"}}};

// The page of attributes tells which there are. Two are not named in the log, two by one name.
void expect_accessors(const Kind &kind, int32_t id, const Row *row) {
    const Context context(kind);
    const Texts &texts = kTexts.at(kind.name);
    const bool number = row != nullptr && row->at(3) == "Int";
    const std::string name = row == nullptr || id == 56 || id == 57
                                 ? ""
                                 : row->at(2).substr(1, row->at(2).rfind(id == 58 ? '_' : '`') - 1);
    const auto expect_call = [&](const std::string &verb, const std::string &type, bool known,
                                 const std::function<uint32_t()> &call) {
        const std::string frame = "============>ZA_OCSP_" + verb + kind.name + "Attribute" + type;
        const TraceRecord trace;
        EXPECT_EQ(call(), known ? 0u : 121u);
        Trail lines{frame + " Begin", frame + " End"};
        if (!known) {
            lines[1] = type == "Int" ? texts.number : texts.identifier;
        } else if (!name.empty()) {
            lines.insert(lines.begin() + 1, "============>" + verb + " " + name);
        }
        EXPECT_EQ(trace.lines(), lines);
    };
    const bool octets = row != nullptr && !number;
    const bool settable = octets && row->at(4) == "yes";
    uint32_t len = 77;
    int32_t value = 77;
    expect_call("Set", "Char", settable, [&] { return contexts::set(kind, context, id, {7}); });
    expect_call("Get", "Char", octets, [&] { return kind.get(context, id, nullptr, &len); });
    EXPECT_EQ(len, settable ? 1u : octets ? 0u : 77u);
    if (kind.set_int != nullptr) {
        expect_call("Set", "Int", number, [&] { return kind.set_int(context, id, 7); });
        expect_call("Get", "Int", number, [&] { return kind.get_int(context, id, &value); });
        EXPECT_EQ(value, number ? 7 : 77);
    }
}

TEST(OcspAttributes, AreThoseOfThePage) {
    std::map<int32_t, Row> page;
    for (const Row &row : rows_of("../../docs/attributes.md")) {
        if (row.size() == 7 && row[2].starts_with("`OCSP_")) {
            page[std::stoi(row[1])] = row;
        }
    }
    ASSERT_EQ(page.size(), 64u);
    for (const Kind &kind : kKinds) {
        for (int32_t id = -1; id <= 70; ++id) {
            SCOPED_TRACE(kind.name + " " + std::to_string(id));
            expect_accessors(kind, id, owns(kind, id) ? &page.at(id) : nullptr);
        }
    }
}

TEST(OcspArguments, MissingOnesAreRefused) {
    const NoLeak no_leak;
    uint8_t octet = 7;
    uint32_t len = 7;
    int32_t number = 7;
    Anybuf none{};
    Anybuf *record = &none;
    for (const Kind &kind : kKinds) {
        SCOPED_TRACE(kind.name);
        const Texts &texts = kTexts.at(kind.name);
        const Context context(kind);
        const TraceRecord trace;
        Trail expected;
        const auto refused = [&](const std::string &text, uint32_t result) {
            EXPECT_EQ(result, 121u);
            expected.push_back(text);
        };
        void *const ctx = context;
        refused(kMissing, kind.create(nullptr));
        refused(kMissing, kind.decoding.create(nullptr));
        refused(texts.context, kind.decoding.destroy(nullptr));
        void *decoder = nullptr;
        EXPECT_EQ(kind.decoding.create(&decoder), 0u);
        EXPECT_EQ(kind.decoding.destroy(decoder), 0u);
        refused(texts.octets, kind.set(nullptr, kind.last, &octet, 1));
        refused(texts.context, kind.get(nullptr, kind.last, &octet, &len));
        refused(kMissing, kind.get(ctx, kind.last, &octet, nullptr));
        refused(texts.context, kind.decode(nullptr, &octet, 1));
        for (const uint32_t size : {0u, 1u, 0x80000000u}) {
            const uint8_t *octets = size == 1 ? nullptr : &octet;
            refused(texts.octets, kind.set(ctx, kind.last, octets, size));
            refused(texts.octets, kind.decode(ctx, octets, size));
        }
        if (kind.set_int != nullptr) {
            refused(&kind == &kRequest ? texts.context : texts.number,
                    kind.set_int(nullptr, kind.first, 1));
            refused(texts.context, kind.get_int(nullptr, kind.first, &number));
            refused(kMissing, kind.get_int(ctx, kind.first, nullptr));
        }
        if (kind.encode_entry != nullptr) {
            refused(texts.context, kind.encode_entry(nullptr, &record));
            refused(kMissing, kind.encode_entry(ctx, nullptr));
            refused(texts.context, kind.hash(nullptr, show, &octet, 1));
        } else {
            const bool response = &kind == &kResponse;
            refused(texts.context, kind.encode(nullptr, &octet, &len));
            refused(response ? texts.context : kMissing, kind.encode(ctx, &octet, nullptr));
            refused(texts.context, kind.sign(nullptr, show, &octet, 1));
            refused(texts.context, kind.item(nullptr, &octet, &len, 1));
            refused(kMissing, kind.item(ctx, &octet, nullptr, 1));
            refused(texts.octets, kind.add(ctx, &octet, 0));
            EXPECT_EQ(kind.add(ctx, &octet, 1), 0u);
            refused(kMissing, kind.item(ctx, &octet, &len, 0));
            refused(kMissing, kind.item(ctx, &octet, &len, 2));
        }
        EXPECT_EQ(trace.failures(), expected);
        EXPECT_TRUE(octet == 7 && len == 7 && number == 7 && record == &none);
    }
}

}  // namespace
}  // namespace za::test
