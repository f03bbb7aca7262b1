#include "asn1/za_asn2_writer.hpp"
#include "names/za_low_charset.hpp"
#include "names/za_low_general_name.hpp"
#include "names/za_low_oid.hpp"
#include "runtime/trace.hpp"

namespace {

constexpr za::TraceSource trace{".\\src\\za_low"};

}  // namespace

namespace za::names {
namespace {

// The single GeneralName leaves out the tag around an otherName's value that X.509 wants; both ways
// of writing it are kept for those who read them.
enum class OtherValue { bare, tagged };

Status write_tagged(const Anybuf &element, uint32_t choice, Chain &out) {
    ZA_TRY(ZAsn1_WriteImplicit, asn1::write_implicit(element, choice, out));
    return Status::ok;
}

// rfc822Name [1], dNSName [2], uniformResourceIdentifier [6] IA5String
Status write_ia5_form(const Anybuf &value, uint32_t choice, Chain &out) {
    Chain text;
    ZA_TRY(ZAsn1_WriteIa5String, asn1::write_ia5_string(bytes_of(value), text));
    return write_tagged(*text.head(), choice, out);
}

// iPAddress [7] OCTET STRING
Status write_address(const Anybuf &value, Chain &out) {
    Chain octets;
    ZA_TRY(ZAsn1_WriteOctetString, asn1::write_octet_string(bytes_of(value), octets));
    return write_tagged(*octets.head(), kIpAddress, out);
}

// directoryName [4] Name, tagged explicitly because Name is a CHOICE
Status write_directory(ZI_Name &value, Chain &out) {
    asn1::Builder built;
    Chain name;
    ZA_TRY(ZI_EncodeIssuerSuject, write_cert_issuer_suject(value, nullptr, built));
    ZA_PASS(built.finish(name));
    ZA_TRY(ZAsn1_WriteExplicit, asn1::write_explicit(*name.head(), kDirectoryName, out));
    return Status::ok;
}

Status write_bmp_value(const Anybuf &value, Chain &out) {
    Octets ucs2;
    ZA_TRY(ZI_Chinese2BmpString, chinese_to_bmp(bytes_of(value), ucs2));
    ZA_TRY(ZAsn1_WriteBmpString, asn1::write_bmp_string(ucs2.bytes(), out));
    return Status::ok;
}

Status write_utf8_value(const Anybuf &value, Chain &out) {
    Octets utf8;
    ZA_TRY_AS("------>ZI_EnCodeUtf8", chinese_to_utf8(bytes_of(value), utf8));
    ZA_TRY(ZAsn1_WriteUTF8String, asn1::write_utf8_string(utf8.bytes(), out));
    return Status::ok;
}

Status write_other_value(uint32_t type, const Anybuf &value, Chain &out) {
    switch (type) {
        case asn1::kBitString:
            ZA_TRY(ZAsn1_WriteBitString, asn1::write_bit_string(asn1::Value(value), out));
            return Status::ok;
        case asn1::kOctetString:
            ZA_TRY(ZAsn1_WriteOctetString, asn1::write_octet_string(bytes_of(value), out));
            return Status::ok;
        case asn1::kPrintableString:
            ZA_TRY(ZAsn1_WriteCharString, asn1::write_char_string(bytes_of(value), out));
            return Status::ok;
        case asn1::kIa5String:
            ZA_TRY(ZAsn1_WriteIa5String, asn1::write_ia5_string(bytes_of(value), out));
            return Status::ok;
        case asn1::kBmpString:
            return write_bmp_value(value, out);
        default:
            return write_utf8_value(value, out);
    }
}

// Whatever goes wrong with the identifier is one failure for callers.
Status write_other_type(const ZI_GeneralName &record, Chain &out) {
    Octets type;
    if (oid_from_text(dotted_text(record.otherNameOid, record.otherNameOidLen), type) !=
        Status::ok) {
        return trace.fail(Status::general, "------>ZACert_GetOIDValue");
    }
    if (asn1::write_object_id(type.bytes(), out) != Status::ok) {
        return trace.fail(Status::general, "------>ZAsn1_WriteObjectId");
    }
    return Status::ok;
}

// otherName [0] SEQUENCE { type-id OBJECT IDENTIFIER, value [0] EXPLICIT ANY }
Status write_other(const ZI_GeneralName &record, OtherValue form, Chain &out) {
    Chain fields;
    ZA_PASS(write_other_type(record, fields));
    Chain value;
    ZA_PASS(write_other_value(record.otherNameType, record.otherNameValue, value));
    if (form == OtherValue::tagged) {
        ZA_TRY(ZAsn1_WriteExplicit, asn1::write_explicit(*value.head(), 0, fields));
    } else {
        fields.append(std::move(value));
    }
    Chain sequence;
    ZA_TRY(ZAsn1_WriteSequence, asn1::write_sequence(fields.head(), sequence));
    return write_tagged(*sequence.head(), kOtherName, out);
}

constexpr std::array<uint32_t, 6> kWritten{kOtherName,     kRfc822Name, kDnsName,
                                           kDirectoryName, kUri,        kIpAddress};

Status write_form(ZI_GeneralName &record, uint32_t choice, OtherValue other, Chain &out) {
    switch (choice) {
        case kOtherName:
            return write_other(record, other, out);
        case kRfc822Name:
            return write_ia5_form(record.rfc822Name, choice, out);
        case kDnsName:
            return write_ia5_form(record.dNSName, choice, out);
        case kDirectoryName:
            return write_directory(record.directoryName, out);
        case kUri:
            return write_ia5_form(record.uniformResourceIdentifier, choice, out);
        default:
            return write_address(record.iPAddress, out);
    }
}

}  // namespace

Status encode_general_name(ZI_GeneralName &record, Chain &out) {
    for (const uint32_t choice : kWritten) {
        if (record.present[choice] != 0) {
            return write_form(record, choice, OtherValue::bare, out);
        }
    }
    return trace.fail(Status::attribute_not_supported);
}

Status encode_general_names(ZI_GeneralName &record, Chain &out) {
    Chain forms;
    for (const uint32_t choice : kWritten) {
        if (record.present[choice] != 0) {
            ZA_PASS(write_form(record, choice, OtherValue::tagged, forms));
        }
    }
    // GeneralNames ::= SEQUENCE OF
    ZA_TRY(ZAsn1_WriteSequence, asn1::write_sequence(forms.head(), out));
    return Status::ok;
}

}  // namespace za::names

using za::Chain;
using za::Status;

uint32_t ZI_EncodeGeneralName(ZI_GeneralName *record, Anybuf **out) {
    return trace.exported([&] {
        if (record == nullptr) {
            return trace.fail(Status::general, "------>pGenName is Null.");
        }
        ZA_PASS(trace.need(out));
        Chain name;
        ZA_PASS(za::names::encode_general_name(*record, name));
        *out = name.release();
        return Status::ok;
    });
}

uint32_t ZI_EncodeGeneralNameS(ZI_GeneralName *record, Anybuf **out) {
    return trace.exported([&] {
        ZA_PASS(trace.need(record, out));
        Chain names;
        ZA_PASS(za::names::encode_general_names(*record, names));
        *out = names.release();
        return Status::ok;
    });
}
