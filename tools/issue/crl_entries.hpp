// The entries of a CRL that is being made.
#pragma once

#include "base/octets.hpp"
#include "objects/crl.hpp"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tool {

struct CrlEntry {
    Octets serial;
    std::chrono::sys_seconds date;
    std::optional<uint8_t> reason;
};

// The number of a reason by its name in RFC 5280, 5.3.1. Throws Failure.
uint8_t reason_number(std::string_view name);

constexpr uint8_t kRemoveFromCrl = 8;

class CrlEntries {
  public:
    explicit CrlEntries(std::chrono::sys_seconds default_date) : default_date_(default_date) {}

    // A serial number that is there already gets the new date and reason.
    void add(CrlEntry entry);

    // "SERIAL[,DATE[,REASON]]"; a missing or empty date is the default one. Throws Failure.
    void add_text(std::string_view text);

    // One such text a line; empty lines and those that begin with "#" are passed over.
    void add_file(const std::string &path);

    // Those of another CRL. Returns how many of their extensions besides the reason were dropped.
    size_t add_all(const Crl &crl);

    // Certificates that are no longer revoked: what a delta CRL tells and a whole one leaves out.
    void drop_removed();

    const std::vector<CrlEntry> &list() const { return entries_; }

  private:
    std::chrono::sys_seconds default_date_;
    std::vector<CrlEntry> entries_;
    std::unordered_map<std::string, size_t> places_;
};

}  // namespace tool
