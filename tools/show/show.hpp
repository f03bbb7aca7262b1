// The command "show".
#pragma once

#include <string>
#include <vector>

namespace tool {

enum class Format { text, json, table };

// Shows every object of every file on standard output, and says on standard error what could
// not be shown. Whether all could.
bool show(const std::vector<std::string> &files, Format format);

}  // namespace tool
