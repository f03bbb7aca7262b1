// The trace under test: remembers the message of every line instead of writing it.
#pragma once

#include <string>
#include <vector>

namespace za::test {

using Trail = std::vector<std::string>;

// Forgets what was remembered and begins to remember; lines are dropped while nobody records.
class TraceRecord {
  public:
    TraceRecord();
    ~TraceRecord();
    TraceRecord(const TraceRecord &) = delete;
    TraceRecord &operator=(const TraceRecord &) = delete;

    Trail lines() const;
    // Lines of failures alone: those that begin with a dash.
    Trail failures() const;
};

}  // namespace za::test
