// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Compiled once for each instruction set, each time into the namespace VORLAN_FILTER_LEVEL. Uses
// nothing but plain loops: an inline function of a library, compiled here for wide registers, could
// be the copy that the linker keeps for the whole program.

#include "imperfect/candidate_filter_kernel.h"

namespace vorlan::VORLAN_FILTER_LEVEL {
namespace {

constexpr std::ptrdiff_t kPlanes = 3;
constexpr int kBitsPerWord = 64;

constexpr int kMostStarts = kFilterWords * kBitsPerWord;
constexpr int kResiduesPerCheck = 2;

struct Automaton {
  const FilterPlan& plan;
  const FilterBuffers& buffers;
  bool has_special;  // N or positions outside the sequence

  std::ptrdiff_t row_size() const { return filter_row_size(plan); }
  std::ptrdiff_t middle() const { return row_size() / 2; }

  /// Diagonal 0 of the row of cells with so many edits.
  Lanes* row(int edits) const { return buffers.cells + edits * row_size() + middle(); }
};

int smaller(int a, int b) { return a < b ? a : b; }

bool is_empty(const Lanes& lanes) {
  std::uint64_t any = 0;
  for (std::size_t word = 0; word < kFilterWords; ++word) any |= lanes[word];
  return any == 0;
}

// The planes as seen from each start: bit s of the lanes for offset o is position s + o.
// Returns whether there is anything but bases.
bool shift_planes(const FilterPlan& plan, const BitPlanes::Words& planes, std::ptrdiff_t first_word,
                  Lanes* shifted) {
  const std::uint64_t* const words[kPlanes] = {planes.low, planes.high, planes.special};
  Lanes any_special = {};
  for (int offset = -plan.horizon; offset < plan.unit_length + plan.horizon; ++offset) {
    const int shift = offset & (kBitsPerWord - 1);
    const std::ptrdiff_t word = first_word + (offset - shift) / kBitsPerWord;
    for (const std::uint64_t* plane : words) {
      Lanes here;
      Lanes next;
      __builtin_memcpy(&here, plane + word, sizeof here);
      __builtin_memcpy(&next, plane + word + 1, sizeof next);
      *shifted++ = (here >> shift) | ((next << 1) << (kBitsPerWord - 1 - shift));
    }
    any_special |= shifted[-1];
  }
  return !is_empty(any_special);
}

void set_match(const Automaton& automaton, const Lanes* text, const Lanes* unit, Lanes& match) {
  match = ~((text[0] ^ unit[0]) | (text[1] ^ unit[1]));
  if (!automaton.has_special) return;
  match &= ~text[2];
  if (automaton.plan.bridges_N) match |= text[2] & ~text[0];
}

// Where residue j meets the unit base of each diagonal.
void set_matches(const Automaton& automaton, bool forward, int j, int first_diagonal,
                 int last_diagonal) {
  const FilterPlan& plan = automaton.plan;
  const Lanes* start = automaton.buffers.shifted + kPlanes * plan.horizon;
  const Lanes* text = start + kPlanes * (forward ? plan.unit_length + j : -1 - j);
  for (int d = first_diagonal; d <= last_diagonal; ++d) {
    int base = (j - d) % plan.unit_length;
    if (base < 0) base += plan.unit_length;
    if (!forward) base = plan.unit_length - 1 - base;
    set_match(automaton, text, start + kPlanes * base,
              automaton.buffers.matches[automaton.middle() + d]);
  }
}

void clear_row(const Automaton& automaton, int edits) {
  Lanes* row = automaton.row(edits);
  for (int d = -edits; d <= edits; ++d) row[d] = Lanes{};
}

void add_row(const Automaton& automaton, int edits, Lanes& lanes) {
  const Lanes* row = automaton.row(edits);
  for (int d = -edits; d <= edits; ++d) lanes |= row[d];
}

// Moves all paths with `edits` edits over residue j. `from` holds, on diagonals up to `from_last`,
// the paths that leave the row above by an edit at this residue; `to` receives those that leave
// this row, on diagonals up to `to_last`. Edits from lower rows leave more score: to_last <
// from_last.
void step_row(const Automaton& automaton, int j, int edits, int from_last, int to_last,
              const Lanes* from, Lanes* to) {
  Lanes* row = automaton.row(edits);
  const Lanes* matches = automaton.buffers.matches + automaton.middle();
  // Each insertion has consumed a residue.
  const int last_diagonal = smaller(edits, j + 1);
  const int last_receiver = smaller(from_last + 1, last_diagonal);
  int d = -edits;
  for (; d <= to_last; ++d) {
    const Lanes here = row[d] | from[d + 1];  // a deletion consumes no residue
    row[d] = (here & matches[d]) | from[d] |  // a mismatch
             from[d - 1];                     // an insertion
    to[d] = here & ~matches[d];
  }
  for (; d <= last_receiver; ++d) {
    row[d] = ((row[d] | from[d + 1]) & matches[d]) | from[d] | from[d - 1];
  }
  for (; d <= last_diagonal; ++d) row[d] &= matches[d];
  to[-edits - 2] = to[-edits - 1] = to[to_last + 1] = to[to_last + 2] = Lanes{};
}

bool row_is_empty(const Automaton& automaton, int edits) {
  Lanes any = {};
  add_row(automaton, edits, any);
  return is_empty(any);
}

// Halves of numbers that may be negative, rounded up.
int half_up(int number) { return (number + 1) >> 1; }

// Adds the starts whose bound reaches each gain, after `consumed` residues.
void add_gains(const Automaton& automaton, int consumed, int lowest_row, int highest_row,
               int max_gain, Lanes* gains) {
  const int penalty = automaton.plan.penalty;
  for (int edits = lowest_row; edits <= highest_row && consumed > penalty * edits; ++edits) {
    const Lanes* row = automaton.row(edits);
    for (int d = -edits; d <= edits; ++d) {
      const int score = consumed - half_up(edits + d) - penalty * edits;
      if (score < 1) break;
      gains[smaller(score, max_gain)] |= row[d];
    }
  }
}

int count_starts(const Lanes& lanes) {
  int count = 0;
  for (std::size_t word = 0; word < kFilterWords; ++word) {
    count += __builtin_popcountll(lanes[word]);
  }
  return count;
}

// Follows all paths of the starts in `lanes`, whose score is at first at most `first_score`. On
// return `lanes` holds those with a path that was not lost.
void follow_paths(const Automaton& automaton, bool forward, int first_score, int max_gain,
                  Lanes* gains, Lanes& lanes) {
  const FilterPlan& plan = automaton.plan;
  for (int i = 0; i <= max_gain; ++i) gains[i] = Lanes{};
  automaton.row(0)[0] = lanes;

  Lanes* from = automaton.buffers.mismatches + automaton.middle();
  Lanes* to = from + automaton.row_size();
  int lowest_row = 0;
  int highest_row = 0;
  int left_before = kMostStarts + 1;
  int idle_checks = 0;
  for (int j = 0; j < plan.horizon && lowest_row <= highest_row; ++j) {
    // What a path that matched all residues can still lose.
    const int to_spend = first_score + j - plan.floor - 1;
    const int last_row = smaller(to_spend < 0 ? 0 : to_spend / plan.penalty, plan.max_edits);
    while (highest_row < last_row) clear_row(automaton, ++highest_row);
    set_matches(automaton, forward, j, -highest_row, smaller(highest_row, j + 1));
    for (int d = -lowest_row - 1; d <= lowest_row + 1; ++d) from[d] = Lanes{};
    int from_last = -lowest_row - 2;
    for (int edits = lowest_row; edits <= highest_row; ++edits) {
      // Edits from diagonals up to here keep the score above the floor.
      const int spare = to_spend - plan.penalty * (edits + 1);
      const int to_last =
          spare < 0 ? -edits - 1 : smaller(2 * spare - edits, smaller(edits, j + 1));
      step_row(automaton, j, edits, from_last, to_last, from, to);
      from_last = to_last;
      Lanes* const done = from;
      from = to;
      to = done;
    }
    while (lowest_row <= highest_row && row_is_empty(automaton, lowest_row)) ++lowest_row;
    add_gains(automaton, j + 1, lowest_row, highest_row, max_gain, gains);
    if (j + 1 < plan.first_check || (j + 1) % kResiduesPerCheck != 0) continue;
    lanes = Lanes{};
    for (int edits = lowest_row; edits <= highest_row; ++edits) add_row(automaton, edits, lanes);
    const int left = count_starts(lanes);
    idle_checks = left < left_before ? 0 : idle_checks + 1;
    if (left == 0 || idle_checks > plan.patience) break;
    left_before = left;
  }

  lanes = Lanes{};
  for (int edits = lowest_row; edits <= highest_row; ++edits) add_row(automaton, edits, lanes);
  for (int gain = max_gain; gain > 0; --gain) gains[gain - 1] |= gains[gain];
}

}  // namespace

void keep_survivors(const FilterPlan& plan, const BitPlanes::Words& planes,
                    std::ptrdiff_t first_word, const FilterBuffers& buffers,
                    std::uint64_t* candidates) {
  const Automaton automaton{plan, buffers, shift_planes(plan, planes, first_word, buffers.shifted)};
  Lanes wanted;
  __builtin_memcpy(&wanted, candidates, sizeof wanted);

  Lanes alive = wanted;
  follow_paths(automaton, true, 0, plan.max_gain, buffers.forward_gains, alive);
  Lanes survivors = alive | buffers.forward_gains[plan.max_gain];

  alive = wanted & ~survivors;
  const int most = smaller(plan.min_score, plan.horizon);
  follow_paths(automaton, false, plan.max_gain - 1, most, buffers.backward_gains, alive);
  survivors |= alive;
  if (plan.min_score <= most) survivors |= buffers.backward_gains[plan.min_score];
  for (int gain = 1; gain < plan.max_gain; ++gain) {
    const int missing = plan.min_score - gain;
    if (missing > most) continue;
    survivors |= buffers.forward_gains[gain] & buffers.backward_gains[missing];
  }
  survivors &= wanted;
  __builtin_memcpy(candidates, &survivors, sizeof survivors);
}

}  // namespace vorlan::VORLAN_FILTER_LEVEL
