#include "cert/za_cert_support.hpp"
#include "names/za_low_name_support.hpp"
#include "support/heap.hpp"
#include "support/trace.hpp"

#include <map>

namespace za::test {
namespace {

using cert::Certificate;
using cert::ExtensionState;

template <auto Extension>
ExtensionState &state_of(Certificate &cert) {
    return (cert.*Extension).state;
}

const std::map<std::string, ExtensionState &(*)(Certificate &)> kStates{
    {"AKI", state_of<&Certificate::authority_key_identifier>},
    {"SKI", state_of<&Certificate::subject_key_identifier>},
    {"KU", state_of<&Certificate::key_usage>},
    {"EKU", state_of<&Certificate::extended_key_usage>},
    {"CP", state_of<&Certificate::policies>},
    {"SAN", state_of<&Certificate::subject_alternative_name>},
    {"IAN", state_of<&Certificate::issuer_alternative_name>},
    {"BC", state_of<&Certificate::basic_constraints>},
    {"CDP", state_of<&Certificate::distribution_points>},
    {"AIA", state_of<&Certificate::information_access>},
};

TEST(CertificateExtensions, CriticalityCountsWhenSetAfterTheValue) {
    for (const Row &row : rows_of("criticality")) {
        const auto state = kStates.at(row[0]);
        const int32_t critical_id = std::stoi(row[1]);
        const int32_t value_id = std::stoi(row[2]);
        const bool is_once = row[5] == "once";
        const bool marks = critical_id == CERTEX_BASICCONSTRAINTS_CRITICAL;
        const auto after_value = [&](uint32_t before) {
            return row[4] == "kept" ? before : number(row[4]);
        };
        for (const uint8_t critical : {uint8_t{0}, uint8_t{1}, uint8_t{0x5A}}) {
            SCOPED_TRACE(row[2] + " " + std::to_string(critical));
            const Octets octets{critical, 0xEE};  // the first octet counts
            const Context before;
            EXPECT_EQ(before.set(critical_id, octets), critical_id == 0 ? 110u : 0u);
            const uint32_t kept = critical_id == 0 ? 0 : critical;
            EXPECT_EQ(state(*before).critical, kept);
            EXPECT_EQ(state(*before).set, marks);
            EXPECT_EQ(before->extensions_changed, marks);
            EXPECT_EQ(before.set(value_id, row[3]), 0u);
            EXPECT_EQ(state(*before).critical, after_value(kept));

            const Context after;
            EXPECT_EQ(after.set(value_id, row[3]), 0u);
            EXPECT_EQ(state(*after).critical, after_value(0)) << "by default";
            EXPECT_EQ(state(*after).set, row[6] == "set");
            EXPECT_TRUE(after->extensions_changed);
            after.set(critical_id, octets);
            EXPECT_EQ(state(*after).critical, kept);
            // A second value counts like the first; a refused one changes nothing.
            EXPECT_EQ(after.set(value_id, row[3]), is_once ? 114u : 0u);
            EXPECT_EQ(state(*after).critical, is_once ? kept : after_value(kept));
        }
    }
}

TEST(CertificateExtensions, BooleansReadAsTheyWereSet) {
    const Context cert;
    EXPECT_EQ(cert.set(86, Octets{1}), 0u);
    EXPECT_EQ(cert.hex(86), "") << "no key usage yet";
    EXPECT_EQ(cert.set(87, Octets{0x86}), 0u);
    EXPECT_EQ(cert.hex(86), "01");
    EXPECT_EQ(cert.set(119, Octets{0}), 0u);
    EXPECT_EQ(cert.hex(119) + " " + cert.hex(120), "00 00");
    EXPECT_EQ(cert.set(120, Octets{0xFF, 0}), 0u);
    EXPECT_EQ(cert.hex(119) + " " + cert.hex(120), "01 FF");
    EXPECT_EQ(cert.hex(121), "");
    EXPECT_TRUE(cert->basic_constraints.authority_set);
}

TEST(CertificateExtensions, KeyUsageCountsItsUnusedBits) {
    const std::pair<Octets, uint32_t> rows[] = {
        {{0x01}, 0}, {{0x02}, 1}, {{0x04}, 2}, {{0x08}, 3}, {{0x10}, 4},       {{0x20}, 5},
        {{0x40}, 6}, {{0x80}, 7}, {{0x86}, 1}, {{0x00}, 0}, {{0x00, 0x80}, 7}, {{0xFF, 0xFF}, 7}};
    for (const auto &[value, unused_bits] : rows) {
        const Context usage;
        EXPECT_EQ(usage.set(CERTEX_KEYUSAGE, value), 0u);
        EXPECT_EQ(usage->key_usage.unused_bits, unused_bits) << to_hex(value);
        EXPECT_EQ(usage.get(CERTEX_KEYUSAGE), value);
    }
    const Context cert;
    EXPECT_EQ(cert.set(CERTEX_KEYUSAGE, Octets{0x80, 0x40, 0x20}), 114u);
    EXPECT_EQ(cert.hex(CERTEX_KEYUSAGE), "80 40 20") << "kept although it is too long";
    EXPECT_EQ(cert->key_usage.unused_bits, 0u);
    EXPECT_TRUE(cert->key_usage.state.set && cert->extensions_changed);
    EXPECT_EQ(cert->key_usage.state.critical, 1u);
}

TEST(CertificateSetters, ValuesReplaceUnlessOnceOrAppended) {
    for (const int32_t id : {2, 3, 5, 6, 7, 31, 53, 54, 121, 510, 3003}) {
        const NoLeak no_leak;
        const Context cert;
        EXPECT_EQ(cert.set(id, "first value"), 0u);
        EXPECT_EQ(cert.set(id, "2nd"), 0u);
        EXPECT_EQ(cert.text(id), "2nd") << id;
    }
    for (const int32_t id : {65, 85, 129, 504, 505, 509}) {
        const Context cert;
        EXPECT_EQ(cert.set(id, "first"), 0u);
        EXPECT_EQ(cert.set(id, "2nd"), 114u);
        EXPECT_EQ(cert.text(id), "first") << id;
    }
    const Context cert;
    for (const char *value : {"\x2A\x01", "\x2A\x02"}) {
        EXPECT_EQ(cert.set(CERTEX_CERTPOLICYID, value), 0u);
    }
    EXPECT_EQ(to_hex(cert->policies.policy.bytes()), "2A 01");
}

template <class List, class Get>
std::string texts(const List &list, const Get &get) {
    std::string all;
    for (const auto &value : list) {
        all += std::string(text_of(get(value))) + ";";
    }
    return all;
}

TEST(CertificateSetters, ListsKeepTheOrderOfCalls) {
    const Context cert;
    const std::pair<int32_t, const char *> calls[] = {
        {93, "cps1"},  {131, "uri1"},  {136, "ocsp"}, {93, "cps2"},   {92, "\x2A\x01"}, {137, "ca"},
        {131, "uri2"}, {136, "again"}, {93, "cps3"},  {155, "1.2.3"}, {155, "1.2.4"}};
    for (const auto &[id, value] : calls) {
        EXPECT_EQ(cert.set(id, value), 0u) << id;
    }
    const auto whole = [](const Field &field) { return field.bytes(); };
    const auto uri = [](const cert::AccessDescription &access) { return access.uri.bytes(); };
    EXPECT_EQ(texts(cert->policies.cps_uris, whole), "cps1;cps2;cps3;");
    EXPECT_EQ(texts(cert->distribution_points.uris, whole), "uri1;uri2;");
    EXPECT_EQ(texts(cert->information_access.descriptions, uri), "ocsp;ca;again;");
    EXPECT_EQ(texts(cert->extended_key_usage.purposes, whole), "\x2A\x03;\x2A\x04;");
    EXPECT_EQ(cert.text(CERTEX_CRLDIST_FULLNAME), "uri1");
    auto method = cert->information_access.descriptions.begin();
    EXPECT_EQ(method->method, cert::AccessMethod::ocsp);
    EXPECT_EQ((++method)->method, cert::AccessMethod::ca_issuers);
}

TEST(CertificateSetters, NameEntriesHaveTheirKindsAndLists) {
    for (const Row &row : rows_of("name_entries")) {
        for (size_t list = 0; list < 5; ++list) {
            const std::string &id = row[2 + list];
            if (id.empty()) {
                continue;
            }
            SCOPED_TRACE(id);
            const Context cert;
            EXPECT_EQ(cert.set(std::stoi(id), "A"), 0u);
            EXPECT_EQ(cert.set(std::stoi(id), "B"), 0u);
            const names::NameList *lists[] = {&cert->issuer.entries, &cert->subject.entries,
                                              &cert->subject_alternative_name.directory,
                                              &cert->issuer_alternative_name.directory,
                                              &cert->authority_key_identifier.issuer};
            const bool is_printable = id == "41" || id == "42" || id == "533";
            const std::string head = row[0] + (is_printable ? " 19 " : " 0 ");
            for (size_t i = 0; i < std::size(lists); ++i) {
                EXPECT_EQ(describe_entries(lists[i]->first()),
                          i == list ? head + "41; " + head + "42" : "");
            }
            EXPECT_EQ(to_hex(&lists[list]->first()->attrOid), row[1]);
        }
    }
}

TEST(CertificateSetters, OrganizationalUnitsAreJoined) {
    for (const int32_t id : {13, 37}) {
        const NoLeak no_leak;
        const Context cert;
        EXPECT_EQ(cert.text(id), "");
        EXPECT_EQ(cert.set(id, "Sales"), 0u);
        EXPECT_EQ(cert.text(id), "Sales");
        EXPECT_EQ(cert.set(id, "East"), 0u);
        EXPECT_EQ(cert.set(id + 1, "name"), 0u);
        EXPECT_EQ(cert.set(id, "Team"), 0u);
        EXPECT_EQ(cert.text(id), "Sales,OU=East,OU=Team");
    }
}

TEST(CertificateSetters, NamesBecomeTextOnceAndForAll) {
    for (const auto &[text, name, country] : {std::array{8, 14, 9}, std::array{32, 38, 33}}) {
        const Context cert;
        EXPECT_EQ(cert.set(name, "n"), 0u);
        EXPECT_EQ(cert.set(country, "DE"), 0u);
        EXPECT_EQ(cert.text(text), "C=DE,CN=n");
        EXPECT_EQ(cert.set(name, "later"), 0u);
        EXPECT_EQ(cert.text(text), "C=DE,CN=n");
        EXPECT_EQ(cert.text(name), "n") << "the first of its kind";
    }
}

TEST(CertificateSetters, StringTypesHaveOnePlacePerEntry) {
    const Context cert;
    EXPECT_EQ(cert.set(3001, Octets(256, 12)), 0u);
    EXPECT_EQ(cert.set(3002, Octets(256, 19)), 0u);
    EXPECT_EQ(cert.set(3001, Octets{30}), 0u);
    EXPECT_EQ(cert.set(3002, Octets(257, 22)), 108u);
    EXPECT_EQ(cert->issuer.string_types[0], 30u);
    EXPECT_EQ(cert->issuer.string_types[1], 12u) << "a shorter value writes no further";
    EXPECT_EQ(cert->issuer.string_types[255], 12u);
    EXPECT_EQ(cert->subject.string_types[0], 19u);
    EXPECT_EQ(cert->subject.string_types[255], 19u);
}

TEST(CertificateSetters, CurveMakesTheKeyAnEllipticCurveOne) {
    const Context cert;
    EXPECT_EQ(cert->key.kind, 0u);
    EXPECT_EQ(cert.set(CERT_ECC_PUBLICKEY_OID, from_hex("2A 81 1C CF 55 01 82 2D")), 0u);
    EXPECT_EQ(cert->key.kind, 12u);
    EXPECT_EQ(cert.hex(CERT_ECC_PUBLICKEY_OID), "2A 81 1C CF 55 01 82 2D");

    // Storage without octets, which no setter leaves behind, is not replaced.
    const uint8_t octet = 0;
    cert->key.parameters.refer(Bytes(&octet, 0));
    cert->issuer.der.refer(Bytes(&octet, 0));
    const TraceRecord trace;
    EXPECT_EQ(cert.set(CERT_ECC_PUBLICKEY_OID, "x"), 108u);
    EXPECT_EQ(cert.set(CERT_ISSUER_DERDN, "x"), 108u);
    EXPECT_EQ(trace.failures(),
              (Lines{"--------->ZACert_SetECCCertPublicKey Error", "------>ZACERT_GeneralErr"}));
}

TEST(CertificateSetters, AllocationFaultsChangeNothing) {
    for (int32_t id = 1; id <= 3003; ++id) {
        const Context probe;
        const std::string value = id == CERTEX_EXTKEY_USAGE_OID_DEFINE ? "1.2.3" : "1";
        if (probe.set(id, value) != 0) {
            continue;
        }
        SCOPED_TRACE(id);
        bool failed = true;
        for (size_t k = 1; failed; ++k) {
            const NoLeak no_leak;
            const Context cert;
            fail_allocation(k);
            const uint32_t result = cert.set(id, value);
            failed = allocation_failed();
            fail_allocation(0);
            EXPECT_EQ(result, failed ? 100u : 0u);
            EXPECT_EQ(cert->extensions_changed, !failed && probe->extensions_changed);
            EXPECT_EQ(cert.text(id), failed ? "" : probe.text(id));
        }
    }
}

TEST(CertificateSetters, GettersThatMakeTextSurviveFaults) {
    const Context source;
    for (const int32_t id : {13, 13, 37, 37, 14, 38}) {
        EXPECT_EQ(source.set(id, "unit"), 0u);
    }
    for (const int32_t id : {13, 37}) {
        expect_allocation_faults_survived([&] {
            uint32_t len = 7;
            const uint32_t result = ZACert_GetCertAttributeChar(source, id, nullptr, &len);
            EXPECT_EQ(len, result == 0 ? std::string_view("unit,OU=unit").size() : 0u);
            return result;
        });
    }
    for (const int32_t id : {8, 32}) {
        uint32_t len = 7;
        const TraceRecord trace;
        fail_allocation(1);
        EXPECT_EQ(ZACert_GetCertAttributeChar(source, id, nullptr, &len), 0u);
        fail_allocation(0);
        EXPECT_EQ(len, 0u);
        EXPECT_EQ(trace.lines().end()[-2], "======>Get ZI_GetDN Len");
        EXPECT_EQ(source.text(id), "OU=unit,OU=unit,CN=unit") << "made at the next request";
    }
}

}  // namespace
}  // namespace za::test
