// The command "show".
#pragma once

#include "objects/kind.hpp"

#include <map>
#include <string>
#include <vector>

namespace tool {

enum class Format { text, json, table };

// The names that users give the forms.
const std::map<std::string, Format> &formats();

// Shows every object of every file on standard output, and says on standard error what could
// not be shown. Whether all could. With a kind, objects of other kinds cannot.
bool show(const std::vector<std::string> &files, Format format,
          ObjectKind wanted = ObjectKind::unknown);

}  // namespace tool
