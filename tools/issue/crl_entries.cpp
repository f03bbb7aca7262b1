#include "issue/crl_entries.hpp"

#include "base/dates.hpp"
#include "base/failure.hpp"
#include "base/wording.hpp"
#include "issue/serial_number.hpp"
#include "objects/input.hpp"

#include <algorithm>
#include <array>

namespace tool {

namespace {

struct Reason5280 {
    std::string_view name;
    uint8_t number;
};

constexpr auto kReasons = std::to_array<Reason5280>({
    {"unspecified", 0},
    {"keyCompromise", 1},
    {"cACompromise", 2},
    {"affiliationChanged", 3},
    {"superseded", 4},
    {"cessationOfOperation", 5},
    {"certificateHold", 6},
    {"removeFromCRL", kRemoveFromCrl},
    {"privilegeWithdrawn", 9},
    {"aACompromise", 10},
});

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    const size_t first = text.find_first_not_of(kBlanks);
    const size_t last = text.find_last_not_of(kBlanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, last + 1 - first);
}

// Up to the separator; `text` becomes what stands behind it.
std::string_view take(std::string_view &text, char separator) {
    const size_t end = std::min(text.find(separator), text.size());
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

}  // namespace

uint8_t reason_number(std::string_view name) {
    const auto row = std::find_if(kReasons.begin(), kReasons.end(),
                                  [name](const Reason5280 &entry) { return entry.name == name; });
    if (row == kReasons.end()) {
        std::string names;
        for (const Reason5280 &entry : kReasons) {
            names += (names.empty() ? "" : ", ") + std::string(entry.name);
        }
        throw Failure("expected a reason, " + names + "; found " + std::string(name));
    }
    return row->number;
}

void CrlEntries::add(CrlEntry entry) {
    const auto [place, added] = places_.try_emplace(text_of(entry.serial), entries_.size());
    if (added) {
        entries_.push_back(std::move(entry));
    } else {
        entries_[place->second] = std::move(entry);
    }
}

void CrlEntries::add_text(std::string_view text) {
    const std::string_view serial = trimmed(take(text, ','));
    const std::string_view date = trimmed(take(text, ','));
    const std::string_view reason = trimmed(text);
    CrlEntry entry{parse_serial(serial), date.empty() ? default_date_ : parse_time(date), {}};
    // RFC 5280, 5.3.1: "unspecified" is said by saying nothing.
    const uint8_t number = reason.empty() ? uint8_t{0} : reason_number(reason);
    if (number != 0) {
        entry.reason = number;
    }
    add(std::move(entry));
}

void CrlEntries::add_file(const std::string &path) {
    const Octets file = read_file(path, "a list of serial numbers");
    std::string_view text(reinterpret_cast<const char *>(file.data()), file.size());
    for (size_t line = 1; !text.empty(); ++line) {
        const std::string_view entry = trimmed(take(text, '\n'));
        if (entry.empty() || entry.front() == '#') {
            continue;
        }
        try {
            add_text(entry);
        } catch (const Failure &failure) {
            throw Failure(file_label(path) + ": line " + std::to_string(line) + ": " +
                          failure.what());
        }
    }
}

size_t CrlEntries::add_all(const Crl &crl) {
    size_t dropped = 0;
    for (RevokedEntries entries(crl.revoked); !entries.at_end();) {
        RevokedEntry old = entries.next();
        if (old.serial.negative) {
            throw Failure("a serial number of the previous CRL is negative");
        }
        CrlEntry entry{std::move(old.serial.magnitude), old.date, {}};
        if (!old.reason.empty()) {
            entry.reason = reason_number(old.reason);
        }
        dropped += old.extensions.size();
        add(std::move(entry));
    }
    return dropped;
}

void CrlEntries::drop_removed() {
    std::erase_if(entries_, [](const CrlEntry &entry) { return entry.reason == kRemoveFromCrl; });
    places_.clear();
}

}  // namespace tool
