// Distinguished names: attribute kinds, the list of entries, and its DER and text forms.
//
//   Name ::= SEQUENCE OF SET OF SEQUENCE { type OBJECT IDENTIFIER, value ANY }
#pragma once

#include "asn1/za_asn2_builder.hpp"
#include "asn1/za_asn2_reader.hpp"
#include "runtime/anybuf.hpp"
#include "runtime/bytes.hpp"
#include "runtime/status.hpp"

namespace za::names {

// The kinds that attributes of contexts select; every kind stands in the table behind kind_of.
constexpr uint32_t kUnknownKind = 0;
constexpr uint32_t kEmail = 13;
constexpr uint32_t kCommonName = 22;
constexpr uint32_t kCountry = 25;
constexpr uint32_t kLocality = 26;
constexpr uint32_t kState = 27;
constexpr uint32_t kOrganization = 29;
constexpr uint32_t kOrganizationalUnit = 30;
constexpr uint32_t kPostalAddress = 34;
constexpr uint32_t kPostalCode = 35;
constexpr uint32_t kTelephone = 38;
constexpr uint32_t kDnQualifier = 53;

uint32_t kind_of(Bytes oid);       // kUnknownKind where the table has no row
Bytes oid_of_kind(uint32_t kind);  // empty where the table has no row

// Owns entries of one heap block each, with the octets of type and value behind the entry itself.
// They never leave the library: what is handed out is made by CallerEntries.
class NameList {
  public:
    NameList() = default;
    NameList(NameList &&other) noexcept { swap(other); }
    NameList &operator=(NameList &&other) noexcept {
        swap(other);
        return *this;
    }
    NameList(const NameList &) = delete;
    NameList &operator=(const NameList &) = delete;
    ~NameList();

    // Copies the octets. `type` is the string type as Anybuf::dataType.
    Status append(uint32_t kind, Bytes oid, Bytes value, uint32_t type);
    Status append(uint32_t kind, Bytes value, uint32_t type = 0) {
        return append(kind, oid_of_kind(kind), value, type);
    }
    void append(NameList &&rest);

    bool empty() const { return name_.first == nullptr; }
    const ZI_NameEntry *first() const { return name_.first; }
    ZI_Name *holder() { return &name_; }

    void swap(NameList &other) noexcept {
        std::swap(name_, other.name_);
        std::swap(tail_, other.tail_);
    }

  private:
    ZI_Name name_{};
    ZI_NameEntry *tail_ = nullptr;
};

// The value of the first entry of this kind; empty where there is none.
Bytes first_of_kind(const NameList &entries, uint32_t kind);

// Entries as the interface hands them out, with blocks of their own for ZI_FreeName.
class CallerEntries {
  public:
    CallerEntries() = default;
    CallerEntries(const CallerEntries &) = delete;
    CallerEntries &operator=(const CallerEntries &) = delete;
    ~CallerEntries();

    Status copy(const NameList &list);

    // Only in the last statement before success.
    ZI_NameEntry *release() { return std::exchange(first_, nullptr); }

  private:
    ZI_NameEntry *first_ = nullptr;
};

// ZI_DecodeIssuerSubject: appends the entries of a Name.
Status decode_issuer_subject(const asn1::Element &name, NameList &out);

// ZI_EncodeIssuerSuject: sets each entry's string type besides.
Status encode_issuer_suject(ZI_Name &name, Chain &out);

// ZI_EncodeCertIssuerSuject: `table` has 256 octets, or is NULL for zeros.
Status encode_cert_issuer_suject(ZI_Name &name, const uint8_t *table, Chain &out);

// The same for signed objects: a value that finds no memory is Status::memory.
Status write_cert_issuer_suject(ZI_Name &name, const uint8_t *table, asn1::Builder &out);

// The string types a caller may choose.
constexpr uint32_t kSelectPrintable = 1;
constexpr uint32_t kSelectBmp = 2;
constexpr uint32_t kSelectUtf8 = 3;
constexpr uint32_t kSelectIa5 = 4;
constexpr uint32_t kSelectOctets = 5;
constexpr uint32_t kSelectBits = 6;

// Writes a value as the string type chosen; another selector is Status::unknown_selector. A failed
// write or allocation is logged and still Status::ok: `out` then lacks the value.
Status write_selected_value(uint32_t selector, Anybuf &value, Chain &out);

// ZI_GetDN
Status get_dn(const ZI_NameEntry *first, Octets &out);

}  // namespace za::names
