// What all structures of PKCS#12 have in common: how their lines look, how one is entered from
// outside, and how one calls another.
#pragma once

#include "runtime/bytes.hpp"
#include "runtime/context.hpp"
#include "runtime/list.hpp"
#include "runtime/long_trace.hpp"

// The lines of PKCS#7 around what its functions do here.
#define ZA_MESSAGE(exported_name, call) ZA_FRAMED(exported_name, call, "======>")

namespace za::pkcs12 {

struct Attribute {
    Secret type;
    Secret values;  // the DER of its SET of values, as it came
};

using Attributes = List<Attribute>;

// Octets that a caller brings; none at all are octets too.
inline Status check_octets(const TraceSource &trace, const uint8_t *octets, uint32_t len) {
    ZA_PASS(trace.need(octets));
    return len <= INT32_MAX ? Status::ok : trace.fail(Status::invalid_item);
}

// A function of the caller's, in place of the one before. It need not have a parameter block.
template <class Slot, class Function>
Status install_function(const TraceSource &trace, Slot &slot, Function function,
                        const uint8_t *block, uint32_t block_len) {
    ZA_PASS(block == nullptr ? Status::ok : check_octets(trace, block, block_len));
    return slot.install(trace, function, block, block_len);
}

// Appends a copy.
Status add_item(const TraceSource &trace, List<Secret> &list, Bytes value);
Status add_attribute(const TraceSource &trace, Attributes &list, Bytes type, Bytes values);

struct AttributePlace {
    uint8_t *type;
    uint32_t *type_len;
    uint8_t *values;
    uint32_t *values_len;
};

// The attribute with this number, counted from 1. 121: there is none, which ends a caller's loop.
Status hand_out_attribute(const TraceSource &trace, const Attributes &list, uint32_t number,
                          const AttributePlace &out);

// The values of a member, whose structure follows from its type.
template <class Member>
struct MemberOf;
template <class T, class Value>
struct MemberOf<Value T::*> {
    using Structure = T;
};

// The exported functions of a family of files. Every value of PKCS#12 may be a secret, so all are
// held as one. A structure T has
//     Status encode(const T &, Octets &out)
//     Status decode(Bytes, T &)             which replaces what was decoded before, or fails
class Frames {
  public:
    constexpr explicit Frames(const TraceSource &source) : trace_(source) {}

    template <class T>
    uint32_t create(void **ctx, const char *name = __builtin_FUNCTION(),
                    uint32_t line = __builtin_LINE()) const noexcept {
        return trace_.exported([&] { return create_context<T>(trace_, ctx); }, name, line);
    }

    template <class T>
    uint32_t destroy(void *ctx, const char *name = __builtin_FUNCTION(),
                     uint32_t line = __builtin_LINE()) const noexcept {
        return run<T>(
            ctx, [](T &structure) { return destroy_context<T>(&structure); }, name, line);
    }

    template <class T>
    uint32_t encode_to(void *ctx, uint8_t *out, uint32_t *out_len,
                       const char *name = __builtin_FUNCTION(),
                       uint32_t line = __builtin_LINE()) const noexcept {
        const auto body = [&](T &structure) {
            Secret der;
            ZA_PASS(trace_.need(out_len));
            ZA_PASS(encode(structure, der.value));
            hand_out(der.bytes(), out, out_len);
            return Status::ok;
        };
        return run<T>(ctx, body, name, line);
    }

    template <class T>
    uint32_t decode_from(void *ctx, const uint8_t *der, uint32_t len,
                         const char *name = __builtin_FUNCTION(),
                         uint32_t line = __builtin_LINE()) const noexcept {
        const auto body = [&](T &structure) {
            ZA_PASS(check_octets(trace_, der, len));
            return len > 0 ? decode(Bytes(der, len), structure) : trace_.fail(Status::invalid_item);
        };
        return run<T>(ctx, body, name, line);
    }

    // Octets: the setter copies.
    template <auto member>
    uint32_t set(void *ctx, const uint8_t *octets, uint32_t len,
                 const char *name = __builtin_FUNCTION(),
                 uint32_t line = __builtin_LINE()) const noexcept {
        using T = typename MemberOf<decltype(member)>::Structure;
        const auto body = [&](T &structure) {
            ZA_PASS(check_octets(trace_, octets, len));
            return (structure.*member).assign({octets, len});
        };
        return run<T>(ctx, body, name, line);
    }

    template <auto member>
    uint32_t get(void *ctx, uint8_t *out, uint32_t *out_len,
                 const char *name = __builtin_FUNCTION(),
                 uint32_t line = __builtin_LINE()) const noexcept {
        using T = typename MemberOf<decltype(member)>::Structure;
        const auto body = [&](T &structure) {
            ZA_PASS(trace_.need(out_len));
            hand_out((structure.*member).bytes(), out, out_len);
            return Status::ok;
        };
        return run<T>(ctx, body, name, line);
    }

    // Lists: of octets, and of attributes. An item that is not there has no octets.
    template <auto member>
    uint32_t add(void *ctx, const uint8_t *octets, uint32_t len,
                 const char *name = __builtin_FUNCTION(),
                 uint32_t line = __builtin_LINE()) const noexcept {
        using T = typename MemberOf<decltype(member)>::Structure;
        const auto body = [&](T &structure) {
            ZA_PASS(check_octets(trace_, octets, len));
            return add_item(trace_, structure.*member, {octets, len});
        };
        return run<T>(ctx, body, name, line);
    }

    template <auto member>
    uint32_t count(void *ctx, uint32_t *num, const char *name = __builtin_FUNCTION(),
                   uint32_t line = __builtin_LINE()) const noexcept {
        using T = typename MemberOf<decltype(member)>::Structure;
        const auto body = [&](T &structure) {
            ZA_PASS(trace_.need(num));
            *num = to_u32((structure.*member).size());
            return Status::ok;
        };
        return run<T>(ctx, body, name, line);
    }

    template <auto member>
    uint32_t item(void *ctx, uint8_t *out, uint32_t *out_len, uint32_t number,
                  const char *name = __builtin_FUNCTION(),
                  uint32_t line = __builtin_LINE()) const noexcept {
        using T = typename MemberOf<decltype(member)>::Structure;
        const auto body = [&](const T &structure) {
            ZA_PASS(trace_.need(out_len));
            const Secret *found = (structure.*member).item(number);
            hand_out(found == nullptr ? Bytes() : found->bytes(), out, out_len);
            return Status::ok;
        };
        return run<T>(ctx, body, name, line);
    }

    template <auto member>
    uint32_t add_attribute_to(void *ctx, const uint8_t *type, uint32_t type_len,
                              const uint8_t *values, uint32_t values_len,
                              const char *name = __builtin_FUNCTION(),
                              uint32_t line = __builtin_LINE()) const noexcept {
        using T = typename MemberOf<decltype(member)>::Structure;
        const auto body = [&](T &structure) {
            ZA_PASS(check_octets(trace_, type, type_len));
            ZA_PASS(check_octets(trace_, values, values_len));
            return add_attribute(trace_, structure.*member, {type, type_len}, {values, values_len});
        };
        return run<T>(ctx, body, name, line);
    }

    template <auto member>
    uint32_t attribute(void *ctx, const AttributePlace &out, uint32_t number,
                       const char *name = __builtin_FUNCTION(),
                       uint32_t line = __builtin_LINE()) const noexcept {
        using T = typename MemberOf<decltype(member)>::Structure;
        const auto body = [&](const T &structure) {
            return hand_out_attribute(trace_, structure.*member, number, out);
        };
        return run<T>(ctx, body, name, line);
    }

    template <auto slot, class Function>
    uint32_t install(void *ctx, Function function, const uint8_t *block, uint32_t block_len,
                     const char *name = __builtin_FUNCTION(),
                     uint32_t line = __builtin_LINE()) const noexcept {
        using T = typename MemberOf<decltype(slot)>::Structure;
        const auto body = [&](T &structure) {
            return install_function(trace_, structure.*slot, function, block, block_len);
        };
        return run<T>(ctx, body, name, line);
    }

    // Any other: `body` gets the structure.
    template <class T, class Body>
    uint32_t run(void *ctx, const Body &body, const char *name = __builtin_FUNCTION(),
                 uint32_t line = __builtin_LINE()) const noexcept {
        const auto with_structure = [&] {
            ZA_PASS(trace_.need(ctx));
            return body(*static_cast<T *>(ctx));
        };
        return trace_.exported(with_structure, name, line);
    }

  private:
    const TraceSource &trace_;
};

}  // namespace za::pkcs12
