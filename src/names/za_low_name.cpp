#include "names/za_low_name.hpp"

#include "names/za_low_oid_catalogue.hpp"
#include "runtime/trace.hpp"

#include <array>

namespace {

constexpr za::TraceSource trace{".\\src\\za_low"};

}  // namespace

// Programs are linked against this layout, whose beginning is that of an object identifier.
static_assert(sizeof(void *) != 8 ||
              (sizeof(ZI_NameEntry) == 96 && offsetof(ZI_NameEntry, attrOid) == 8 &&
               offsetof(ZI_NameEntry, attrValue) == 48 && offsetof(ZI_NameEntry, nextEntry) == 88));

namespace za::names {
namespace {

struct KindRow {
    uint32_t kind;
    const oid::Oid &type;
};

// The X.500 types 2.5.4.3 to 2.5.4.40 stand first and in the order of their last arc.
constexpr size_t kFirstArc = 3;
constexpr size_t kArcRows = 38;
constexpr std::array<KindRow, kArcRows + 2> kKinds{{
    {kCommonName, oid::kCommonName},
    {23, oid::kSurname},
    {24, oid::kSerialNumber},
    {kCountry, oid::kCountryName},
    {kLocality, oid::kLocalityName},
    {kState, oid::kStateOrProvinceName},
    {28, oid::kStreetAddress},
    {kOrganization, oid::kOrganizationName},
    {kOrganizationalUnit, oid::kOrganizationalUnitName},
    {31, oid::kTitle},
    {32, oid::kDescription},
    {60, oid::kSearchGuide},
    {33, oid::kBusinessCategory},
    {kPostalAddress, oid::kPostalAddress},
    {kPostalCode, oid::kPostalCode},
    {36, oid::kPostOfficeBox},
    {37, oid::kPhysicalDeliveryOfficeName},
    {kTelephone, oid::kTelephoneNumber},
    {39, oid::kTelexNumber},
    {40, oid::kTeletexTerminalIdentifier},
    {41, oid::kFacsimileTelephoneNumber},
    {42, oid::kX121Address},
    {43, oid::kInternationalIsdnNumber},
    {44, oid::kRegisteredAddress},
    {45, oid::kDestinationIndicator},
    {46, oid::kPreferredDeliveryMethod},
    {47, oid::kPresentationAddress},
    {48, oid::kSupportedApplicationContext},
    {49, oid::kMember},
    {50, oid::kOwner},
    {51, oid::kRoleOccupant},
    {52, oid::kSeeAlso},
    {54, oid::kUserPassword},
    {55, oid::kUserCertificate},
    {56, oid::kCaCertificate},
    {57, oid::kAuthorityRevocationList},
    {58, oid::kCertificateRevocationList},
    {59, oid::kCrossCertificatePair},
    {kDnQualifier, oid::kDnQualifier},
    {kEmail, oid::kEmailAddress},
}};

constexpr bool is_x500_type(Bytes oid) {
    return oid.size() == 3 && oid[0] == 0x55 && oid[1] == 0x04;
}

constexpr bool arcs_in_order() {
    for (size_t at = 0; at < kArcRows; ++at) {
        const Bytes type = kKinds[at].type;
        if (!is_x500_type(type) || type[2] != kFirstArc + at) {
            return false;
        }
    }
    return true;
}
static_assert(arcs_in_order());

}  // namespace

uint32_t kind_of(Bytes oid) {
    size_t at = kArcRows;
    if (is_x500_type(oid) && oid[2] >= kFirstArc && oid[2] < kFirstArc + kArcRows) {
        at = oid[2] - kFirstArc;
    }
    for (; at < kKinds.size(); ++at) {
        if (equal(kKinds[at].type, oid)) {
            return kKinds[at].kind;
        }
    }
    return kUnknownKind;
}

Bytes oid_of_kind(uint32_t kind) {
    for (const KindRow &row : kKinds) {
        if (row.kind == kind) {
            return row.type;
        }
    }
    return {};
}

NameList::~NameList() {
    ZI_NameEntry *entry = name_.first;
    while (entry != nullptr) {
        ZAPR_Free(std::exchange(entry, entry->nextEntry));
    }
}

Status NameList::append(uint32_t kind, Bytes oid, Bytes value, uint32_t type) {
    Octets block;
    ZA_PASS(block.allocate(sizeof(ZI_NameEntry) + oid.size() + value.size()));
    uint8_t *const octets = block.data() + sizeof(ZI_NameEntry);
    auto *const entry = reinterpret_cast<ZI_NameEntry *>(block.release());
    entry->attrKind = kind;
    entry->attrOid.data = oid.empty() ? nullptr : octets;
    entry->attrOid.dataLen = to_u32(oid.size());
    entry->attrOid.dataType = asn1::kObjectId;
    entry->attrValue.data = value.empty() ? nullptr : octets + oid.size();
    entry->attrValue.dataLen = to_u32(value.size());
    entry->attrValue.dataType = type;
    put(put(octets, oid), value);
    (tail_ == nullptr ? name_.first : tail_->nextEntry) = entry;
    tail_ = entry;
    return Status::ok;
}

void NameList::append(NameList &&rest) {
    if (rest.empty()) {
        return;
    }
    (tail_ == nullptr ? name_.first : tail_->nextEntry) = rest.name_.first;
    tail_ = std::exchange(rest.tail_, nullptr);
    rest.name_ = {};
}

namespace {

void free_caller_entries(ZI_NameEntry *entry) {
    while (entry != nullptr) {
        ZAPR_Free(entry->attrOid.data);
        ZAPR_Free(entry->attrValue.data);
        ZAPR_Free(std::exchange(entry, entry->nextEntry));
    }
}

// `to` gets the record with a block of its own.
Status copy_record(const Anybuf &from, Anybuf &to) {
    Octets octets;
    ZA_PASS(octets.assign(bytes_of(from)));
    to = from;
    to.data = octets.release();
    return Status::ok;
}

}  // namespace

Bytes first_of_kind(const NameList &entries, uint32_t kind) {
    const ZI_NameEntry *entry = entries.first();
    while (entry != nullptr && entry->attrKind != kind) {
        entry = entry->nextEntry;
    }
    return entry == nullptr ? Bytes{} : bytes_of(entry->attrValue);
}

CallerEntries::~CallerEntries() {
    free_caller_entries(first_);
}

Status CallerEntries::copy(const NameList &list) {
    ZI_NameEntry **end = &first_;
    for (const ZI_NameEntry *from = list.first(); from != nullptr; from = from->nextEntry) {
        Octets block;
        ZA_PASS(block.allocate(sizeof(ZI_NameEntry)));
        ZI_NameEntry *const to = reinterpret_cast<ZI_NameEntry *>(block.release());
        *end = to;
        end = &to->nextEntry;
        to->attrKind = from->attrKind;
        ZA_PASS(copy_record(from->attrOid, to->attrOid));
        ZA_PASS(copy_record(from->attrValue, to->attrValue));
    }
    return Status::ok;
}

}  // namespace za::names

using za::Status;

uint32_t ZI_FreeName(ZI_NameEntry *first) {
    return trace.exported([&] {
        za::names::free_caller_entries(first);
        return Status::ok;
    });
}
