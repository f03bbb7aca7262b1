#include "asn1/za_asn2_builder.hpp"
#include "asn1/za_asn2_writer.hpp"
#include "names/za_low_charset.hpp"
#include "names/za_low_gb18030.hpp"
#include "names/za_low_name.hpp"
#include "runtime/trace.hpp"

#include <algorithm>
#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_low"};

}  // namespace

namespace za::names {
namespace {

bool is_printable(uint8_t octet) {
    constexpr std::string_view kSigns = " '()+,-./:=?";
    const auto c = static_cast<char>(octet);
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           kSigns.find(c) != kSigns.npos;
}

// Values read from a UTF8String are UTF-8 still; all others are callers' text.
bool is_utf8(const Anybuf &value) {
    return value.dataType == asn1::kUtf8String;
}

Status to_ucs2(const Anybuf &value, Octets &out) {
    if (is_utf8(value)) {
        ZA_TRY(ZI_UTF82BmpString, utf8_to_bmp(bytes_of(value), out));
        return Status::ok;
    }
    ZA_TRY(ZI_Chinese2BmpString, chinese_to_bmp(bytes_of(value), out));
    return Status::ok;
}

Status to_utf8(const Anybuf &value, Octets &out) {
    if (is_utf8(value)) {
        return out.assign(bytes_of(value));
    }
    ZA_TRY(ZI_Chinese2UTF8String, chinese_to_utf8(bytes_of(value), out));
    return Status::ok;
}

// A write that fails leaves the entry without a value.
void write_printable(Anybuf &value, Chain &out) {
    value.dataType = asn1::kPrintableString;
    if (asn1::write_printable_string(bytes_of(value), value.dataType, out) != Status::ok) {
        trace.note("------>ZAsn1_WritePrintableString");
    }
}

void write_ia5(Anybuf &value, Chain &out) {
    value.dataType = asn1::kIa5String;
    if (asn1::write_ia5_string(bytes_of(value), out) != Status::ok) {
        trace.note("------>ZAsn1_WriteIa5String");
    }
}

// The octets stay as they are, and so does the mark of UTF-8 among the types: whoever encodes the
// list again must find them under the same reading.
Status write_bmp(Anybuf &value, Chain &out) {
    Octets ucs2;
    ZA_PASS(to_ucs2(value, ucs2));
    ZA_TRY(ZAsn1_WritePrintableString,
           asn1::write_printable_string(ucs2.bytes(), asn1::kBmpString, out));
    if (!is_utf8(value)) {
        value.dataType = asn1::kBmpString;
    }
    return Status::ok;
}

Status write_value(uint32_t kind, Anybuf &value, Chain &out) {
    if (kind == kCountry || kind == kTelephone) {
        write_printable(value, out);
        return Status::ok;
    }
    if (kind == kEmail) {
        const bool printable = value.dataType == asn1::kPrintableString;
        printable ? write_printable(value, out) : write_ia5(value, out);
        return Status::ok;
    }
    const Bytes octets = bytes_of(value);
    if (std::all_of(octets.begin(), octets.end(), is_printable)) {
        write_printable(value, out);
        return Status::ok;
    }
    return write_bmp(value, out);
}

// The table of a context holds selectors, or the tags of the types they select.
uint32_t selector_of(uint8_t octet) {
    switch (octet) {
        case asn1::kPrintableString:
            return kSelectPrintable;
        case asn1::kBmpString:
            return kSelectBmp;
        case asn1::kUtf8String:
            return kSelectUtf8;
        case asn1::kIa5String:
            return kSelectIa5;
        default:
            return octet;
    }
}

// A value that found no memory: the exported functions leave it out, signed objects cannot.
enum class Missing { left_out, refused };

// AttributeTypeAndValue ::= SEQUENCE { type, value }
Status write_attribute(ZI_NameEntry &entry, uint8_t chosen, Missing missing, asn1::Builder &out) {
    return out.sequence([&] {
        // type OBJECT IDENTIFIER
        out.object_id(bytes_of(entry.attrOid));
        // value, by the rule of its kind or as chosen
        Chain value;
        ZA_PASS(chosen == 0 ? write_value(entry.attrKind, entry.attrValue, value)
                            : write_selected_value(selector_of(chosen), entry.attrValue, value));
        if (!value.empty()) {
            out.raw(bytes_of(*value.head()));
        }
        return value.empty() && missing == Missing::refused ? Status::memory : Status::ok;
    });
}

// RDNSequence ::= SEQUENCE OF RelativeDistinguishedName, a SET of one attribute each
Status write_entries(ZI_Name &name, const uint8_t *table, Missing missing, asn1::Builder &out) {
    constexpr size_t kTableSize = 256;
    return out.sequence([&] {
        size_t index = 0;
        for (auto *entry = name.first; entry != nullptr; entry = entry->nextEntry, ++index) {
            const uint8_t chosen = table != nullptr && index < kTableSize ? table[index] : 0;
            const auto attribute = [&] { return write_attribute(*entry, chosen, missing, out); };
            ZA_PASS(out.wrapped(ZA_DER_ID_SET, attribute));
        }
        return Status::ok;
    });
}

}  // namespace

Status write_cert_issuer_suject(ZI_Name &name, const uint8_t *table, asn1::Builder &out) {
    return write_entries(name, table, Missing::refused, out);
}

Status encode_cert_issuer_suject(ZI_Name &name, const uint8_t *table, Chain &out) {
    asn1::Builder encoded;
    ZA_PASS(write_entries(name, table, Missing::left_out, encoded));
    return encoded.finish(out);
}

Status encode_issuer_suject(ZI_Name &name, Chain &out) {
    return encode_cert_issuer_suject(name, nullptr, out);
}

namespace {

using Conversion = Status (*)(const Anybuf &, Octets &);
using Write = Status (*)(Bytes, Chain &);

// Without memory for the converted text the value is left out; where the C library lacks the
// converter, names without values would come out every time, and nobody would notice.
Status write_converted(const Anybuf &value, Conversion convert, Write write, Chain &out) {
    Octets text;
    const Status converted = convert(value, text);
    if (converted == Status::memory && has_gb18030()) {
        return Status::ok;
    }
    ZA_PASS(converted);
    return write(text.bytes(), out);
}

Status write_bmp_text(Bytes ucs2, Chain &out) {
    ZA_TRY(ZAsn1_WritePrintableString, asn1::write_printable_string(ucs2, asn1::kBmpString, out));
    return Status::ok;
}

Status write_utf8_text(Bytes utf8, Chain &out) {
    ZA_TRY(ZAsn1_WriteUTF8String, asn1::write_utf8_string(utf8, out));
    return Status::ok;
}

}  // namespace

Status write_selected_value(uint32_t selector, Anybuf &value, Chain &out) {
    switch (selector) {
        case kSelectPrintable:
            write_printable(value, out);
            return Status::ok;
        case kSelectBmp:
            return write_converted(value, to_ucs2, write_bmp_text, out);
        case kSelectUtf8:
            return write_converted(value, to_utf8, write_utf8_text, out);
        case kSelectIa5:
            write_ia5(value, out);
            return Status::ok;
        case kSelectOctets:
            value.dataType = asn1::kPrintableString;
            if (asn1::write_octet_string(bytes_of(value), out) != Status::ok) {
                trace.note("------>ZAsn1_WriteOctetString");
            }
            return Status::ok;
        case kSelectBits:
            if (asn1::write_bit_string(asn1::Value(value), out) != Status::ok) {
                trace.note("------>ZAsn1_WriteBitString");
            }
            return Status::ok;
        default:
            return trace.fail(Status::unknown_selector, "------>Unknown string type");
    }
}

}  // namespace za::names

using za::Chain;
using za::Status;

uint32_t ZI_EncodeIssuerSuject(ZI_Name *holder, Anybuf **out) {
    return trace.exported([&] {
        ZA_PASS(trace.need(holder, out));
        Chain name;
        ZA_PASS(za::names::encode_issuer_suject(*holder, name));
        *out = name.release();
        return Status::ok;
    });
}

uint32_t ZI_EncodeCertIssuerSuject(ZI_Name *holder, const uint8_t *tagTable256, Anybuf **out) {
    return trace.exported([&] {
        ZA_PASS(trace.need(holder, out));
        Chain name;
        ZA_PASS(za::names::encode_cert_issuer_suject(*holder, tagTable256, name));
        *out = name.release();
        return Status::ok;
    });
}
