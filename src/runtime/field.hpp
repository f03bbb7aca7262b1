// One value of a context: octets of its own, or a view of octets that the same context keeps.
#pragma once

#include "runtime/bytes.hpp"
#include "runtime/trace.hpp"

namespace za {

class Field {
  public:
    // A copy; on failure the old value stays.
    Status assign(Bytes bytes) {
        ZA_PASS(own_.assign(bytes));
        view_ = own_.bytes();
        return Status::ok;
    }

    void take(Octets &&octets) {
        own_ = std::move(octets);
        view_ = own_.bytes();
    }

    void refer(Bytes kept) {
        own_ = Octets();
        view_ = kept;
    }

    Bytes bytes() const { return view_; }
    bool empty() const { return view_.empty(); }

    // Storage without octets, which setters of replaceable values refuse to replace.
    bool holds_empty_storage() const { return view_.data() != nullptr && view_.empty(); }

  private:
    Octets own_;
    Bytes view_;
};

}  // namespace za
