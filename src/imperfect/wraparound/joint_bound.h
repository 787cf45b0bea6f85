// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The wraparound bound for several unit lengths at once.
//
// Idea: where the sequence resembles itself so many bases on, it does so for a whole band of unit
// lengths, since an extension bridges gaps: copies of an interspersed repeat 390 bases apart make
// candidates of the unit lengths from some 340 to 440, from each of their starts. Nearly all are
// hopeless, and for the same reason. So the bound judges many unit lengths together, throughout
// the record. What it leaves it judges in smaller groups, and at last each unit length alone.
//
//     unit lengths   40 41 42 43 44 45 46 47 48 ..
//     asked for 40   [         ]                      four together,
//                    [ ]                              then 40 alone
//               41      [ ]                           what is left of the four
//               44               [         ] ..
//
// Why nothing is lost: a group of the bound holds the paths of all its starts with all its unit
// lengths (wraparound_kernel.h). It asks for the least score of any of them, above the floor of the
// longest.
//
// Marks: only starts that the marks allow for one of the unit lengths are judged. What they close
// later was judged in vain, so a unit length is judged alone only when its turn comes. What they
// open later is left as it was found, to the extension.
//
// Looks that leave nearly all are left out for a while: what passes the larger groups is often
// similar enough for the smaller ones, too.
//
// Example, start 0 of ACAACACACAC with units of 2 and 3: AC has 1 point, ACA has 3. Together they
// have 8, by a path that takes ACA and then CA over and over. If 8 points are needed, both are left
// together, and each is rejected alone. If 9 are needed, one look rejects both.
//
// Cost: as of the bound, with cells for so many more bases as there are unit lengths. Memory: the
// starts that are judged at once.

#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <span>
#include <string_view>

#include "imperfect/self_alignment/sparse_starts.h"
#include "imperfect/wraparound/wraparound_bound.h"
#include "search/canchorseq.h"
#include "search/thresholds.h"

namespace vorlan {

/// Narrows down the starts of one record that are similar to the sequence one unit length on.
///
/// Use: for each unit length in rising order, `narrow_down`.
class JointBound {
 public:
  /// `residues` must outlive this.
  explicit JointBound(std::string_view residues) : residues_(residues) {}

  /// Removes hopeless starts, offsets in the residues, from the set of `unit_length` and of some
  /// unit lengths behind it: `starts` are the sets of `unit_length`, of the next one and so on.
  /// Starts that `anchors` close, and those so near to the end that the longest unit they are
  /// judged with has no room, stay in the sets. `is_working` is called about once a second or more
  /// often. Returns false if the bound cannot judge; the set of `unit_length` may then hold starts
  /// that no look has judged. Throws std::bad_alloc.
  bool narrow_down(unsigned unit_length, std::span<SparseStarts> starts,
                   const UnitLengthThresholds& min_scores, const CAnchorSeq& anchors,
                   const std::function<void()>& is_working);

 private:
  /// Groups of one size.
  struct Level {
    unsigned judged_until = 0;  ///< The last unit length of the group that was judged last.
    LookRecords records;
  };

  void judge(Level& level, const UnitLengths& lengths, std::span<SparseStarts> starts,
             int min_score, const CAnchorSeq& anchors, const std::function<void()>& is_working);

  std::string_view residues_;
  std::array<Level, 3> levels_;  ///< The largest groups first.
};

}  // namespace vorlan
