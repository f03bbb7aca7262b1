// Every function of the codec, by the rows of asn1/*.txt.
#include "support/bytes.hpp"
#include "support/handed.hpp"
#include "support/heap.hpp"
#include "support/rows.hpp"
#include "support/trace.hpp"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <list>
#include <map>
#include <string>

namespace za::test {
namespace {

constexpr uint32_t kUntouched = 0xDEADDEAD;

// One call: its arguments by their types, and what it puts where they point.
struct Call {
    const Anybuf *in;
    uint32_t number;  // of every function that takes one
    size_t null_at;   // the pointer to replace by NULL
    size_t num_pointers = 0;
    const uint8_t *first = in == nullptr ? nullptr : in->data;
    const uint8_t *pos = first;
    int32_t time = static_cast<int32_t>(number);
    ZA_ObjectIdentifier name{7, in == nullptr ? Anybuf{} : *in};
    Anybuf untouched{};
    Anybuf *made = &untouched;
    Anybuf array{nullptr, 0, 0, 0, kUntouched, nullptr, nullptr};
    ZA_ObjectIdentifier *oid = nullptr;
    uint32_t values[2] = {kUntouched, kUntouched};
    uint32_t *value = values;
    uint32_t *cells[2] = {};
    uint32_t **cell = cells;
    uint8_t octet = 0xE7;
    uint8_t *octets = nullptr;
    char digits[3] = {};
    char *text = nullptr;

    explicit Call(const Anybuf *record, uint32_t n, size_t null = SIZE_MAX)
        : in(record), number(n), null_at(null) {}
    Call(const Call &) = delete;
    ~Call() {
        made != &untouched ? ZI_FreeAnybuf(made) : ZAPR_Free(octets);
        ZI_ClearAnybuf(oid == nullptr ? nullptr : &oid->parameters);
        for (void *block :
             std::initializer_list<void *>{oid, array.data, text, cells[0], cells[1]}) {
            ZAPR_Free(block);
        }
    }

    operator uint32_t() const { return number; }
    operator int32_t() const { return time; }
    operator const int32_t *() const { return &time; }
    operator const Anybuf *() const { return in; }
    operator const ZA_ObjectIdentifier *() const { return &name; }
    operator const uint8_t *() const { return first; }
    operator const char *() const { return reinterpret_cast<const char *>(first); }
    operator const uint8_t **() { return &pos; }
    operator Anybuf **() { return &made; }
    operator Anybuf *() { return &array; }
    operator ZA_ObjectIdentifier **() { return &oid; }
    operator uint32_t *() { return value++; }
    operator int32_t *() { return reinterpret_cast<int32_t *>(value++); }
    operator uint32_t **() { return cell++; }
    operator uint8_t *() { return &octet; }
    operator uint8_t **() { return &octets; }
    operator char *() { return digits; }
    operator char **() { return &text; }

    template <class T>
    T argument() {
        const bool is_null = std::is_pointer_v<T> && num_pointers++ == null_at;
        const T typed = this->operator T();
        return is_null ? T{} : typed;
    }

    // All that was put out: numbers, "+" how far the position moved, "@" the place of the content
    // in the record, octets, records.
    std::string found() const {
        std::string all;
        const auto add = [&](bool there, const auto &part) {
            all += there ? (all.empty() ? "" : " ") + part() : "";
        };
        for (size_t i = 0; i < 2; ++i) {
            add(values[i] != kUntouched, [&] { return std::to_string(values[i]); });
            add(cells[i] != nullptr, [&] { return std::to_string(*cells[i]); });
        }
        const bool has_record = made != &untouched;
        const auto *as_octets = text == nullptr ? octets : reinterpret_cast<uint8_t *>(text);
        add(octet != 0xE7, [&] { return std::to_string(octet); });
        add(digits[0] != 0, [&] { return std::string(digits); });
        add(pos != first, [&] { return "+" + std::to_string(pos - first); });
        add(octets && has_record, [&] { return "@" + std::to_string(octets - made->data); });
        add(as_octets && !has_record, [&] { return to_hex(std::span(as_octets, *cells[0])); });
        add(has_record, [&] { return describe(made); });
        add(array.dataType != kUntouched, [&] { return describe(&array); });
        add(oid, [&] { return std::to_string(oid->algorithm) + " " + describe(&oid->parameters); });
        return split(all, '\n').front();
    }
};

template <class... Arguments>
uint32_t run(uint32_t (*function)(Arguments...), Call &call) {
    return std::apply(function, std::tuple<Arguments...>{call.argument<Arguments>()...});
}

using Functions = std::map<std::string, uint32_t (*)(Call &)>;

Functions all(const auto &...functions) {
    return {functions...};
}

#define C(name) \
    Functions::value_type("ZAsn1_" #name, [](Call &call) { return run(ZAsn1_##name, call); })

const Functions kFunctions = all(
    C(WriteOctetString), C(ReadOctetString), C(WriteBitString), C(ReadBitString),
    C(WriteEnumerated), C(ReadEnumerated), C(WriteCharString), C(ReadCharString),
    C(WritePrintableString), C(ReadPrintableString), C(WriteBmpString), C(ReadBmpString),
    C(WriteUTF8String), C(ReadUTF8String), C(WriteIa5String), C(ReadIa5String), C(WriteSequence),
    C(ReadSequence), C(WriteSet), C(ReadSet), C(WriteIntegerArray), C(ReadIntegerArray),
    C(WriteObjectId), C(ReadObjectId), C(WriteExplicit), C(ReadExplicit), C(WriteImplicit),
    C(ReadImplicit), C(WriteBoolean), C(ReadBoolean), C(WriteInteger), C(ReadInteger), C(WriteNull),
    C(WriteUtcTime), C(ReadUtcTime), C(WriteGeneralizedTime), C(ReadGeneralizedTime),
    C(Low_WriteTagAndLength), C(Low_ReadTagAndLength), C(Low_GetTagInfo), C(Low_GetLengthInfo),
    C(GetLengthInfo), C(GetCertLength), C(Low_ReadDNTag), C(Low_IntToChar), C(Low_CharToInt),
    C(Low_ItoCTime), C(Low_CtoITime), C(Low_TimeCharToInt), C(Low_TimeIntToChar),
    C(Low_WriteLongTime), C(Low_ReadLongTime), C(Low_CreateAnyBuf), C(IndefiniteToDefinite));

#undef C

// "..." stands for the octets of a text.
std::string in_hex(const std::string &text) {
    std::string all;
    for (bool quoted = false; const std::string &part : split(text, '"')) {
        const Octets octets(part.begin(), part.end());
        all += (all.empty() || part.empty() ? "" : " ") + (quoted ? to_hex(octets) : part);
        quoted = !quoted;
    }
    return all;
}

// "type/unused octets; ..." as a chain whose octets end where their blocks end.
struct InputChain {
    std::list<std::unique_ptr<uint8_t[]>> blocks;
    std::list<Anybuf> records;

    explicit InputChain(const std::string &text) {
        Anybuf *first = nullptr;
        Anybuf **link = &first;
        for (const std::string &part : list_of(text)) {
            Anybuf &record = records.emplace_back();
            *std::exchange(link, &record.next) = &record;
            if (part != "NULL") {
                const Octets octets = from_hex(part.substr(std::min(part.find(' '), part.size())));
                record = borrowed(octets, number_of(part));
                record.data = blocks.emplace_back(new uint8_t[octets.size()]).get();
                record.unusedBits =
                    part.find('/') == part.npos ? 0 : number_of(part.substr(part.find('/') + 1));
                std::ranges::copy(octets, record.data);
            }
        }
    }
    const Anybuf *head() const { return records.empty() ? nullptr : &records.front(); }
};

std::string joined(const std::vector<std::string> &trail) {
    std::string text;
    for (const std::string &line : trail) {
        EXPECT_TRUE(line.starts_with("------>"));
        text += (text.empty() ? "" : ", ") + line.substr(7);
    }
    return text;
}

void set_zone(const std::string &name) {
    setenv("TZ", name.c_str(), 1);
    tzset();
}

void expect_row(const Row &row) {
    SCOPED_TRACE(row[0] + " of " + row[1]);
    const NoLeak no_leak;
    set_zone(row.size() > 4 ? row[4] : "UTC");
    const Row name = split(row[0], ' ');
    const Row expected = split(row[2], ' ');
    const InputChain in(in_hex(row[1]));
    const auto run = [&] {
        Call call(in.head(), name.size() > 1 ? number_of(name[1]) : kUntouched);
        const uint32_t result = kFunctions.at(name[0])(call);
        // Rows of failing allocations say nothing of success.
        const bool is_told = result != 0 || expected[0] == "0";
        EXPECT_EQ(is_told ? call.found() : "", result == 0 && is_told ? in_hex(row[3]) : "");
        return result;
    };
    const TraceRecord trace;
    fail_allocation(expected.size() > 1 ? number_of(expected[2]) : 0);
    const uint32_t result = run();
    EXPECT_EQ(result, number_of(expected[0]));
    EXPECT_EQ(joined(trace.failures()), result == 0 ? "" : row[3]);
    EXPECT_EQ(trace.lines().at(0), "======>" + name[0] + " Begin");
    EXPECT_EQ(trace.lines().at(1) == "======>" + name[0] + " End", result == 0);
    expect_allocation_faults_survived(run);
}

TEST(Codec, Rows) {
    for (const char *file : {"elements", "headers", "integers", "times"}) {
        for (const Row &row : rows_of(std::string("asn1/") + file + ".txt")) {
            expect_row(row);
        }
    }
}

TEST(Codec, NeedsItsArguments) {
    std::map<std::string, uint32_t> others;
    for (const Row &row : rows_of("asn1/null.txt")) {
        others[row[0]] = number_of(row[1]);
    }
    const Octets octets = from_hex("30 00 50 01 00 00 00 00 00 00 00 00 00");
    const Anybuf in = borrowed(octets);
    for (const auto &[name, function] : kFunctions) {
        for (size_t at = 0, num_pointers = 1; at < num_pointers; ++at) {
            const std::string which = name + " " + std::to_string(at);
            Call call(&in, 3, at);
            EXPECT_EQ(function(call), others.emplace(which, 108).first->second) << which;
            EXPECT_TRUE(call.found().empty() || others[which] == 0) << which;
            num_pointers = call.num_pointers;
        }
    }
}

// Also read from records one octet off.
TEST(Codec, LengthsReadBackAsWritten) {
    const NoLeak no_leak;
    const auto bytes_of = [](const Handed &from) {
        return std::span(from.record->data, from.record->dataLen);
    };
    for (const Row &row : rows_of("asn1/lengths.txt")) {
        SCOPED_TRACE(row[0]);
        const Octets content(number_of(row[0]), 0x55);
        Octets whole = from_hex("04 " + row[1]);
        whole.insert(whole.end(), content.begin(), content.end());
        const uint32_t size = static_cast<uint32_t>(whole.size());
        const Anybuf value = borrowed(content);
        const Handed out =
            handed([&](Anybuf **made) { return ZAsn1_WriteOctetString(&value, made); });
        ASSERT_EQ(out.result, 0u);
        EXPECT_TRUE(std::ranges::equal(bytes_of(out), whole));
        for (const uint32_t off : {0u, 1u, UINT32_MAX}) {
            const Anybuf in{whole.data(), size + off, 0, 0, 4, nullptr, nullptr};
            const Handed back =
                handed([&](Anybuf **read) { return ZAsn1_ReadOctetString(&in, read); });
            ASSERT_EQ(back.result, off == 0 ? 0u : 102u);
            EXPECT_TRUE(off != 0 || std::ranges::equal(bytes_of(back), content));
        }
    }
}

// The lengths lie, so a content that does not fit must be refused before it is touched.
TEST(Codec, ContentAbove32BitsIsALengthError) {
    const Octets octet(1);
    Anybuf second = borrowed(octet);
    Anybuf first = borrowed(octet);
    first.dataLen = 0xFFFFFFFA;
    Anybuf *out = nullptr;
    const TraceRecord trace;
    EXPECT_EQ(ZAsn1_WriteOctetString(&first, &out), 101u);
    EXPECT_EQ(joined(trace.failures()),
              "ZAsn1_Low_Count_LengthOfSize, ZAsn1_Low_WriteTagAndLength");
    EXPECT_EQ(ZAsn1_WriteExplicit(&first, 0, &out), 101u);
    first.next = &second;
    second.dataLen = 10;  // their sum is small in 32 bits
    EXPECT_EQ(ZAsn1_WriteSequence(&first, &out), 101u);
    EXPECT_EQ(out, nullptr);
}

// Steps of days and a half over 68 years meet every summer time; the hours a zone repeats are not
// among them.
TEST(Codec, TimesReadBackAsWrittenInEveryZone) {
    for (const char *zone : {"America/New_York", "Asia/Shanghai", "UTC"}) {
        set_zone(zone);
        for (int64_t seconds = 43200; seconds <= INT32_MAX; seconds += 43200 * 13) {
            const int32_t time = static_cast<int32_t>(seconds);
            const Handed utc = handed([&](Anybuf **out) { return ZAsn1_WriteUtcTime(&time, out); });
            int32_t back = 0;
            ASSERT_EQ(ZAsn1_ReadUtcTime(utc.record.get(), &back), 0u);
            ASSERT_EQ(back, time) << zone;
        }
    }
}

}  // namespace
}  // namespace za::test
