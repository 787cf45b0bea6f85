// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <random>

namespace vorlan_tools {

/// The same numbers for the same seed and stream on every machine: the library's distributions are
/// not, its engine and seed sequence are.
class RandomNumbers {
 public:
  RandomNumbers(std::uint64_t seed, std::uint64_t stream) : engine_(engine_of(seed, stream)) {}

  /// Uniform from 0 to bound - 1; bound is at least 1.
  std::uint64_t below(std::uint64_t bound) {
    const std::uint64_t limit = UINT64_MAX - UINT64_MAX % bound;
    std::uint64_t number = engine_();
    while (number >= limit) number = engine_();
    return number % bound;
  }

 private:
  static std::mt19937_64 engine_of(std::uint64_t seed, std::uint64_t stream) {
    const auto low = [](std::uint64_t x) { return static_cast<std::uint32_t>(x); };
    std::seed_seq sequence{low(seed), low(seed >> 32U), low(stream), low(stream >> 32U)};
    return std::mt19937_64(sequence);
  }

  std::mt19937_64 engine_;
};

}  // namespace vorlan_tools
