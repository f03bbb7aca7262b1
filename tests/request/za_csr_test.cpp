#include "cert/za_cert_support.hpp"
#include "request/za_csr_attributes.hpp"
#include "support/attribute_page.hpp"
#include "support/handed.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <algorithm>
#include <memory>

namespace za::test {
namespace {

using request::Csr;

int32_t size_of(const Octets &octets) {
    return static_cast<int32_t>(octets.size());
}

uint32_t decode(Csr &csr, const Octets &der) {
    return ZACert_DecodeCsr(&csr, der.data(), uint32_t(der.size()));
}

uint32_t set(Csr &csr, int32_t id, const Octets &value) {
    return ZACert_SetCsrAttributeChar(&csr, id, value.data(), size_of(value));
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
    const std::vector<Row> rows = rows_of("requests/rows/identifiers");
    for (int32_t id = 1990; id <= 3010; ++id) {
        SCOPED_TRACE(id);
        const auto row = std::ranges::find_if(rows, [&](const Row &candidate) {
            return std::stoi(candidate[0]) <= id && id <= std::stoi(candidate[1]);
        });
        const auto expected = [&](const char *accessor) {
            return row != rows.end() && row->at(2).find(accessor) != std::string::npos ? 0u : 110u;
        };
        Csr csr;
        uint32_t number = 7;
        EXPECT_EQ(ZACert_GetCsrAttributeInt(&csr, id, &number), 110u);
        EXPECT_EQ(number, 7u);
        EXPECT_EQ(ZACert_SetCsrAttributeInt(&csr, id, 7), expected("number"));
        EXPECT_EQ(csr.version, expected("number") == 0 ? 7u : 0u);
        EXPECT_EQ(set(csr, id, {'1'}), expected("set"));
        EXPECT_EQ(ZACert_GetCsrAttributeChar(&csr, id, nullptr, &number), expected("get"));
        EXPECT_EQ(number, expected("set") + expected("get") == 0 ? 1u : 0u);
    }
}

TEST(RequestFields, ThePageTellsWhatTheRowsTell) {
    expect_page_tells("Attributes of a request", request::csr_attributes());
}

TEST(RequestFields, NullIsRefused) {
    Csr csr;
    const uint8_t octet = 1;
    uint8_t out = 7;
    uint32_t n = 1;
    Anybuf none{};
    const uint32_t results[] = {ZACert_CreateCsrEncodeCtx(nullptr),
                                ZACert_SetCsrAttributeInt(nullptr, 2004, 1),
                                ZACert_GetCsrAttributeInt(nullptr, 2004, &n),
                                ZACert_SetCsrAttributeChar(nullptr, 2011, &octet, 1),
                                ZACert_SetCsrAttributeChar(&csr, 2011, nullptr, 1),
                                ZACert_GetCsrAttributeChar(nullptr, 2011, &out, &n),
                                ZACert_GetCsrAttributeChar(&csr, 2011, &out, nullptr),
                                ZACert_SetCsrAttributePrivate(nullptr, &octet, 1, &octet, 1),
                                ZACert_SetCsrAttributePrivate(&csr, nullptr, 1, &octet, 1),
                                ZACert_SetCsrAttributePrivate(&csr, &octet, 1, nullptr, 1),
                                ZACert_GetCsrAttributePrivate(nullptr, &n, &out, &n, &out, &n),
                                ZACert_SetCsrSignFunc(nullptr, nullptr, &octet, 1),
                                ZACert_EncodeCsr(nullptr, &out, &n),
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

TEST(RequestDecoding, WholeRequests) {
    expect_decoded("requests/rows/requests", kReadersCodes, [](const Octets &in, std::string &out) {
        Csr csr;
        const uint32_t result = decode(csr, in);
        out = seen(csr);
        return result;
    });
}

// The caller's element is gone when the attributes are read.
TEST(RequestDecoding, AttributesAlone) {
    expect_decoded("requests/rows/attributes", kReadersCodes, [](Octets in, std::string &out) {
        Csr csr;
        Anybuf element = borrowed(in, in.empty() ? 0 : asn1::tag_of(in[0]));
        const uint32_t result = ZI_CSR_DecodeAttributes(&csr, &element);
        std::ranges::fill(in, uint8_t{0});
        out = seen(csr);
        return result;
    });
}

TEST(RequestDecoding, InfoAloneAndWhatStandsBehind) {
    const Octets der = data_file("requests/attributes.der");
    const Octets info = children_of(der)[0];
    Anybuf element = borrowed(info, asn1::kSequence);
    Csr whole;
    Csr alone;
    EXPECT_EQ(decode(whole, join({der, der})), 0u);
    EXPECT_EQ(to_hex(whole.whole.bytes()), to_hex(der));
    EXPECT_EQ(ZI_CSR_DecodeTBS(&alone, &element), 0u);
    EXPECT_NE(alone.tbs.bytes().data(), info.data());
    whole.outer_algorithm = Field();
    whole.signature = Field();
    EXPECT_EQ(seen(alone), seen(whole));
}

// What the function that signs was called with, and what it answers.
struct Call {
    Octets in;
    bool has_room;
    uint32_t room;
    Octets context;
};
std::vector<Call> calls;
const Octets kKey{0xC0, 0xFF, 0xEE, 0x5E, 0xC2, 0xE7, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66};
uint32_t lengths[] = {1, 1};
int32_t codes[] = {0, 0};

int32_t sign_as_told(const uint8_t *in, uint32_t len, uint8_t *out, uint32_t *out_len, void *key) {
    const auto *octets = static_cast<const uint8_t *>(key);
    const size_t number = std::min<size_t>(calls.size(), 1);
    calls.push_back({Octets(in, in + len), out != nullptr, *out_len,
                     key == nullptr ? Octets{} : Octets(octets, octets + kKey.size())});
    std::fill_n(out, out == nullptr ? 0 : *out_len, uint8_t{0x5A});
    *out_len = lengths[number];
    return codes[number];
}

uint32_t encode(Csr &csr, Octets &out) {
    uint32_t status = 0;
    calls.clear();
    out = two_calls([&](uint8_t *to, uint32_t *len) { return ZACert_EncodeCsr(&csr, to, len); },
                    &status);
    return status;
}

// An EC request of openssl's, whose names have types that are chosen here.
uint32_t copy_request(Csr &csr) {
    Csr source;
    uint32_t result = decode(source, data_file("der/request.der"));
    for (const auto &row : request::csr_attributes().rows()) {
        const Octets value = row.get == nullptr ? Octets{} : get(source, row.id);
        if (row.set != nullptr && !value.empty() && result == 0) {
            result = set(csr, row.id, value);
        }
    }
    result = result == 0 ? set(csr, CSR_DN_DER_ID_TAG, {0, 12}) : result;
    return result == 0 ? ZACert_SetCsrSignFunc(&csr, sign_as_told, kKey.data(), size_of(kKey))
                       : result;
}

uint32_t encode_attributes(Csr &csr, Octets &out) {
    const Handed made = handed([&](Anybuf **to) { return ZI_Csr_EncodeAttributes(&csr, to); });
    EXPECT_EQ(describe(made.record.get()).substr(0, 4), "160 ");
    out.assign(made.record->data, made.record->data + made.record->dataLen);
    return made.result;
}

uint32_t take_step(Csr &csr, const Row &row, Octets &out) {
    const Octets octets = from_hex(row[2]);
    const Octets oid = row[0] == "add" ? from_hex(row[1]) : Octets{};
    if (row[0] == "hollow") {
        csr.key.parameters.refer(csr.key.parameters.bytes().first(0));
        return 0;
    }
    return row[0] == "set"          ? set(csr, std::stoi(row[1]), octets)
           : row[0] == "number"     ? ZACert_SetCsrAttributeInt(&csr, std::stoi(row[1]), octets[0])
           : row[0] == "add"        ? ZACert_SetCsrAttributePrivate(&csr, oid.data(), size_of(oid),
                                                                    octets.data(), size_of(octets))
           : row[0] == "sign"       ? ZACert_SetCsrSignFunc(&csr, sign_as_told, kKey.data(), 12)
           : row[0] == "attributes" ? encode_attributes(csr, out)
           : row[0] == "encode"     ? encode(csr, out)
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
        EXPECT_EQ(to_hex(out), to_hex(from_hex(row.size() > 6 ? row[6] : "")));
    }
}

TEST(RequestEncoding, AllocationFaultsAreReported) {
    const Octets der = data_file("der/request.der");
    Octets info;
    const auto call = [&] {
        void *csr = nullptr;
        uint32_t len = 7;
        uint32_t result = ZACert_CreateCsrEncodeCtx(&csr);
        result = result == 0 ? copy_request(*static_cast<Csr *>(csr)) : result;
        result = result == 0 ? ZACert_EncodeCsr(csr, nullptr, &len) : result;
        EXPECT_TRUE(result == 0 || len == 7);
        info = csr == nullptr ? Octets{} : get(*static_cast<Csr *>(csr), CSR_TBS_CSR);
        ZACert_DestroyCsrEncodeCtx(csr);
        return result;
    };
    EXPECT_EQ(call(), 0u);
    EXPECT_EQ(info, children_of(der)[0]) << "openssl's own octets";
    expect_allocation_faults_survived(call);
}

// "length of the first call; of the second | result of both | result | calls | failures"
TEST(RequestSigning, CallsGoAsAgreed) {
    for (const Row &row : rows_of("requests/rows/signing")) {
        SCOPED_TRACE(row[0] + "|" + row[1]);
        const NoLeak no_leak;
        const NoSecret no_secret(kKey);
        Csr csr;
        ASSERT_EQ(copy_request(csr), 0u);
        EXPECT_EQ(ZACert_SetCsrSignFunc(&csr, sign_as_told, nullptr, 5), 0u) << "the key stays";
        for (size_t i = 0; i < 2; ++i) {
            lengths[i] = number_of(list_of(row[0])[i]);
            codes[i] = std::stoi(list_of(row[1])[i]);
        }
        const TraceRecord trace;
        Octets der;
        EXPECT_EQ(encode(csr, der), number_of(row[2]));
        EXPECT_EQ(trace.failures(), list_of(row[4]));
        ASSERT_EQ(calls.size(), number_of(row[3]));
        for (size_t i = 0; i < calls.size(); ++i) {
            EXPECT_EQ(calls[i].in, calls[0].in);
            EXPECT_EQ(std::pair(calls[i].has_room, calls[i].room),
                      std::pair(i == 1, i == 0 ? 0u : lengths[0]));
            EXPECT_EQ(calls[i].context, kKey);
        }
        EXPECT_EQ(get(csr, CSR_TBS_CSR), row[2] == "0" ? calls[0].in : Octets{});
        EXPECT_EQ(der.empty(), row[2] != "0");
        EXPECT_TRUE(der.empty() || get(csr, CSR_SELF_SIGNATURE) == Octets(lengths[1], 0x5A));
    }
    lengths[0] = lengths[1] = 1;
    codes[0] = codes[1] = 0;
}

}  // namespace
}  // namespace za::test
