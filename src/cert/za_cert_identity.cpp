// Identity numbers of the national certificate standard as private extensions.
#include <zacert.h>

#include "asn1/za_asn2_writer.hpp"
#include "cert/za_cert_private.hpp"
#include "names/za_low_charset.hpp"
#include "names/za_low_oid.hpp"
#include "runtime/trace.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>

static_assert(sizeof(ZA_GBPRIV_IDENTIFY) == 1560);

namespace {

constexpr za::TraceSource trace{".\\src\\za_cert"};

}  // namespace

namespace za::cert {
namespace {

struct GbExtension {
    uint32_t type;
    std::string_view oid;
};

// The two arcs number business registration and organisation code in opposite order.
constexpr std::array kExtensions{
    GbExtension{ZA_GB_OLD_IDENTITY, "1.2.86.11.7.1"},
    GbExtension{ZA_GB_OLD_INSURANCE, "1.2.86.11.7.2"},
    GbExtension{ZA_GB_OLD_BUSINESS_REGISTRATION, "1.2.86.11.7.4"},
    GbExtension{ZA_GB_OLD_ORGANIZATION_CODE, "1.2.86.11.7.3"},
    GbExtension{ZA_GB_OLD_TAXATION, "1.2.86.11.7.5"},
    GbExtension{ZA_GB_IDENTITY, "1.2.156.10260.4.1.1"},
    GbExtension{ZA_GB_INSURANCE, "1.2.156.10260.4.1.2"},
    GbExtension{ZA_GB_BUSINESS_REGISTRATION, "1.2.156.10260.4.1.3"},
    GbExtension{ZA_GB_ORGANIZATION_CODE, "1.2.156.10260.4.1.4"},
    GbExtension{ZA_GB_TAXATION, "1.2.156.10260.4.1.5"},
};

const GbExtension *find(uint32_t type) {
    const auto *row = std::ranges::find(kExtensions, type, &GbExtension::type);
    return row == kExtensions.end() ? nullptr : row;
}

// A number of the record: where it stands and how it is written.
struct GbNumber {
    uint32_t ZA_GBPRIV_IDENTIFY::*flag;
    uint8_t (ZA_GBPRIV_IDENTIFY::*octets)[512];
    int32_t ZA_GBPRIV_IDENTIFY::*len;
    const char *bad_length;
    Status (*write)(Bytes, Chain &);
};

Status write_printable(Bytes value, Chain &out) {
    if (asn1::write_printable_string(value, 0, out) != Status::ok) {
        // Callers know every failure to encode by the one code.
        return trace.fail(Status::general, "------>ZACert_EncodeChar");
    }
    return Status::ok;
}

Status write_utf8(Bytes value, Chain &out) {
    Octets utf8;
    ZA_TRY(ZI_Chinese2UTF8String, names::chinese_to_utf8(value, utf8));
    ZA_TRY(ZAsn1_WriteUTF8String, asn1::write_utf8_string(utf8.bytes(), out));
    return Status::ok;
}

using Record = ZA_GBPRIV_IDENTIFY;

// The place of a number is its context tag.
constexpr std::array kNumbers{
    // residenterCardNumber [0] IMPLICIT PrintableString
    GbNumber{&Record::residenterCardFlag, &Record::residenterCardNumber,
             &Record::residenterCardNumberLen, "------>residenterCardNumberLen is Err",
             write_printable},
    // militaryOfficerCardNumber [1] IMPLICIT UTF8String
    GbNumber{&Record::militaryOfficerCardFlag, &Record::militaryOfficerCardNumber,
             &Record::militaryOfficerCardNumberLen, "------>militaryOfficerCardNumberLen is Err",
             write_utf8},
    // passportNumber [2] IMPLICIT PrintableString
    GbNumber{&Record::passportFlag, &Record::passportNumber, &Record::passportNumberLen,
             "------>passportNumberLen is Err", write_printable},
};

Status write_number(const Record &record, uint32_t place, Chain &out) {
    const GbNumber &number = kNumbers[place];
    const int32_t len = record.*number.len;
    const Bytes field = record.*number.octets;
    if (len < 1 || static_cast<size_t>(len) > field.size()) {
        return trace.fail(Status::general, number.bad_length);
    }
    Chain element;
    ZA_PASS(number.write(field.first(static_cast<size_t>(len)), element));
    ZA_TRY(ZAsn1_WriteImplicit, asn1::write_implicit(*element.head(), place, out));
    return Status::ok;
}

// Identity ::= SET { ... }, whose numbers stand in the order of their tags; absent ones are left
// out.
Status write_identity(Bytes value, Chain &out) {
    constexpr const char *kBadSize = "------>privDataLen != sizeof(ZA_GBPRIV_IDENTIFY)";
    std::array<uint32_t, kNumbers.size()> flags;
    if (value.size() < sizeof flags) {
        return trace.fail(Status::general, kBadSize);
    }
    std::memcpy(flags.data(), value.data(), sizeof flags);
    if (std::ranges::count(flags, 0u) == kNumbers.size()) {
        return trace.fail(Status::general, "------>tag all is 0");
    }
    Record record;
    if (value.size() != sizeof record) {
        return trace.fail(Status::general, kBadSize);
    }
    std::memcpy(&record, value.data(), sizeof record);
    Chain numbers;
    for (uint32_t place = 0; place < kNumbers.size(); ++place) {
        if (record.*kNumbers[place].flag == 1) {
            ZA_PASS(write_number(record, place, numbers));
        }
    }
    // The text names another function; readers of logs know it so.
    ZA_TRY(ZAsn1_WriteExplicit, asn1::write_set(numbers.head(), out));
    return Status::ok;
}

Status write_text(Bytes value, Chain &out) {
    // What is made of it must fit the setter's signed length.
    constexpr size_t kMostOctets = std::numeric_limits<int32_t>::max() - 16;
    if (value.empty() || value.size() > kMostOctets) {
        return trace.fail(Status::general, "------>privDataLen is Err");
    }
    return write_printable(value, out);
}

Status refuse_type(uint32_t type) {
    trace.note("------>certAttributeType is Err");
    std::array<char, 64> text;
    const int length = std::snprintf(text.data(), text.size(), "------>certAttributeType:%u", type);
    return trace.fail(Status::general, {{text.data(), static_cast<size_t>(length)}, {}});
}

struct GbArguments {
    uint32_t type;
    const void *value;
    uint32_t value_len;
    uint32_t critical;
};

Status set_gb(void *ctx, const GbArguments &in) {
    if (ctx == nullptr && in.value == nullptr) {
        return trace.fail(Status::general, "------>pCertEncodeCtx or privData  is NULL");
    }
    const GbExtension *extension = find(in.type);
    if (extension == nullptr) {
        return refuse_type(in.type);
    }
    if (in.critical > 1) {
        return trace.fail(Status::general, "------>critical is Err");
    }
    ZA_PASS(trace.need(in.value));
    const bool is_identity = in.type == ZA_GB_OLD_IDENTITY || in.type == ZA_GB_IDENTITY;
    const Bytes value(static_cast<const uint8_t *>(in.value), in.value_len);
    Chain element;
    Octets oid;
    ZA_PASS(is_identity ? write_identity(value, element) : write_text(value, element));
    ZA_TRY(ZACert_GetOIDValue, names::oid_from_text(bytes_of(extension->oid), oid));
    const Bytes der = bytes_of(*element.head());
    ZA_TRY(ZACert_SetCertAttributePrivate,
           set_private(ctx, {oid.data(), static_cast<int32_t>(oid.size()), in.critical, der.data(),
                             static_cast<int32_t>(der.size())}));
    return Status::ok;
}

}  // namespace
}  // namespace za::cert

uint32_t ZACert_SetCertPrivate_GB(void *ctx, uint32_t type, const void *value, uint32_t valueLen,
                                  uint32_t critical) {
    return trace.unannounced([&] {
        constexpr const char *kStart = "=====>ZACert_SetCertPrivate_GB START";
        trace.note(kStart);
        ZA_PASS(za::cert::set_gb(ctx, {type, value, valueLen, critical}));
        const bool is_taxation = type == ZA_GB_OLD_TAXATION || type == ZA_GB_TAXATION;
        // The taxation numbers have always ended with the line they begin with.
        trace.note(is_taxation ? kStart : "=====>ZACert_SetCertPrivate_GB END");
        return za::Status::ok;
    });
}
