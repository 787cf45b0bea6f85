// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "monomers/dissect_array.h"

#include <algorithm>

#include "fasta/other_strand.h"
#include "monomers/consensus_unit.h"
#include "monomers/wraparound.h"

namespace vorlan_tools {

namespace {

using Kind = UnitStep::Kind;

/// So many copies tell on which strand a unit fits.
constexpr std::size_t kCopiesForStrand = 10;

std::string on_strand_of(std::string_view array, const std::string& unit) {
  const std::string_view sample = array.substr(0, kCopiesForStrand * unit.size());
  const std::int64_t cost = unit_alignment_cost(sample, unit);
  if (cost == 0) return unit;
  std::string other = other_strand(unit);
  return unit_alignment_cost(sample, other, cost) < cost ? other : unit;
}

/// The consensus turned so that the first base of the array is aligned with its first place.
std::string turned_to_array(std::string_view array, const std::string& consensus) {
  for (const UnitStep& step : align_to_unit(array.substr(0, 2 * consensus.size()), consensus)) {
    if (step.kind != Kind::kAligned) continue;
    return consensus.substr(step.place) + consensus.substr(0, step.place);
  }
  return consensus;
}

/// Copies and, as rows for the comparison with each other, what they have at each place.
class Cutter {
 public:
  Cutter(std::string_view array, const std::string& unit) : array_(array), unit_(unit) {}

  void take(const UnitStep& step) {
    const bool is_new = step.kind != Kind::kInserted && step.place == 0;
    if (is_new || monomers_.empty()) begin_monomer();
    Monomer& monomer = monomers_.back();
    if (step.kind == Kind::kInserted) {
      ++monomer.insertions;
    } else {
      ++monomer.places;
      const char base = step.kind == Kind::kDeleted ? '-' : array_[place_];
      rows_.back()[step.place] = base;
      if (step.kind == Kind::kDeleted) {
        ++monomer.deletions;
      } else if (base != unit_[step.place]) {
        ++monomer.mismatches;
      }
    }
    if (step.kind != Kind::kDeleted) ++place_;
    monomer.end = static_cast<std::int64_t>(place_);
  }

  std::vector<Monomer>& monomers() { return monomers_; }
  const std::vector<std::string>& rows() const { return rows_; }

 private:
  void begin_monomer() {
    Monomer monomer;
    monomer.start = monomer.end = static_cast<std::int64_t>(place_);
    monomers_.push_back(monomer);
    rows_.emplace_back(unit_.size(), '.');
  }

  std::string_view array_;
  const std::string& unit_;
  std::size_t place_ = 0;
  std::vector<Monomer> monomers_;
  std::vector<std::string> rows_;
};

/// What an array that is its unit written again and again comes to: no alignment betters that one,
/// and nothing differs at any lag.
Dissection dissect_repetition(std::string_view array, const std::string& unit) {
  Dissection dissection;
  dissection.consensus = unit;
  std::vector<Monomer>& monomers = dissection.monomers;
  const auto bases = static_cast<std::int64_t>(array.size());
  const auto unit_length = static_cast<std::int64_t>(unit.size());
  monomers.reserve(array.size() / unit.size() + 1);
  for (std::int64_t start = 0; start < bases; start += unit_length) {
    Monomer& monomer = monomers.emplace_back();
    monomer.start = start;
    monomer.end = std::min(start + unit_length, bases);
    monomer.places = monomer.end - start;
  }
  if (monomers.size() >= kFewestCopies) dissection.higher_order.places = bases - unit_length;
  return dissection;
}

}  // namespace

Dissection dissect_array(std::string_view array, const std::string& unit, std::string_view begin) {
  if (begin.empty() && is_repetition(array, unit)) return dissect_repetition(array, unit);
  Dissection dissection;
  ConsensusUnit found = consensus_unit(array, on_strand_of(array, unit));
  dissection.consensus =
      begin.empty() ? turned_to_array(array, found.unit) : turned_to_begin(found.unit, begin);
  const bool is_aligned = !found.steps.empty() && dissection.consensus == found.unit;
  if (!is_aligned) found.steps = align_to_unit(array, dissection.consensus);
  Cutter cutter(array, dissection.consensus);
  for (const UnitStep& step : found.steps) cutter.take(step);
  dissection.higher_order = find_higher_order(cutter.rows());
  dissection.monomers = std::move(cutter.monomers());
  return dissection;
}

}  // namespace vorlan_tools
