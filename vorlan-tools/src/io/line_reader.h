// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

struct BGZF;

namespace vorlan_tools {

/// The lines of a file, plain or compressed with gzip or bgzip, told apart by content.
///
/// A line is any bytes up to a line feed; a carriage return stays part of it. The last line may
/// lack its line feed. Memory: one buffer of 256 kB, or of the longest line.
class LineReader {
 public:
  /// Opens `name`; "-" is standard input. Throws DataError if that fails.
  explicit LineReader(const std::string& name);

  /// Reads from `descriptor`, which this object closes; `name` is for messages.
  LineReader(int descriptor, const std::string& name);
  ~LineReader();
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

  /// Moves on to the next line, without its line feed, and returns false behind the last one. The
  /// view is valid until the next call. Throws DataError if the input cannot be read or
  /// decompressed.
  bool next(std::string_view& line) {
    if (!peek(line)) return false;
    line_was_ended_ = line_end_ < end_;
    const std::size_t size = line.size() + (line_was_ended_ ? 1 : 0);
    begin_ += size;
    bytes_delivered_ += size;
    ++line_number_;
    return true;
  }

  /// Moves on to the next line that begins with `first`, so that next() will deliver that one.
  /// False if there is none; then nothing is left. Many times faster than to take the lines in
  /// between.
  bool skip_to(char first);

  /// The line that the following call of next() will deliver, left in place. False behind the last
  /// line.
  bool peek(std::string_view& line) {
    if (!find_line_end()) return false;
    line = {buffer_.data() + begin_, line_end_ - begin_};
    return true;
  }

  /// Number of the line that next() delivered last, from 1; 0 before the first.
  std::uint64_t line_number() const { return line_number_; }

  /// Whether the line that next() delivered last ended in a line feed.
  bool line_was_ended() const { return line_was_ended_; }

  /// The name as given, or "standard input", for messages.
  const std::string& name() const { return name_; }

  /// Bytes of text, decompressed, that next() has delivered, line feeds included.
  std::uint64_t bytes_delivered() const { return bytes_delivered_; }

 private:
  /// The end of the line that begins at begin_: its line feed, or end_ for a last line without one.
  /// False if nothing is left.
  bool find_line_end() {
    const void* const found = std::memchr(buffer_.data() + begin_, '\n', end_ - begin_);
    if (found == nullptr) [[unlikely]]
      return find_line_end_behind(end_ - begin_);
    line_end_ = static_cast<std::size_t>(static_cast<const char*>(found) - buffer_.data());
    return true;
  }
  bool find_line_end_behind(std::size_t searched);
  void pass_lines(std::size_t size);
  bool refill();

  std::string name_;
  BGZF* file_;
  std::vector<char> buffer_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::size_t line_end_ = 0;
  bool at_end_ = false;
  std::uint64_t line_number_ = 0;
  std::uint64_t bytes_delivered_ = 0;
  bool line_was_ended_ = true;
};

}  // namespace vorlan_tools
