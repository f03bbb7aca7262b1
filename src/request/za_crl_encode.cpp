#include "asn1/za_asn2_builder.hpp"
#include "cert/za_cert_part_encode.hpp"
#include "names/za_low_algorithm.hpp"
#include "names/za_low_oid.hpp"
#include "request/za_crl_attributes.hpp"
#include "request/za_crl_times.hpp"
#include "runtime/trace.hpp"

#include <algorithm>

namespace {

constexpr za::TraceSource trace{".\\src\\za_crl"};

}  // namespace

namespace za::request {
namespace {

using asn1::Builder;
using asn1::TimeText;

// ---- Entries

constexpr size_t element_size(size_t content) {
    return 1 + asn1::length_octets_for(to_u32(std::min<size_t>(content, UINT32_MAX))) + content;
}

constexpr size_t kReasonCodeElement = 5;

size_t entry_size(const RevokedEntry &entry) {
    const bool has_sign_octet = !entry.serial.empty() && entry.serial[0] >= 0x80;
    size_t content = element_size(entry.serial.size() + (has_sign_octet ? 1 : 0)) +
                     element_size(asn1::kTimeText);
    if (!entry.reason.empty()) {
        const size_t value = element_size(element_size(entry.reason.size()));
        content += element_size(element_size(kReasonCodeElement + value));
    }
    return element_size(content);
}

size_t entries_size(const RevokedList &revoked) {
    size_t size = revoked.decoded_entries().size();
    AddedEntries::Place place;
    for (RevokedEntry entry; revoked.added().next(place, entry);) {
        size += entry_size(entry);
    }
    return size;
}

// Extensions ::= SEQUENCE OF Extension; here the reasonCode alone, an ENUMERATED.
void write_entry_extensions(Bytes reason, Builder &out) {
    out.sequence([&] {
        out.sequence([&] {
            out.object_id(oid::kReasonCode);
            out.wrapped(ZA_DER_ID_OCTETSTRING, [&] { out.element(ZA_DER_ID_ENUMERATED, reason); });
        });
    });
}

// Time ::= CHOICE { utcTime UTCTime, generalTime GeneralizedTime }
Status write_date(const cert::Time &date, TimeTexts &texts, Builder &out) {
    int32_t seconds = 0;
    TimeText text;
    ZA_PASS(date.seconds(seconds));
    if (date.is_utc()) {
        ZA_TRY(ZAsn1_WriteUtcTime, texts.text(seconds, text));
    } else {
        ZA_TRY(ZAsn1_WriteGeneralizedTime, texts.text(seconds, text));
    }
    out.element(date.is_utc() ? ZA_DER_ID_UTCTIME : ZA_DER_ID_GENERALIZEDTIME,
                bytes_of(std::string_view(text.data(), text.size())));
    return Status::ok;
}

// SEQUENCE { userCertificate INTEGER, revocationDate Time, crlEntryExtensions Extensions OPTIONAL }
Status write_entry(const RevokedEntry &entry, TimeTexts &texts, Builder &out) {
    return out.sequence([&] {
        out.integer(entry.serial);
        ZA_PASS(write_date(entry.date, texts, out));
        if (!entry.reason.empty()) {
            write_entry_extensions(entry.reason, out);
        }
        return Status::ok;
    });
}

// revokedCertificates SEQUENCE OF, left out where there is none
Status write_revoked(const RevokedList &revoked, size_t size, Builder &out) {
    if (revoked.empty()) {
        return Status::ok;
    }
    const auto entries = [&] {
        TimeTexts texts;
        out.raw(revoked.decoded_entries());
        AddedEntries::Place place;
        for (RevokedEntry entry; revoked.added().next(place, entry);) {
            ZA_PASS(write_entry(entry, texts, out));
        }
        return Status::ok;
    };
    return out.sequence(entries, size);
}

// ---- Extensions

// Extension ::= SEQUENCE { extnID OBJECT IDENTIFIER, critical BOOLEAN DEFAULT FALSE,
//     extnValue OCTET STRING }
template <class Content>
void write_extension(Bytes oid, const CrlExtension &extension, Builder &out, const Content &value) {
    if (!extension.state.set) {
        return;
    }
    out.sequence([&] {
        out.object_id(oid);
        if (extension.state.critical != 0) {
            out.boolean(true);
        }
        out.wrapped(ZA_DER_ID_OCTETSTRING, value);
    });
}

// CRLNumber and BaseCRLNumber ::= INTEGER
void write_number(Bytes oid, const CrlExtension &number, Builder &out) {
    write_extension(oid, number, out, [&] { out.integer(number.value.bytes()); });
}

// AuthorityKeyIdentifier ::= SEQUENCE { keyIdentifier [0] IMPLICIT OCTET STRING }
void write_key_identifier(const CrlExtension &identifier, Builder &out) {
    write_extension(oid::kAuthorityKeyIdentifier, identifier, out, [&] {
        out.sequence([&] { out.element(asn1::primitive(0), identifier.value.bytes()); });
    });
}

// IssuingDistributionPoint ::= SEQUENCE { distributionPoint [0] { fullName [0] { uri [6] } } }
void write_distribution_point(const CrlExtension &point, Builder &out) {
    write_extension(oid::kIssuingDistributionPoint, point, out, [&] {
        out.sequence([&] {
            out.wrapped(asn1::constructed(0), [&] {
                out.wrapped(asn1::constructed(0),
                            [&] { out.element(asn1::primitive(6), point.value.bytes()); });
            });
        });
    });
}

bool has_extensions(const Crl &crl) {
    return crl.crl_number.state.set || crl.delta_indicator.state.set ||
           crl.authority_key_identifier.state.set || crl.distribution_point.state.set;
}

// crlExtensions [0] EXPLICIT Extensions, left out where there is none
void write_extensions(const Crl &crl, Builder &out) {
    if (!has_extensions(crl)) {
        return;
    }
    out.wrapped(asn1::constructed(0), [&] {
        out.sequence([&] {
            write_number(oid::kCrlNumber, crl.crl_number, out);
            write_number(oid::kDeltaCrlIndicator, crl.delta_indicator, out);
            write_key_identifier(crl.authority_key_identifier, out);
            write_distribution_point(crl.distribution_point, out);
        });
    });
}

// ---- The whole

// version INTEGER, signature AlgorithmIdentifier, issuer Name, thisUpdate Time, nextUpdate OPTIONAL
Status write_head(Crl &crl, Builder &out) {
    out.integer(crl.version);
    names::write_algorithm(crl.inner_algorithm.bytes(), out);
    ZA_PASS(cert::write_name(trace, crl.issuer, nullptr, out));
    ZA_PASS(cert::write_time(trace, crl.this_update, out));
    return crl.has_next_update ? cert::write_time(trace, crl.next_update, out) : Status::ok;
}

// Behind the TBSCertList, for algorithm and signature as they mostly are.
constexpr size_t kSignatureRoom = 640;

size_t extensions_room(const Crl &crl) {
    constexpr size_t kAroundFourValues = 256;
    return crl.crl_number.value.bytes().size() + crl.delta_indicator.value.bytes().size() +
           crl.authority_key_identifier.value.bytes().size() +
           crl.distribution_point.value.bytes().size() + kAroundFourValues;
}

// TBSCertList ::= SEQUENCE { version, signature, issuer, thisUpdate, nextUpdate OPTIONAL,
//     revokedCertificates OPTIONAL, crlExtensions [0] EXPLICIT OPTIONAL }
Status write_tbs(Crl &crl, size_t revoked, Builder &out) {
    const auto content = [&] {
        ZA_PASS(write_head(crl, out));
        // A block that grew as it filled could end up twice as large as the list.
        out.reserve(out.size() + element_size(revoked) + extensions_room(crl) + kSignatureRoom);
        ZA_TRY(ZI_CRL_EncodeRevokedCRL, write_revoked(crl.revoked, revoked, out));
        write_extensions(crl, out);
        return Status::ok;
    };
    return out.sequence(content, revoked);
}

Status sign(Crl &crl, Bytes tbs) {
    Octets signature;
    ZA_PASS(crl.signer.sign_list(trace, tbs, signature));
    ZA_TRY(ZACert_SetCrlAttributeChar, set_crl_attribute(crl, CRL_CA_SIGNATURE, signature.bytes()));
    return Status::ok;
}

// CertificateList ::= SEQUENCE { tbsCertList, signatureAlgorithm, signatureValue BIT STRING }, in
// one block: what is signed stands where it stays.
Status write_crl(Crl &crl, Builder &out, size_t &tbs_size) {
    const size_t revoked = entries_size(crl.revoked);
    const auto content = [&] {
        const size_t start = out.size();
        ZA_PASS(write_tbs(crl, revoked, out));
        ZA_PASS(out.status());
        const Bytes tbs = out.bytes().subspan(start);
        tbs_size = tbs.size();
        ZA_PASS(sign(crl, tbs));
        const Bytes signature = crl.signature.bytes();
        constexpr size_t kHeadersAndAlgorithm = 64;
        out.reserve(out.size() + signature.size() + kHeadersAndAlgorithm);
        names::write_algorithm(crl.outer_algorithm.bytes(), out);
        out.bit_string(signature);
        return Status::ok;
    };
    return out.sequence(content, revoked);
}

Status encode_crl(Crl &crl) {
    Builder builder;
    Octets whole;
    asn1::Header header;
    size_t tbs_size = 0;
    ZA_PASS(write_crl(crl, builder, tbs_size));
    ZA_PASS(builder.finish(whole));
    ZA_PASS(asn1::read_header(whole.bytes(), header));
    crl.whole.take(std::move(whole));
    crl.tbs.refer(crl.whole.bytes().subspan(header.size(), tbs_size));
    return Status::ok;
}

}  // namespace
}  // namespace za::request

using za::Status;
using za::asn1::Builder;
using za::asn1::hand_out_built;
using za::request::Crl;

uint32_t ZACert_SetCrlSignFunc(void *ctx, ZACertSignFunc func, const uint8_t *key, int32_t keyLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx));
        return static_cast<Crl *>(ctx)->signer.install(trace, func, key, keyLen);
    });
}

uint32_t ZACert_EncodeCrl(void *ctx, uint8_t *out, uint32_t *outLen) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, outLen));
        Crl &crl = *static_cast<Crl *>(ctx);
        if (crl.whole.empty()) {
            ZA_PASS(za::request::encode_crl(crl));
        }
        za::hand_out(crl.whole.bytes(), out, outLen);
        return Status::ok;
    });
}

uint32_t ZI_CRL_EncodeRevokedCRL(void *ctx, Anybuf **out) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, out));
        const auto &revoked = static_cast<Crl *>(ctx)->revoked;
        return hand_out_built(out, [&](Builder &to) {
            return za::request::write_revoked(revoked, za::request::entries_size(revoked), to);
        });
    });
}

uint32_t ZI_CRL_WriteEntryExtension(Anybuf *reason, Anybuf **out) {
    return trace.exported([&] {
        ZA_PASS(trace.need(reason, out));
        return hand_out_built(out, [&](Builder &to) {
            za::request::write_entry_extensions(za::bytes_of(*reason), to);
            return Status::ok;
        });
    });
}

uint32_t ZI_Crl_EncodeExtensions(void *ctx, Anybuf **out) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, out));
        return hand_out_built(out, [&](Builder &to) {
            za::request::write_extensions(*static_cast<Crl *>(ctx), to);
            return Status::ok;
        });
    });
}

uint32_t ZI_Crl_EncodeCRLDPs(void *ctx, Anybuf **out) {
    return trace.exported([&] {
        ZA_PASS(trace.need(ctx, out));
        return hand_out_built(out, [&](Builder &to) {
            za::request::write_distribution_point(static_cast<Crl *>(ctx)->distribution_point, to);
            return Status::ok;
        });
    });
}
