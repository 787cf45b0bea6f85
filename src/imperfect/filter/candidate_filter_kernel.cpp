// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Compiled once for each instruction set, each time into the namespace VORLAN_FILTER_LEVEL. Uses
// nothing but plain loops: an inline function of a library, compiled here for wide registers, could
// be the copy that the linker keeps for the whole program.

#include "imperfect/filter/candidate_filter_kernel.h"

namespace vorlan::VORLAN_FILTER_LEVEL {
namespace {

constexpr std::ptrdiff_t kPlanes = 3;
constexpr int kBitsPerWord = 64;

/// How often the starts that are left are counted. Chosen by the bench, table
/// "Tuning".
constexpr int kResiduesPerCheck = 2;

struct Automaton {
  const FilterPlan& plan;
  const FilterBuffers& buffers;
  bool lacks_bases;  // N or positions outside the sequence

  std::ptrdiff_t row_size() const { return plan.row_size; }
  std::ptrdiff_t middle() const { return row_size() / 2; }

  /// Diagonal 0 of the row of cells with so many edits.
  Lanes* row(int edits) const { return buffers.cells + edits * row_size() + middle(); }
  /// Diagonal 0 of the row of paths that leave a row of cells; every other row has the same one.
  Lanes* leaving(int edits) const { return buffers.leaving + edits % 2 * row_size() + middle(); }
};

// The bits of a plane from `position` on.
std::uint64_t bits_from(const std::uint64_t* plane, std::ptrdiff_t position) {
  const std::ptrdiff_t shift = position & (kBitsPerWord - 1);
  const std::uint64_t* word = plane + (position >> 6);
  return (word[0] >> shift) | ((word[1] << 1) << (kBitsPerWord - 1 - shift));
}

int smaller(int a, int b) { return a < b ? a : b; }

bool is_empty(const Lanes& lanes) {
  std::uint64_t any = 0;
  for (std::size_t word = 0; word < kFilterWords; ++word) any |= lanes[word];
  return any == 0;
}

// Whether there is anything but bases where the starts from `first` to `last` look.
bool lacks_bases(const FilterPlan& plan, const BitPlanes::Words& planes, std::ptrdiff_t first,
                 std::ptrdiff_t last) {
  const std::uint64_t* word = planes.no_base + ((first - plan.horizon) >> 6);
  const std::uint64_t* end = planes.no_base + ((last + plan.unit_length + plan.horizon) >> 6) + 1;
  std::uint64_t any = 0;
  for (; word != end; ++word) any |= *word;
  return any != 0;
}

// A plane as seen from each start of a block: bit s of the lanes for offset o is position s + o.
void shift_plane(const FilterPlan& plan, const std::uint64_t* plane, std::ptrdiff_t first_word,
                 Lanes* shifted) {
  for (int offset = -plan.horizon; offset < plan.unit_length + plan.horizon; ++offset) {
    const int shift = offset & (kBitsPerWord - 1);
    const std::uint64_t* const word = plane + first_word + (offset >> 6);
    Lanes here;
    Lanes next;
    __builtin_memcpy(&here, word, sizeof here);
    __builtin_memcpy(&next, word + 1, sizeof next);
    *shifted = (here >> shift) | ((next << 1) << (kBitsPerWord - 1 - shift));
    shifted += kPlanes;
  }
}

// Makes columns of rows in eight matrices of 64 by 64 bits, which lie side by side. From the book
// "Hacker's Delight", 7-3: blocks off the diagonal change places, large ones first.
void transpose(Lanes* rows) {
  std::uint64_t low_half = 0xFFFFFFFF;
  for (int size = kBitsPerWord / 2; size > 0; size /= 2, low_half ^= low_half << size) {
    for (int row = 0; row < kBitsPerWord; row = (row + size + 1) & ~size) {
      const Lanes differ = ((rows[row] >> size) ^ rows[row + size]) & low_half;
      rows[row] ^= differ << size;
      rows[row + size] ^= differ;
    }
  }
}

// A plane as seen from starts that lie anywhere: bit i of the lanes for offset o is position
// starts[i] + o.
void gather_plane(const FilterPlan& plan, const std::uint64_t* plane, const std::ptrdiff_t* starts,
                  Lanes* shifted) {
  static_assert(kFilterWords == 8);
  Lanes rows[kBitsPerWord];
  for (int first = -plan.horizon; first < plan.unit_length + plan.horizon; first += kBitsPerWord) {
    for (int row = 0; row < kBitsPerWord; ++row) {
      const auto bits_of = [&](int word) {
        return bits_from(plane, starts[word * kBitsPerWord + row] + first);
      };
      // All at once: writing the words one by one would be far slower to read back.
      rows[row] = Lanes{bits_of(0), bits_of(1), bits_of(2), bits_of(3),
                        bits_of(4), bits_of(5), bits_of(6), bits_of(7)};
    }
    transpose(rows);
    for (const Lanes& row : rows) {
      *shifted = row;
      shifted += kPlanes;
    }
  }
}

void set_mismatch(const Automaton& automaton, const Lanes* text, const Lanes* unit,
                  Lanes& mismatch) {
  mismatch = (text[0] ^ unit[0]) | (text[1] ^ unit[1]);
  if (!automaton.lacks_bases) return;
  mismatch |= text[2];
  if (automaton.plan.bridges_N) mismatch &= ~text[2] | text[0];
}

// Where residue j does not meet the unit base of each diagonal. A unit length further to the right
// the same base is due again.
void set_mismatches(const Automaton& automaton, bool forward, int j, int first_diagonal,
                    int last_diagonal) {
  const FilterPlan& plan = automaton.plan;
  const Lanes* start = automaton.buffers.shifted + kPlanes * plan.horizon;
  const Lanes* text = start + kPlanes * (forward ? plan.unit_length + j : -1 - j);
  Lanes* mismatches = automaton.buffers.mismatches + automaton.middle();
  int base = (j - first_diagonal) % plan.unit_length;
  const int first_round = smaller(last_diagonal, first_diagonal + plan.unit_length - 1);
  int d = first_diagonal;
  for (; d <= first_round; ++d) {
    set_mismatch(automaton, text, start + kPlanes * (forward ? base : plan.unit_length - 1 - base),
                 mismatches[d]);
    base = (base == 0 ? plan.unit_length : base) - 1;
  }
  for (; d <= last_diagonal; ++d) mismatches[d] = mismatches[d - plan.unit_length];
}

void clear_row(const Automaton& automaton, int edits) {
  Lanes* row = automaton.row(edits);
  for (int d = -edits; d <= edits; ++d) row[d] = Lanes{};
}

// The paths that leave a row of cells by an edit at one residue, on diagonals up to `last`.
struct Leaving {
  Lanes* lanes;  // diagonal 0
  int last;
};

// Moves all paths with `edits` edits over residue j. Those that leave the row with one edit less
// come in from `above`; those that leave this row are left in `here`. Where fewer edits were made
// more score is left to spend: here.last < above.last. Returns the starts that have a path in the
// row afterwards.
//
//                     diagonal   d-1        d        d+1
//     above (e-1 edits)        insertion mismatch deletion
//                                     \     |     /
//     row (e edits)                     cell d            stays there if residue j matches
//                                          |
//     here                       leaves from d if residue j does not match
//
// A deletion consumes no residue: whoever comes in by one still has to match residue j, or leaves
// again at once.
Lanes step_row(const Automaton& automaton, int j, int edits, const Leaving& above,
               const Leaving& here) {
  Lanes* row = automaton.row(edits);
  const Lanes* mismatches = automaton.buffers.mismatches + automaton.middle();
  // Each insertion has consumed a residue.
  const int last_diagonal = smaller(edits, j + 1);
  const int last_receiver = smaller(above.last + 1, last_diagonal);
  // Into the lowest row nothing comes in, but its own paths leave.
  const int last_in_motion = last_receiver < here.last ? here.last : last_receiver;
  Lanes in_row = {};
  int d = -edits;
  // What comes in from the diagonals d - 1 and d, read once.
  Lanes by_insertion = above.lanes[d - 1];
  Lanes by_mismatch = above.lanes[d];
  for (; d <= last_in_motion; ++d) {
    const Lanes by_deletion = above.lanes[d + 1];
    const Lanes before_residue = row[d] | by_deletion;
    if (d <= here.last) here.lanes[d] = before_residue & mismatches[d];
    row[d] = (before_residue & ~mismatches[d]) | by_mismatch | by_insertion;
    in_row |= row[d];
    by_insertion = by_mismatch;
    by_mismatch = by_deletion;
  }
  for (; d <= last_diagonal; ++d) {
    row[d] &= ~mismatches[d];
    in_row |= row[d];
  }
  // The row below reads two neighbours on either side.
  for (int i = 1; i <= 2; ++i) here.lanes[-edits - i] = here.lanes[here.last + i] = Lanes{};
  return in_row;
}

// Halves of numbers that may be negative, rounded up.
int half_up(int number) { return (number + 1) >> 1; }

// Adds the starts whose bound reaches each gain, after `consumed` residues. A path that reaches
// more had this gain before, since a residue gains one point at most.
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

  int lowest_row = 0;
  int highest_row = 0;
  int left_before = kFilterStarts + 1;
  int idle_checks = 0;
  for (int j = 0; j < plan.horizon; ++j) {
    // What a path that matched all residues can still lose.
    const int to_spend = first_score + j - plan.floor - 1;
    const int last_row = smaller(to_spend < 0 ? 0 : to_spend / plan.penalty, plan.max_edits);
    while (highest_row < last_row) clear_row(automaton, ++highest_row);
    set_mismatches(automaton, forward, j, -highest_row, smaller(highest_row, j + 1));
    Leaving above{automaton.buffers.nothing + automaton.middle(), -lowest_row - 2};
    lanes = Lanes{};
    for (int edits = lowest_row; edits <= highest_row; ++edits) {
      // Edits from diagonals up to here keep the score above the floor.
      const int spare = to_spend - plan.penalty * (edits + 1);
      const int last = spare < 0 ? -edits - 1 : smaller(2 * spare - edits, smaller(edits, j + 1));
      const Leaving here{automaton.leaving(edits), last};
      lanes |= step_row(automaton, j, edits, above, here);
      if (edits == lowest_row && is_empty(lanes)) ++lowest_row;
      above = here;
    }
    add_gains(automaton, j + 1, lowest_row, highest_row, max_gain, gains);
    if (j + 1 < plan.first_check || (j + 1) % kResiduesPerCheck != 0) continue;
    const int left = count_starts(lanes);
    idle_checks = left < left_before ? 0 : idle_checks + 1;
    if (left <= plan.few_enough_to_stop || idle_checks > plan.checks_without_loss) break;
    left_before = left;
  }
}

// Clears the hopeless starts among `candidates`; the planes are there as seen from each.
void judge(const Automaton& automaton, std::uint64_t* candidates) {
  const FilterPlan& plan = automaton.plan;
  const FilterBuffers& buffers = automaton.buffers;
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

// Shows the automaton the planes as `see` shows each of them, and lets it judge.
template <class See>
void look_and_judge(const FilterPlan& plan, const BitPlanes::Words& planes, bool no_base,
                    const FilterBuffers& buffers, std::uint64_t* candidates, See see) {
  see(planes.low, buffers.shifted);
  see(planes.high, buffers.shifted + 1);
  if (no_base) see(planes.no_base, buffers.shifted + 2);
  judge({plan, buffers, no_base}, candidates);
}

}  // namespace

void judge_block(const FilterPlan& plan, const BitPlanes::Words& planes, std::ptrdiff_t first_word,
                 const FilterBuffers& buffers, std::uint64_t* candidates) {
  const std::ptrdiff_t first = first_word * kBitsPerWord;
  look_and_judge(plan, planes, lacks_bases(plan, planes, first, first + kFilterStarts - 1), buffers,
                 candidates, [&](const std::uint64_t* plane, Lanes* shifted) {
                   shift_plane(plan, plane, first_word, shifted);
                 });
}

void judge_starts(const FilterPlan& plan, const BitPlanes::Words& planes,
                  const std::ptrdiff_t* starts, const FilterBuffers& buffers,
                  std::uint64_t* candidates) {
  look_and_judge(plan, planes, lacks_bases(plan, planes, starts[0], starts[kFilterStarts - 1]),
                 buffers, candidates, [&](const std::uint64_t* plane, Lanes* shifted) {
                   gather_plane(plan, plane, starts, shifted);
                 });
}

}  // namespace vorlan::VORLAN_FILTER_LEVEL
