// The exported functions that all contexts of OCSP have, and the lines around them.
#pragma once

#include "runtime/attribute_table.hpp"
#include "runtime/callback.hpp"
#include "runtime/context.hpp"
#include "runtime/long_trace.hpp"

namespace za::ocsp {

// The lines that attributes of OCSP have.
#define ZA_OCSP_ATTRIBUTE(identifier)                                                  \
    ::za::AttributeTexts {                                                             \
#identifier, "============>Set " #identifier, "============>Get " #identifier, \
            "============>Get " #identifier                                            \
    }

// Octets that setters and decoders take: one at least.
inline Status check_octets(const TraceSource &trace, const uint8_t *octets, uint32_t len,
                           const char *text) {
    const bool good = octets != nullptr && len >= 1 && len <= INT32_MAX;
    return good ? Status::ok : trace.fail(Status::invalid_item, text);
}

// What is said where a context is missing; by the setter of octets, of them too; by that of
// numbers.
struct MissingTexts {
    const char *context;
    const char *octets;
    const char *number;
};

// A context has
//     Status read(Bytes, Context &)   which replaces what was decoded before, or fails
template <class Context>
class Frames {
  public:
    using Attributes = const AttributeTable<Context> &(*)();

    constexpr Frames(const TraceSource &source, Attributes attributes, MissingTexts texts)
        : trace_(source), attributes_(attributes), texts_(texts) {}

    uint32_t create(void **ctx, const char *name = __builtin_FUNCTION(),
                    uint32_t line = __builtin_LINE()) const noexcept {
        return trace_.exported([&] { return create_context<Context>(trace_, ctx); }, name, line);
    }

    uint32_t destroy(void *ctx, const char *name = __builtin_FUNCTION(),
                     uint32_t line = __builtin_LINE()) const noexcept {
        return run(
            ctx, [](Context &context) { return destroy_context<Context>(&context); }, name, line);
    }

    uint32_t set(void *ctx, int32_t id, const uint8_t *octets, uint32_t len,
                 const char *name = __builtin_FUNCTION(),
                 uint32_t line = __builtin_LINE()) const noexcept {
        const auto body = [&](Context &context) {
            ZA_PASS(check_octets(trace_, octets, len, texts_.octets));
            return attributes_().set(trace_, context, id, {octets, len});
        };
        return run(ctx, body, texts_.octets, name, line);
    }

    uint32_t get(void *ctx, int32_t id, uint8_t *out, uint32_t *out_len,
                 const char *name = __builtin_FUNCTION(),
                 uint32_t line = __builtin_LINE()) const noexcept {
        const auto body = [&](Context &context) {
            ZA_PASS(trace_.need(out_len));
            return attributes_().get(trace_, context, id, out, out_len);
        };
        return run(ctx, body, name, line);
    }

    uint32_t set_int(void *ctx, int32_t id, int32_t value, const char *name = __builtin_FUNCTION(),
                     uint32_t line = __builtin_LINE()) const noexcept {
        const auto body = [&](Context &context) {
            return attributes_().set_int(trace_, context, id, value);
        };
        return run(ctx, body, texts_.number, name, line);
    }

    uint32_t get_int(void *ctx, int32_t id, int32_t *out, const char *name = __builtin_FUNCTION(),
                     uint32_t line = __builtin_LINE()) const noexcept {
        const auto body = [&](const Context &context) {
            uint32_t value = 0;
            ZA_PASS(trace_.need(out));
            ZA_PASS(attributes_().get_int(trace_, context, id, &value));
            *out = static_cast<int32_t>(value);
            return Status::ok;
        };
        return run(ctx, body, name, line);
    }

    // `slot` gives the place of the function in the context.
    template <class Slot>
    uint32_t install(void *ctx, const Slot &slot, ZA_CryptFunc function, const uint8_t *argument,
                     uint32_t len, const char *name = __builtin_FUNCTION(),
                     uint32_t line = __builtin_LINE()) const noexcept {
        const auto body = [&](Context &context) {
            return slot(context).install(trace_, function, argument, len);
        };
        return run(ctx, body, name, line);
    }

    uint32_t decode(void *ctx, const uint8_t *der, uint32_t len,
                    const char *name = __builtin_FUNCTION(),
                    uint32_t line = __builtin_LINE()) const noexcept {
        const auto body = [&](Context &context) {
            ZA_PASS(check_octets(trace_, der, len, texts_.octets));
            return read(Bytes(der, len), context);
        };
        return run(ctx, body, name, line);
    }

    // Any other: `body` gets the context.
    template <class Body>
    uint32_t run(void *ctx, const Body &body, const char *name = __builtin_FUNCTION(),
                 uint32_t line = __builtin_LINE()) const noexcept {
        return run(ctx, body, texts_.context, name, line);
    }

  private:
    template <class Body>
    uint32_t run(void *ctx, const Body &body, const char *missing, const char *name,
                 uint32_t line) const noexcept {
        const auto with_context = [&] {
            return ctx == nullptr ? trace_.fail(Status::invalid_item, missing, line)
                                  : body(*static_cast<Context *>(ctx));
        };
        return trace_.exported(with_context, name, line);
    }

    const TraceSource &trace_;
    Attributes attributes_;
    MissingTexts texts_;
};

}  // namespace za::ocsp
