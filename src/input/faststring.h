// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace vorlan {

/// A growable byte buffer: headers, names and residues. Not 0-terminated unless `terminate` was
/// called. Sizes are 32-bit; a string that would need more than 4,294,967,295 bytes, and any
/// allocation that fails, throws std::bad_alloc and leaves the content as it was.
class faststring {
 public:
  faststring() = default;
  ~faststring();
  faststring(const faststring&) = delete;
  faststring& operator=(const faststring&) = delete;

  /// Appends one byte. Grows by doubling from 4. Amortised constant time.
  void push_back(char c) {
    if (size == capacity) grow();
    buf[size++] = c;
  }

  /// Appends `text`; grows like so many calls of push_back. Requires that `text` does not point
  /// into this string.
  void append(std::string_view text) {
    while (capacity - size < text.size()) grow();
    if (!text.empty()) std::memcpy(buf + size, text.data(), text.size());
    size += static_cast<std::uint32_t>(text.size());
  }

  /// Makes the capacity at least `wanted` bytes (exactly that when it has to grow).
  void reserve(std::uint32_t wanted);

  /// Replaces the content; grows the capacity to exactly `text.size() + 1` when it is smaller.
  /// Requires that `text` does not point into this string.
  void assign(std::string_view text);

  /// Writes a 0 byte after the last byte without changing `size`, and returns `buf` as a C string
  /// that is valid until the next change. A full buffer grows to exactly `size + 1`.
  const char* terminate();

  /// The content. Valid until the next change.
  std::string_view view() const { return {buf, size}; }

  char* buf = nullptr;  ///< From malloc; null while nothing is allocated.
  std::uint32_t size = 0;
  std::uint32_t capacity = 0;

 private:
  void grow();
};

}  // namespace vorlan
