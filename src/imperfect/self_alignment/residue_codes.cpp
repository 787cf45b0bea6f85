// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/self_alignment/residue_codes.h"

namespace vorlan {
namespace {

constexpr std::int16_t kMatchesNothing = 0;
constexpr std::int16_t kMatchesAll = 15;

/// Longer limits are not looked for: then every N counts as bridged, which is on the safe side.
constexpr std::ptrdiff_t kLongestCounted = 1'000;

}  // namespace

std::int16_t ResidueCodes::operator[](std::ptrdiff_t position) const {
  if (position < 0) return kMatchesNothing;
  const auto offset = static_cast<std::size_t>(position);
  if (offset >= residues_.size()) return kMatchesNothing;
  switch (residues_[offset]) {
    case 'A':
      return 1;
    case 'C':
      return 2;
    case 'G':
      return 4;
    case 'T':
      return 8;
    default:
      return is_bridged(offset) ? kMatchesAll : kMatchesNothing;
  }
}

// An extension meets an N run at one of its ends, never inside: a unit holds no N, and where an N
// is due, no edit is tried.
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
