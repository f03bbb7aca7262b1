// The array of JSON that the command prints, written as it grows.
#pragma once

#include "show/json.hpp"

#include <ostream>

namespace tool {

class JsonArray {
  public:
    explicit JsonArray(std::ostream &out) : out_(out) {}

    void add(const Json &object);
    void add(const Crl &crl);  // entry by entry
    void finish();

  private:
    void begin_element();

    std::ostream &out_;
    bool empty_ = true;
};

}  // namespace tool
