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

// What stands before the serial number and the reason of a packed entry. No serial number is empty:
// the zeros behind the last entry of a block are its end.
struct Packed {
    uint32_t serial_len;
    uint32_t reason_len;
    int32_t date;
    uint32_t has_date;

    size_t size() const { return sizeof(Packed) + size_t{serial_len} + reason_len; }
};

Packed packed_at(const uint8_t *place) {
    Packed head;
    std::memcpy(&head, place, sizeof head);
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

// Blocks of short lists are small; those of long ones stay small beside the list.
Status AddedEntries::add_block(size_t size) {
    constexpr size_t kSmallestBlock = 512;
    constexpr size_t kLargestBlock = 65536;
    const size_t usual = std::clamp(2 * block_size_, kSmallestBlock, kLargestBlock);
    Octets block;
    ZA_PASS(block.allocate(std::max(size, usual)));
    uint8_t *const first = block.data();
    const size_t room = block.size();
    ZA_PASS(blocks_.append(trace, std::move(block)));
    block_size_ = usual;
    free_ = first;
    room_ = room;
    return Status::ok;
}

Status AddedEntries::add(Bytes serial) {
    const Packed head{to_u32(serial.size()), 0, 0, 0};
    if (head.size() > room_) {
        ZA_PASS(add_block(head.size()));
    }
    last_ = free_;
    put_packed(last_, head);
    free_ = put(last_ + sizeof head, serial);
    room_ -= head.size();
    return Status::ok;
}

void AddedEntries::set_date(int32_t utc) {
    Packed head = packed_at(last_);
    head.date = utc;
    head.has_date = 1;
    put_packed(last_, head);
}

// The entry is laid down once more without its reason, in a new block when it is too long for its
// own.
Status AddedEntries::set_reason(Bytes reason) {
    Packed head = packed_at(last_);
    uint8_t *const reason_before = last_ + sizeof head + head.serial_len;
    const Bytes serial(last_ + sizeof head, head.serial_len);
    const size_t room = room_ + head.reason_len;
    if (reason.size() > room) {
        uint8_t *const before = last_;
        ZA_PASS(add_block(sizeof head + serial.size() + reason.size()));
        last_ = free_;
        put(last_ + sizeof head, serial);
        put_packed(before, {});
        room_ -= sizeof head + serial.size() + reason.size();
    } else {
        std::memset(reason_before, 0, head.reason_len);
        room_ = room - reason.size();
    }
    head.reason_len = to_u32(reason.size());
    put_packed(last_, head);
    free_ = put(last_ + sizeof head + head.serial_len, reason);
    return Status::ok;
}

namespace {

// The entry at `at` of a block, which moves behind it; false where none begins.
bool read_packed(Bytes block, size_t &at, RevokedEntry &out) {
    if (block.size() - at < sizeof(Packed)) {
        return false;
    }
    const Bytes place = block.subspan(at);
    const Packed head = packed_at(place.data());
    if (head.serial_len == 0) {
        return false;
    }
    out.serial = place.subspan(sizeof head, head.serial_len);
    out.reason = place.subspan(sizeof head + head.serial_len, head.reason_len);
    out.date = {};
    if (head.has_date != 0) {
        out.date.set(head.date);
    }
    at += head.size();
    return true;
}

}  // namespace

bool AddedEntries::next(Place &place, RevokedEntry &out) const {
    if (blocks_.empty()) {
        return false;
    }
    if (place.block == blocks_.end()) {
        place.block = blocks_.begin();
    }
    while (!read_packed(place.block->bytes(), place.at, out)) {
        auto following = place.block;
        if (++following == blocks_.end()) {
            return false;
        }
        place = {following, 0};
    }
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
    AddedEntries::Place place = current_added_;
    found = added_.next(place, out);
    return Status::ok;
}

bool RevokedList::move() {
    Element passed;
    RevokedEntry entry;
    if (!unread_.next(passed)) {
        added_.next(current_added_, entry);
    }
    AddedEntries::Place place = current_added_;
    return !unread_.empty() || added_.next(place, entry);
}

}  // namespace za::request
