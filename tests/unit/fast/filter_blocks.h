// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "search/start_block.h"

namespace vorlan {

/// One bit for each start of a sequence, in whole blocks.
using StartBits = std::vector<std::uint64_t>;

inline bool has_start(const StartBits& bits, std::size_t start) {
  return (bits[start / 64] >> start % 64 & 1) != 0;
}

inline void add_start(StartBits& bits, std::size_t start) {
  bits[start / 64] |= std::uint64_t{1} << start % 64;
}

inline std::size_t count_starts(const StartBits& bits) {
  std::size_t count = 0;
  for (const std::uint64_t word : bits) count += static_cast<std::size_t>(std::popcount(word));
  return count;
}

/// No starts, with room for those of `length` residues.
inline StartBits no_starts(std::size_t length) {
  const std::size_t blocks = length / static_cast<std::size_t>(StartBlock::kStarts) + 1;
  return StartBits(blocks * StartBlock::kWords, 0);
}

/// The starts of units of `unit_length` bases: a base follows the unit.
inline StartBits all_starts(std::size_t length, std::size_t unit_length) {
  StartBits bits = no_starts(length);
  for (std::size_t start = 0; start + unit_length < length; ++start) add_start(bits, start);
  return bits;
}

/// What `filter` leaves of `starts`, block by block.
template <class Filter>
StartBits survivors(Filter& filter, StartBits starts) {
  for (std::size_t word = 0; word < starts.size(); word += StartBlock::kWords) {
    filter.keep_survivors(static_cast<std::ptrdiff_t>(word), starts.data() + word);
  }
  return starts;
}

}  // namespace vorlan
