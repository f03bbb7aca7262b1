// Files that come to be whole or not at all.
#pragma once

#include "base/arguments.hpp"
#include "base/octets.hpp"

#include <string>
#include <sys/types.h>

namespace tool {

enum class Existing { replaced, kept };

// Writes a temporary file beside `path` and renames it. What is no regular file, such as a pipe, is
// written to directly; "-" is standard output. The mode holds from creation on. Throws Failure,
// also where the file exists and has to be kept.
void write_file(const std::string &path, View octets, mode_t mode, Existing existing);

// A block with the label.
Octets pem(View der, const std::string &label);

// How an object leaves the tool.
struct OutputOptions {
    std::string path = "-";
    bool der = false;
};

void add_output_options(Arguments &command, OutputOptions &output);

// As DER, or as PEM with the label.
void write_object(const OutputOptions &output, View der, const std::string &label);

}  // namespace tool
