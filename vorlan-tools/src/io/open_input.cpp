// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "io/open_input.h"

#include <fcntl.h>
#include <htslib/bgzf.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "errors.h"

namespace vorlan_tools {

namespace {

constexpr int kPlain = 0;

int open_descriptor(const std::string& name) {
  if (name == "-") return ::dup(STDIN_FILENO);
  const int descriptor = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat status {};
  if (descriptor >= 0 && ::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode)) {
    ::close(descriptor);
    errno = EISDIR;
    return -1;
  }
  return descriptor;
}

}  // namespace

std::string shown_input_name(const std::string& name) {
  return name == "-" ? "standard input" : name;
}

BGZF* open_input(const std::string& name) {
  const int descriptor = open_descriptor(name);
  if (descriptor < 0) {
    throw DataError("Cannot open " + shown_input_name(name) + ": " + std::strerror(errno) + ".");
  }
  return open_input(descriptor, shown_input_name(name));
}

BGZF* open_input(int descriptor, const std::string& name) {
  BGZF* const file = bgzf_dopen(descriptor, "r");
  if (file != nullptr) return file;
  ::close(descriptor);
  throw DataError("Cannot read " + name + ": the file is empty or damaged.");
}

// bgzf_read() copies the bytes of a plain file through a buffer of its own.
ssize_t read_input(BGZF* file, char* bytes, std::size_t size) {
  return bgzf_compression(file) == kPlain ? bgzf_raw_read(file, bytes, size)
                                          : bgzf_read(file, bytes, size);
}

}  // namespace vorlan_tools
