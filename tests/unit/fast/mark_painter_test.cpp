// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Marks that are painted when the scan comes near against marks painted with every repeat at once.

#include "imperfect/late_marks/mark_painter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <optional>
#include <string>

#include "description.h"
#include "extension_settings.h"
#include "imperfect/extension.h"
#include "plain_candidate.h"
#include "plain_marks.h"
#include "random.h"
#include "random_residues.h"
#include "search/csearchcontroller.h"
#include "support/dna.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

using differential::Random;
using reference::Settings;

/// A painter and its twin over one sequence.
class PaintedSequence {
 public:
  PaintedSequence(const Dna& dna, RecordSearch& record)
      : dna_(dna),
        length_(dna.end() - dna.at(0)),
        // One residue more than there is, so that the last one can be asked for as a start.
        anchors_(dna.at(0), static_cast<std::size_t>(length_) + 1),
        plain_(dna.at(0), static_cast<std::size_t>(length_)),
        record_(record) {
    begin_scan();
  }

  /// Goes back to the first residue, over the marks that are there.
  void begin_scan() {
    painter_.emplace(anchors_, record_);
    painted_until_ = 0;
  }

  std::ptrdiff_t painted_until() const { return painted_until_; }

  void paint_until(std::ptrdiff_t end) {
    painted_until_ = std::min(end, length_);
    painter_->paint_until(dna_.at(painted_until_));
  }

  /// `complete` has all events of the repeat.
  void accept(AcceptedRepeat repeat, const Csat& complete, std::ptrdiff_t scan_position) {
    painter_->accept(std::move(repeat), dna_.at(scan_position));
    plain_.close(complete);
  }

  void finish() { painter_->finish(); }

  void expect_same_marks(std::ptrdiff_t begin, std::ptrdiff_t end) const {
    for (std::ptrdiff_t position = begin; position < end; ++position) {
      // A stretch of one residue may be tried exactly when its own mark is open.
      const std::uint64_t bits = anchors_.may_anchor(position / 64, 1);
      ASSERT_EQ((bits >> position % 64 & 1) != 0, plain_.is_open(position))
          << "position " << position;
    }
  }

  void expect_same_marks() const { expect_same_marks(0, length_); }

 private:
  const Dna& dna_;
  std::ptrdiff_t length_;
  CAnchorSeq anchors_;
  PlainMarks plain_;
  RecordSearch& record_;
  std::optional<MarkPainter> painter_;
  std::ptrdiff_t painted_until_ = 0;
};

/// A repeat around `start`, with edits inside.
void make_random_repeat(Random& random, const Dna& dna, std::ptrdiff_t start, Csat& sat) {
  const auto length = static_cast<int>(dna.end() - dna.at(0));
  const int reach = random.per_cent(70) ? 40 : length;
  const std::ptrdiff_t left = std::max<std::ptrdiff_t>(0, start - random.between(0, reach));
  const std::ptrdiff_t right =
      std::min<std::ptrdiff_t>(length, start + 1 + random.between(0, reach));
  sat.init(dna.at(left), dna.at(right));
  const int edits = random.between(0, 1 + static_cast<int>(right - left) / 5);
  for (int i = 0; i < edits; ++i) {
    sat.missense.push_back(
        {dna.at(random.between(static_cast<int>(left), static_cast<int>(right) - 1)),
         kMismatchEvent});
  }
  sat.sort_missense();
}

TEST(MarkPainter, PaintsWholeRepeatsAsIfEachWerePaintedAtOnce) {
  for (int seed = 0; seed < 60 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    const std::ptrdiff_t length = random.between(1, 400);
    const Dna dna(std::string(static_cast<std::size_t>(length), 'A'));
    RecordSearch record(dna.residues.view(), 1, SeedKind::kUnit, {});
    PaintedSequence painted(dna, record);
    std::list<Csat> sats;
    // As for two unit lengths: the second scan goes over marks that the first has left.
    for (int scan = 0; scan < 2; ++scan) {
      painted.begin_scan();
      for (std::ptrdiff_t start = 0; start < length; start += random.between(1, 12)) {
        if (start >= painted.painted_until()) painted.paint_until(start + random.between(1, 150));
        make_random_repeat(random, dna, start, sats.emplace_back());
        painted.accept({&sats.back(), {}}, sats.back(), start);
        ASSERT_NO_FATAL_FAILURE(painted.expect_same_marks(start, painted.painted_until()));
      }
      painted.finish();
      ASSERT_NO_FATAL_FAILURE(painted.expect_same_marks());
    }
  }
}

class MarkPainterWithStoredWays : public FreshSettings {};

/// Copies the span and all events of a repeat.
void copy_marks_of(const reference::Repeat& repeat, const Dna& dna, Csat& sat) {
  sat.init(dna.at(0) + repeat.begin, dna.at(0) + repeat.end);
  for (const reference::Event& event : repeat.events) {
    sat.missense.push_back({dna.at(0) + event.position, event.kind});
  }
}

/// Extends candidates of an array and hands them to the painter with what they have in stored ways.
class ArrayScan {
 public:
  ArrayScan(const std::string& residues, const Settings& settings, std::size_t unit_length)
      : residues_(residues),
        settings_(settings),
        unit_length_(unit_length),
        dna_(residues),
        record_(dna_.residues.view(), static_cast<unsigned>(unit_length), SeedKind::kUnit, {}),
        painted_(dna_, record_) {}

  void run(Random& random) {
    const auto starts = static_cast<std::ptrdiff_t>(residues_.size() - unit_length_);
    std::ptrdiff_t start = random.between(0, 20);
    while (start < starts) {
      if (start >= painted_.painted_until()) painted_.paint_until(start + random.between(1, 600));
      if (holds_only_bases({dna_.at(start), unit_length_})) {
        ASSERT_NO_FATAL_FAILURE(accept(start, random.per_cent(20)));
        ASSERT_NO_FATAL_FAILURE(painted_.expect_same_marks(start, painted_.painted_until()));
      }
      start += random.between(1, 1 + static_cast<int>(residues_.size()) / 25);
    }
    painted_.finish();
    painted_.expect_same_marks();
  }

  std::size_t segments() const { return segments_; }

 private:
  void accept(std::ptrdiff_t start, bool note_events) {
    Csat& sat = sats_.emplace_back();
    sat.init(dna_.at(start), dna_.at(start) + unit_length_);
    AcceptedRepeat repeat{&sat, {}};
    extend<Forward>(sat, dna_.end(), record_, repeat.passed_over.forward);
    extend<Backward>(sat, dna_.at(0), record_, repeat.passed_over.backward);
    sat.trim_Ns();
    if (note_events) {
      record_.ways().append_events<Forward>(repeat.passed_over.forward, sat);
      record_.ways().append_events<Backward>(repeat.passed_over.backward, sat);
      repeat.passed_over.forward.clear();
      repeat.passed_over.backward.clear();
    }
    segments_ += repeat.passed_over.forward.size() + repeat.passed_over.backward.size();
    Csat complete;
    copy_marks_of(
        extended_plainly(residues_, settings_, static_cast<std::size_t>(start), unit_length_), dna_,
        complete);
    ASSERT_EQ(sat.pos_left, complete.pos_left);
    ASSERT_EQ(sat.pos_right, complete.pos_right);
    painted_.accept(std::move(repeat), complete, start);
  }

  std::string_view residues_;
  const Settings& settings_;
  std::size_t unit_length_;
  Dna dna_;
  RecordSearch record_;
  PaintedSequence painted_;
  std::list<Csat> sats_;
  std::size_t segments_ = 0;
};

/// Some arrays in a row of the same unit, with N and other residues between them.
std::string random_arrays(Random& random, const std::string& unit) {
  std::string residues;
  const int arrays = random.between(1, 3);
  for (int i = 0; i < arrays; ++i) {
    residues += differential::random_residues(random, random.below(40), "ACGT");
    residues += differential::diverged(random, differential::array_of(unit, 50 + random.below(900)),
                                       random.between(5, 90));
  }
  if (random.per_cent(40)) differential::overwrite_with_Ns(random, residues, 5, 3);
  return residues;
}

TEST_F(MarkPainterWithStoredWays, PaintsEditsOnThemAsIfEachRepeatWerePaintedAtOnce) {
  std::size_t segments = 0;
  for (int seed = 0; seed < 60 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    Settings settings = random_unlimited_settings(random);
    settings.maximum_recursion_depth = random.between(1, 3);
    reference::set_settings_of_the_product(settings);
    const std::size_t unit_length = 1 + random.below(random.per_cent(80) ? 8 : 35);
    const std::string unit = differential::random_residues(random, unit_length, "ACGT");
    const std::string residues = random_arrays(random, unit);
    ArrayScan scan(residues, settings, unit_length);
    ASSERT_NO_FATAL_FAILURE(scan.run(random)) << differential::describe(settings) << "\n"
                                              << residues;
    segments += scan.segments();
  }
  EXPECT_GT(segments, 500U * kWorkload);
}

/// A repeat over all of `dna` with so many edits in its middle that they are pending.
void make_repeat_with_pending_events(const Dna& dna, std::size_t events, Csat& sat) {
  sat.init(dna.at(0), dna.end());
  for (std::size_t i = 0; i < events; ++i) sat.missense.push_back({dna.at(50), kMismatchEvent});
  sat.events_pending = true;
}

/// A painter, late or not, over 100 residues.
struct PaintedResidues {
  explicit PaintedResidues(bool late_marks)
      : dna(std::string(100, 'A')),
        record(dna.residues.view(), 1, SeedKind::kUnit, {.late_marks = late_marks}),
        anchors(dna.at(0), 100),
        painter(anchors, record) {}

  bool is_open(int position) const {
    return (anchors.may_anchor(position / 64, 1) >> position % 64 & 1) != 0;
  }

  const Dna dna;
  RecordSearch record;
  CAnchorSeq anchors;
  MarkPainter painter;
};

TEST(MarkPainter, ReleasesPendingEventsWhenAllMarksArePainted) {
  PaintedResidues painted(true);
  Csat pending;
  make_repeat_with_pending_events(painted.dna, 65, pending);
  Csat complete;
  make_repeat_with_pending_events(painted.dna, 64, complete);
  complete.events_pending = false;
  painted.painter.accept({&complete, {}}, painted.dna.at(0));
  painted.painter.accept({&pending, {}}, painted.dna.at(0));
  EXPECT_EQ(pending.missense.size, 65U);
  painted.painter.finish();
  EXPECT_EQ(pending.missense.buf, nullptr);
  EXPECT_EQ(complete.missense.size, 64U);
  EXPECT_TRUE(painted.is_open(50));
  EXPECT_FALSE(painted.is_open(52));
}

TEST(MarkPainter, ReleasesPendingEventsAtOnceWhenItPaintsAtOnce) {
  PaintedResidues painted(false);
  Csat pending;
  make_repeat_with_pending_events(painted.dna, 65, pending);
  painted.painter.accept({&pending, {}}, painted.dna.at(0));
  EXPECT_EQ(pending.missense.buf, nullptr);
  EXPECT_TRUE(painted.is_open(50));
  EXPECT_FALSE(painted.is_open(52));
}

TEST(MarkPainter, MakesRoomWhenMoreThanTwoMillionEventsWait) {
  PaintedResidues painted(true);
  Csat many;
  make_repeat_with_pending_events(painted.dna, 1'999'999, many);
  Csat few;
  make_repeat_with_pending_events(painted.dna, 1, few);
  Csat one_more;
  make_repeat_with_pending_events(painted.dna, 1, one_more);
  painted.painter.accept({&many, {}}, painted.dna.at(0));
  painted.painter.accept({&few, {}}, painted.dna.at(0));
  painted.painter.make_room();
  EXPECT_EQ(many.missense.size, 1'999'999U);
  painted.painter.accept({&one_more, {}}, painted.dna.at(0));
  painted.painter.make_room();
  EXPECT_EQ(many.missense.buf, nullptr);
  EXPECT_EQ(few.missense.buf, nullptr);
  EXPECT_EQ(one_more.missense.buf, nullptr);
  EXPECT_TRUE(painted.is_open(50));
  EXPECT_FALSE(painted.is_open(52));
  // What waited is painted: room is made anew only when as much waits again.
  Csat next;
  make_repeat_with_pending_events(painted.dna, 2'000'000, next);
  painted.painter.accept({&next, {}}, painted.dna.at(0));
  painted.painter.make_room();
  EXPECT_EQ(next.missense.size, 2'000'000U);
}

/// The repeats of a search for one unit length in the order in which it found them: by their start.
std::vector<const Csat*> in_order_of_starts(const std::list<Csat*>& sats) {
  std::vector<const Csat*> ordered(sats.begin(), sats.end());
  std::sort(ordered.begin(), ordered.end(),
            [](const Csat* a, const Csat* b) { return a->unit_begin < b->unit_begin; });
  return ordered;
}

// A search that painted too little, or later than needed, would start where the marks are closed.
TEST_F(MarkPainterWithStoredWays, LeadsASearchOnlyToStartsThatMarksPaintedAtOnceAllow) {
  std::size_t repeats_with_many_edits = 0;
  for (int seed = 0; seed < 4 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    const std::string unit = differential::random_residues(random, 2 + random.below(6), "ACGT");
    Dna dna(
        differential::diverged(random, differential::array_of(unit, 3000), random.between(30, 60)));
    init_param();
    search_only(static_cast<unsigned>(unit.size()));
    // With it on, hidden repeats would go; without it, all that were found get their events.
    global_remove_mostly_hidden = false;
    CSearchController::reset_minimum_arrays();
    CSearchController search(1, dna);
    search.complete_imperfect_search(nullptr);
    search.remove_hidden(search.imperfect_sats);
    search.complete_events(search.imperfect_sats);

    PlainMarks marks(dna.at(0), static_cast<std::size_t>(dna.end() - dna.at(0)));
    const auto unit_length = static_cast<std::ptrdiff_t>(unit.size());
    for (const Csat* sat : in_order_of_starts(search.imperfect_sats)) {
      ASSERT_TRUE(marks.may_anchor(sat->unit_begin - dna.at(0), unit_length))
          << "start " << sat->unit_begin - dna.at(0);
      marks.close(*sat);
      repeats_with_many_edits += sat->missense.size > 64 ? 1 : 0;
    }
  }
  EXPECT_GT(repeats_with_many_edits, 2U * kWorkload);
}

}  // namespace
}  // namespace vorlan
