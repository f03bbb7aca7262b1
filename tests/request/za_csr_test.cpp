#include "request/za_csr_attributes.hpp"
#include "support/attribute_page.hpp"
#include "support/handed.hpp"
#include "support/heap.hpp"
#include "support/rows.hpp"
#include "support/trace.hpp"

#include <algorithm>

namespace za::test {
namespace {

class Request {
  public:
    Request() { EXPECT_EQ(ZACert_CreateCsrEncodeCtx(&handle_), 0u); }
    ~Request() { EXPECT_EQ(ZACert_DestroyCsrEncodeCtx(handle_), 0u); }
    Request(const Request &) = delete;
    Request &operator=(const Request &) = delete;

    operator void *() const { return handle_; }
    request::Csr *operator->() const { return static_cast<request::Csr *>(handle_); }

    uint32_t decode(const Octets &der) const {
        return ZACert_DecodeCsr(handle_, der.data(), uint32_t(der.size()));
    }
    uint32_t set(int32_t id, const Octets &value) const {
        return ZACert_SetCsrAttributeChar(handle_, id, value.data(), int32_t(value.size()));
    }
    uint32_t add(const Octets &oid, const Octets &value) const {
        return ZACert_SetCsrAttributePrivate(handle_, oid.data(), int32_t(oid.size()), value.data(),
                                             int32_t(value.size()));
    }
    Octets encode(uint32_t *status = nullptr) const {
        return two_calls(
            [&](uint8_t *out, uint32_t *len) { return ZACert_EncodeCsr(handle_, out, len); },
            status);
    }

  private:
    void *handle_ = nullptr;
};

Octets get(void *csr, int32_t id) {
    return two_calls(
        [&](uint8_t *out, uint32_t *len) { return ZACert_GetCsrAttributeChar(csr, id, out, len); });
}

std::string plain(const Octets &octets) {
    std::string hex = to_hex(octets);
    std::erase(hex, ' ');
    return hex;
}

std::string attributes_of(void *csr) {
    uint32_t count = 0;
    EXPECT_EQ(ZACert_GetCsrAttributePrivate(csr, &count, nullptr, nullptr, nullptr, nullptr), 0u);
    std::string all;
    for (uint32_t i = 1; i <= count; ++i) {
        uint32_t oid_len = 0;
        uint32_t len = 0;
        EXPECT_EQ(ZACert_GetCsrAttributePrivate(csr, &i, nullptr, &oid_len, nullptr, &len), 0u);
        Octets oid(oid_len);
        Octets value(len);
        EXPECT_EQ(ZACert_GetCsrAttributePrivate(csr, &i, oid.data(), &oid_len, value.data(), &len),
                  0u);
        all += (all.empty() ? "" : " ") + plain(oid) + ":" + plain(value);
    }
    return all;
}

std::string fields_of(void *csr) {
    std::string all;
    for (const auto &row : request::csr_attributes().rows()) {
        const Octets value = row.get == nullptr ? Octets{} : get(csr, row.id);
        if (!value.empty()) {
            all += (all.empty() ? "" : " ") + std::to_string(row.id);
            all +=
                value.size() > 16 ? "<" + std::to_string(value.size()) + ">" : "=" + plain(value);
        }
    }
    const std::string attributes = attributes_of(csr);
    return all + (attributes.empty() ? "" : " ") + attributes;
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
        const Request csr;
        uint32_t number = 7;
        EXPECT_EQ(ZACert_GetCsrAttributeInt(csr, id, &number), 110u);
        EXPECT_EQ(number, 7u);
        EXPECT_EQ(ZACert_SetCsrAttributeInt(csr, id, 7), expected("number"));
        EXPECT_EQ(csr->version, expected("number") == 0 ? 7u : 0u);
        EXPECT_EQ(csr.set(id, {'1'}), expected("set"));
        EXPECT_EQ(ZACert_GetCsrAttributeChar(csr, id, nullptr, &number), expected("get"));
        EXPECT_EQ(number, expected("set") + expected("get") == 0 ? 1u : 0u);
        if (expected("set") == 0) {
            const bool is_entry = id >= CSR_SUBJECT_COUNTRYNAME && id <= CSR_SUBJECT_TELEPHONE;
            EXPECT_EQ(csr.set(id, {'2'}), 0u);
            EXPECT_EQ(csr->subject.entries.empty(), !is_entry);
            EXPECT_TRUE(is_entry || expected("get") != 0 || get(csr, id) == Octets{'2'});
        }
    }
}

TEST(RequestFields, ThePageTellsWhatTheRowsTell) {
    expect_page_tells("Attributes of a request", request::csr_attributes());
}

TEST(RequestFields, BadValuesAreRefusedWithTheirLines) {
    const TraceRecord trace;
    const Request csr;
    for (const int32_t id : {-1, 2004, 2011, 9999}) {
        EXPECT_EQ(csr.set(id, {}), 100u);
        EXPECT_EQ(ZACert_SetCsrAttributeChar(csr, id, nullptr, -1), 100u);
    }
    EXPECT_EQ(trace.failures(), Trail(8, "------>certAttributeValueLen <= 0"));
    EXPECT_EQ(csr.set(CSR_DN_DER_ID_TAG, Octets(255, 12)), 0u);
    const TraceRecord types;
    EXPECT_EQ(csr.set(CSR_DN_DER_ID_TAG, Octets(256, 19)), 108u);
    EXPECT_EQ(types.failures(),
              Trail{"--------->CSR_DN_DER_ID_TAG:3005, certAttributeValueLen is 256, >255"});
    EXPECT_EQ(csr->subject.string_types[254] + csr->subject.string_types[255], 12);

    const TraceRecord curves;
    EXPECT_EQ(csr.set(CSR_ECC_PUBLICKEY_OID, {0x2A}), 0u);
    EXPECT_EQ(curves.lines().at(2), "======>ZACsr_SetECCCertPublicKey OID End");
    csr->key.parameters.refer(csr->key.parameters.bytes().first(0));
    EXPECT_EQ(csr.set(CSR_ECC_PUBLICKEY_OID, {0x2A}), 108u);
    EXPECT_EQ(curves.failures(), Trail{"--------->ZACsr_SetECCCertPublicKey Error"});
}

TEST(RequestFields, PrivateAttributesKeepTheirOrder) {
    const NoLeak no_leak;
    const Request csr;
    const auto element = [&] {
        const Handed handed_out =
            handed([&](Anybuf **out) { return ZI_Csr_EncodeAttributes(csr, out); });
        return std::to_string(handed_out.record->dataType) + ": " + to_hex(handed_out.record.get());
    };
    EXPECT_EQ(element(), "160: A0 00");
    const TraceRecord trace;
    for (const auto &[oid, value] :
         {std::pair{Octets{}, Octets{1}}, std::pair{Octets{1}, Octets{}}}) {
        EXPECT_EQ(csr.add(oid, value), 101u);
    }
    EXPECT_EQ(trace.failures(),
              Trail(2, "------>(csrAttributeOidLen <= 0) || ( csrAttributeValueLen <= 0)"));
    EXPECT_EQ(csr.add({0x2A, 3}, {0xAA}), 0u);
    EXPECT_EQ(csr.add({0x2A, 2}, {0xBB, 0xCC}), 0u);
    EXPECT_EQ(element(), "160: " + to_hex(from_hex("A0(30(06(2A03) 31(04(AA))) "
                                                   "30(06(2A02) 31(04(BBCC))))")));
    EXPECT_EQ(attributes_of(csr), "2A03:AA 2A02:BBCC");
    for (uint32_t index : {0u, 3u, 0xFFFFFFFFu}) {
        EXPECT_EQ(ZACert_GetCsrAttributePrivate(csr, &index, nullptr, nullptr, nullptr, nullptr),
                  0u);
        EXPECT_EQ(index, 2u);
    }
}

TEST(RequestFields, NullIsRefused) {
    const Request csr;
    const uint8_t octet = 1;
    uint8_t out = 7;
    uint32_t n = 1;
    Anybuf none{};
    Anybuf *record = &none;
    const uint32_t results[] = {ZACert_CreateCsrEncodeCtx(nullptr),
                                ZACert_CreateCsrDecodeCtx(nullptr),
                                ZACert_SetCsrAttributeInt(nullptr, 2004, 1),
                                ZACert_GetCsrAttributeInt(nullptr, 2004, &n),
                                ZACert_GetCsrAttributeInt(csr, 2004, nullptr),
                                ZACert_SetCsrAttributeChar(nullptr, 2011, &octet, 1),
                                ZACert_SetCsrAttributeChar(csr, 2011, nullptr, 1),
                                ZACert_GetCsrAttributeChar(nullptr, 2011, &out, &n),
                                ZACert_GetCsrAttributeChar(csr, 2011, &out, nullptr),
                                ZACert_SetCsrAttributePrivate(nullptr, &octet, 1, &octet, 1),
                                ZACert_SetCsrAttributePrivate(csr, nullptr, 1, &octet, 1),
                                ZACert_SetCsrAttributePrivate(csr, &octet, 1, nullptr, 1),
                                ZACert_GetCsrAttributePrivate(nullptr, &n, &out, &n, &out, &n),
                                ZACert_GetCsrAttributePrivate(csr, nullptr, &out, &n, &out, &n),
                                ZACert_SetCsrSignFunc(nullptr, nullptr, &octet, 1),
                                ZACert_EncodeCsr(nullptr, &out, &n),
                                ZACert_EncodeCsr(csr, &out, nullptr),
                                ZI_Csr_EncodeAttributes(nullptr, &record),
                                ZI_Csr_EncodeAttributes(csr, nullptr),
                                ZACert_DecodeCsr(nullptr, &octet, 1),
                                ZACert_DecodeCsr(csr, nullptr, 1),
                                ZI_CSR_DecodeTBS(nullptr, &none),
                                ZI_CSR_DecodeTBS(csr, nullptr),
                                ZI_CSR_DecodeTBS(csr, &none),
                                ZI_CSR_DecodeAttributes(nullptr, &none),
                                ZI_CSR_DecodeAttributes(csr, nullptr)};
    for (const uint32_t &result : results) {
        EXPECT_EQ(result, 108u) << &result - results;
    }
    EXPECT_EQ(ZACert_DestroyCsrEncodeCtx(nullptr) + ZACert_DestroyCsrDecodeCtx(nullptr), 0u);
    EXPECT_EQ(std::pair(out, record), std::pair(uint8_t{7}, &none));
}

const std::set<uint32_t> kReadersCodes{101, 102, 106, 108, 112, 113, 121, 0xFFFFFFFE, 0xFFFFFFFF};

TEST(RequestDecoding, WholeRequests) {
    expect_decoded("requests/rows/requests", kReadersCodes, [](const Octets &in, std::string &out) {
        request::Csr csr;
        const uint32_t result = ZACert_DecodeCsr(&csr, in.data(), uint32_t(in.size()));
        out = fields_of(&csr);
        return result;
    });
}

// The caller's element is gone when the attributes are read.
TEST(RequestDecoding, AttributesAlone) {
    expect_decoded("requests/rows/attributes", kReadersCodes, [](Octets in, std::string &out) {
        request::Csr csr;
        Anybuf element = borrowed(in, in.empty() ? 0 : asn1::tag_of(in[0]));
        const uint32_t result = ZI_CSR_DecodeAttributes(&csr, &element);
        std::ranges::fill(in, uint8_t{0});
        out = attributes_of(&csr);
        return result;
    });
}

TEST(RequestDecoding, InfoAloneAndWhatStandsBehind) {
    const Octets der = data_file("requests/attributes.der");
    const Request whole;
    EXPECT_EQ(whole.decode(join({der, der})), 0u);
    EXPECT_EQ(whole.encode(), der) << "what was decoded is given back";
    const Request alone;
    {
        const Octets info = children_of(der)[0];
        Anybuf element = borrowed(info, asn1::kSequence);
        EXPECT_EQ(ZI_CSR_DecodeTBS(alone, &element), 0u);
        EXPECT_EQ(get(alone, CSR_TBS_CSR), info);
    }
    EXPECT_EQ(attributes_of(alone), attributes_of(whole));
    EXPECT_EQ(get(alone, CSR_SUBJECTPUBLICKEYINFO), get(whole, CSR_SUBJECTPUBLICKEYINFO));
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
uint32_t lengths[2];
int32_t codes[2];

int32_t sign_as_told(const uint8_t *in, uint32_t len, uint8_t *out, uint32_t *out_len,
                     void *context) {
    const auto *key = static_cast<const uint8_t *>(context);
    const size_t number = std::min<size_t>(calls.size(), 1);
    calls.push_back({Octets(in, in + len), out != nullptr, *out_len,
                     key == nullptr ? Octets{} : Octets(key, key + kKey.size())});
    if (out != nullptr) {
        std::fill_n(out, *out_len, uint8_t{0x5A});
    }
    *out_len = lengths[number];
    return codes[number];
}

// The fields of a request that was decoded, in a context of their own.
uint32_t copy_fields(void *from, void *to) {
    for (const auto &row : request::csr_attributes().rows()) {
        const Octets value = row.get == nullptr ? Octets{} : get(from, row.id);
        if (row.set != nullptr && !value.empty()) {
            const uint32_t result =
                ZACert_SetCsrAttributeChar(to, row.id, value.data(), int32_t(value.size()));
            if (result != 0) {
                return result;
            }
        }
    }
    return ZACert_SetCsrSignFunc(to, sign_as_told, kKey.data(), int32_t(kKey.size()));
}

// "length of the first call; of the second | result of the first; of the second | result | calls |
// failures"
TEST(RequestSigning, CallsGoAsAgreed) {
    const Request source;
    ASSERT_EQ(source.decode(data_file("der/request.der")), 0u);
    for (const Row &row : rows_of("requests/rows/signing")) {
        SCOPED_TRACE(row[0] + "|" + row[1]);
        const NoLeak no_leak;
        const NoSecret no_secret(kKey);
        const Request csr;
        ASSERT_EQ(copy_fields(source, csr), 0u);
        EXPECT_EQ(ZACert_SetCsrSignFunc(csr, sign_as_told, nullptr, 5), 0u) << "the key stays";
        calls.clear();
        for (size_t i = 0; i < 2; ++i) {
            lengths[i] = number_of(list_of(row[0])[i]);
            codes[i] = std::stoi(list_of(row[1])[i]);
        }
        const TraceRecord trace;
        uint32_t len = 7;
        const uint32_t expected = number_of(row[2]);
        EXPECT_EQ(ZACert_EncodeCsr(csr, nullptr, &len), expected);
        EXPECT_EQ(trace.failures(), list_of(row[4]));
        ASSERT_EQ(calls.size(), number_of(row[3]));
        for (size_t i = 0; i < calls.size(); ++i) {
            EXPECT_EQ(calls[i].in, calls[0].in);
            EXPECT_EQ(calls[i].has_room, i == 1);
            EXPECT_EQ(calls[i].room, i == 0 ? 0 : lengths[0]);
            EXPECT_EQ(calls[i].context, kKey);
        }
        EXPECT_TRUE(expected == 0 || (len == 7 && get(csr, CSR_TBS_CSR).empty()));
        if (expected == 0) {
            const Octets der = csr.encode();
            EXPECT_EQ(std::pair(der.size(), calls.size()), std::pair(size_t{len}, size_t{2}));
            EXPECT_EQ(get(csr, CSR_SELF_SIGNATURE), Octets(lengths[1], 0x5A));
            EXPECT_EQ(join({get(csr, CSR_TBS_CSR), children_of(der)[1]}),
                      join({calls[0].in, from_hex("30(06(2A8648CE3D040302) 05())")}));
        }
    }
    const TraceRecord trace;
    const Request unsigned_one;
    uint32_t len = 7;
    EXPECT_EQ(ZACert_EncodeCsr(unsigned_one, nullptr, &len), 119u);
    EXPECT_EQ(trace.failures(), Trail{"------>ZACertSignFunc Not Set"});
}

// Its common name is a UTF8String: with that chosen, openssl's own octets come out.
TEST(RequestEncoding, InfoIsWhatOpensslWrites) {
    const Octets der = data_file("der/request.der");
    const Request source;
    ASSERT_EQ(source.decode(der), 0u);
    lengths[0] = lengths[1] = 64;
    codes[0] = codes[1] = 0;
    Octets info;
    const auto encode = [&] {
        request::Csr csr;
        const uint8_t types[] = {0, 12};
        uint32_t len = 7;
        uint32_t result = copy_fields(source, &csr);
        if (result == 0) {
            result = ZACert_SetCsrAttributeChar(&csr, CSR_DN_DER_ID_TAG, types, 2);
        }
        if (result == 0) {
            result = ZACert_EncodeCsr(&csr, nullptr, &len);
            EXPECT_TRUE(result == 0 || len == 7);
        }
        info = get(&csr, CSR_TBS_CSR);
        return result;
    };
    EXPECT_EQ(encode(), 0u);
    EXPECT_EQ(info, children_of(der)[0]);
    expect_allocation_faults_survived(encode);
}

TEST(RequestEncoding, WhatWasWrongCanBeCorrected) {
    const Request source;
    const Request csr;
    ASSERT_EQ(source.decode(data_file("der/request.der")), 0u);
    ASSERT_EQ(copy_fields(source, csr), 0u);
    const Octets key = get(source, CSR_SUBJECTPUBLICKEYINFO);
    uint32_t status = 7;
    EXPECT_EQ(csr.set(CSR_SUBJECTPUBLICKEYINFO, Octets(65, 4)), 0u);
    csr.encode(&status);
    EXPECT_EQ(status, 108u) << "a point is not the form of a key";
    EXPECT_EQ(csr.set(CSR_SUBJECTPUBLICKEYINFO, key), 0u);
    EXPECT_EQ(ZACert_SetCsrAttributeInt(csr, CSR_VERSION, 5), 0u);
    const Octets der = csr.encode(&status);
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(to_hex(children_of(children_of(der)[0])[0]), "02 01 05");
}

}  // namespace
}  // namespace za::test
