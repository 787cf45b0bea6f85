// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "input/cfile.h"

#include <algorithm>
#include <string_view>

namespace vorlan {

CFile::CFile()
    : buffer(std::make_unique_for_overwrite<char[]>(kBufferSize)),
      buffer_end(buffer.get()),
      read_pos(buffer.get()) {}

void CFile::open(const char* name) {
  state = kGood;
  std::ifstream::open(name, std::ios::in | std::ios::binary);
  if (std::ifstream::fail()) state = kFail;
  line = 1;
  read_pos = buffer_end = buffer.get();
}

// Keeps the last delivered character at the front, so that it can be put back right after a refill.
void CFile::refill() {
  char* begin = buffer.get();
  if (read_pos != begin) *begin++ = read_pos[-1];
  const auto room = static_cast<std::streamsize>(kBufferSize) - (begin - buffer.get());
  read(begin, room);
  read_pos = begin;
  buffer_end = begin + gcount();
  if (read_pos == buffer_end) state = static_cast<std::uint8_t>((state & ~kGood) | kEof | kFail);
}

bool CFile::refill_and_check() {
  refill();
  return !fail();
}

// Once the file has failed, line ends are neither converted nor counted: the line number then
// stays that of the character that was malformed.
char CFile::normalised(char ch) {
  if (fail()) return ch;
  if (ch == '\r') {
    read_pos[-1] = ch = '\n';
    if (read_pos == buffer_end) refill();
    if (read_pos != buffer_end && *read_pos == '\n') ++read_pos;
  }
  if (ch == '\n') ++line;
  return ch;
}

void CFile::ungetchar() {
  if (read_pos == buffer.get()) {
    state = static_cast<std::uint8_t>((state & ~kGood) | kFail);
    return;
  }
  if (!fail() && read_pos[-1] == '\n') --line;
  --read_pos;
}

bool CFile::holds_record(std::size_t longest) const {
  const auto held = static_cast<std::size_t>(buffer_end - read_pos);
  const std::string_view text(read_pos, std::min(held, longest + 1));
  for (std::size_t at = 1; (at = text.find('>', at)) != std::string_view::npos; ++at) {
    if (text[at - 1] == '\n' || text[at - 1] == '\r') return true;
  }
  return false;
}

char CFile::peekchar() {
  const char ch = getchar();
  ungetchar();
  return ch;
}

}  // namespace vorlan
