// Many certificates at a glance: one line each.
#pragma once

#include "certificate.hpp"

#include <ostream>

namespace tool {

class Table {
public:
    void add(const Certificate &certificate);

    // `num_failed` certificates could not be read and are counted in the last line.
    void print(std::ostream &out, size_t num_failed) const;

private:
    std::vector<std::vector<std::string>> rows_;
    size_t num_extensions_ = 0;
    size_t num_decoded_extensions_ = 0;
};

}  // namespace tool
