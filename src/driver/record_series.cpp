// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "driver/record_series.h"

#include <cassert>
#include <new>

#include "config/settings.h"
#include "search/csearchcontroller.h"

namespace vorlan {
namespace {

/// A longer one fills the lanes of the filter by itself. Chosen by the bench, table "Tuning".
constexpr std::uint32_t kMostResiduesOfRecord = 4096;

/// Enough to fill the lanes many times over, and still at home in the cache. Chosen by the bench,
/// table "Tuning".
constexpr std::size_t kMostResidues = 32768;

/// Records without residues would never fill a series.
constexpr std::size_t kMostRecords = 1024;

}  // namespace

bool RecordSeries::is_short(const CSequence_Mol& sequence) {
  return global_search_mode == kImperfect && sequence.residues.size <= kMostResiduesOfRecord &&
         sequence.header.size <= kLongestText;
}

bool RecordSeries::is_full() const {
  return filter_.residues() >= kMostResidues || size_ == kMostRecords;
}

void RecordSeries::add(std::uint32_t number, const CSequence_Mol& sequence) {
  assert(is_short(sequence) && !is_full());
  if (size_ == records_.size()) records_.emplace_back();
  Record& record = records_[size_];
  record.number = number;
  record.sequence.assign(sequence);
  record.offset = filter_.append(sequence.residues.view());
  ++size_;
}

void RecordSeries::judge() try {
  if (size_ > 1) filter_.judge(CSearchController::user_min_scores());
} catch (const std::bad_alloc&) {
  filter_.clear();
}

void RecordSeries::clear() {
  size_ = 0;
  filter_.clear();
}

}  // namespace vorlan
