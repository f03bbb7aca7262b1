// The command "show".
#pragma once

#include "base/arguments.hpp"
#include "objects/kind.hpp"

#include <map>
#include <string>
#include <vector>

namespace tool {

constexpr const char *kShowExamples = R"(Examples:
  zacert show server.pem
  zacert show --format table /etc/ssl/certs/ca-certificates.crt
  openssl s_client -connect example.org:443 </dev/null | zacert show --format json -)";

enum class Format { text, json, table };

// The names that users give the forms.
const std::map<std::string, Format> &formats();

void add_format_option(Arguments &command, std::string &format);

// Shows every object of every file on standard output, and says on standard error what could
// not be shown. Whether all could. With a kind, objects of other kinds cannot.
bool show(const std::vector<std::string> &files, Format format,
          ObjectKind wanted = ObjectKind::unknown);

}  // namespace tool
