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
// one repeated base exclude by the rules, and those that the filter proves to be rejected
// (candidate_filter_kernel.h; series_filter.h for short records). Since the latter leave no trace,
// the result is the same.
//
// Example, unit length 2: ACACAGACACAC is found from its first position, with a mismatch at G. Its
// span is closed except for G; starts at and right behind G may be tried again.
//
// Marks last from unit length 2 to the longest: a repeat of AC closes its span for ACAC. Only the
// pass for unit length 1 is forgotten: runs of one base must not hide longer units.

#include <algorithm>
#include <deque>
#include <optional>

#include "config/settings.h"
#include "imperfect/candidate_filter.h"
#include "imperfect/extension.h"
#include "imperfect/mark_painter.h"
#include "imperfect/self_alignment/self_alignment.h"
#include "imperfect/series_filter.h"
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

/// What was found out about the starts of one unit length before; each may be null.
struct KnownStarts {
  const JudgedStarts* judged = nullptr;   ///< By the series of a short record.
  const SparseStarts* similar = nullptr;  ///< Survivors of the self-alignment.
};

/// Blocks of starts in a row, of which the first one has been judged. The filter looks at the
/// starts of several blocks together, unless those of a short record have been judged before.
/// Blocks without survivors of the self-alignment are passed over.
class StartQueue {
 public:
  StartQueue(const char* seq_begin, std::ptrdiff_t end_of_starts, unsigned unit_length,
             int min_score, const BitPlanes& planes, const KnownStarts& known)
      : seq_begin_(seq_begin),
        end_of_starts_(end_of_starts),
        unit_length_(unit_length),
        planes_(planes),
        judged_(known.judged),
        filter_(planes, unit_length, min_score, end_of_starts) {
    if (known.similar != nullptr) similar_.emplace(*known.similar);
  }

  /// The next block, ready to be collected; null when there is none.
  StartBlock* next(MarkPainter& painter, const CAnchorSeq& anchors) {
    if (!blocks_.empty()) blocks_.pop_front();
    while (!is_first_judged()) {
      pass_over_blocks();
      if (next_ < end_of_starts_ && blocks_.size() < kMostBlocks) {
        add_block(painter, anchors);
        if (filter_.doubts() < kFilterStarts) continue;
      } else if (blocks_.empty()) {
        return nullptr;
      }
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
    return *std::find_if(blocks_.begin(), blocks_.end(),
                         [=](const StartBlock& block) { return start < block.end(); });
  }

  void pass_over_blocks() {
    if (!similar_ || next_ >= end_of_starts_) return;
    const std::ptrdiff_t word = similar_->next_word(next_);
    next_ = word == SparseStarts::kNone ? end_of_starts_ : word - word % StartBlock::kStarts;
  }

  void add_block(MarkPainter& painter, const CAnchorSeq& anchors) {
    // The last start of the block looks at the mark behind its unit.
    painter.paint_until(seq_begin_ + std::min(next_ + StartBlock::kStarts, end_of_starts_) +
                        unit_length_);
    StartBlock& block = blocks_.emplace_back(next_, end_of_starts_, unit_length_, anchors, planes_);
    next_ = block.end();
    if (judged_ != nullptr) {
      block.set_survivors([this](auto start) { return judged_->survivors(unit_length_, start); });
    } else if (similar_) {
      const auto survivors = [this](auto start) { return similar_->word(start); };
      if (filter_.can_judge()) {
        block.doubt_survivors(survivors, [this](auto start) { filter_.doubt(start); });
      } else {
        block.set_survivors(survivors);
      }
    } else if (block.has_survivors()) {
      filter_.glance(block.first_word(), block.survivors());
    }
  }

  const char* seq_begin_;
  std::ptrdiff_t end_of_starts_;
  unsigned unit_length_;
  const BitPlanes& planes_;
  const JudgedStarts* judged_;
  std::optional<SparseStarts::Reader> similar_;
  CandidateFilter filter_;
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
  SelfAlignment alignment({seq_begin(), seq_length()});
  for (unsigned unit_len = global_min_unit_length; unit_len <= longest_unit(); ++unit_len) {
    judge_similarity(unit_len, context.settings, alignment);
    one_unit_len_complete_imperfect_search(unit_len, planes, context, paths, alignment, anchors,
                                           imperfect_sats);
    if (unit_len == 1) anchors.reset();
  }
  imperfect_sats.sort(lessThan_sat);
}

// A band of unit lengths at a time, as long as the self-alignment can judge them.
void CSearchController::judge_similarity(unsigned unit_len, const AlignmentSettings& settings,
                                         SelfAlignment& alignment) {
  const FirstCopyBound bound(settings, unit_len);
  const auto can_judge = [&](unsigned length) {
    return length <= longest_unit() && bound.can_judge(length, (*minScores)[length]) &&
           (judged_starts_ == nullptr || !judged_starts_->know(length));
  };
  if (alignment.has_judged(unit_len) || !can_judge(unit_len)) return;
  unsigned last = unit_len;
  while (can_judge(last + 1)) ++last;
  alignment.judge(
      bound, unit_len, last, [](unsigned length) { return (*minScores)[length]; },
      [&] {
        if (!console_.check_report_status()) return;
        console_.report_status(sequence_number, sequence.name.terminate(), unit_len, 'r');
      });
}

void CSearchController::one_unit_len_complete_imperfect_search(
    unsigned unit_len, const BitPlanes& planes, ExtensionContext& context, UnitPaths& paths,
    const SelfAlignment& alignment, CAnchorSeq& anchors, std::list<Csat*>& results) {
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
  KnownStarts known;
  if (is_judged) known.judged = judged_starts_;
  if (alignment.has_judged(unit_len)) known.similar = &alignment.survivors(unit_len);
  StartQueue queue(seq_begin(), scan.starts(), unit_len, min_score, planes, known);
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
  report_progress(progress, scan.starts());
}

}  // namespace vorlan
