// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <span>

#include "imperfect/filter/series_filter.h"
#include "imperfect/filter/start_filter.h"
#include "imperfect/late_marks/mark_painter.h"
#include "imperfect/record_search.h"
#include "imperfect/self_alignment/sparse_starts.h"
#include "search/start_block.h"

namespace vorlan {

/// The starts of one unit length that are worth an extension, from left to right: those that the
/// marks allow and that no filter has proved hopeless.
///
/// Use: as long as there is a `next_block`, take its starts; after a start that was accepted,
/// `marks_have_changed`.
///
/// The filter looks at the starts of several blocks together, so blocks wait here until the first
/// of them is judged.
class StartQueue {
 public:
  /// What was found out about the starts of this unit length before, each by another filter or
  /// null: what survives in the series of a short record, for good, and what the self-alignment of
  /// the record lets pass to the filter of this queue, unless it is bounded already.
  struct Known {
    const SeriesSurvivors* in_series = nullptr;
    SimilarStarts similar;
  };

  /// The first `starts` residues of the record are starts. All must outlive the queue.
  StartQueue(const RecordSearch& record, std::ptrdiff_t starts, unsigned unit_length, int min_score,
             MarkPainter& marks, const Known& known);

  /// Goes on to the next block of starts, which are ready to be taken. Returns false when there is
  /// none. Requires that all starts of the block before it were taken.
  bool next_block();

  /// The end of the block, as an offset in the record.
  std::ptrdiff_t block_end() const { return blocks_.front().end(); }

  /// Takes the next start of the block, an offset in the record; -1 when none is left.
  std::ptrdiff_t take() { return blocks_.front().take(); }

  /// Looks again at which of the starts behind `start` the marks allow.
  void marks_have_changed(std::ptrdiff_t start) {
    blocks_.front().collect(start + 1, marks_.anchors());
  }

 private:
  /// A block waits until there are enough starts in doubt for a close look, but not longer.
  /// Chosen by the bench, table "Tuning".
  static constexpr std::size_t kMostBlocks = 32;

  bool has_judged_block() const;
  void pass_over_blocks();
  void add_block();
  /// Adds starts of any blocks, in rising order, to the survivors.
  void keep(std::span<const std::ptrdiff_t> starts);

  const RecordSearch& record_;
  std::ptrdiff_t starts_;
  unsigned unit_length_;
  MarkPainter& marks_;
  const SeriesSurvivors* in_series_;
  std::optional<SparseStarts::Reader> similar_;
  bool are_bounded_;  ///< The similar ones.
  StartFilter filter_;
  std::ptrdiff_t next_ = 0;  ///< Where the next block begins.
  bool has_block_ = false;
  std::deque<StartBlock> blocks_;
};

}  // namespace vorlan
