// The lines of families whose arrows are twelve signs long, and how one of their functions calls
// another.
#pragma once

#include "runtime/trace.hpp"

#include <string_view>

namespace za {

constexpr TraceStyle kLongStyle{"------", Status::invalid_item, "============>", "------"};

// What `body` does stands for the exported function of this name: its failure has a line.
template <class Body>
Status step(const TraceSource &trace, std::string_view name, const Body &body,
            uint32_t line = __builtin_LINE()) {
    const Status status = body();
    return status == Status::ok ? status : trace.fail(status, {"------------>", name}, line);
}

}  // namespace za

// Another exported function does its work here: with the lines around it, as for all that work on
// whole structures, or with the line of a failure alone.
#define ZA_CALL(exported_name, call) ZA_FRAMED(exported_name, call, ::za::kLongStyle.frame)
#define ZA_FRAMED(exported_name, call, frame) \
    ZA_BODY(exported_name, trace.announced([&] { return call; }, #exported_name, __LINE__, frame))
#define ZA_BODY(exported_name, call)              \
    (static_cast<void>(sizeof(&::exported_name)), \
     ::za::step(trace, #exported_name, [&] { return call; }))
