// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/input_text.h"

#include <fcntl.h>
#include <htslib/bgzf.h>
#include <htslib/hfile.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "errors.h"

namespace vorlan_tools {

namespace {

constexpr std::size_t kBlockSize = std::size_t{1024} * 1024;

/// What bgzf_compression says of a file in the blocks of bgzip.
constexpr int kIsBgzip = 2;

}  // namespace

InputText::InputText(const std::string& name, int stop)
    : name_(name == "-" ? "standard input" : name), stop_(stop), buffer_(kBlockSize + 1) {
  descriptor_ = name == "-" ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                            : ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor_ < 0) throw DataError("Cannot open " + name_ + ": " + std::strerror(errno) + ".");
  struct stat status {};
  if (::fstat(descriptor_, &status) == 0) {
    waits_ = !S_ISREG(status.st_mode);
    if (!waits_) size_ = status.st_size;
    at_end_ = S_ISDIR(status.st_mode);
  }
  if (at_end_) return;
  at_end_ = !may_read();
  if (at_end_) return;
  file_ = bgzf_dopen(descriptor_, "r");
  if (file_ == nullptr) {
    ::close(descriptor_);
    throw DataError("Cannot read " + name_ + ".");
  }
}

InputText::~InputText() {
  if (file_ != nullptr) {
    bgzf_close(file_);
  } else {
    ::close(descriptor_);
  }
}

// Bytes may also be waiting in the buffers of the library; then this waits for more than it needs,
// which delays but loses nothing.
bool InputText::may_read() const {
  if (!waits_) return true;
  pollfd events[] = {{descriptor_, POLLIN, 0}, {stop_, POLLIN, 0}};
  while (::poll(events, 2, -1) < 0 && errno == EINTR) {
  }
  return (events[1].revents & POLLIN) == 0;
}

void InputText::read_more() {
  // Only the byte that tells whether a '>' is the last of all is read singly.
  const std::size_t wanted = filled_ == 0 ? kBlockSize : 1;
  const ssize_t count = may_read() ? bgzf_read(file_, buffer_.data() + filled_, wanted) : 0;
  if (count < 0) throw DataError("Cannot read " + name_ + ": the file is damaged or cut short.");
  filled_ += static_cast<std::size_t>(count);
  at_end_ = count == 0;
  if (at_end_ && bgzf_compression(file_) == kIsBgzip && file_->last_block_eof == 0) {
    throw DataError("Cannot read " + name_ + ": the file is cut short.");
  }
}

std::string_view InputText::next() {
  filled_ = 0;
  while (!at_end_ && (filled_ == 0 || (buffer_[filled_ - 1] == '>' && filled_ < buffer_.size()))) {
    read_more();
  }
  delivered_ += filled_;
  return {buffer_.data(), filled_};
}

std::optional<double> InputText::share_used(std::size_t unused) const {
  if (size_ == 0 || delivered_ == 0) return std::nullopt;
  const double read = static_cast<double>(htell(file_->fp)) / static_cast<double>(size_);
  return read * static_cast<double>(delivered_ - unused) / static_cast<double>(delivered_);
}

}  // namespace vorlan_tools
