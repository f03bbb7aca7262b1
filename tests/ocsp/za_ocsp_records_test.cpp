#include "asn1/za_asn2_writer.hpp"
#include "ocsp/za_ocsp_base.hpp"
#include "ocsp/za_ocsp_support.hpp"

#include <map>
#include <variant>

namespace za::test {
namespace {

using namespace test::ocsp;

// One of every record, whose fields have names.
class Records {
  public:
    using Place = std::variant<uint8_t *, uint32_t *, ZA_OCSP_TIME *, Anybuf *, Anybuf **,
                               ZI_Name *, ZA_CryptFunc *, ZA_OCSP_RESPONDERID *>;

    using Named = std::pair<std::string_view, Place>;

    Records() { told = {}; }
    ~Records() {
        for (const auto &[name, place] : places()) {
            if (auto *value = std::get_if<Anybuf *>(&place)) {
                EXPECT_EQ(ZI_ClearAnybuf(*value), 0u);
            } else if (auto *chain = std::get_if<Anybuf **>(&place)) {
                ZI_FreeAnybuf(**chain);
                **chain = nullptr;
            } else if (auto *list = std::get_if<ZI_Name *>(&place)) {
                ZI_FreeName((*list)->first);
            }
        }
    }
    Records(const Records &) = delete;
    Records &operator=(const Records &) = delete;

    // "NAME=VALUE NAME=VALUE": numbers, hex, "u" before a time that is a UTCTime, "," between
    // values of chains and entries of names, "KIND:VALUE" for those.
    Status fill(const std::string &fields) {
        const auto all = places();
        for (const std::string &field : fields.empty() ? Row{} : split(fields, ' ')) {
            const Row pair = split(field, '=');
            if (pair[0] == "code" || pair[0] == "claims") {
                tell(field);
                continue;
            }
            const auto place = std::ranges::find(all, pair[0], &Named::first);
            ZA_PASS(std::visit([&](auto *to) { return put(to, pair.at(1)); }, place->second));
        }
        return Status::ok;
    }

    // The same of what is there; values longer than 24 octets as "<LENGTH>".
    std::string seen() {
        std::string all;
        for (const auto &[name, place] : places()) {
            const std::string text = std::visit([](auto *from) { return shown(from); }, place);
            all += text.empty() ? "" : " " + std::string(name) + "=" + text;
        }
        return all.empty() ? all : all.substr(1);
    }

    bool has_signature() const { return basic.signature.dataLen + block.signature.dataLen > 0; }

    ZA_OCSP_BASICRESPONSE basic{};
    ZA_OCSP_CERTSTATUS status{};
    ZA_OCSP_SIGNATURE block{};

  private:
    std::vector<Named> places();

    template <class... Places>
    static auto named(const char *names, Places... places) {
        std::vector<Named> all;
        static const Row each = split(names, ' ');
        all.reserve(each.size());
        (all.emplace_back(each.at(all.size()), places), ...);
        return all;
    }

    template <class T>
    Status put(T *to, const std::string &text) {
        if constexpr (std::is_integral_v<T>) {
            *to = T(number_of(text));
        } else if constexpr (std::is_same_v<T, ZA_OCSP_TIME>) {
            to->utcFlag = text[0] == 'u' ? 1 : 0;
            to->value = int32_t(number_of(text.substr(to->utcFlag)));
        } else if constexpr (std::is_same_v<T, Anybuf>) {
            return set_value(*to, octets_of_cell(text));
        } else if constexpr (std::is_same_v<T, Anybuf *>) {
            Chain chain;
            for (const std::string &value : split(text, ',')) {
                const Octets octets = from_hex(value);
                ZA_PASS(asn1::to_record({octets, asn1::kSequence}, chain));
            }
            *to = chain.release();
        } else if constexpr (std::is_same_v<T, ZI_Name>) {
            names::NameList list;
            for (const std::string &entry : split(text, ',')) {
                const Row pair = split(entry, ':');
                ZA_PASS(list.append(number_of(pair.at(0)), from_hex(pair.at(1))));
            }
            return za::ocsp::hand_over(list, *to);
        } else if constexpr (std::is_same_v<T, ZA_CryptFunc>) {
            *to = show;
        } else {
            key_ = from_hex(text);
            to->publicKey = key_.data();
            to->publicKeyLen = size_of(key_);
        }
        return Status::ok;
    }

    template <class T>
    static std::string shown(const T *from) {
        std::string all;
        const auto add = [&](const std::string &one) { all += (all.empty() ? "" : ",") + one; };
        if constexpr (std::is_integral_v<T>) {
            all = *from == 0 ? "" : std::to_string(*from);
        } else if constexpr (std::is_same_v<T, ZA_OCSP_TIME>) {
            all = (from->utcFlag == 1 ? "u" : "") + shown(&from->value);
        } else if constexpr (std::is_same_v<T, Anybuf>) {
            all = ocsp::shown(Octets(from->data, from->data + from->dataLen));
        } else if constexpr (std::is_same_v<T, Anybuf *>) {
            for (const Anybuf *record = *from; record != nullptr; record = record->next) {
                add(shown(record));
            }
        } else if constexpr (std::is_same_v<T, ZI_Name>) {
            for (const auto *entry = from->first; entry != nullptr; entry = entry->nextEntry) {
                add(std::to_string(entry->attrKind) + ":" + shown(&entry->attrValue));
            }
        }
        return all;
    }

    Octets key_;
};

std::vector<Records::Named> Records::places() {
    ZA_OCSP_RESPONSEDATA &data = basic.data;
    ZA_OCSP_RESPONDERID &who = data.responderId;
    ZA_OCSP_EXTENSION &more = data.extensions;
    ZA_OCSP_CRLID &crl = more.crlId;
    return named(
        "nameFlag computeFlag givenFlag derFlag name nameDer keyHash hash hashArg room key "
        "good revoked unknownFlag reasonFlag revocation reason unknown blockAlgorithm "
        "blockSign blockArg toSign blockCertsFlag blockCerts blockSignature crlFlag urlFlag "
        "numFlag timeFlag crlOid url num crlTime crlCritical nonceFlag nonceOid nonce "
        "nonceCritical typesFlag typesOid types typesCritical cutoffFlag cutoffOid cutoff "
        "cutoffCritical entryFlag entryOid entry entryCritical serviceFlag serviceOid issuer "
        "locator serviceCritical versionFlag extensionsFlag version producedAt responses "
        "algorithm sign signArg signature certsFlag certs der",
        &who.nameRecordFlag, &who.keyHashComputeFlag, &who.keyHashGivenFlag, &who.nameDerFlag,
        &who.name, &who.nameDer, &who.keyHash, &who.hashFunc, &who.hashArg, &who.hashBufLen, &who,
        &status.goodFlag, &status.revokedFlag, &status.unknownFlag, &status.reasonFlag,
        &status.revocationTime, &status.reason, &status.unknown, &block.algorithm, &block.signFunc,
        &block.signArg, &block.toSign, &block.certsFlag, &block.certs, &block.signature,
        &more.crlIdFlag, &crl.urlFlag, &crl.numFlag, &crl.timeFlag, &crl.oid, &crl.url, &crl.num,
        &crl.time, &crl.critical, &more.nonceFlag, &more.nonceOid, &more.nonce, &more.nonceCritical,
        &more.acceptableFlag, &more.acceptableOid, &more.acceptable, &more.acceptableCritical,
        &more.cutoffFlag, &more.cutoffOid, &more.cutoff, &more.cutoffCritical, &more.crlEntryFlag,
        &more.crlEntryOid, &more.crlEntry, &more.crlEntryCritical, &more.serviceFlag,
        &more.serviceOid, &more.serviceIssuer, &more.serviceLocator, &more.serviceCritical,
        &data.versionFlag, &data.extensionsFlag, &data.version, &data.producedAt, &data.responses,
        &basic.algorithm, &basic.signFunc, &basic.signArg, &basic.signature, &basic.certsFlag,
        &basic.certs, &basic.der);
}

struct Piece {
    std::string name;  // of its functions
    uint32_t (*encode)(Records *, Anybuf **);
    uint32_t (*decode)(Records *, Anybuf *);
};

#define ZA_OCSP_CODED(f, member) \
    [](Records *of, auto *with) { return f(of == nullptr ? nullptr : &of->member, with); }
#define ZA_OCSP_PIECE(name, member) \
    { #name, ZA_OCSP_CODED(ZI_Encode##name, member), ZA_OCSP_CODED(ZI_Decode##name, member) }

const std::map<std::string, Piece> kPieces{
    {"responder", ZA_OCSP_PIECE(ResponseId, basic.data.responderId)},
    {"status", ZA_OCSP_PIECE(CertStatus, status)},
    {"crl", ZA_OCSP_PIECE(OCSPCrlId, basic.data.extensions.crlId)},
    {"extensions", ZA_OCSP_PIECE(OCSPExtension, basic.data.extensions)},
    {"data", ZA_OCSP_PIECE(ResponseData, basic.data)},
    {"basic", ZA_OCSP_PIECE(BasicResponse, basic)},
    {"signature", {"OCSPSignature", ZA_OCSP_CODED(ZI_EncodeOCSPSignature, block), nullptr}}};

uint32_t decode(const Piece &piece, Records &records, const Octets &octets) {
    Anybuf in = borrowed(octets, octets.empty() ? 0 : asn1::tag_of(octets[0]));
    return piece.decode(&records, &in);
}

// What was decoded is written as it was read: the name as its entries.
std::string written_again(const Piece &piece, const Octets &octets) {
    Records records;
    EXPECT_EQ(decode(piece, records, octets), 0u);
    records.basic.data.responderId.nameDerFlag = 0;
    const Handed again = handed([&](Anybuf **out) { return piece.encode(&records, out); });
    return to_hex(again.record.get());
}

// The last line of one function has always been misspelt.
void expect_framed(const Trail &lines, const std::string &name, bool ends) {
    const std::string last = name == "OCSPSignature" ? "OCSPSugnature" : name;
    EXPECT_EQ(std::ranges::count(lines, "============>ZI_Encode" + name + " Begin"), 1);
    EXPECT_EQ(std::ranges::count(lines, "============>ZI_Encode" + last + " End"), ends);
}

// "piece | fields | result | DER | failures"
TEST(OcspRecords, RowsAreWritten) {
    for (const Row &row : rows_of("ocsp/records")) {
        SCOPED_TRACE(row[0] + "|" + row[1]);
        const Piece &piece = kPieces.at(row[0]);
        const std::string expected = row[3].empty() ? "(none)" : to_hex(from_hex(row[3]));
        const bool signs = row[0] == "basic" || row[0] == "signature";
        const auto write = [&] {
            Records records;
            if (records.fill(row[1]) != Status::ok) {
                return 100u;
            }
            const Handed made = handed([&](Anybuf **out) { return piece.encode(&records, out); });
            EXPECT_TRUE(made.result != 0 || to_hex(made.record.get()) == expected)
                << describe(made.record.get());
            EXPECT_TRUE(made.result != 0 || records.has_signature() == signs);
            return made.result;
        };
        {
            const TraceRecord trace;
            EXPECT_EQ(write(), number_of(row[2]));
            EXPECT_EQ(trace.failures(), list_of(row[4]));
            expect_framed(trace.lines(), piece.name, row[2] == "0");
        }
        expect_allocation_faults_survived(write);
        if (row[2] == "0" && !signs) {
            EXPECT_EQ(written_again(piece, from_hex(row[3])), expected);
        }
    }
}

// Files with the names of the pieces.
TEST(OcspRecords, RowsDecodeAsWritten) {
    for (const auto &named : kPieces) {
        const Piece &piece = named.second;
        if (piece.decode == nullptr) {
            continue;
        }
        SCOPED_TRACE(named.first);
        expect_decoded("ocsp/decode/" + named.first, kRefused,
                       [&](const Octets &in, std::string &out) {
                           Records records;
                           const uint32_t result = decode(piece, records, in);
                           out = out.empty() ? records.seen() : out;  // not again for every damage
                           return result;
                       });
    }
}

TEST(OcspRecords, MissingArgumentsAreRefused) {
    const Trail invalid{"------------>The input is invalid item"};
    const Trail fixed{"------------>ZACERT_InvalidItem"};
    Anybuf none{};
    for (const auto &[name, piece] : kPieces) {
        for (const bool record_missing : {true, false}) {
            SCOPED_TRACE(piece.name);
            Records some;
            Records *const records = record_missing ? nullptr : &some;
            Anybuf *out = &none;
            const TraceRecord trace;
            EXPECT_EQ(piece.encode(records, record_missing ? &out : nullptr), 121u);
            EXPECT_EQ(trace.lines(), (Trail{"============>ZI_Encode" + piece.name + " Begin",
                                            (name == "status" ? fixed : invalid)[0]}));
            EXPECT_EQ(out, &none);
            EXPECT_TRUE(piece.decode == nullptr ||
                        piece.decode(records, record_missing ? &none : nullptr) == 121);
        }
    }
    EXPECT_EQ(ZI_InitOCSPExtension(nullptr) + ZI_FreeOCSPExtension(nullptr), 242u);
}

// Init releases nothing, Free releases all; both leave every field 0.
TEST(OcspRecords, ExtensionsAreMadeEmpty) {
    const NoLeak no_leak;
    Records records;
    const Octets der = from_hex("30(30(06(2B0601050507300104) 04(30(06(2A03)))))");
    ASSERT_EQ(decode(kPieces.at("extensions"), records, der), 0u);
    ZA_OCSP_EXTENSION &extensions = records.basic.data.extensions;
    ZA_OCSP_EXTENSION copy = extensions;
    const Octets empty(sizeof copy);
    EXPECT_EQ(ZI_InitOCSPExtension(&copy), 0u);
    EXPECT_EQ(octets_of(copy), empty);
    EXPECT_EQ(ZI_FreeOCSPExtension(&extensions), 0u);
    EXPECT_EQ(octets_of(extensions), empty);
}

TEST(OcspRecords, NestingIsSurvived) {
    for (const Octets &identifier : {Octets{0x30}, Octets{0xA0}}) {
        Octets nested;
        for (int depth = 0; depth < 10000; ++depth) {
            nested = element(identifier[0], nested);
        }
        const auto survived = [](uint32_t result) {
            return result == 0 || kRefused.contains(result);
        };
        for (const Kind &kind : kKinds) {
            EXPECT_TRUE(survived(Context(kind).decode(element(0x30, nested))));
        }
        for (const auto &[name, piece] : kPieces) {
            Records records;
            EXPECT_TRUE(piece.decode == nullptr ||
                        survived(decode(piece, records, element(0x30, nested))));
        }
    }
}

}  // namespace
}  // namespace za::test
