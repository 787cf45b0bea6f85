// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <new>
#include <type_traits>

namespace vorlan {

/// A growable array of plain elements that keeps its memory when it is emptied, so that records
/// which are used again and again do not allocate. Grows by doubling from 4.
///
/// A failed first allocation throws std::bad_alloc. A failed growth ends the process with a message
/// on standard output and status 0; both are deliberate: the bytes and the status are fixed.
template <typename T>
class fastvector {
  static_assert(std::is_trivially_copy_constructible_v<T> && std::is_trivially_destructible_v<T>,
                "elements are moved by realloc");

 public:
  fastvector() = default;
  ~fastvector() { std::free(buf); }
  fastvector(const fastvector&) = delete;
  fastvector& operator=(const fastvector&) = delete;

  /// Appends a copy of `x`. Amortised constant time.
  void push_back(const T& x) {
    if (size == capacity) grow();
    buf[size++] = x;
  }

  /// Empties it and gives its memory back.
  void release() {
    std::free(buf);
    buf = nullptr;
    size = capacity = 0;
  }

  T* begin() { return buf; }
  T* end() { return buf + size; }
  const T* begin() const { return buf; }
  const T* end() const { return buf + size; }

  T* buf = nullptr;  ///< From malloc; null while nothing is allocated.
  std::uint32_t size = 0;
  std::uint32_t capacity = 0;

 private:
  static constexpr std::uint32_t kFirstCapacity = 4;

  void grow() {
    const bool first = buf == nullptr;
    const std::uint64_t wanted = first ? kFirstCapacity : std::uint64_t{capacity} * 2;
    T* grown = wanted > std::numeric_limits<std::uint32_t>::max()
                   ? nullptr
                   : static_cast<T*>(std::realloc(static_cast<void*>(buf), wanted * sizeof(T)));
    if (grown == nullptr && first) throw std::bad_alloc();
    if (grown == nullptr) {
      std::puts("Program aborded due to failed realloc!");
      std::exit(EXIT_SUCCESS);
    }
    buf = grown;
    capacity = static_cast<std::uint32_t>(wanted);
  }
};

}  // namespace vorlan
