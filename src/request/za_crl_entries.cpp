#include "request/za_crl_entries.hpp"

#include "cert/za_cert_part_decode.hpp"
#include "names/za_low_oid.hpp"
#include "runtime/trace.hpp"

#include <algorithm>

namespace {

constexpr za::TraceSource trace{".\\src\\za_crl"};

}  // namespace

namespace za::request {
namespace {

using asn1::Children;
using asn1::Element;

constexpr cert::Walk kWalk{trace, Status::crl_not_end};

// What stands before the serial number and the reason of a packed entry.
struct Packed {
    uint32_t serial_len;
    uint32_t reason_len;
    int32_t date;
    uint32_t has_date;

    size_t size() const { return sizeof(Packed) + size_t{serial_len} + reason_len; }
};

Packed packed_at(Bytes place) {
    Packed head;
    std::memcpy(&head, place.data(), sizeof head);
    return head;
}

void put_packed(uint8_t *place, const Packed &head) {
    std::memcpy(place, &head, sizeof head);
}

// reasonCode EXTENSION ::= ENUMERATED; other extensions of an entry do not matter here.
Status decode_reason(Children extensions, Bytes &out) {
    for (Element element; out.empty() && extensions.next(element);) {
        Children fields;
        cert::Extension extension;
        asn1::Content reason;
        ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(element, fields));
        ZA_PASS(cert::open_extension(kWalk, fields, extension));
        if (equal(extension.oid, Bytes(oid::kReasonCode))) {
            ZA_TRY(ZAsn1_ReadEnumerated, asn1::read_string(Element(extension.value), reason));
            out = reason.octets;
        }
    }
    return Status::ok;
}

// SEQUENCE { userCertificate INTEGER, revocationDate Time, crlEntryExtensions Extensions OPTIONAL }
Status decode_entry(const Element &entry, RevokedEntry &out) {
    Children fields;
    Element field;
    asn1::Content serial;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(entry, fields));
    ZA_PASS(cert::take_field(kWalk, fields, field));
    ZA_TRY(ZAsn1_ReadIntegerArray, asn1::read_integer_array(field, serial));
    out.serial = serial.octets;
    ZA_PASS(cert::take_field(kWalk, fields, field));
    ZA_PASS(cert::decode_time(kWalk, field, out.date));
    out.reason = {};
    if (fields.next(field)) {
        Children extensions;
        ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(field, extensions));
        return decode_reason(extensions, out.reason);
    }
    return Status::ok;
}

}  // namespace

// Grows by half, so that what is left over stays small beside a large list.
Status AddedEntries::reserve(size_t size) {
    constexpr size_t kFirstBlock = 256;
    if (size <= block_.size()) {
        return Status::ok;
    }
    const size_t ample = std::max(size + size / 2, kFirstBlock);
    Octets larger;
    ZA_PASS(larger.allocate(fits_u32(ample) ? ample : size));
    put(larger.data(), block_.bytes().first(size_));
    block_ = std::move(larger);
    return Status::ok;
}

Status AddedEntries::add(Bytes serial) {
    const Packed head{to_u32(serial.size()), 0, 0, 0};
    ZA_PASS(reserve(size_ + head.size()));
    last_ = size_;
    put_packed(block_.data() + last_, head);
    put(block_.data() + last_ + sizeof head, serial);
    size_ += head.size();
    return Status::ok;
}

void AddedEntries::set_date(int32_t utc) {
    Packed head = packed_at(block_.bytes().subspan(last_));
    head.date = utc;
    head.has_date = 1;
    put_packed(block_.data() + last_, head);
}

Status AddedEntries::set_reason(Bytes reason) {
    Packed head = packed_at(block_.bytes().subspan(last_));
    head.reason_len = to_u32(reason.size());
    ZA_PASS(reserve(last_ + head.size()));
    put_packed(block_.data() + last_, head);
    put(block_.data() + last_ + sizeof head + head.serial_len, reason);
    size_ = last_ + head.size();
    return Status::ok;
}

bool AddedEntries::next(size_t &at, RevokedEntry &out) const {
    if (at >= size_) {
        return false;
    }
    const Bytes place = block_.bytes().subspan(at);
    const Packed head = packed_at(place);
    out.serial = place.subspan(sizeof head, head.serial_len);
    out.reason = place.subspan(sizeof head + head.serial_len, head.reason_len);
    out.date = {};
    if (head.has_date != 0) {
        out.date.set(head.date);
    }
    at += head.size();
    return true;
}

// SEQUENCE OF entries
Status RevokedList::refer(const Element &revoked) {
    Children entries;
    asn1::Header header;
    ZA_TRY(ZAsn1_ReadSequence, asn1::read_sequence(revoked, entries));
    ZA_PASS(asn1::read_header(revoked.octets, header));
    Children rest = entries;
    RevokedEntry ignored;
    for (Element entry; rest.next(entry);) {
        ZA_PASS(decode_entry(entry, ignored));
    }
    decoded_ = revoked.octets;
    decoded_entries_ = revoked.octets.subspan(header.size());
    unread_ = entries;
    trace.note("======>ZI_CRL_DecodeRevokedCerts");
    return Status::ok;
}

Status RevokedList::current(bool &found, RevokedEntry &out) const {
    Children rest = unread_;
    Element entry;
    if (rest.next(entry)) {
        found = true;
        return decode_entry(entry, out);
    }
    size_t at = current_added_;
    found = added_.next(at, out);
    return Status::ok;
}

bool RevokedList::move() {
    Element passed;
    RevokedEntry entry;
    if (!unread_.next(passed)) {
        added_.next(current_added_, entry);
    }
    size_t at = current_added_;
    return !unread_.empty() || added_.next(at, entry);
}

}  // namespace za::request
