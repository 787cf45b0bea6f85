// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "io/pending_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "errors.h"
#include "io/unfinished_files.h"

namespace vorlan_tools {

namespace {

[[noreturn]] void fail(const std::string& what, const std::string& name) {
  throw DataError("Cannot " + what + " " + name + ": " + std::strerror(errno) + ".");
}

bool is_special_file(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

/// The file that a chain of symbolic links ends at; a file that does not exist yet keeps its name.
std::string behind_links(const std::string& path) {
  std::error_code error;
  const std::filesystem::path target = std::filesystem::weakly_canonical(path, error);
  return error ? path : target.string();
}

/// The mask can only be read by changing it, and it belongs to all threads: asked once.
mode_t new_file_mode() {
  static const mode_t mode = [] {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
  }();
  return mode;
}

}  // namespace

PendingFile::PendingFile(const std::string& name) : name_(name) {
  if (name == "-") {
    name_ = "standard output";
    descriptor_ = ::dup(STDOUT_FILENO);
    if (descriptor_ < 0) fail("write", name_);
    return;
  }
  if (is_special_file(name)) {
    path_ = name;
    descriptor_ = ::open(name.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor_ < 0) fail("open", name_);
    return;
  }
  create_beside();
}

void PendingFile::create_beside() {
  final_path_ = behind_links(name_);
  path_ = final_path_ + ".XXXXXX";
  {
    const SignalsWait wait;
    descriptor_ = ::mkostemp(path_.data(), O_CLOEXEC);
    if (descriptor_ >= 0) add_unfinished_file(path_);
  }
  if (descriptor_ < 0) fail("create", name_);
  is_beside_ = true;
  if (::fchmod(descriptor_, new_file_mode()) != 0) {
    ::close(descriptor_);
    remove_beside();
    fail("create", name_);
  }
}

PendingFile::~PendingFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
  if (is_beside_) remove_beside();
}

void PendingFile::remove_beside() {
  ::unlink(path_.c_str());
  forget_unfinished_file(path_);
}

int PendingFile::release_descriptor() {
  const int descriptor = descriptor_;
  descriptor_ = -1;
  return descriptor;
}

void PendingFile::close_descriptor() {
  const int descriptor = release_descriptor();
  if (descriptor >= 0 && ::close(descriptor) != 0) fail("write", name_);
}

void PendingFile::commit() {
  close_descriptor();
  if (!is_beside_) return;
  if (std::filesystem::is_directory(final_path_)) {
    errno = EISDIR;
    fail("write", name_);
  }
  if (::rename(path_.c_str(), final_path_.c_str()) != 0) fail("write", name_);
  forget_unfinished_file(path_);
  is_beside_ = false;
}

}  // namespace vorlan_tools
