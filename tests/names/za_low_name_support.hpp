// Names in tests: real ones, and entries as an application makes them.
#pragma once

#include <zacert.h>

#include "support/bytes.hpp"

#include <string>
#include <vector>

namespace za::test {

// Subjects of certificates that `openssl req -x509` made with different string masks.
inline constexpr const char *kUtf8Name =
    "308189310B300906035504061302434E310F300D06035504080C06E58C97E4BAAC31173015060355"
    "040A0C0E4578616D706C6520E7A4BAE4BE8B310D300B060355040B0C0444657074310D300B060355"
    "040B0C045465616D3114301206035504030C0BE6B58BE8AF9520526F6F74311C301A06092A864886"
    "F70D010901160D6361406578616D706C652E636E";
inline constexpr const char *kMultiValuedName =
    "3069310B300906035504061302444531153013060355040A0C0C4578616D706C6520476D62483117"
    "3009060355040513023432300A060355040B0C034F6E65312A301306035504030C0C686F73742E65"
    "78616D706C65301306092A864886F70D01090116066140622E6465";
inline constexpr const char *kBmpName =
    "3065310B300906035504061302434E3111300F060355040A1E08793A4F8B516C53F8311D301B0603"
    "5504031E140041006C006900630065005F00570061006E006731173015060A0992268993F22C6401"
    "1916076578616D706C65310B3009060355042D13026162";

// Owns entries whose octets lie outside the library's heap.
class Entries {
  public:
    void add(uint32_t kind, const Octets &oid, const Octets &value, uint32_t type = 0) {
        octets_.push_back(oid);
        octets_.push_back(value);
        ZI_NameEntry entry{};
        entry.attrKind = kind;
        entries_.push_back(entry);
        types_.push_back(type);
    }
    ZI_Name *name() {
        holder_.first = entries_.empty() ? nullptr : entries_.data();
        for (size_t i = 0; i < entries_.size(); ++i) {
            entries_[i].attrOid = borrowed(octets_[2 * i]);
            entries_[i].attrValue = borrowed(octets_[2 * i + 1], types_[i]);
            entries_[i].nextEntry = i + 1 < entries_.size() ? &entries_[i + 1] : nullptr;
        }
        return &holder_;
    }
    const ZI_NameEntry &operator[](size_t i) const { return entries_[i]; }

  private:
    std::vector<Octets> octets_;
    std::vector<ZI_NameEntry> entries_;
    std::vector<uint32_t> types_;
    ZI_Name holder_{};
};

// "kind type hex; kind type hex"
inline std::string describe_entries(const ZI_NameEntry *entry) {
    std::string text;
    for (; entry != nullptr; entry = entry->nextEntry) {
        text += text.empty() ? "" : "; ";
        text += std::to_string(entry->attrKind) + " " + std::to_string(entry->attrValue.dataType) +
                " " + to_hex(&entry->attrValue);
    }
    return text;
}

}  // namespace za::test
