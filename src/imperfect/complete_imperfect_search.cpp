// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The complete search for imperfect repeats: every stretch of the sequence is tried as a unit and
// extended in both directions.
//
// Invariant: a rejected candidate leaves no trace. An accepted one closes the marks of its span, so
// that the search does not start again inside it, and opens those of its edit positions, where an
// overlapping alternative may begin.
//
// Which candidates are passed over, and why that is safe: those that the marks, an N or a unit of
// one repeated base exclude by the rules, and those that a filter proves to be rejected
// (candidate_filter_kernel.h and wraparound/wraparound_kernel.h; series_filter.h for short
// records). Since the latter leave no trace, the result is the same.
//
// Example, unit length 2: ACACAGACACAC is found from its first position, with a mismatch at G. Its
// span is closed except for G; starts at and right behind G may be tried again.
//
// Marks last from unit length 2 to the longest: a repeat of AC closes its span for ACAC. Only the
// pass for unit length 1 is forgotten: runs of one base must not hide longer units.

#include <algorithm>
#include <deque>

#include "config/settings.h"
#include "imperfect/extension.h"
#include "imperfect/mark_painter.h"
#include "imperfect/series_filter.h"
#include "imperfect/start_filter.h"
#include "search/bit_planes.h"
#include "search/canchorseq.h"
#include "search/csearchcontroller.h"
#include "search/start_block.h"
#include "search/unit_scan.h"

namespace vorlan {
namespace {

/// Tries the candidates of one unit length, from left to right, and keeps the marks.
class CandidateTrial {
 public:
  /// `context` holds the stored ways of the search.
  CandidateTrial(ExtensionContext& context, const char* seq_end, UnitPaths& paths,
                 unsigned unit_length, int min_score, int min_length, CAnchorSeq& anchors)
      : context_(context),
        seq_end_(seq_end),
        paths_(paths),
        unit_length_(unit_length),
        min_score_(min_score),
        min_length_(min_length),
        painter_(anchors, paths, context.seq_begin) {}

  MarkPainter& painter() { return painter_; }

  /// Extends the candidate at `start`. Returns its record if it is accepted, else null.
  Csat* accept(const char* start) {
    forget_ways_if_many();
    Csat& sat = spare_.candidate(start, start + unit_length_);
    PassedOver passed_over;
    if (!extend_and_judge(sat, seq_end_, context_, min_score_, min_length_, passed_over)) {
      return nullptr;
    }
    painter_.accept({&sat, std::move(passed_over)}, start);
    return spare_.release();
  }

 private:
  void forget_ways_if_many() {
    if (paths_.stored_nodes() <= UnitPaths::kMostNodes) return;
    painter_.finish();
    paths_.forget();
  }

  ExtensionContext& context_;
  const char* seq_end_;
  UnitPaths& paths_;
  unsigned unit_length_;
  int min_score_;
  int min_length_;
  MarkPainter painter_;
  SpareSat spare_;
};

/// Blocks of starts in a row, of which the first one has been judged. The filter looks at the
/// starts of several blocks together, unless those of a short record have been judged before.
class StartQueue {
 public:
  /// `judged` may be null.
  StartQueue(const char* seq_begin, const char* seq_end, std::ptrdiff_t end_of_starts,
             unsigned unit_length, int min_score, const BitPlanes& planes,
             const JudgedStarts* judged)
      : seq_begin_(seq_begin),
        end_of_starts_(end_of_starts),
        unit_length_(unit_length),
        planes_(planes),
        judged_(judged),
        filter_(seq_begin, seq_end, planes, unit_length, min_score, end_of_starts) {}

  /// The next block, ready to be collected; null when there is none.
  StartBlock* next(MarkPainter& painter, const CAnchorSeq& anchors) {
    if (!blocks_.empty()) blocks_.pop_front();
    while (!is_first_judged()) {
      if (filter_.doubts() < filter_.enough_doubts() && next_ < end_of_starts_ &&
          blocks_.size() < kMostBlocks) {
        add_block(painter, anchors);
        continue;
      }
      if (blocks_.empty()) return nullptr;
      for (const std::ptrdiff_t start : filter_.look_closely()) block_of(start).keep(start);
    }
    return &blocks_.front();
  }

 private:
  /// A block waits until there are enough starts in doubt for a close look, but not longer.
  static constexpr std::size_t kMostBlocks = 32;

  bool is_first_judged() const {
    return !blocks_.empty() &&
           (filter_.doubts() == 0 || filter_.first_doubt() >= blocks_.front().end());
  }

  StartBlock& block_of(std::ptrdiff_t start) {
    return blocks_[static_cast<std::size_t>((start - blocks_.front().begin()) /
                                            StartBlock::kStarts)];
  }

  void add_block(MarkPainter& painter, const CAnchorSeq& anchors) {
    // The last start of the block looks at the mark behind its unit.
    painter.paint_until(seq_begin_ + std::min(next_ + StartBlock::kStarts, end_of_starts_) +
                        unit_length_);
    StartBlock& block = blocks_.emplace_back(next_, end_of_starts_, unit_length_, anchors, planes_);
    next_ = block.end();
    if (judged_ != nullptr) {
      block.set_survivors([this](auto start) { return judged_->survivors(unit_length_, start); });
    } else if (block.has_survivors()) {
      filter_.glance(block.first_word(), block.survivors());
    }
  }

  const char* seq_begin_;
  std::ptrdiff_t end_of_starts_;
  unsigned unit_length_;
  const BitPlanes& planes_;
  const JudgedStarts* judged_;
  StartFilter filter_;
  std::ptrdiff_t next_ = 0;
  std::deque<StartBlock> blocks_;
};

}  // namespace

void CSearchController::complete_imperfect_search(std::FILE*) {
  CAnchorSeq anchors(seq_begin(), seq_length());
  const BitPlanes planes(seq_begin(), seq_length(), CandidateFilter::margin(longest_unit()));
  ExtensionContext context{.seq_begin = seq_begin(),
                           .settings = AlignmentSettings::for_sequence(seq_length()),
                           .planes = &planes};
  UnitPaths paths(seq_begin(), context.settings);
  if (UnitPaths::can_share(context.settings)) context.paths = &paths;
  for (unsigned unit_len = global_min_unit_length; unit_len <= longest_unit(); ++unit_len) {
    one_unit_len_complete_imperfect_search(unit_len, planes, context, paths, anchors,
                                           imperfect_sats);
    if (unit_len == 1) anchors.reset();
  }
  imperfect_sats.sort(lessThan_sat);
}

void CSearchController::one_unit_len_complete_imperfect_search(
    unsigned unit_len, const BitPlanes& planes, ExtensionContext& context, UnitPaths& paths,
    CAnchorSeq& anchors, std::list<Csat*>& results) {
  UnitScan scan(seq_begin(), seq_end(), unit_len);
  ScanProgress progress{unit_len};
  const bool is_judged = judged_starts_ != nullptr && judged_starts_->know(unit_len);
  if (is_judged && !judged_starts_->any_survives(unit_len, scan.starts())) {
    report_progress(progress, scan.starts());
    return;
  }
  const int min_score = (*minScores)[unit_len];
  CandidateTrial trial(context, seq_end(), paths, unit_len, min_score, (*minLengths)[unit_len],
                       anchors);
  StartQueue queue(seq_begin(), seq_end(), scan.starts(), unit_len, min_score, planes,
                   is_judged ? judged_starts_ : nullptr);
  while (StartBlock* block = queue.next(trial.painter(), anchors)) {
    report_progress(progress, block->end());
    block->collect(block->begin(), anchors);
    for (std::ptrdiff_t offset = block->take(); offset >= 0; offset = block->take()) {
      const char* start = seq_begin() + offset;
      if (!scan.is_unit(start)) continue;
      if (Csat* sat = trial.accept(start); sat != nullptr) {
        results.push_back(sat);
        // It has changed the marks ahead.
        block->collect(offset + 1, anchors);
      }
    }
  }
  trial.painter().finish();
}

}  // namespace vorlan
