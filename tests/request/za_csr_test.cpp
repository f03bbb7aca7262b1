#include "cert/za_cert_support.hpp"
#include "request/za_csr_attributes.hpp"
#include "support/attribute_page.hpp"
#include "support/handed.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <memory>

namespace za::test {
namespace {

using request::Csr;

uint32_t set(Csr &csr, int32_t id, const Octets &value) {
    return ZACert_SetCsrAttributeChar(&csr, id, value.data(), int32_t(value.size()));
}

Octets get(Csr &csr, int32_t id) {
    return two_calls([&](uint8_t *out, uint32_t *len) {
        return ZACert_GetCsrAttributeChar(&csr, id, out, len);
    });
}

// "IDENTIFIER=VALUE" or "IDENTIFIER<LENGTH>" of each field that is there, "OID:VALUE" of attributes.
std::string seen(Csr &csr) {
    std::string all;
    for (const auto &row : request::csr_attributes().rows()) {
        const Octets value = row.get == nullptr ? Octets{} : get(csr, row.id);
        const std::string shown =
            value.size() > 16 ? "<" + std::to_string(value.size()) + ">" : "=" + plain_hex(value);
        all += value.empty() ? "" : " " + std::to_string(row.id) + shown;
    }
    uint32_t count = 0xFFFFFFFF;  // beyond any list
    EXPECT_EQ(ZACert_GetCsrAttributePrivate(&csr, &count, nullptr, nullptr, nullptr, nullptr), 0u);
    for (uint32_t i = 1; i <= count; ++i) {
        uint32_t oid_len = 0;
        uint32_t len = 0;
        EXPECT_EQ(ZACert_GetCsrAttributePrivate(&csr, &i, nullptr, &oid_len, nullptr, &len), 0u);
        Octets oid(oid_len);
        Octets value(len);
        EXPECT_EQ(ZACert_GetCsrAttributePrivate(&csr, &i, oid.data(), &oid_len, value.data(), &len),
                  0u);
        all += " " + plain_hex(oid) + ":" + plain_hex(value);
    }
    return all.empty() ? all : all.substr(1);
}

TEST(RequestFields, EveryIdentifierHasTheAccessorsOfItsKind) {
    std::map<int32_t, std::string> accessors;
    for (const Row &row : rows_of("requests/rows/identifiers")) {
        accessors[std::stoi(row[0])] = row[1];
    }
    for (int32_t id = 1990; id <= 3010; ++id) {
        SCOPED_TRACE(id);
        const auto expected = [&](const char *accessor) {
            return accessors[id].find(accessor) != std::string::npos ? 0u : 110u;
        };
        Csr csr;
        uint32_t number = 7;
        EXPECT_EQ(ZACert_GetCsrAttributeInt(&csr, id, &number), 110u);
        EXPECT_EQ(ZACert_SetCsrAttributeInt(&csr, id, 7), expected("number"));
        EXPECT_EQ(csr.version, expected("number") == 0 ? 7u : 0u);
        EXPECT_EQ(set(csr, id, {'1'}), expected("set"));
        EXPECT_EQ(ZACert_GetCsrAttributeChar(&csr, id, nullptr, &number), expected("get"));
        EXPECT_EQ(number, expected("set") + expected("get") == 0 ? 1u : 0u);
    }
    expect_page_tells("Attributes of a request", request::csr_attributes());
}

TEST(RequestFields, NullIsRefused) {
    Csr csr;
    const uint8_t octet = 1;
    uint8_t out = 7;
    uint32_t n = 1;
    Anybuf none{};
    const uint32_t results[] = {ZACert_SetCsrAttributeInt(nullptr, 2004, 1),
                                ZACert_SetCsrAttributeChar(nullptr, 2011, &octet, 1),
                                ZACert_SetCsrAttributeChar(&csr, 2011, nullptr, 1),
                                ZACert_GetCsrAttributeChar(nullptr, 2011, &out, &n),
                                ZACert_GetCsrAttributeChar(&csr, 2011, &out, nullptr),
                                ZACert_SetCsrAttributePrivate(nullptr, &octet, 1, &octet, 1),
                                ZACert_SetCsrAttributePrivate(&csr, nullptr, 1, &octet, 1),
                                ZACert_GetCsrAttributePrivate(nullptr, &n, &out, &n, &out, &n),
                                ZACert_SetCsrSignFunc(nullptr, nullptr, &octet, 1),
                                ZACert_EncodeCsr(&csr, &out, nullptr),
                                ZI_Csr_EncodeAttributes(&csr, nullptr),
                                ZACert_DecodeCsr(&csr, nullptr, 1),
                                ZI_CSR_DecodeTBS(nullptr, &none),
                                ZI_CSR_DecodeAttributes(&csr, nullptr)};
    for (const uint32_t &result : results) {
        EXPECT_EQ(result, 108u) << &result - results;
    }
    EXPECT_EQ(ZACert_DestroyCsrEncodeCtx(nullptr) + ZACert_DestroyCsrDecodeCtx(nullptr), 0u);
    EXPECT_EQ(out, 7);
}

const std::set<uint32_t> kReadersCodes{101, 102, 106, 108, 112, 113, 121, 0xFFFFFFFE, 0xFFFFFFFF};

// The caller's octets are gone when the fields are read.
uint32_t decode(const std::string &what, Csr &csr, Octets in) {
    Anybuf element = borrowed(in, in.empty() ? 0 : asn1::tag_of(in[0]));
    const uint32_t result = what == "info" ? ZI_CSR_DecodeTBS(&csr, &element)
                            : what == "attributes"
                                ? ZI_CSR_DecodeAttributes(&csr, &element)
                                : ZACert_DecodeCsr(&csr, element.data, element.dataLen);
    std::ranges::fill(in, uint8_t{0});
    return result;
}

TEST(RequestDecoding, RowsDecodeAsWritten) {
    const std::set<uint32_t> refused{101, 102, 106, 108, 112, 113, 121, 0xFFFFFFFE, 0xFFFFFFFF};
    for (const std::string what : {"decode", "attributes"}) {
        expect_decoded("requests/rows/" + what, refused, [&](const Octets &in, std::string &out) {
            Csr csr;
            const uint32_t result = decode(what, csr, in);
            out = out.empty() ? seen(csr) : out;  // not again for every damage
            return result;
        });
    }
}

// What the function that signs gets: octets, whether there is room, how much, its context.
using Call = std::tuple<Octets, bool, uint32_t, Octets>;
std::vector<Call> calls;
const Octets kKey{0xC0, 0xFF, 0xEE, 0x5E, 0xC2, 0xE7, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66};
std::array<uint32_t, 2> lengths;
std::array<int32_t, 2> codes;

int32_t sign_as_told(const uint8_t *in, uint32_t len, uint8_t *out, uint32_t *out_len, void *key) {
    const auto *octets = static_cast<const uint8_t *>(key);
    const size_t number = std::min<size_t>(calls.size(), 1);
    calls.emplace_back(Octets(in, in + len), out != nullptr, *out_len,
                       Octets(octets, octets + (key == nullptr ? 0 : kKey.size())));
    std::fill_n(out, out == nullptr ? 0 : *out_len, uint8_t{0x5A});
    *out_len = lengths[number];
    return codes[number];
}

uint32_t sign_by_one_octet(Csr &csr) {
    lengths = {1, 1};
    codes = {0, 0};
    return ZACert_SetCsrSignFunc(&csr, sign_as_told, kKey.data(), int32_t(kKey.size()));
}

uint32_t encode(Csr &csr, Octets &out) {
    uint32_t status = 0;
    calls.clear();
    out = two_calls([&](uint8_t *to, uint32_t *len) { return ZACert_EncodeCsr(&csr, to, len); },
                    &status);
    return status;
}

// What openssl wrote, to be written again: its common name is a UTF8String.
uint32_t read_to_be_written(Csr &csr) {
    const uint32_t result = decode("decode", csr, data_file("der/request.der"));
    csr.whole = Field();
    csr.subject.string_types = {0, 12};
    return result == 0 ? sign_by_one_octet(csr) : result;
}

uint32_t encode_attributes(Csr &csr, Octets &out) {
    const Handed made = handed([&](Anybuf **to) { return ZI_Csr_EncodeAttributes(&csr, to); });
    EXPECT_EQ(describe(made.record.get()), "160 " + to_hex(made.record.get()));
    out = from_hex(to_hex(made.record.get()));
    return made.result;
}

uint32_t take_step(Csr &csr, const Row &row, Octets &out) {
    const Octets octets = octets_of_cell(row[2]);
    const Octets oid = row[0] == "add" ? from_hex(row[1]) : Octets{};
    if (row[0] == "hollow") {
        csr.key.parameters.refer(csr.key.parameters.bytes().first(0));
    }
    return row[0] == "set"      ? set(csr, std::stoi(row[1]), octets)
           : row[0] == "number" ? ZACert_SetCsrAttributeInt(&csr, std::stoi(row[1]), octets[0])
           : row[0] == "add"  ? ZACert_SetCsrAttributePrivate(&csr, oid.data(), int32_t(oid.size()),
                                                              octets.data(), int32_t(octets.size()))
           : row[0] == "sign" ? sign_by_one_octet(csr)
           : row[0] == "decode" || row[0] == "info" ? decode(row[0], csr, octets)
           : row[0] == "attributes"                 ? encode_attributes(csr, out)
           : row[0] == "encode"                     ? encode(csr, out)
                                                    : 0;
}

TEST(RequestEncoding, StepsEndAsWritten) {
    auto csr = std::make_unique<Csr>();
    for (const Row &row : rows_of("requests/rows/steps")) {
        SCOPED_TRACE(row[0] + "|" + row[1] + "|" + row[2]);
        csr = row[0] == "new" ? std::make_unique<Csr>() : std::move(csr);
        const TraceRecord trace;
        Octets out;
        EXPECT_EQ(take_step(*csr, row, out), number_of(row[3]));
        EXPECT_EQ(seen(*csr), row[4]);
        EXPECT_EQ(trace.failures(), list_of(row[5]));
        EXPECT_EQ(to_hex(out), to_hex(octets_of_cell(row.size() > 6 ? row[6] : "")));
    }
}

TEST(RequestEncoding, AllocationFaultsAreReported) {
    const auto call = [&] {
        Csr csr;
        uint32_t len = 7;
        uint32_t result = read_to_be_written(csr);
        result =
            result == 0 ? set(csr, CSR_ECC_PUBLICKEY_OID, from_hex("2A8648CE3D030107")) : result;
        result = result == 0 ? ZACert_EncodeCsr(&csr, nullptr, &len) : result;
        EXPECT_TRUE(result == 0 || len == 7);
        return result;
    };
    EXPECT_EQ(call(), 0u);
    expect_allocation_faults_survived(call);
}

// "length of the first call; of the second | result of both | result | calls | failures"
TEST(RequestSigning, CallsGoAsAgreed) {
    for (const Row &row : rows_of("requests/rows/signing")) {
        SCOPED_TRACE(row[0] + "|" + row[1]);
        const NoLeak no_leak;
        const NoSecret no_secret(kKey);
        Csr csr;
        ASSERT_EQ(read_to_be_written(csr), 0u);
        EXPECT_EQ(ZACert_SetCsrSignFunc(&csr, sign_as_told, nullptr, 5), 0u) << "the key stays";
        for (size_t i = 0; i < 2; ++i) {
            lengths[i] = number_of(list_of(row[0])[i]);
            codes[i] = std::stoi(list_of(row[1])[i]);
        }
        const TraceRecord trace;
        Octets der;
        EXPECT_EQ(encode(csr, der), number_of(row[2]));
        EXPECT_EQ(trace.failures(), list_of(row[4]));
        const Octets info = children_of(data_file("der/request.der"))[0];
        std::vector<Call> agreed{{info, false, 0, kKey}, {info, true, lengths[0], kKey}};
        agreed.resize(number_of(row[3]));
        EXPECT_EQ(calls, agreed);
        EXPECT_EQ(der.empty(), row[2] != "0");
        EXPECT_TRUE(der.empty() || get(csr, CSR_SELF_SIGNATURE) == Octets(lengths[1], 0x5A));
    }
}

}  // namespace
}  // namespace za::test
