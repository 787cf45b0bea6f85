// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <map>
#include <vector>

#include "imperfect/record_search.h"
#include "search/canchorseq.h"
#include "search/csat.h"

namespace vorlan {

/// An accepted repeat of the current unit length, with the parts of its alignment that stand in
/// stored ways instead of in its events.
struct AcceptedRepeat {
  Csat* sat;
  PassedOver passed_over;
};

/// Keeps the marks of the record as accepted repeats require it: each closes its span and opens its
/// edit positions.
///
/// Idea: in an array thousands of repeats in a row cover the same megabase, and only the last one
/// that covers a position decides its mark. So spans are kept as a map from stretches to the last
/// repeat that covers them, and marks are painted when the scan comes near, or when the scan is
/// over.
///
/// Invariant: the marks from the scan position up to `painted_until` are as if every accepted
/// repeat had been painted at once.
///
/// Example: the scan has painted up to 100 when it accepts [40, 500) from 40, and then [60, 700)
/// from 60. Painted at once are [40, 100) and [60, 100). The map holds [40, 60) of the first and
/// [60, 700) of the second repeat: the 400 marks of [100, 500) are painted once, not twice, and an
/// edit position of the first repeat in that stretch stays closed. Had the second been [500, 700),
/// every mark would be painted once either way: repeats that lie side by side gain nothing.
///
/// Cost: a map entry for each stretch, each mark painted once or twice. Without late marks the
/// painter paints each repeat whole when it is accepted. Events that are pending are released when
/// they have been painted: 32 MB of them at most, and those of one repeat, wait for that.
class MarkPainter {
 public:
  /// Paints `anchors`, the marks of the record. Both must outlive the painter.
  MarkPainter(CAnchorSeq& anchors, RecordSearch& record)
      : anchors_(anchors),
        ways_(record.ways()),
        is_late_(record.accelerations().late_marks),
        painted_until_(record.begin()) {}

  /// The marks, right where they are painted.
  const CAnchorSeq& anchors() const { return anchors_; }

  /// Makes the marks right up to `end`. Cost: linear in what is painted, all in all.
  void paint_until(const char* end);

  /// Adds a repeat that was found from the start `scan_position`. The record must stay where it is
  /// until `finish`.
  void accept(AcceptedRepeat repeat, const char* scan_position);

  /// Forgets the stored ways if there are too many, and releases events if too many wait, after
  /// painting what needs them.
  void make_room();

  /// Makes all marks right. Afterwards the painter needs no stored ways and no events.
  void finish();

 private:
  struct Stretch {
    const char* end;
    std::size_t repeat;
  };
  using Stretches = std::map<const char*, Stretch>;

  static constexpr std::size_t kMostEventsToWait = 2'000'000;  ///< 16 bytes each.

  void cover(const char* begin, const char* end, std::size_t repeat);
  Stretches::iterator split_at(const char* position);
  void paint(const char* begin, const char* end);
  void paint_stretch(const AcceptedRepeat& repeat, const char* begin, const char* end);
  template <class Direction>
  void open_edits(const WaySegment& segment, const char* begin, const char* end);

  CAnchorSeq& anchors_;
  StoredWays& ways_;
  bool is_late_;
  const char* painted_until_;
  std::vector<AcceptedRepeat> repeats_;
  std::size_t waiting_events_ = 0;  ///< Of those repeats.
  Stretches stretches_;             ///< Disjoint, by begin.
};

}  // namespace vorlan
