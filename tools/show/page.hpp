// A page of text about one object, and what several kinds of objects have on theirs.
#pragma once

#include "objects/certificate.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace tool {

// Lines at several depths of indentation.
class Page {
  public:
    void line(size_t depth, std::string_view text);
    void field(std::string_view name, std::string_view value);
    void block(size_t depth, const std::vector<std::string> &lines);

    std::string take() { return std::move(text_); }

  private:
    std::string text_;
};

void write_key(const PublicKey &key, Page &page);

// Titles at the depth given, values below them.
void write_extensions(size_t depth, const std::vector<Extension> &extensions, Page &page);

std::string count_or_none(size_t count);

}  // namespace tool
