// Attributes by number: a kind of object is a table of rows, and this engine is all that reads it.
#pragma once

#include "runtime/bytes.hpp"
#include "runtime/trace.hpp"

#include <algorithm>
#include <span>

namespace za {

// What an attribute is called, and the whole lines its accessors trace: NULL where they trace none.
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

// `logged` is the name that lines have for the identifier, where it is another one.
#define ZA_ATTRIBUTE_TEXTS_AS(identifier, logged)                                            \
    ::za::AttributeTexts {                                                                   \
#identifier, "======>Set " logged, "======>Get " logged, "======>Get " logged " LEN" \
    }
#define ZA_ATTRIBUTE_TEXTS(identifier) ZA_ATTRIBUTE_TEXTS_AS(identifier, #identifier)

// Lines that name nothing are not written.
#define ZA_ATTRIBUTE_UNLOGGED(identifier)      \
    ::za::AttributeTexts {                     \
#identifier, nullptr, nullptr, nullptr \
    }

// What accessors say of an identifier they do not know.
struct AttributeRefusal {
    const char *set = "------>Set ZACERT_AttributeNotSupportErr";
    const char *get = "------>Get ZACERT_AttributeNotSupportErr";
    const char *set_int = set;
    const char *get_int = get;
    Status status = Status::attribute_not_supported;
};

template <class Context>
class AttributeTable {
  public:
    using Row = AttributeRow<Context>;

    constexpr explicit AttributeTable(std::span<const Row> rows, AttributeRefusal refusal = {})
        : rows_(rows), refusal_(refusal) {}

    constexpr bool ascending() const {
        return std::ranges::is_sorted(rows_, std::ranges::less_equal{}, &Row::id) &&
               std::ranges::adjacent_find(rows_, {}, &Row::id) == rows_.end();
    }

    constexpr std::span<const Row> rows() const { return rows_; }

    Status set(const TraceSource &trace, Context &context, int32_t id, Bytes value) const {
        const Row *row = find(id);
        if (row == nullptr || row->set == nullptr) {
            return trace.fail(refusal_.status, refusal_.set);
        }
        tell(trace, row->texts.set);
        return row->set(context, *row, value);
    }

    Status set_int(const TraceSource &trace, Context &context, int32_t id, int32_t value) const {
        const Row *row = find(id);
        if (row == nullptr || row->set_int == nullptr) {
            return trace.fail(refusal_.status, refusal_.set_int);
        }
        tell(trace, row->texts.set);
        row->set_int(context, value);
        return Status::ok;
    }

    // The two-call contract of every getter of octets.
    Status get(const TraceSource &trace, Context &context, int32_t id, uint8_t *out,
               uint32_t *out_len) const {
        const Row *row = find(id);
        if (row == nullptr || row->get == nullptr) {
            return trace.fail(refusal_.status, refusal_.get);
        }
        tell(trace, out == nullptr ? row->texts.get_length : row->texts.get);
        Bytes value;
        ZA_PASS(row->get(context, *row, value));
        hand_out(value, out, out_len);
        return Status::ok;
    }

    Status get_int(const TraceSource &trace, const Context &context, int32_t id,
                   uint32_t *out) const {
        const Row *row = find(id);
        if (row == nullptr || row->get_int == nullptr) {
            return trace.fail(refusal_.status, refusal_.get_int);
        }
        tell(trace, row->texts.get);
        return row->get_int(context, *out);
    }

  private:
    static void tell(const TraceSource &trace, const char *text) {
        if (text != nullptr) {
            trace.note(text);
        }
    }

    const Row *find(int32_t id) const {
        const auto row = std::ranges::lower_bound(rows_, id, {}, &Row::id);
        return row != rows_.end() && row->id == id ? &*row : nullptr;
    }

    std::span<const Row> rows_;
    AttributeRefusal refusal_;
};

}  // namespace za
