// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Random numbers that are the same with every compiler and library, so that a seed in a message is
// enough to see a failure again.
#ifndef VORLAN_TESTS_DIFFERENTIAL_RANDOM_H_
#define VORLAN_TESTS_DIFFERENTIAL_RANDOM_H_

#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace differential {

// A counter whose values are scrambled (SplitMix64): any seed is good, also 0, 1, 2, ...
class Random {
 public:
  explicit Random(std::uint64_t seed) : counter_(seed) {}

  std::uint64_t next() {
    counter_ += 0x9E3779B97F4A7C15U;
    std::uint64_t x = counter_;
    x = (x ^ (x >> 30U)) * 0xBF58476D1CE4E5B9U;
    x = (x ^ (x >> 27U)) * 0x94D049BB133111EBU;
    return x ^ (x >> 31U);
  }

  // A number from 0 to limit - 1. The remainder favours small numbers by less than limit / 2^64.
  // REQUIRES: limit > 0.
  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(next() % limit); }

  // A number from low to high, both inclusive.
  // REQUIRES: low <= high.
  int between(int low, int high) {
    return low + static_cast<int>(below(static_cast<std::size_t>(high - low) + 1));
  }

  // True in this many of 1000 cases.
  bool per_mille(int share) { return between(0, 999) < share; }
  bool per_cent(int share) { return per_mille(10 * share); }

  template <class T>
  T one_of(std::initializer_list<T> choices) {
    return choices.begin()[below(choices.size())];
  }

 private:
  std::uint64_t counter_;
};

}  // namespace differential

#endif  // VORLAN_TESTS_DIFFERENTIAL_RANDOM_H_
