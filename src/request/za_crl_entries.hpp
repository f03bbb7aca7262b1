// The revoked certificates of a CRL. There may be millions: no entry has a block of its own.
#pragma once

#include "asn1/za_asn2_reader.hpp"
#include "cert/za_cert_parts.hpp"

namespace za::request {

// One revoked certificate, as views of what the list holds.
struct RevokedEntry {
    Bytes serial;
    cert::Time date;
    Bytes reason;  // content of the ENUMERATED; empty without one
};

// Entries that setters add, packed into one block.
class AddedEntries {
  public:
    Status add(Bytes serial);

    // Both change the entry added last, which there must be.
    void set_date(int32_t utc);
    Status set_reason(Bytes reason);

    bool empty() const { return size_ == 0; }

    // The entry at `at`, which moves behind it; false at the end.
    bool next(size_t &at, RevokedEntry &out) const;

  private:
    Status reserve(size_t size);

    Octets block_;
    size_t size_ = 0;
    size_t last_ = 0;
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
    size_t current_added_ = 0;
};

}  // namespace za::request
