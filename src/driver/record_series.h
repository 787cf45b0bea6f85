// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

#include "imperfect/filter/series_filter.h"
#include "input/csequence_mol.h"

namespace vorlan {

/// Short records that were read and wait to be searched, one after the other: the filter of the
/// imperfect search judges them together, which is several times faster.
class RecordSeries {
 public:
  struct Record {
    std::uint32_t number = 0;  ///< In the input, from 1.
    CSequence_Mol sequence{CSequence_Mol::kDna, 0};
    std::size_t offset = 0;  ///< In the series.
  };

  /// Bytes of a record in the input: room for any line width around the residues of a short one. A
  /// longer one, with its header, would take more memory than waiting is worth.
  static constexpr std::size_t kLongestText = 10'000;

  /// Whether a record is worth waiting for others.
  static bool is_short(const CSequence_Mol& sequence);

  bool is_full() const;

  /// Adds a copy of a record. Requires that it is short and the series not full. Throws
  /// std::bad_alloc; the records before it stay.
  void add(std::uint32_t number, const CSequence_Mol& sequence);

  /// Judges the records together, unless there is only one or memory is short: then nothing is
  /// known of their starts.
  void judge();

  std::size_t size() const { return size_; }
  Record& operator[](std::size_t index) { return records_[index]; }
  SeriesSurvivors survivors(const Record& record) const { return filter_.record(record.offset); }

  /// Forgets the records.
  void clear();

 private:
  std::deque<Record> records_;  ///< More than `size_`: the others keep their memory for later ones.
  std::size_t size_ = 0;
  SeriesFilter filter_;
};

}  // namespace vorlan
