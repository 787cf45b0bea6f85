// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "io/file_identity.h"

#include <sys/stat.h>
#include <unistd.h>

#include "errors.h"

namespace vorlan_tools {

namespace {

[[noreturn]] void refuse(const std::string& input, const std::string& output) {
  throw UsageError("The output " + output + " is the same file as the input " + input + ".");
}

bool get_status(const std::string& name, int standard_stream, struct stat& status) {
  const int result =
      name == "-" ? ::fstat(standard_stream, &status) : ::stat(name.c_str(), &status);
  return result == 0 && S_ISREG(status.st_mode);
}

}  // namespace

bool is_same_file(const std::string& input, const std::string& output) {
  struct stat in {};
  struct stat out {};
  return get_status(input, STDIN_FILENO, in) && get_status(output, STDOUT_FILENO, out) &&
         in.st_dev == out.st_dev && in.st_ino == out.st_ino;
}

void refuse_input_as_output(const std::vector<std::string>& inputs, const std::string& output) {
  for (const std::string& input : inputs) {
    if (is_same_file(input, output)) refuse(input, output);
  }
}

}  // namespace vorlan_tools
