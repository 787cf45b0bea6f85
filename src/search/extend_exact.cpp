// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Extend-exact mode: perfect seeds are found and each is extended over edits.
//
// The seeds of a sequence would need more memory than all else, a seed in every dozen residues of
// background, and nearly none is accepted. So each is extended when it is found. The order of the
// results must not show that: on equal spans they come in the order of their sorted seeds.
//
// Example, unit length 2, default settings: ACACACTCACACAC has the perfect stretches ACACAC and
// CACACAC, with scores of 4 and 5. Neither reaches the user's 6, so no marks are closed, and each
// of the five starts in either is a seed. All are extended to the whole sequence, with a mismatch
// at T: 4 - 5 + 7 = 6. The repeat is recorded ten times, and overlap removal keeps the first.
// ACACGT has no seed: ACAC scores 2.
//
// The extension is handed in: search/ does not depend on imperfect/.

#include <algorithm>
#include <iterator>
#include <tuple>
#include <vector>

#include "search/csearchcontroller.h"

namespace vorlan {
namespace {

/// A result and the span of the seed that it was extended from.
struct ExtendedSeed {
  std::list<Csat*>::iterator result;
  const char* seed_left;
  const char* seed_right;

  auto order() const {
    return std::tuple((*result)->pos_left, (*result)->pos_right, seed_left, seed_right);
  }
};

}  // namespace

void CSearchController::extend_seeds(const BitPlanes& planes, const ExtendSeed& extend) {
  console_.announce("  Searching for exact repeats.\n");
  std::vector<ExtendedSeed> extended;
  minScores = &*minScores_intern;
  minLengths = &*minLengths_intern;
  find_perfect_repeats(planes, [&](SpareSat& spare, Csat& sat) {
    const char* const seed_left = sat.pos_left;
    const char* const seed_right = sat.pos_right;
    if (!extend(sat)) return;
    spare.move_to(imperfect_sats);
    extended.push_back({std::prev(imperfect_sats.end()), seed_left, seed_right});
  });
  minScores = &*minScores_user;
  minLengths = &*minLengths_user;

  console_.announce("  Extend exact to imperfect repeats.\n");
  std::stable_sort(
      extended.begin(), extended.end(),
      [](const ExtendedSeed& a, const ExtendedSeed& b) { return a.order() < b.order(); });
  for (const ExtendedSeed& seed : extended) {
    imperfect_sats.splice(imperfect_sats.end(), imperfect_sats, seed.result);
  }
}

}  // namespace vorlan
