// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Overlap removal: of two repeats of which one is mostly hidden by the other, one goes.
//
// A repeat is mostly hidden by another when less than one whole unit of it lies outside the
// overlap. Which of the two goes is decided by the score alone, not by which one is hidden: the
// lower score, or on equal scores the later one. Deliberate, and so is that the scan never turns
// back: when a record goes that later ones were compared with, earlier ones are not looked at
// again.
//
// Example: [100, 160) with unit 2 and [110, 150) with unit 4 overlap by 40 bases; 40 < 40 + 4, so
// the second is mostly hidden. If it has the higher score, the first goes although it is longer.
// [100, 160) with unit 2 and [150, 190) with unit 3 overlap by 10 bases only: 60 >= 10 + 2 and
// 40 >= 10 + 3, so neither is mostly hidden, and both stay.

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "config/settings.h"
#include "search/csearchcontroller.h"

namespace vorlan {
namespace {

// Lengths are compared as unsigned 32-bit values.
bool is_mostly_hidden(const Csat& sat, std::uint32_t overlap) {
  return static_cast<std::uint32_t>(sat.pos_right - sat.pos_left) < overlap + sat.unit_length();
}

void remove_mostly_hidden(CsatContainer& sats) {
  auto a = sats.begin();
  while (a != sats.end()) {
    bool a_was_removed = false;
    for (auto b = std::next(a); b != sats.end();) {
      const Csat& first = **a;
      const Csat& second = **b;
      // The list is sorted by start: no later record overlaps a either.
      if (first.pos_right <= second.pos_left) break;
      const auto overlap =
          static_cast<std::uint32_t>(std::min(first.pos_right, second.pos_right) - second.pos_left);
      if (!is_mostly_hidden(first, overlap) && !is_mostly_hidden(second, overlap)) {
        ++b;
      } else if (first.score < second.score) {
        a = sats.recycle(a);
        a_was_removed = true;
        break;
      } else {
        b = sats.recycle(b);
      }
    }
    if (!a_was_removed) ++a;
  }
}

}  // namespace

void CSearchController::remove_hidden(CsatContainer& sats) {
  if (global_remove_mostly_hidden) remove_mostly_hidden(sats);
}

}  // namespace vorlan
