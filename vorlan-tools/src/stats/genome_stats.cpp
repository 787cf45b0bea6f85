// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "stats/genome_stats.h"

#include <algorithm>

namespace vorlan_tools {

namespace {

using Number = std::optional<std::int64_t>;

void add_if_known(Number& sum, const Number& number) {
  if (!number) {
    sum.reset();
  } else if (sum) {
    *sum += *number;
  }
}

bool comes_first(const std::pair<std::string, Tally>& a, const std::pair<std::string, Tally>& b) {
  if (a.second.repeats != b.second.repeats) return a.second.repeats > b.second.repeats;
  if (a.second.bases != b.second.bases) return a.second.bases > b.second.bases;
  return a.first < b.first;
}

}  // namespace

Tally& UnitTable::at(const std::string& unit) {
  const auto found = tallies_.find(unit);
  if (found != tallies_.end()) return found->second;
  if (unit.empty() || tallies_.size() == kMostUnits || text_ + unit.size() > kMostText) {
    return others_;
  }
  text_ += unit.size();
  return tallies_[unit];
}

void UnitTable::add(const Repeat& repeat, const std::string& unit) { at(unit).add(repeat); }

void UnitTable::add(const UnitTable& other) {
  for (const auto& [unit, tally] : other.commonest(other.size())) at(unit).add(tally);
  others_.add(other.others_);
}

std::vector<std::pair<std::string, Tally>> UnitTable::commonest(std::size_t most) const {
  std::vector<std::pair<std::string, Tally>> list(tallies_.begin(), tallies_.end());
  const auto end = list.begin() + static_cast<std::ptrdiff_t>(std::min(most, list.size()));
  std::partial_sort(list.begin(), end, list.end(), comes_first);
  list.erase(end, list.end());
  return list;
}

Number GenomeStats::bases() const {
  Number sum = 0;
  for (const SequenceStats& sequence : sequences) add_if_known(sum, sequence.length);
  return sum;
}

Number GenomeStats::ns() const {
  Number sum = 0;
  for (const SequenceStats& sequence : sequences) add_if_known(sum, sequence.ns);
  return sum;
}

void TotalStats::add(const GenomeStats& genome) {
  ++genomes;
  sequences += static_cast<std::int64_t>(genome.sequences.size());
  add_if_known(bases, genome.bases());
  add_if_known(ns, genome.ns());
  covered += genome.covered;
  knows_edits = knows_edits && genome.knows_edits;
  tally.add(genome.tally);
  for (const auto& [length, stats] : genome.by_unit_length) by_unit_length[length].add(stats);
  units.add(genome.units);
}

}  // namespace vorlan_tools
