// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/work_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

#include "errors.h"
#include "io/output_file.h"

namespace vorlan_tools {

namespace {

constexpr std::string_view kLock = "lock";
constexpr std::string_view kSettings = "settings";

[[noreturn]] void fail(const std::string& what, const std::string& path) {
  throw DataError("Cannot " + what + " the folder " + path + ": " + std::strerror(errno) + ".");
}

}  // namespace

std::string read_small_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void write_small_file(const std::string& path, std::string_view text) {
  OutputFile file(path, Compression::kPlain);
  file.write(text);
  file.finish();
}

WorkFolder WorkFolder::beside(const std::string& path, bool resumes) {
  WorkFolder folder(path);
  folder.is_kept_ = true;  // until it is known to be ours
  folder.can_resume_ = true;
  if (::mkdir(path.c_str(), 0777) != 0 && errno != EEXIST) fail("make", path);
  folder.check_that_it_is_ours();
  folder.lock();
  const bool has_work = resumes && !folder.settings().empty();
  if (!has_work) folder.empty();
  folder.is_kept_ = has_work;
  return folder;
}

WorkFolder WorkFolder::temporary() {
  const char* const parent = std::getenv("TMPDIR");
  std::string path = parent != nullptr && *parent != '\0' ? parent : "/tmp";
  path = std::filesystem::absolute(path).string() + "/vorlan-run.XXXXXX";
  if (::mkdtemp(path.data()) == nullptr) fail("make", path);
  WorkFolder folder(path);
  folder.lock();
  return folder;
}

WorkFolder::WorkFolder(WorkFolder&& other) noexcept
    : path_(std::move(other.path_)),
      lock_(std::exchange(other.lock_, -1)),
      can_resume_(other.can_resume_),
      is_kept_(std::exchange(other.is_kept_, true)) {}

WorkFolder::~WorkFolder() {
  std::error_code ignored;
  if (!is_kept_) std::filesystem::remove_all(path_, ignored);
  if (lock_ >= 0) ::close(lock_);
}

void WorkFolder::check_that_it_is_ours() const {
  std::error_code error;
  const bool is_new = std::filesystem::is_empty(path_, error) && !error;
  if (!is_new && !std::filesystem::is_regular_file(file(kLock))) {
    throw DataError(path_ + " is in the way: it was not made by vorlan-tools.");
  }
}

// Children inherit the descriptor, hence the lock: a run that was killed holds it until the last of
// its children has ended as well.
void WorkFolder::lock() {
  lock_ = ::open(file(kLock).c_str(), O_RDWR | O_CREAT, 0666);
  if (lock_ < 0) fail("use", path_);
  if (::flock(lock_, LOCK_EX | LOCK_NB) != 0) {
    throw DataError("Another run is at work in " + path_ + ".");
  }
}

void WorkFolder::empty() const {
  for (const auto& entry : std::filesystem::directory_iterator(path_)) {
    if (entry.path().filename() != kLock) std::filesystem::remove_all(entry.path());
  }
}

std::string WorkFolder::settings() const { return read_small_file(file(kSettings)); }

void WorkFolder::set_settings(std::string_view text) const {
  write_small_file(file(kSettings), text);
}

}  // namespace vorlan_tools
