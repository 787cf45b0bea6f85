// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The unit that most copies agree on, by iterative refinement: G. J. Barton and M. J. E. Sternberg,
// "A strategy for the rapid multiple alignment of protein sequences", Journal of Molecular Biology
// 198 (1987) 327-337, with the array in place of the family: all copies are aligned to the unit
// (wraparound.cpp), each place of the unit becomes what most copies have there, and that again,
// until nothing changes.
//
// A place that most copies lack goes; bases that most copies have between two places come in. So a
// first copy that is one base too long gives a unit of the right length:
//
//     first copy   ACGGT       place:   A C G G T
//     array        ACGGTACGTACGTACGT   lacking: 0 0 3 0 0 of 4, so the unit becomes ACGT
//
// Among bases that are equally frequent the one that stands there already stays, so that the
// process ends; kRounds bounds it. An array of more than kWhole bases (or kWholeCopies copies)
// shows kWindows stretches, evenly spread, for this; that keeps the time for the longest arrays at
// that of one alignment.
//
// Copies that differ much put an insertion here or there, so that no single place has a majority.
// So each change of the length that a fifth of the copies ask for is tried, and kept if it makes
// the alignment of the first kPolishCopies copies cheaper.
//
// Limits. Copies that agree on nothing give a unit that means nothing. Few copies that differ much
// (5 copies, one base in five changed) leave places where no base has a majority.

#include "monomers/consensus_unit.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "monomers/wraparound.h"

namespace vorlan_tools {

namespace {

constexpr int kRounds = 12;
constexpr std::size_t kWhole = 8000;
constexpr std::size_t kWholeCopies = 60;
constexpr std::size_t kWindows = 10;
constexpr std::size_t kPolishCopies = 40;
constexpr std::size_t kPolishChanges = 60;
constexpr std::string_view kBases = "ACGT";

using Counts = std::array<std::int64_t, kBases.size()>;

struct Place {
  Counts bases{};
  std::int64_t copies = 0;  ///< that reach this place, with a base or without
  std::int64_t lacking = 0;
  std::vector<Counts> behind;  ///< bases inserted behind it: the first one, the second one, ...
};

std::int64_t sum(const Counts& counts) {
  std::int64_t all = 0;
  for (const std::int64_t count : counts) all += count;
  return all;
}

void count_base(char base, Counts& counts) {
  const std::size_t code = kBases.find(base);
  if (code != std::string_view::npos) ++counts[code];
}

void add_copies(std::string_view array, const std::vector<UnitStep>& steps,
                std::vector<Place>& places) {
  std::size_t i = 0;
  std::size_t inserted = 0;
  for (const UnitStep& step : steps) {
    Place& place = places[step.place];
    if (step.kind == UnitStep::Kind::kInserted) {
      if (place.behind.size() <= inserted) place.behind.resize(inserted + 1);
      count_base(array[i++], place.behind[inserted++]);
      continue;
    }
    inserted = 0;
    ++place.copies;
    if (step.kind == UnitStep::Kind::kDeleted) {
      ++place.lacking;
    } else {
      count_base(array[i++], place.bases);
    }
  }
}

char commonest(const Counts& counts, char standing) {
  std::size_t best = kBases.find(standing);
  if (best == std::string_view::npos) best = 0;
  for (std::size_t code = 0; code < counts.size(); ++code) {
    if (counts[code] > counts[best]) best = code;
  }
  return kBases[best];
}

std::string majority(const std::string& unit, const std::vector<Place>& places) {
  std::string better;
  for (std::size_t j = 0; j < places.size(); ++j) {
    const Place& place = places[j];
    if (2 * place.lacking <= place.copies) better += commonest(place.bases, unit[j]);
    for (const Counts& inserted : place.behind) {
      if (2 * sum(inserted) <= place.copies) break;
      better += commonest(inserted, kBases.front());
    }
  }
  return better.empty() ? unit : better;
}

/// All of the array, or stretches of it.
std::vector<std::string_view> windows_of(std::string_view array, std::size_t unit_length) {
  const std::size_t whole = std::max(kWhole, kWholeCopies * unit_length);
  if (array.size() <= whole) return {array};
  std::vector<std::string_view> windows;
  const std::size_t size = whole / kWindows;
  for (std::size_t number = 0; number < kWindows; ++number) {
    windows.push_back(array.substr((array.size() - size) / (kWindows - 1) * number, size));
  }
  return windows;
}

/// A unit and the copies aligned to it.
struct Refined {
  std::string unit;
  std::vector<Place> places;
  std::vector<UnitStep> steps;  ///< of the last window
};

void align_copies(const std::vector<std::string_view>& windows, Refined& refined) {
  refined.places.assign(refined.unit.size(), {});
  for (const std::string_view window : windows) {
    refined.steps = align_to_unit(window, refined.unit);
    add_copies(window, refined.steps, refined.places);
  }
}

Refined refine(const std::vector<std::string_view>& windows, std::string unit) {
  Refined refined{std::move(unit), {}, {}};
  for (int round = 1;; ++round) {
    align_copies(windows, refined);
    std::string better = majority(refined.unit, refined.places);
    if (better == refined.unit || round == kRounds) return refined;
    refined.unit = std::move(better);
  }
}

/// A unit with one place more or less.
struct LengthChange {
  std::int64_t copies;  ///< that ask for it
  std::size_t place;
  char inserted;  ///< behind that place; 0: the place goes
};

/// Changes of the length that a fifth of the copies ask for, the last place first; no more than
/// kPolishChanges, the most wanted ones.
std::vector<LengthChange> changes_of(const std::vector<Place>& places) {
  constexpr std::int64_t kFifth = 5;
  std::vector<LengthChange> changes;
  for (std::size_t j = 0; j < places.size(); ++j) {
    const Place& place = places[j];
    if (kFifth * place.lacking > place.copies) changes.push_back({place.lacking, j, 0});
    if (place.behind.empty()) continue;
    const std::int64_t inserted = sum(place.behind.front());
    if (kFifth * inserted > place.copies) {
      changes.push_back({inserted, j, commonest(place.behind.front(), kBases.front())});
    }
  }
  std::stable_sort(
      changes.begin(), changes.end(),
      [](const LengthChange& a, const LengthChange& b) { return a.copies > b.copies; });
  if (changes.size() > kPolishChanges) changes.resize(kPolishChanges);
  // Behind a place before the place itself, which may go.
  std::stable_sort(changes.begin(), changes.end(),
                   [](const LengthChange& a, const LengthChange& b) {
                     if (a.place != b.place) return a.place > b.place;
                     return a.inserted != 0 && b.inserted == 0;
                   });
  return changes;
}

/// Makes each change of the length that makes the copies cheaper to explain; false if none does.
/// From the last place to the first, so that the places of changes still to come stay.
bool polish(std::string_view sample, const std::vector<Place>& places, std::string& unit) {
  const std::vector<LengthChange> changes = changes_of(places);
  if (changes.empty()) return false;
  std::int64_t cost = unit_alignment_cost(sample, unit);
  bool is_changed = false;
  for (const LengthChange& change : changes) {
    std::string changed = unit;
    if (change.inserted != 0) {
      changed.insert(change.place + 1, 1, change.inserted);
    } else if (unit.size() > 1) {
      changed.erase(change.place, 1);
    }
    const std::int64_t changed_cost = unit_alignment_cost(sample, changed, cost);
    if (changed_cost >= cost) continue;
    cost = changed_cost;
    unit = std::move(changed);
    is_changed = true;
  }
  return is_changed;
}

}  // namespace

ConsensusUnit consensus_unit(std::string_view array, std::string unit) {
  const std::vector<std::string_view> windows = windows_of(array, unit.size());
  Refined refined = refine(windows, std::move(unit));
  for (int round = 0; round < kRounds; ++round) {
    const std::string_view sample = windows.front().substr(0, kPolishCopies * refined.unit.size());
    if (!polish(sample, refined.places, refined.unit)) break;
    refined = refine(windows, std::move(refined.unit));
  }
  if (windows.size() > 1) refined.steps.clear();
  return {std::move(refined.unit), std::move(refined.steps)};
}

std::string turned_to_begin(const std::string& unit, std::string_view begin) {
  std::size_t best = 0;
  std::size_t fewest = begin.size() + 1;
  for (std::size_t phase = 0; phase < unit.size(); ++phase) {
    std::size_t mismatches = 0;
    for (std::size_t i = 0; i < begin.size(); ++i) {
      if (unit[(phase + i) % unit.size()] != begin[i]) ++mismatches;
    }
    if (mismatches < fewest) {
      fewest = mismatches;
      best = phase;
    }
  }
  return unit.substr(best) + unit.substr(0, best);
}

}  // namespace vorlan_tools
