// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "io/line_reader.h"

#include <htslib/bgzf.h>

#include <string_view>

#include "errors.h"
#include "io/open_input.h"

namespace vorlan_tools {

namespace {

constexpr std::size_t kBufferSize = std::size_t{256} * 1024;

/// In counters of one byte, which are compiled into 16 at once.
std::uint64_t count_line_feeds(std::string_view text) {
  std::uint64_t count = 0;
  while (!text.empty()) {
    const std::string_view part = text.substr(0, UINT8_MAX);
    std::uint8_t count_of_part = 0;
    for (const char c : part) {
      count_of_part = static_cast<std::uint8_t>(count_of_part + (c == '\n' ? 1 : 0));
    }
    count += count_of_part;
    text.remove_prefix(part.size());
  }
  return count;
}

/// Where in `text` a line begins with `first`; the line at its beginning is left out.
std::size_t find_line_with(char first, std::string_view text) {
  std::size_t at = text.find(first, 1);
  while (at != std::string_view::npos && text[at - 1] != '\n') at = text.find(first, at + 1);
  return at;
}

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
  const ssize_t count = read_input(file_, buffer_.data() + end_, buffer_.size() - end_);
  if (count < 0) throw DataError("Cannot read " + name_ + ": the file is damaged or cut short.");
  if (count == 0) at_end_ = true;
  end_ += static_cast<std::size_t>(count);
  return count > 0;
}

/// Behind the first `searched` bytes, which are all that the buffer holds.
bool LineReader::find_line_end_behind(std::size_t searched) {
  while (refill()) {
    const std::string_view text(buffer_.data() + begin_, end_ - begin_);
    const std::size_t found = text.find('\n', searched);
    if (found != std::string_view::npos) {
      line_end_ = begin_ + found;
      return true;
    }
    searched = text.size();
  }
  line_end_ = end_;
  return end_ > begin_;
}

void LineReader::pass_lines(std::size_t size) {
  line_number_ += count_line_feeds({buffer_.data() + begin_, size});
  bytes_delivered_ += size;
  begin_ += size;
}

bool LineReader::skip_to(char first) {
  for (;;) {
    const std::string_view text(buffer_.data() + begin_, end_ - begin_);
    if (text.substr(0, 1) == std::string_view(&first, 1)) return true;
    const std::size_t found = find_line_with(first, text);
    if (found != std::string_view::npos) {
      pass_lines(found);
      return true;
    }
    pass_lines(text.rfind('\n') + 1);
    if (!refill()) {
      line_number_ += begin_ < end_ ? 1 : 0;
      pass_lines(end_ - begin_);
      return false;
    }
  }
}

}  // namespace vorlan_tools
