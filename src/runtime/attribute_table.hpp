// Attributes by number: a kind of object is a table of rows, and this engine is all that reads it.
#pragma once

#include "runtime/bytes.hpp"
#include "runtime/trace.hpp"

#include <algorithm>
#include <span>

namespace za {

// What an attribute is called, and the whole lines its accessors trace.
struct AttributeTexts {
    const char *name;
    const char *set;
    const char *get;
    const char *get_length;
};

// An accessor that a row lacks is not supported for its identifier.
template <class Context>
struct AttributeRow {
    int32_t id;
    AttributeTexts texts;
    Status (*set)(Context &, const AttributeRow &, Bytes) = nullptr;
    Status (*get)(Context &, const AttributeRow &, Bytes &) = nullptr;
    uint32_t kind = 0;  // of a name entry
    void (*set_int)(Context &, int32_t) = nullptr;
    Status (*get_int)(const Context &, uint32_t &) = nullptr;
};

#define ZA_ATTRIBUTE_TEXTS(identifier)                                     \
    ::za::AttributeTexts {                                                 \
#identifier, "======>Set " #identifier, "======>Get " #identifier, \
            "======>Get " #identifier " LEN"                               \
    }

template <class Context>
class AttributeTable {
  public:
    using Row = AttributeRow<Context>;

    constexpr explicit AttributeTable(std::span<const Row> rows) : rows_(rows) {}

    constexpr bool ascending() const {
        return std::ranges::is_sorted(rows_, std::ranges::less_equal{}, &Row::id) &&
               std::ranges::adjacent_find(rows_, {}, &Row::id) == rows_.end();
    }

    constexpr std::span<const Row> rows() const { return rows_; }

    Status set(const TraceSource &trace, Context &context, int32_t id, Bytes value) const {
        const Row *row = find(id);
        if (row == nullptr || row->set == nullptr) {
            return not_settable(trace);
        }
        trace.note(row->texts.set);
        return row->set(context, *row, value);
    }

    Status set_int(const TraceSource &trace, Context &context, int32_t id, int32_t value) const {
        const Row *row = find(id);
        if (row == nullptr || row->set_int == nullptr) {
            return not_settable(trace);
        }
        trace.note(row->texts.set);
        row->set_int(context, value);
        return Status::ok;
    }

    // The two-call contract of every getter of octets.
    Status get(const TraceSource &trace, Context &context, int32_t id, uint8_t *out,
               uint32_t *out_len) const {
        const Row *row = find(id);
        if (row == nullptr || row->get == nullptr) {
            return not_readable(trace);
        }
        trace.note(out == nullptr ? row->texts.get_length : row->texts.get);
        Bytes value;
        ZA_PASS(row->get(context, *row, value));
        hand_out(value, out, out_len);
        return Status::ok;
    }

    Status get_int(const TraceSource &trace, const Context &context, int32_t id,
                   uint32_t *out) const {
        const Row *row = find(id);
        if (row == nullptr || row->get_int == nullptr) {
            return not_readable(trace);
        }
        trace.note(row->texts.get);
        return row->get_int(context, *out);
    }

  private:
    const Row *find(int32_t id) const {
        const auto row = std::ranges::lower_bound(rows_, id, {}, &Row::id);
        return row != rows_.end() && row->id == id ? &*row : nullptr;
    }

    static Status not_settable(const TraceSource &trace) {
        return trace.fail(Status::attribute_not_supported,
                          "------>Set ZACERT_AttributeNotSupportErr");
    }

    static Status not_readable(const TraceSource &trace) {
        return trace.fail(Status::attribute_not_supported,
                          "------>Get ZACERT_AttributeNotSupportErr");
    }

    std::span<const Row> rows_;
};

}  // namespace za
