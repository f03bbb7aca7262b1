// Handles of the interface: every kind of context is created and destroyed here.
#pragma once

#include "runtime/list.hpp"
#include "runtime/trace.hpp"

namespace za {

template <class Context>
Status create_context(const TraceSource &trace, void **out) {
    ZA_PASS(trace.need(out));
    Context *context = make_in_heap<Context>();
    if (context == nullptr) {
        return trace.fail(Status::memory);
    }
    *out = context;
    return Status::ok;
}

template <class Context>
Status destroy_context(void *handle) {
    destroy_in_heap(static_cast<Context *>(handle));
    return Status::ok;
}

}  // namespace za
