// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Wraparound dynamic programming: V. A. Fischetti, G. M. Landau, J. P. Schmidt and P. H. Sellers,
// "Identifying periodic occurrences of a template with applications to protein structure",
// Information Processing Letters 45 (1993) 11-18.
//
// Idea. cost[i][j] is the least cost of the first i bases of the array if the last base of the unit
// that was taken is j. Aligned, a base of the array takes the place behind j; the place behind the
// last one is the first one, so that the unit needs no copies and the phase no thought:
//
//     cost[i][j] = min(cost[i-1][j-1] + (equal ? 0 : 2),   aligned        j - 1 of 0 is the last
//                      cost[i-1][j]   + 3,                 base of the array inserted
//                      cost[i][j-1]   + 3)                 base of the unit deleted
//
// The third line looks round the corner into its own row. Two passes over a row are enough: a chain
// of deletions that went round more than once would leave out a whole unit for nothing.
//
//     array  AGT AGT AT AGTT     unit AGT: 2 indels, 6
//     array  AGT AGT CCC AGT     3 mismatches, 6; leaving the unit out and inserting CCC costs more
//
// Memory. Rows are kept only at the beginning of blocks; walking back, the choices of one block
// after the other are computed again. That is each cell at most twice, and no more than kChoices
// bytes.
//
// Cost: linear in the array for a given unit. Limits: one unit for all of the array; where an indel
// could stand at several places, one of them is taken.

#include "monomers/wraparound.h"

#include <algorithm>
#include <optional>

namespace vorlan_tools {

namespace {

constexpr std::int32_t kMismatch = 2;
constexpr std::int32_t kGap = 3;
constexpr std::size_t kChoices = std::size_t{16} * 1024 * 1024;

using Kind = UnitStep::Kind;
using Row = std::vector<std::int32_t>;

/// `row` moves on by one base of the array. kRecord: the choice of each cell goes to `choices`.
template <bool kRecord>
void advance(char base, std::string_view unit, const Row& before, Row& row, Kind* choices) {
  const std::size_t size = unit.size();
  const auto relax = [&](std::size_t j, std::int32_t aligned_from) {
    const std::int32_t aligned = aligned_from + (base == unit[j] ? 0 : kMismatch);
    const std::int32_t inserted = before[j] + kGap;
    row[j] = std::min(aligned, inserted);
    if (kRecord) choices[j] = inserted < aligned ? Kind::kInserted : Kind::kAligned;
  };
  relax(0, before[size - 1]);
  for (std::size_t j = 1; j < size; ++j) relax(j, before[j - 1]);
  std::int32_t last = row[size - 1];
  for (std::size_t j = 0; j < 2 * size; ++j) {
    const std::size_t place = j < size ? j : j - size;
    const std::int32_t deleted = last + kGap;
    const bool is_better = deleted < row[place];
    // In the second round, what is not better leaves the rest as it was.
    if (!is_better && j >= size) break;
    last = is_better ? deleted : row[place];
    row[place] = last;
    if (kRecord && is_better) choices[place] = Kind::kDeleted;
  }
}

/// The rows at the beginning of each block of the array.
std::vector<Row> rows_at_blocks(std::string_view array, std::string_view unit, std::size_t block) {
  std::vector<Row> kept;
  Row before(unit.size(), 0);
  Row row(unit.size());
  kept.push_back(before);
  const std::size_t last_block = array.empty() ? 0 : (array.size() - 1) / block * block;
  for (std::size_t i = 0; i < last_block; ++i) {
    advance<false>(array[i], unit, before, row, nullptr);
    std::swap(before, row);
    if ((i + 1) % block == 0) kept.push_back(before);
  }
  return kept;
}

std::size_t best_end(const Row& row) {
  return static_cast<std::size_t>(std::min_element(row.begin(), row.end()) - row.begin());
}

/// The steps of a block of the array, from its last base to the first, behind those that `steps`
/// holds. `place` is where the unit stands at the end, if that is known, then at the beginning.
void trace_block(std::string_view part, std::string_view unit, Row before,
                 std::optional<std::size_t>& place, std::vector<UnitStep>& steps) {
  const std::size_t size = unit.size();
  std::vector<Kind> choices(part.size() * size);
  Row row(size);
  for (std::size_t i = 0; i < part.size(); ++i) {
    advance<true>(part[i], unit, before, row, choices.data() + i * size);
    std::swap(before, row);
  }
  std::size_t now = place ? *place : best_end(before);
  for (std::size_t i = part.size(); i > 0;) {
    const Kind kind = choices[(i - 1) * size + now];
    steps.push_back({static_cast<std::uint32_t>(now), kind});
    if (kind != Kind::kInserted) now = now == 0 ? size - 1 : now - 1;
    if (kind != Kind::kDeleted) --i;
  }
  place = now;
}

/// The alignment of such an array, which no other can better.
std::vector<UnitStep> equal_steps(std::size_t bases, std::size_t unit) {
  std::vector<UnitStep> steps(bases);
  for (std::size_t i = 0; i < bases; ++i) {
    steps[i] = {static_cast<std::uint32_t>(i % unit), Kind::kAligned};
  }
  return steps;
}

}  // namespace

bool is_repetition(std::string_view array, std::string_view unit) {
  const std::size_t head = std::min(array.size(), unit.size());
  return array.substr(0, head) == unit.substr(0, head) &&
         array.substr(head) == array.substr(0, array.size() - head);
}

std::vector<UnitStep> align_to_unit(std::string_view array, std::string_view unit) {
  if (is_repetition(array, unit)) return equal_steps(array.size(), unit.size());
  const std::size_t block = std::max<std::size_t>(1, kChoices / unit.size());
  const std::vector<Row> rows = rows_at_blocks(array, unit, block);
  std::optional<std::size_t> place;
  std::vector<UnitStep> steps;
  steps.reserve(array.size() + array.size() / 8);
  for (std::size_t number = rows.size(); number-- > 0;) {
    trace_block(array.substr(number * block, block), unit, rows[number], place, steps);
  }
  std::reverse(steps.begin(), steps.end());
  return steps;
}

std::int64_t unit_alignment_cost(std::string_view array, std::string_view unit,
                                 std::int64_t limit) {
  if (is_repetition(array, unit)) return 0;
  Row before(unit.size(), 0);
  Row row(unit.size());
  std::int64_t cost = 0;
  // The least cost of a row is at least that of the row before.
  for (std::size_t i = 0; i < array.size() && cost < limit; ++i) {
    advance<false>(array[i], unit, before, row, nullptr);
    std::swap(before, row);
    cost = before[best_end(before)];
  }
  return cost;
}

}  // namespace vorlan_tools
