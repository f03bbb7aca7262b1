// The revoked certificates of a CRL. There may be millions: no entry has a block of its own.
#pragma once

#include "asn1/za_asn2_reader.hpp"
#include "cert/za_cert_parts.hpp"
#include "runtime/list.hpp"

namespace za::request {

// One revoked certificate, as views of what the list holds.
struct RevokedEntry {
    Bytes serial;
    cert::Time date;
    Bytes reason;  // content of the ENUMERATED; empty without one
};

// Entries that setters add, packed into blocks one behind the other. What is packed never moves but
// for the last entry, which setters change: a list that grows copies nothing.
class AddedEntries {
  public:
    Status add(Bytes serial);

    // Both change the entry added last, which there must be.
    void set_date(int32_t utc);
    Status set_reason(Bytes reason);

    bool empty() const { return last_ == nullptr; }

    // Where an entry begins, or the last one ends; at first the place of the first entry, whether
    // there is one yet or not.
    struct Place {
        List<Octets>::Iterator block{nullptr};
        size_t at = 0;
    };

    // The entry at `place`, which moves behind it; false at the end.
    bool next(Place &place, RevokedEntry &out) const;

  private:
    Status add_block(size_t size);

    List<Octets> blocks_;
    size_t block_size_ = 0;
    uint8_t *last_ = nullptr;
    uint8_t *free_ = nullptr;  // behind the last entry
    size_t room_ = 0;          // from there to the end of its block
};

// Entries that were decoded, which stay octets of the CRL, and behind them those added. One of them
// is the current one, at first the first.
class RevokedList {
  public:
    // Checks every entry; the octets are kept by the context.
    Status refer(const asn1::Element &revoked);  // ZI_CRL_DecodeRevokedCerts

    // The element that was decoded.
    Bytes decoded() const { return decoded_; }
    Bytes decoded_entries() const { return decoded_entries_; }

    AddedEntries &added() { return added_; }
    const AddedEntries &added() const { return added_; }
    bool empty() const { return decoded_entries_.empty() && added_.empty(); }

    // Nothing is found behind the last entry.
    Status current(bool &found, RevokedEntry &out) const;

    // Makes the next entry the current one; false when there is none.
    bool move();

  private:
    Bytes decoded_;
    Bytes decoded_entries_;
    AddedEntries added_;

    asn1::Children unread_;  // from the current entry on
    AddedEntries::Place current_added_;
};

}  // namespace za::request
