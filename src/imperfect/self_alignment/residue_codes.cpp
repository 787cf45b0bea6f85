// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/self_alignment/residue_codes.h"

#include <algorithm>
#include <array>

namespace vorlan {
namespace {

constexpr std::int16_t kMatchesNothing = 0;
constexpr std::int16_t kMatchesAll = 15;

constexpr std::array<std::int16_t, 256> codes() {
  std::array<std::int16_t, 256> codes{};
  codes['A'] = 1;
  codes['C'] = 2;
  codes['G'] = 4;
  codes['T'] = 8;
  codes['N'] = kMatchesAll;
  return codes;
}

/// A table, since no branch can foresee the next base.
constexpr std::array<std::int16_t, 256> kCodes = codes();

/// Longer limits are not looked for: then every N counts as bridged, which is on the safe side.
constexpr std::ptrdiff_t kLongestCounted = 1'000;

}  // namespace

void ResidueCodes::read(std::ptrdiff_t first, std::span<std::int16_t> codes) const {
  const auto size = static_cast<std::ptrdiff_t>(residues_.size());
  const auto count = static_cast<std::ptrdiff_t>(codes.size());
  const std::ptrdiff_t begin = std::clamp<std::ptrdiff_t>(-first, 0, count);
  const std::ptrdiff_t end = std::clamp<std::ptrdiff_t>(size - first, begin, count);
  const auto code = [&](std::ptrdiff_t i) -> std::int16_t& {
    return codes[static_cast<std::size_t>(i)];
  };
  for (std::ptrdiff_t i = 0; i < begin; ++i) code(i) = kMatchesNothing;
  for (std::ptrdiff_t i = begin; i < end; ++i) {
    const auto offset = static_cast<std::size_t>(first + i);
    code(i) = kCodes[static_cast<unsigned char>(residues_[offset])];
    if (code(i) == kMatchesAll && !is_bridged(offset)) code(i) = kMatchesNothing;
  }
  for (std::ptrdiff_t i = end; i < count; ++i) code(i) = kMatchesNothing;
}

bool ResidueCodes::is_bridged(std::size_t position) const {
  if (longest_N_run_ == 0 || longest_N_run_ > kLongestCounted) return longest_N_run_ != 0;
  std::ptrdiff_t length = 1;
  for (std::size_t i = position; i > 0 && residues_[i - 1] == 'N'; --i) {
    if (++length > longest_N_run_) return false;
  }
  for (std::size_t i = position + 1; i < residues_.size() && residues_[i] == 'N'; ++i) {
    if (++length > longest_N_run_) return false;
  }
  return true;
}

}  // namespace vorlan
