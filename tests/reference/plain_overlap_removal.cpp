// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Removal of one of any two mostly overlapping repeats.
//
// Idea: each repeat is compared with those that follow it until one begins at or after its end.
// When less than one whole unit of either lies outside the overlap, the lower score goes, on equal
// scores the later one, whichever of the two is the hidden one.
//
// Example: [0,12) and [8,12), both of unit length 2, with scores 10 and 2. The overlap is 4; all of
// the second lies in it (4 < 4 + 2), so one of the two goes: the second, which has the lower score.

#include <algorithm>
#include <iterator>
#include <list>
#include <utility>

#include "plain_search.h"

namespace reference {
namespace {

bool mostly_hidden(const Repeat& repeat, std::size_t overlap) {
  return repeat.end - repeat.begin < overlap + (repeat.unit_end - repeat.unit_begin);
}

}  // namespace

std::vector<Repeat> without_hidden(std::vector<Repeat> repeats, const Settings& settings) {
  if (!settings.remove_mostly_hidden) return repeats;
  std::list<Repeat> kept(repeats.begin(), repeats.end());
  auto a = kept.begin();
  while (a != kept.end()) {
    bool removed_a = false;
    auto b = std::next(a);
    while (b != kept.end() && a->end > b->begin) {
      const std::size_t overlap = std::min(a->end, b->end) - b->begin;
      if (overlap == 0) break;
      if (!mostly_hidden(*a, overlap) && !mostly_hidden(*b, overlap)) {
        ++b;
      } else if (a->score < b->score) {
        a = kept.erase(a);
        removed_a = true;
        break;
      } else {
        b = kept.erase(b);
      }
    }
    if (!removed_a) ++a;
  }
  return {kept.begin(), kept.end()};
}

}  // namespace reference
