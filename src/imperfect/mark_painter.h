// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <map>
#include <vector>

#include "imperfect/unit_paths.h"
#include "search/canchorseq.h"
#include "search/csat.h"

namespace vorlan {

/// An accepted repeat of the current unit length, with the parts of its alignment that stand in
/// stored ways instead of in its events.
struct AcceptedRepeat {
  const Csat* sat;
  PassedOver passed_over;
};

/// Keeps the marks of the sequence as accepted repeats require it: each closes its span and opens
/// its edit positions.
///
/// Idea: in an array thousands of repeats in a row cover the same megabase, and only the last one
/// that covers a position decides its mark. So spans are kept as a map from stretches to the last
/// repeat that covers them, and marks are painted when the scan comes near, or when the scan is
/// over.
///
/// Invariant: the marks from the scan position up to `painted_until` are as if every accepted
/// repeat had been painted at once.
class MarkPainter {
 public:
  /// All must outlive the painter.
  MarkPainter(CAnchorSeq& anchors, const UnitPaths& paths, const char* seq_begin)
      : anchors_(anchors), paths_(paths), painted_until_(seq_begin) {}

  /// Makes the marks right up to `end`. Cost: linear in what is painted, all in all.
  void paint_until(const char* end);

  /// Adds a repeat that was found from the start `scan_position`. The record must stay where it is
  /// until `finish`.
  void accept(AcceptedRepeat repeat, const char* scan_position);

  /// Makes all marks right. Afterwards the stored ways are no longer needed.
  void finish();

 private:
  struct Stretch {
    const char* end;
    std::size_t repeat;
  };
  using Stretches = std::map<const char*, Stretch>;

  void cover(const char* begin, const char* end, std::size_t repeat);
  Stretches::iterator split_at(const char* position);
  void paint(const char* begin, const char* end);
  void paint_stretch(const AcceptedRepeat& repeat, const char* begin, const char* end);
  template <class Direction>
  void open_edits(const PathSegment& segment, const char* begin, const char* end);

  CAnchorSeq& anchors_;
  const UnitPaths& paths_;
  const char* painted_until_;
  std::vector<AcceptedRepeat> repeats_;
  Stretches stretches_;  ///< Disjoint, by begin.
};

}  // namespace vorlan
