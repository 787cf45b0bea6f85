// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The bytes of an input, taken one after the other to choose something.
//
// Every choice costs one byte, whatever its outcome, so that a change of one byte changes one
// choice. Behind the last byte stand zeros, which choose what comes first: a short input is a plain
// one.
#ifndef VORLAN_TESTS_FUZZ_INPUT_BYTES_H_
#define VORLAN_TESTS_FUZZ_INPUT_BYTES_H_

#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace fuzz {

class InputBytes {
 public:
  InputBytes(const std::uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}

  bool empty() const { return next_ == end_; }

  unsigned byte() { return empty() ? 0U : *next_++; }

  // A number from 0 to limit - 1; the first byte values first.
  // REQUIRES: limit > 0.
  unsigned below(unsigned limit) { return byte() % limit; }

  bool flag() { return below(2) == 1; }

  template <class T>
  T one_of(std::initializer_list<T> choices) {
    return choices.begin()[below(static_cast<unsigned>(choices.size()))];
  }

 private:
  const std::uint8_t* next_;
  const std::uint8_t* end_;
};

}  // namespace fuzz

#endif  // VORLAN_TESTS_FUZZ_INPUT_BYTES_H_
