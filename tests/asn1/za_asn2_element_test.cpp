// Every reader and writer, by the rows of asn1/elements.txt.
#include "support/bytes.hpp"
#include "support/handed.hpp"
#include "support/heap.hpp"
#include "support/table.hpp"
#include "support/trace.hpp"

#include <gtest/gtest.h>
#include <list>
#include <map>
#include <string>

namespace za::test {
namespace {

// All are called alike; what is no record goes to `number`, which also brings a tag number in.
using Call = uint32_t (*)(const Anybuf *in, Anybuf **out, uint32_t *number);
constexpr uint32_t kUntouched = 0xDEADDEAD;

template <auto function>
uint32_t element(const Anybuf *in, Anybuf **out, uint32_t *) {
    return function(in, out);
}

template <auto function>
uint32_t tagged(const Anybuf *in, Anybuf **out, uint32_t *number) {
    return function(in, std::exchange(*number, kUntouched), out);
}

template <auto function, class Number>
uint32_t value(const Anybuf *in, Anybuf **out, uint32_t *number) {
    Number found = 0;
    const uint32_t result = function(in, &found);
    if (result == 0) {
        *number = found;
        *out = nullptr;
    }
    return result;
}

uint32_t integer(const Anybuf *, Anybuf **out, uint32_t *number) {
    return ZAsn1_WriteInteger(std::exchange(*number, kUntouched), out);
}

// These two leave the content to their caller and tell its place.
uint32_t write_header(const Anybuf *in, Anybuf **out, uint32_t *number) {
    const uint32_t identifier = std::exchange(*number, kUntouched);
    uint8_t *place = nullptr;
    const uint32_t result = ZAsn1_Low_WriteTagAndLength(in, identifier, out, &place);
    EXPECT_EQ(result == 0, place != nullptr);
    *number = result == 0 ? static_cast<uint32_t>(place - (*out)->data) : kUntouched;
    return result;
}

uint32_t read_header(const Anybuf *in, Anybuf **out, uint32_t *number) {
    const uint8_t *pos = in == nullptr ? nullptr : in->data;
    uint8_t *content = nullptr;
    const uint32_t result = ZAsn1_Low_ReadTagAndLength(in, &pos, out, &content);
    if (result == 0) {
        EXPECT_EQ(content, (*out)->data);
        *number = static_cast<uint32_t>(pos - in->data);
    }
    return result;
}

uint32_t boolean(const Anybuf *in, Anybuf **out, uint32_t *) {
    return ZAsn1_WriteBoolean(in == nullptr ? nullptr : in->data, out);
}

uint32_t null(const Anybuf *, Anybuf **out, uint32_t *) {
    return ZAsn1_WriteNull(out);
}

uint32_t write_object_id(const Anybuf *in, Anybuf **out, uint32_t *) {
    const ZA_ObjectIdentifier oid{7, in == nullptr ? Anybuf{} : *in};
    return ZAsn1_WriteObjectId(in == nullptr ? nullptr : &oid, out);
}

// Hands the record on in a block that is none of the library's allocations.
uint32_t moved(Anybuf &record, Anybuf **out) {
    const SparedAllocation spared;
    *out = static_cast<Anybuf *>(ZAPR_Malloc("", 0, sizeof(Anybuf)));
    **out = std::exchange(record, {});
    return 0;
}

uint32_t read_integer_array(const Anybuf *in, Anybuf **out, uint32_t *) {
    Anybuf record{};
    const uint32_t result = ZAsn1_ReadIntegerArray(in, out == nullptr ? nullptr : &record);
    return result == 0 ? moved(record, out) : result;
}

// This record is no Anybuf, and its two blocks go one by one.
uint32_t read_object_id(const Anybuf *in, Anybuf **out, uint32_t *number) {
    ZA_ObjectIdentifier *oid = nullptr;
    const uint32_t result = ZAsn1_ReadObjectId(in, out == nullptr ? nullptr : &oid);
    EXPECT_EQ(result == 0, oid != nullptr);
    if (oid != nullptr) {
        *number = oid->algorithm;
        moved(oid->parameters, out);
        ZI_ClearAnybuf(&oid->parameters);
        ZAPR_Free(oid);
    }
    return result;
}

#define ELEMENT(function) \
    { #function, element < function> }

const std::map<std::string, Call> kCalls = {
    ELEMENT(ZAsn1_WriteOctetString),
    ELEMENT(ZAsn1_ReadOctetString),
    ELEMENT(ZAsn1_WriteBitString),
    ELEMENT(ZAsn1_ReadBitString),
    ELEMENT(ZAsn1_WriteEnumerated),
    ELEMENT(ZAsn1_ReadEnumerated),
    ELEMENT(ZAsn1_WriteCharString),
    ELEMENT(ZAsn1_ReadCharString),
    ELEMENT(ZAsn1_WritePrintableString),
    ELEMENT(ZAsn1_ReadPrintableString),
    ELEMENT(ZAsn1_WriteBmpString),
    ELEMENT(ZAsn1_ReadBmpString),
    ELEMENT(ZAsn1_WriteUTF8String),
    ELEMENT(ZAsn1_ReadUTF8String),
    ELEMENT(ZAsn1_WriteIa5String),
    ELEMENT(ZAsn1_ReadIa5String),
    ELEMENT(ZAsn1_WriteSequence),
    ELEMENT(ZAsn1_ReadSequence),
    ELEMENT(ZAsn1_WriteSet),
    ELEMENT(ZAsn1_ReadSet),
    ELEMENT(ZAsn1_WriteIntegerArray),
    {"ZAsn1_ReadIntegerArray", read_integer_array},
    {"ZAsn1_WriteObjectId", write_object_id},
    {"ZAsn1_ReadObjectId", read_object_id},
    {"ZAsn1_WriteExplicit", tagged<ZAsn1_WriteExplicit>},
    {"ZAsn1_ReadExplicit", ZAsn1_ReadExplicit},
    {"ZAsn1_WriteImplicit", tagged<ZAsn1_WriteImplicit>},
    {"ZAsn1_ReadImplicit", ZAsn1_ReadImplicit},
    {"ZAsn1_WriteBoolean", boolean},
    {"ZAsn1_ReadBoolean", value<ZAsn1_ReadBoolean, uint8_t>},
    {"ZAsn1_WriteInteger", integer},
    {"ZAsn1_Low_WriteTagAndLength", write_header},
    {"ZAsn1_Low_ReadTagAndLength", read_header},
    {"ZAsn1_WriteNull", null},
    {"ZAsn1_ReadInteger", value<ZAsn1_ReadInteger, uint32_t>},
};

#undef ELEMENT

// "type/unused octets; ..." as a chain whose octets end where their blocks end.
class InputChain {
  public:
    explicit InputChain(const std::string &text) {
        for (const std::string &part : text.empty() ? Fields{} : split(text, ';')) {
            Anybuf record{};
            if (part != "NULL") {
                const Octets octets =
                    from_hex(part.find(' ') == part.npos ? "" : part.substr(part.find(' ')));
                const auto &block = blocks_.emplace_back(new uint8_t[octets.size()]);
                std::copy(octets.begin(), octets.end(), block.get());
                record.data = block.get();
                record.dataLen = static_cast<uint32_t>(octets.size());
                record.dataType = number(part);
                record.unusedBits =
                    part.find('/') == part.npos ? 0 : number(part.substr(part.find('/') + 1));
            }
            Anybuf *before = records_.empty() ? nullptr : &records_.back();
            records_.push_back(record);
            (before == nullptr ? head_ : before->next) = &records_.back();
        }
    }
    const Anybuf *head() const { return head_; }

  private:
    std::list<std::unique_ptr<uint8_t[]>> blocks_;
    std::list<Anybuf> records_;
    Anybuf *head_ = nullptr;
};

std::string joined(const std::vector<std::string> &trail) {
    std::string text;
    for (const std::string &line : trail) {
        EXPECT_TRUE(line.starts_with("------>"));
        text += (text.empty() ? "" : ", ") + line.substr(7);
    }
    return text;
}

TEST(Element, Rows) {
    for (const Fields &row : table("asn1/elements.txt")) {
        SCOPED_TRACE(row[0] + " of " + row[1]);
        const NoLeak no_leak;
        const Fields name = split(row[0], ' ');
        const Fields expected = split(row[2], ' ');
        const InputChain in(row[1]);
        const auto run = [&](std::string &found) {
            uint32_t number_in = name.size() > 1 ? number(name[1]) : kUntouched;
            const Handed records = handed(
                [&](Anybuf **out) { return kCalls.at(name[0])(in.head(), out, &number_in); });
            EXPECT_TRUE(records.result == 0 || number_in == kUntouched);
            found = number_in == kUntouched ? "" : std::to_string(number_in) + ": ";
            found += describe(records.record.get());
            return records.result;
        };
        std::string found;
        const TraceRecord trace;
        fail_allocation(expected.size() > 1 ? number(expected[2]) : 0);
        const uint32_t result = run(found);
        EXPECT_EQ(result, number(expected[0]));
        EXPECT_EQ(result == 0 ? trimmed(found) : joined(trace.failures()), row[3]);
        EXPECT_EQ(trace.lines().at(0), "======>" + name[0] + " Begin");
        EXPECT_EQ(trace.lines().at(1) == "======>" + name[0] + " End", result == 0);
        expect_allocation_faults_survived([&] { return run(found); });
    }
}

TEST(Element, EveryFunctionNeedsItsArguments) {
    const Octets der = from_hex("30 00");
    const Anybuf in = borrowed(der);
    uint32_t number = 0;
    for (const auto &entry : kCalls) {
        const std::string &name = entry.first;
        const Call call = entry.second;
        const bool takes_nothing = name == "ZAsn1_WriteSequence" || name == "ZAsn1_WriteSet" ||
                                   name == "ZAsn1_WriteNull" || name == "ZAsn1_WriteInteger";
        EXPECT_EQ(handed([&](Anybuf **out) { return call(nullptr, out, &number); }).result,
                  takes_nothing ? 0u : 108u)
            << name;
        if (name != "ZAsn1_ReadBoolean" && name != "ZAsn1_ReadInteger") {
            EXPECT_EQ(call(&in, nullptr, &number), 108u) << name;
        }
    }
    Anybuf *out = nullptr;
    EXPECT_EQ(ZAsn1_ReadInteger(&in, nullptr), 108u);
    EXPECT_EQ(ZAsn1_ReadBoolean(&in, nullptr), 108u);
    EXPECT_EQ(ZAsn1_ReadExplicit(&in, &out, nullptr), 108u);
    EXPECT_EQ(ZAsn1_ReadImplicit(&in, &out, nullptr), 108u);
}

// The lengths lie, so a content that does not fit must be refused before it is touched.
TEST(Element, ContentAbove32BitsIsALengthError) {
    const Octets octet(1);
    Anybuf second = borrowed(octet);
    Anybuf first = borrowed(octet);
    first.dataLen = 0xFFFFFFFA;
    const TraceRecord trace;
    EXPECT_EQ(handed([&](Anybuf **out) { return ZAsn1_WriteOctetString(&first, out); }).result,
              101u);
    EXPECT_EQ(joined(trace.failures()),
              "ZAsn1_Low_Count_LengthOfSize, ZAsn1_Low_WriteTagAndLength");
    EXPECT_EQ(handed([&](Anybuf **out) { return ZAsn1_WriteExplicit(&first, 0, out); }).result,
              101u);
    first.next = &second;
    second.dataLen = 10;  // their sum is small in 32 bits
    EXPECT_EQ(handed([&](Anybuf **out) { return ZAsn1_WriteSequence(&first, out); }).result, 101u);
}

}  // namespace
}  // namespace za::test
