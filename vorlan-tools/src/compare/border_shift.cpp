// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Where a border of a repeat lies in another report of the same place.
//
// A changed base beside a repeat can lengthen or shorten it by some bases, which is no change of
// its length in copies. So lengths are taken between points that both have: the flank of the first
// locus is laid on what stands around the border of the second one, without gaps, at each distance:
//
//     first    ..GATTACAG|CACACA..        second   ..GATTACA|CACACACA..    (G became C)
//     outwards    GACATTAG                outwards     ACATTAG, inwards CACACA
//     laid at 0: 2 of 8 fit; laid at -1, one base into the repeat, 7 of 8 fit: the shift is -1
//
// 0 wins if the ten bases next to the border fit; else the distance that fits best, the shorter one
// of two that fit alike.

#include "compare/border_shift.h"

#include <algorithm>

#include "fasta/other_strand.h"

namespace vorlan_tools {

namespace {

/// Bases in which the flank and the place differ, over so many that were compared.
struct Fit {
  std::int64_t compared = 0;
  std::int64_t differing = 0;

  bool is_better_than(const Fit& other) const {
    return differing * other.compared < other.differing * compared;
  }
};

Fit fit_at(const std::string& flank, const std::string& outside, const std::string& inside,
           std::int64_t shift) {
  const auto inside_size = static_cast<std::int64_t>(inside.size());
  const std::int64_t begin = std::max<std::int64_t>(0, -inside_size - shift);
  const auto end = std::min(static_cast<std::int64_t>(flank.size()),
                            static_cast<std::int64_t>(outside.size()) - shift);
  Fit fit;
  for (std::int64_t k = begin; k < end; ++k) {
    const std::int64_t place = k + shift;
    const char base = place >= 0 ? outside[static_cast<std::size_t>(place)]
                                 : inside[static_cast<std::size_t>(-1 - place)];
    ++fit.compared;
    if (base != flank[static_cast<std::size_t>(k)]) ++fit.differing;
  }
  return fit;
}

/// Whether the bases next to the border are the same, one change allowed. What is different further
/// away, such as a neighbour that has become longer, does not matter then.
bool fits_beside_border(const std::string& flank, const std::string& outside) {
  constexpr std::size_t kBeside = 10;
  if (outside.size() < kBeside || flank.size() < kBeside) return flank == outside;
  std::size_t differing = 0;
  for (std::size_t k = 0; k < kBeside; ++k) differing += flank[k] == outside[k] ? 0 : 1;
  return differing <= 1;
}

}  // namespace

BorderView view_borders(const ComparedLocus& locus, bool is_reverse, std::size_t reach) {
  const std::size_t inside = std::min(reach, locus.bases.size());
  BorderView view;
  view.left_outside.assign(locus.left.rbegin(), locus.left.rend());
  view.left_inside = locus.bases.substr(0, inside);
  view.right_outside = locus.right;
  view.right_inside.assign(locus.bases.rbegin(),
                           locus.bases.rbegin() + static_cast<std::ptrdiff_t>(inside));
  if (!is_reverse) return view;
  // Turned round, what was read outwards to the right is read outwards to the left.
  const auto complement = [](const std::string& bases) {
    const std::string turned = other_strand(bases);
    return std::string(turned.rbegin(), turned.rend());
  };
  return {complement(view.right_outside), complement(view.right_inside),
          complement(view.left_outside), complement(view.left_inside)};
}

std::optional<BorderShift> border_shift(const std::string& flank, const std::string& outside,
                                        const std::string& inside) {
  constexpr std::int64_t kDiffering = 4;          // one of four
  constexpr std::int64_t kDifferingCertain = 10;  // one of ten
  const auto size = static_cast<std::int64_t>(flank.size());
  const std::int64_t least = (3 * size + 4) / 5;
  if (size == 0) return std::nullopt;
  if (fits_beside_border(flank, outside)) return BorderShift{0, true};
  std::optional<BorderShift> best;
  Fit best_fit;
  for (std::int64_t step = 0; step <= size; ++step) {
    for (const std::int64_t shift : {-step, step}) {
      const Fit fit = fit_at(flank, outside, inside, shift);
      if (fit.compared < least || kDiffering * fit.differing > fit.compared) continue;
      if (best && !fit.is_better_than(best_fit)) continue;
      const bool is_long = 5 * fit.compared >= 4 * size;
      best = BorderShift{shift, is_long && kDifferingCertain * fit.differing <= fit.compared};
      best_fit = fit;
    }
  }
  return best;
}

bool fits_elsewhere(const std::string& flank, const std::string& outside, const std::string& inside,
                    std::int64_t shift, std::int64_t instead) {
  const auto size = static_cast<std::int64_t>(flank.size());
  const Fit fit = fit_at(flank, outside, inside, shift);
  const Fit other = fit_at(flank, outside, inside, instead);
  if (fit.differing == 0 || 5 * other.compared < 3 * size) return false;
  return !fit.is_better_than(other);
}

}  // namespace vorlan_tools
