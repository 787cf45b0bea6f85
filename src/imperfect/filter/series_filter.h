// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The filter for short records, which alone would leave most of its lanes empty.
//
// Idea: several records are laid end to end and judged like one sequence. A candidate of a record
// sees there what it sees in the record, followed by the residues of neighbours.
//
// Why results stay the same: every path of an extension within the record is still there. Those
// that run on into a neighbour can only let a start survive that the record alone would not, and
// one that survives is extended in its record.
//
// Example, default settings: the records ACACAC and ACACGT are judged as ACACACACACGT. Unit AC at
// the first start gains 8 there and survives; that the record itself has only 4 points for it shows
// when it is extended. The records ACACA and GTGT are judged as ACACAGTGT. Unit AC may edit at the
// first G with its 3 points, but not again at T: the start is hopeless in the series, too.

#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "search/bit_planes.h"
#include "search/thresholds.h"

namespace vorlan {

class SeriesSurvivors;

/// Judges the starts of several records together, for one unit length after the other. Positions
/// count from 0, in the series or in the record.
///
/// Use: append the records, judge, ask for each record; clear before the next series.
class SeriesFilter {
 public:
  /// Judging longer units takes so long that it is better done record by record, where progress is
  /// shown and repeats of shorter units leave less to judge. Chosen by the bench, table "Tuning".
  static constexpr unsigned kLongestUnit = 20;

  void clear() {
    residues_.clear();
    ends_.clear();
    longest_record_ = 0;
    longest_unit_ = 0;
  }

  /// Adds a record; returns its offset in the series. Throws std::bad_alloc; the records before it
  /// stay.
  std::size_t append(std::string_view residues) {
    const std::size_t begin = residues_.size();
    residues_ += residues;
    ends_.push_back(residues_.size());
    longest_record_ = std::max(longest_record_, residues.size());
    return begin;
  }

  std::size_t residues() const { return residues_.size(); }

  /// Judges the starts for the unit lengths of the settings up to kLongestUnit; fewer when there is
  /// much that survives. Cost: that of the filter for one sequence of this length, without what the
  /// marks of repeats save; memory: one bit per residue and unit length. Throws std::bad_alloc; the
  /// series must be cleared then.
  void judge(const UnitLengthThresholds& min_scores);

  /// What is known of the record that was appended at `offset`. Valid until the next `clear`.
  SeriesSurvivors record(std::size_t offset) const;

  bool has_judged(unsigned unit_length) const {
    return unit_length >= shortest_unit_ && unit_length <= longest_unit_;
  }

  /// The starts that survive, one bit for each residue of the series, and a word more. Requires
  /// that the unit length was judged.
  const std::uint64_t* survivors(unsigned unit_length) const {
    assert(has_judged(unit_length));
    return survivors_.data() + (unit_length - shortest_unit_) * words_;
  }

 private:
  void close_last_starts(unsigned unit_length);
  /// Judges one unit length; returns how many starts survive.
  std::size_t judge(const BitPlanes& planes, unsigned unit_length, int min_score);

  std::string residues_;
  std::vector<std::size_t> ends_;  ///< Of the records.
  std::size_t longest_record_ = 0;
  std::vector<std::uint64_t> starts_;  ///< Those of the unit length that is being judged.
  std::vector<std::uint64_t> survivors_;
  std::size_t words_ = 0;  ///< Of the survivors of one unit length: whole blocks.
  unsigned shortest_unit_ = 1;
  unsigned longest_unit_ = 0;
};

/// The starts of one record that its series has judged. A view of the filter.
class SeriesSurvivors {
 public:
  SeriesSurvivors(const SeriesFilter& series, std::size_t offset)
      : series_(&series), offset_(static_cast<std::ptrdiff_t>(offset)) {}

  /// Whether the starts of this unit length were judged.
  bool know(unsigned unit_length) const { return series_->has_judged(unit_length); }

  /// The 64 starts from `first` on that survive, one bit for each. Those behind the last start of
  /// the record are without meaning. Requires that the unit length is known.
  std::uint64_t survivors(unsigned unit_length, std::ptrdiff_t first) const {
    return bits_at(series_->survivors(unit_length), offset_ + first);
  }

  /// Whether any of the first `starts` starts survives.
  bool any_survives(unsigned unit_length, std::ptrdiff_t starts) const {
    std::ptrdiff_t first = 0;
    for (; first + kBitsPerWord <= starts; first += kBitsPerWord) {
      if (survivors(unit_length, first) != 0) return true;
    }
    const std::uint64_t behind = ~std::uint64_t{0} << (starts - first);
    return (survivors(unit_length, first) & ~behind) != 0;
  }

 private:
  const SeriesFilter* series_;
  std::ptrdiff_t offset_;
};

inline SeriesSurvivors SeriesFilter::record(std::size_t offset) const { return {*this, offset}; }

}  // namespace vorlan
