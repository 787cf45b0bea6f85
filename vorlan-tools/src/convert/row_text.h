// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace vorlan_tools {

/// The text of a row while it is put together from many short pieces: a string whose appending is
/// compiled into the caller, which takes half the time of std::string for such rows. Memory is kept
/// when the text is cleared.
class RowText {
 public:
  bool empty() const { return size_ == 0; }
  std::size_t size() const { return size_; }

  /// Valid until the text changes.
  std::string_view view() const { return {bytes_.data(), size_}; }

  /// Requires a text that is not empty.
  char back() const { return bytes_[size_ - 1]; }

  void clear() { size_ = 0; }

  /// Takes the last `count` bytes away; there must be so many.
  void drop(std::size_t count) { size_ -= count; }

  RowText& operator+=(char byte) {
    *room(1) = byte;
    ++size_;
    return *this;
  }

  RowText& operator+=(std::string_view text) {
    if (!text.empty()) std::memcpy(room(text.size()), text.data(), text.size());
    size_ += text.size();
    return *this;
  }

  /// Most numbers of a row are counts of one digit.
  RowText& append_digits(std::int64_t number) {
    if (number >= 0 && number <= 9) return *this += static_cast<char>('0' + number);
    constexpr std::size_t kMost = 24;
    char* const begin = room(kMost);
    size_ += static_cast<std::size_t>(std::to_chars(begin, begin + kMost, number).ptr - begin);
    return *this;
  }

  /// With blanks in front until there are `width` bytes; from 1 to kWidest.
  RowText& append_padded(std::int64_t number, std::size_t width) {
    char* const begin = room(kWidest);
    std::memset(begin, ' ', kWidest);
    char* at = begin + width;
    auto rest = static_cast<std::uint64_t>(number);
    do {
      *--at = static_cast<char>('0' + rest % 10);
      rest /= 10;
    } while (rest > 0 && at != begin);
    if (rest > 0) [[unlikely]]
      return append_wide(number, width);
    size_ += width;
    return *this;
  }

  static constexpr std::size_t kWidest = 16;

 private:
  /// The end of the text, with room for `count` more bytes.
  char* room(std::size_t count) {
    if (bytes_.size() - size_ < count) [[unlikely]]
      grow(count);
    return bytes_.data() + size_;
  }

  /// The same for what is negative or has more digits than that.
  [[gnu::noinline]] RowText& append_wide(std::int64_t number, std::size_t width) {
    char digits[24];
    const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    const auto count = static_cast<std::size_t>(end - digits);
    for (std::size_t size = count; size < width; ++size) *this += ' ';
    return *this += {digits, count};
  }

  /// Rare, and so kept out of the callers.
  [[gnu::noinline]] void grow(std::size_t count) {
    bytes_.resize(std::max(2 * bytes_.size(), size_ + count));
  }

  std::vector<char> bytes_;
  std::size_t size_ = 0;
};

}  // namespace vorlan_tools
