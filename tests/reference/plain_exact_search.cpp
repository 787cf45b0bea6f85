// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The search for perfect repeats, and its use as the seed finder of the extend-exact search.
//
// Idea: every stretch of unit length is taken as the first copy of a unit and grown to both sides
// while the next residue equals the expected unit base, passing over short runs of N. A repeat that
// reaches the thresholds closes its span for later starts and longer units.
//
// Why this is right: it is the rule itself, one start at a time; a rejected candidate changes
// nothing.
//
// Example: GACACACACT, unit length 2. Start 0, GA, grows nowhere. Start 1, AC, grows to [1,9):
// eight residues, the first copy earns nothing, score 6: accepted, [1,9) closed. Starts 2 to 7
// begin at a closed position after a closed one. 7 is the last start: a tried unit is followed by a
// residue.

#include "plain_scan.h"
#include "plain_search.h"

namespace reference {
namespace {

// The number of N residues in a row from `position` rightwards.
std::size_t Ns_from(std::string_view residues, std::size_t position) {
  return skip_Ns(residues, position) - position;
}

// The number of N residues in a row that end before `position`.
std::size_t Ns_before(std::string_view residues, std::size_t position) {
  std::size_t first = position;
  while (first > 0 && residues[first - 1] == 'N') --first;
  return position - first;
}

bool may_bridge(std::size_t run, const Settings& settings) {
  return run > 0 && !settings.treat_Ns_as_missense &&
         run <= static_cast<std::size_t>(settings.Ns_allowed_in_a_row);
}

void move_right(Repeat& repeat) {
  ++repeat.end;
  std::size_t& cursor = repeat.cursor_forward;
  cursor = cursor + 1 == repeat.unit_end ? repeat.unit_begin : cursor + 1;
}

void move_left(Repeat& repeat) {
  --repeat.begin;
  std::size_t& cursor = repeat.cursor_backward;
  cursor = cursor == repeat.unit_begin ? repeat.unit_end - 1 : cursor - 1;
}

void grow_right(std::string_view residues, const Settings& settings, Repeat& repeat) {
  while (repeat.end < residues.size()) {
    if (residues[repeat.end] == residues[repeat.cursor_forward]) {
      ++repeat.score;
      move_right(repeat);
      continue;
    }
    const std::size_t run = Ns_from(residues, repeat.end);
    if (!may_bridge(run, settings)) return;
    for (std::size_t i = 0; i < run; ++i) move_right(repeat);
    repeat.num_Ns += static_cast<unsigned>(run);
  }
}

void grow_left(std::string_view residues, const Settings& settings, Repeat& repeat) {
  while (repeat.begin > 0) {
    if (residues[repeat.begin - 1] == residues[repeat.cursor_backward]) {
      ++repeat.score;
      move_left(repeat);
      continue;
    }
    const std::size_t run = Ns_before(residues, repeat.begin);
    if (!may_bridge(run, settings)) return;
    for (std::size_t i = 0; i < run; ++i) move_left(repeat);
    repeat.num_Ns += static_cast<unsigned>(run);
  }
}

// The perfect repeat that holds the stretch [begin, end) as a copy of its unit.
void grow_from(std::string_view residues, const Settings& settings, std::size_t begin,
               std::size_t end, Repeat& repeat) {
  become_one_copy(repeat, begin, end);
  grow_right(residues, settings, repeat);
  grow_left(residues, settings, repeat);
  trim_Ns(residues, repeat);
}

// Whether a found repeat closes its span: only one that the user can get to see.
bool closes_its_span(const Repeat& repeat, const Thresholds& user, const Settings& settings) {
  if (!reaches(repeat, user)) return false;
  const float percent = perfection(repeat, settings);
  return settings.min_perfection <= percent && percent <= settings.max_perfection;
}

using ThresholdRule = Thresholds (*)(const Settings&, std::size_t unit_length);

void scan_unit_length_1(std::string_view residues, const Settings& settings, ThresholdRule rule,
                        std::vector<Repeat>& found) {
  const Thresholds active = rule(settings, 1);
  Repeat candidate;
  std::size_t start = skip_Ns(residues, 0);
  while (start + 1 < residues.size()) {
    grow_from(residues, settings, start, start + 1, candidate);
    std::size_t next = start + 1;
    if (reaches(candidate, active)) {
      next = candidate.end;
      found.push_back(candidate);
    }
    start = skip_Ns(residues, next);
  }
}

void scan_unit_length(std::string_view residues, const Settings& settings, ThresholdRule rule,
                      std::size_t unit_length, Marks& marks, std::vector<Repeat>& found) {
  const Thresholds active = rule(settings, unit_length);
  const Thresholds user = user_thresholds(settings, unit_length);
  StretchWithN stretch(residues);
  Repeat candidate;
  for (std::size_t start = 0; start + unit_length < residues.size(); ++start) {
    if (!marks.may_span(start, unit_length) || stretch.holds_N(start, unit_length)) continue;
    if (is_one_repeated_residue(residues.substr(start, unit_length))) continue;
    grow_from(residues, settings, start, start + unit_length, candidate);
    if (!reaches(candidate, active)) continue;
    if (closes_its_span(candidate, user, settings)) marks.close(candidate);
    found.push_back(candidate);
  }
}

std::vector<Repeat> perfect_repeats(std::string_view residues, const Settings& settings,
                                    ThresholdRule rule) {
  std::vector<Repeat> found;
  Marks marks(residues.size());
  std::size_t unit_length = settings.min_unit_length;
  if (unit_length == 1) {
    scan_unit_length_1(residues, settings, rule, found);
    unit_length = 2;
  }
  // A unit as long as the residues is never followed by a residue, so longer ones need no scan.
  for (; unit_length <= settings.max_unit_length && unit_length < residues.size(); ++unit_length) {
    scan_unit_length(residues, settings, rule, unit_length, marks, found);
  }
  sort_repeats(found);
  return found;
}

}  // namespace

std::vector<Repeat> exact_search(std::string_view residues, const Settings& settings) {
  return perfect_repeats(residues, settings, user_thresholds);
}

std::vector<Repeat> extend_exact_search(std::string_view residues, const Settings& settings) {
  const ThresholdRule seed_rule = [](const Settings&, std::size_t unit_length) {
    return seed_thresholds(unit_length);
  };
  std::vector<Repeat> found;
  // Seeds inside one imperfect repeat are extended independently; duplicates stay.
  for (Repeat& repeat : perfect_repeats(residues, settings, seed_rule)) {
    extend_forward(residues, settings, repeat);
    extend_backward(residues, settings, repeat);
    trim_Ns(residues, repeat);
    if (!reaches(repeat, user_thresholds(settings, repeat.unit_end - repeat.unit_begin))) continue;
    sort_events(repeat);
    found.push_back(repeat);
  }
  sort_repeats(found);
  return found;
}

}  // namespace reference
