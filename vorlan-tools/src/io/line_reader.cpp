// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "io/line_reader.h"

#include <htslib/bgzf.h>

#include <cstring>

#include "errors.h"
#include "io/open_input.h"

namespace vorlan_tools {

namespace {

constexpr std::size_t kBufferSize = std::size_t{256} * 1024;

}  // namespace

LineReader::LineReader(const std::string& name)
    : name_(shown_input_name(name)), file_(open_input(name)), buffer_(kBufferSize) {}

LineReader::LineReader(int descriptor, const std::string& name)
    : name_(name), file_(open_input(descriptor, name)), buffer_(kBufferSize) {}

LineReader::~LineReader() { bgzf_close(file_); }

bool LineReader::refill() {
  if (at_end_) return false;
  if (begin_ > 0) {
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
  }
  if (end_ == buffer_.size()) buffer_.resize(2 * buffer_.size());
  const ssize_t count = bgzf_read(file_, buffer_.data() + end_, buffer_.size() - end_);
  if (count < 0) throw DataError("Cannot read " + name_ + ": the file is damaged or cut short.");
  if (count == 0) at_end_ = true;
  end_ += static_cast<std::size_t>(count);
  return count > 0;
}

bool LineReader::find_line_end() {
  std::size_t searched = begin_;
  for (;;) {
    const void* found =
        end_ > searched ? std::memchr(buffer_.data() + searched, '\n', end_ - searched) : nullptr;
    if (found != nullptr) {
      line_end_ = static_cast<std::size_t>(static_cast<const char*>(found) - buffer_.data());
      return true;
    }
    const std::size_t length = end_ - begin_;
    if (!refill()) {
      line_end_ = end_;
      return end_ > begin_;
    }
    searched = begin_ + length;
  }
}

bool LineReader::peek(std::string_view& line) {
  if (!find_line_end()) return false;
  line = {buffer_.data() + begin_, line_end_ - begin_};
  return true;
}

bool LineReader::next(std::string_view& line) {
  if (!peek(line)) return false;
  line_was_ended_ = line_end_ < end_;
  begin_ = line_end_ + (line_was_ended_ ? 1 : 0);
  bytes_delivered_ += line.size() + (line_was_ended_ ? 1 : 0);
  ++line_number_;
  return true;
}

}  // namespace vorlan_tools
