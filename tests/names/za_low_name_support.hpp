// Entries of names as an application makes them, outside the library's heap.
#pragma once

#include <zacert.h>

#include "support/handed.hpp"
#include "support/heap.hpp"
#include "support/rows.hpp"
#include "support/trace.hpp"

#include <deque>

namespace za::test {

// What decoders of names refuse input with.
inline const std::set<uint32_t> kNameCodes{101, 102, 106, 108, 121, 0xFFFFFFFE, 0xFFFFFFFF};

class Entries {
  public:
    struct Row {
        uint32_t kind;
        std::string_view oid, value;  // hex
        uint32_t type = 0;
    };

    Entries() = default;
    Entries(std::initializer_list<Row> rows) {
        for (const Row &row : rows) {
            add(row);
        }
    }
    Entries(const Entries &) = delete;
    Entries &operator=(const Entries &) = delete;

    void add(const Row &row) {
        Item &item = items_.emplace_back(Item{from_hex(row.oid), from_hex(row.value), {}});
        item.entry.attrKind = row.kind;
        item.entry.attrOid = borrowed(item.oid);
        item.entry.attrValue = borrowed(item.value, row.type);
        *end_ = &item.entry;
        end_ = &item.entry.nextEntry;
    }
    ZI_Name *name() { return &holder_; }

  private:
    struct Item {
        Octets oid, value;
        ZI_NameEntry entry;
    };
    std::deque<Item> items_;
    ZI_Name holder_{};
    ZI_NameEntry **end_ = &holder_.first;
};

// "kind type hex, kind type hex"
inline std::string describe_entries(const ZI_NameEntry *entry) {
    std::string text;
    for (; entry != nullptr; entry = entry->nextEntry) {
        text += text.empty() ? "" : ", ";
        text += std::to_string(entry->attrKind) + " " + std::to_string(entry->attrValue.dataType);
        text += (entry->attrValue.dataLen == 0 ? "" : " ") + to_hex(&entry->attrValue);
    }
    return text;
}

}  // namespace za::test
