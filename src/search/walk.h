// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The walk of an alignment along its unit: over matches, and over N runs that may be bridged.
//
// Every extension does it: the perfect one does nothing else, the imperfect one walks to its next
// edit, and the look-ahead walks behind each edit that it tries.
//
// Example, unit AC, N runs of up to 2: from the start of ACNCACT the walk goes over AC, the N,
// which stands for A, and CAC, and ends at T, where A is due: 5 matches, 1 N. In ACNNNC it ends
// before the N run, which is too long, after 2 matches.

#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "search/direction.h"

namespace vorlan {

/// Why a walk ended.
enum class WalkEnd {
  kDifference,  ///< At a residue that is not the unit base that is due.
  kStop,        ///< At the end of the sequence.
  kLongNRun,    ///< In front of an N run that is too long to be bridged.
};

/// A longest N run that bridges every run.
inline constexpr std::ptrdiff_t kAnyNRun = std::numeric_limits<std::ptrdiff_t>::max();

/// What a walk went over.
struct Steps {
  std::uint32_t matches = 0;
  std::uint32_t Ns = 0;
};

template <class Direction>
void step(Front& front, const UnitSpan& unit) {
  front.place = Direction::moved(front.place, 1);
  front.cursor = Direction::next_unit_base(front.cursor, unit);
}

/// The length of the N run at `place`, or 0 if it is longer than `longest`. Apart from the walk,
/// which should be small where there is no N.
template <class Direction>
[[gnu::noinline]] std::uint32_t bridged_Ns(const char* place, const char* stop,
                                           std::ptrdiff_t longest) {
  for (std::ptrdiff_t length = 0;; ++length, place = Direction::moved(place, 1)) {
    if (place == stop || *Direction::residue(place) != 'N') {
      return static_cast<std::uint32_t>(length);
    }
    if (length == longest) return 0;
  }
}

/// Walks on from `front` and adds what it goes over to `steps`. An N run is bridged whole, if it is
/// not longer than `longest_N_run`, or not at all; each N takes the place of a unit base. With a
/// longest run of 0 an N is a residue like any other, which matches nothing. Cost: linear.
template <class Direction>
inline WalkEnd walk(Front& front, const UnitSpan& unit, const char* stop,
                    std::ptrdiff_t longest_N_run, Steps& steps) {
  for (;;) {
    if (front.place == stop) return WalkEnd::kStop;
    const char residue = *Direction::residue(front.place);
    if (residue == *front.cursor) {
      step<Direction>(front, unit);
      ++steps.matches;
      continue;
    }
    if (residue != 'N' || longest_N_run == 0) return WalkEnd::kDifference;
    const std::uint32_t run = bridged_Ns<Direction>(front.place, stop, longest_N_run);
    if (run == 0) return WalkEnd::kLongNRun;
    for (std::uint32_t i = 0; i < run; ++i) step<Direction>(front, unit);
    steps.Ns += run;
  }
}

}  // namespace vorlan
