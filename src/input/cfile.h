// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string_view>

namespace vorlan {

/// The input file, read one character at a time: every kind of line end (LF, CR LF, lone CR) is
/// delivered as one '\n', lines are counted for error messages, and one character can be put back.
///
/// States: `good` alone is normal; `eof` with `fail` means the end was reached; `fail` without
/// `eof` means an error (the file did not open, a put-back was impossible, or the FASTA reader
/// found the text malformed). Errors of the underlying stream show up as an early end of the file.
/// Writes no messages.
class CFile : public std::ifstream {
 public:
  CFile();

  /// Opens `name` and forgets all earlier state. On failure `fail()` is set and `good()` is not.
  void open(const char* name);

  /// The next character, or 0 when the end of the file is reached. Bytes from 128 up are negative.
  char getchar() {
    if (read_pos == buffer_end && !refill_and_check()) return 0;
    const char ch = *read_pos++;
    return ch > '\r' ? ch : normalised(ch);
  }

  /// The next characters, as far as they were read from the disk, and as they stand in the file:
  /// line ends are not normalised. Valid until the next call.
  std::string_view buffered() const {
    return {read_pos, static_cast<std::size_t>(buffer_end - read_pos)};
  }

  /// Consumes the next `count` characters. Requires that they are `buffered` and no line ends.
  void skip(std::size_t count) { read_pos += count; }

  /// Puts the character delivered last back; works once. At the very start of the buffer there is
  /// none: then sets `fail`.
  void ungetchar();

  /// The next character without consuming it.
  char peekchar();

  /// Whether the record that begins with the next character has at most `longest` bytes and can be
  /// read to its end, with the '>' of another behind it, without waiting for more input. Cost:
  /// linear in the length of the record, or `longest`.
  bool holds_record(std::size_t longest) const;

  bool eof() const { return (state & kEof) != 0; }
  bool good() const { return (state & kGood) != 0; }
  bool fail() const { return (state & kFail) != 0; }

  /// Number of the line, counted from 1, that the next character belongs to.
  std::uint32_t line_number() const { return line; }

  /// Declares the text malformed: `fail` alone, so that it is not taken for the end of the file.
  void set_malformed() { state = kFail; }

  /// Takes `fail` back after the end of the file was met in a place where it is allowed.
  void clear_fail() { state = static_cast<std::uint8_t>(state & ~kFail); }

 private:
  static constexpr std::uint8_t kEof = 1;
  static constexpr std::uint8_t kGood = 2;
  static constexpr std::uint8_t kFail = 4;
  static constexpr std::size_t kBufferSize = 1'000'000;

  void refill();
  bool refill_and_check();
  char normalised(char ch);

  std::unique_ptr<char[]> buffer;
  char* buffer_end;
  char* read_pos;
  std::uint8_t state = 0;
  std::uint32_t line = 1;
};

}  // namespace vorlan
