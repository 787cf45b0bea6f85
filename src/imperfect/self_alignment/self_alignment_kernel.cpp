// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Compiled once for each instruction set, each time into the namespace VORLAN_FILTER_LEVEL. Uses
// nothing but plain loops over registers: an inline function of a library, compiled here for wide
// registers, could be the copy that the linker keeps for the whole program.

#include "imperfect/self_alignment/self_alignment_kernel.h"

namespace vorlan::VORLAN_FILTER_LEVEL {
namespace {

#if defined(__AVX512BW__)
constexpr int kRegister = 64;
#elif defined(__AVX2__)
constexpr int kRegister = 32;
#else
constexpr int kRegister = 16;
#endif

using Scores __attribute__((vector_size(kRegister))) = std::int16_t;

constexpr int kLanes = kRegister / static_cast<int>(sizeof(std::int16_t));
static_assert(kAlignmentGroup % kLanes == 0);

Scores load(const std::int16_t* from) {
  Scores scores;
  __builtin_memcpy(&scores, from, sizeof scores);
  return scores;
}

void store(const Scores& scores, std::int16_t* to) { __builtin_memcpy(to, &scores, sizeof scores); }

Scores larger(const Scores& a, const Scores& b) { return a > b ? a : b; }
Scores smaller(const Scores& a, const Scores& b) { return a < b ? a : b; }

bool any(const Scores& lanes) {
  std::uint64_t words[kRegister / sizeof(std::uint64_t)];
  __builtin_memcpy(words, &lanes, sizeof lanes);
  std::uint64_t all = 0;
  for (const std::uint64_t word : words) all |= word;
  return all != 0;
}

std::uint32_t hits_of_group(const std::int16_t* scores, const std::int16_t* wanted) {
  std::uint32_t hits = 0;
  for (int lane = 0; lane < kAlignmentGroup; ++lane) {
    hits |= static_cast<std::uint32_t>(scores[lane] >= wanted[lane]) << lane;
  }
  return hits;
}

// One antidiagonal. Lane i of the other row is an edit that consumes a unit base away for even k,
// and one that consumes a residue for odd k; the other edit leads to the lane before, or behind.
// The tile is a copy, which no store to a row can change.
template <int kOdd>
void step(const AlignmentTile tile, int j) {
  constexpr std::ptrdiff_t kUnitBase = kOdd;
  constexpr std::ptrdiff_t kResidue = kOdd - 1;
  const AlignmentCosts costs = tile.costs;
  const Scores match = Scores{} + costs.match;
  const Scores mismatch = Scores{} - costs.mismatch;
  std::int16_t* const scores = tile.scores[kOdd];
  const std::int16_t* const other = tile.scores[1 - kOdd];
  const std::int16_t* const left = tile.left + j + kOdd;
  const std::int16_t* const right = tile.right - j;
  for (int group = 0; group < tile.groups; ++group) {
    Scores hits{};
    for (int lane = group * kAlignmentGroup; lane < (group + 1) * kAlignmentGroup; lane += kLanes) {
      const Scores is_match = (load(left + lane) & load(right + lane)) != 0;
      const Scores pair = load(scores + lane) + (is_match ? match : mismatch);
      const Scores deletion = load(other + lane + kUnitBase) - costs.deletion;
      const Scores insertion = load(other + lane + kResidue) - costs.insertion;
      const Scores best = larger(larger(pair, Scores{}), larger(deletion, insertion));
      const Scores kept = smaller(best, load(tile.caps[kOdd] + lane));
      store(kept, scores + lane);
      hits |= kept >= load(tile.wanted[kOdd] + lane);
    }
    if (!any(hits)) continue;
    const int first = group * kAlignmentGroup;
    tile.hits[kOdd][group * kAlignmentSteps + j] =
        hits_of_group(scores + first, tile.wanted[kOdd] + first);
    tile.has_hits[kOdd][group] = 1;
  }
}

}  // namespace

void align_rising(const AlignmentTile& tile) {
  for (int j = 0; j < kAlignmentSteps; ++j) {
    step<0>(tile, j);
    step<1>(tile, j);
  }
}

void align_falling(const AlignmentTile& tile) {
  for (int j = kAlignmentSteps - 1; j >= 0; --j) {
    step<1>(tile, j);
    step<0>(tile, j);
  }
}

}  // namespace vorlan::VORLAN_FILTER_LEVEL
