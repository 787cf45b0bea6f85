// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "io/rereadable_input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "errors.h"

namespace vorlan_tools {

namespace {

constexpr std::size_t kBlockSize = std::size_t{256} * 1024;

[[noreturn]] void fail(const std::string& what) {
  throw DataError("Cannot " + what + ": " + std::strerror(errno) + ".");
}

void write_all(int descriptor, const char* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t count = ::write(descriptor, bytes, size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) fail("write a temporary file");
    bytes += count;
    size -= static_cast<std::size_t>(count);
  }
}

void copy_all(int from, int to, const std::string& name) {
  std::vector<char> block(kBlockSize);
  for (;;) {
    const ssize_t count = ::read(from, block.data(), block.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) fail("read " + name);
    if (count == 0) return;
    write_all(to, block.data(), static_cast<std::size_t>(count));
  }
}

bool is_regular_file(int descriptor) {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

int open_nameless_file() {
  const char* const folder = std::getenv("TMPDIR");
  std::string path =
      std::string(folder != nullptr && *folder != '\0' ? folder : "/tmp") + "/vorlan-tools-XXXXXX";
  const int descriptor = ::mkostemp(path.data(), O_CLOEXEC);
  if (descriptor < 0) fail("create a temporary file");
  ::unlink(path.c_str());
  return descriptor;
}

RereadableInput::RereadableInput(const std::string& name)
    : name_(name == "-" ? "standard input" : name) {
  descriptor_ = name == "-" ? ::dup(STDIN_FILENO) : ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor_ < 0) fail("open " + name_);
  if (is_regular_file(descriptor_)) return;
  const int pipe = descriptor_;
  try {
    descriptor_ = open_nameless_file();
    copy_all(pipe, descriptor_, name_);
  } catch (...) {
    if (descriptor_ != pipe) ::close(descriptor_);
    ::close(pipe);
    throw;
  }
  ::close(pipe);
}

RereadableInput::~RereadableInput() { ::close(descriptor_); }

int RereadableInput::open_again() const {
  const int copy = ::dup(descriptor_);
  if (copy < 0 || ::lseek(copy, 0, SEEK_SET) != 0) fail("read " + name_);
  return copy;
}

}  // namespace vorlan_tools
