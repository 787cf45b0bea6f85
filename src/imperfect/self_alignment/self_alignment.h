// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "imperfect/self_alignment/first_copy_bound.h"
#include "imperfect/self_alignment/self_alignment_kernel.h"
#include "imperfect/self_alignment/sparse_starts.h"

namespace vorlan {

/// The kernels that this processor can run, the narrowest registers first.
const std::vector<AlignmentKernel>& runnable_alignment_kernels();

/// The least score of an accepted repeat of each unit length.
using MinScoreOf = std::function<int(unsigned unit_length)>;

/// Offsets from `lowest` to `highest`, both included.
struct OffsetBand {
  std::ptrdiff_t lowest;
  std::ptrdiff_t highest;
};

/// The offsets that are looked at for the sake of a band of unit lengths.
OffsetBand offsets_of(const FirstCopyBound& bound, unsigned first, unsigned last,
                      const MinScoreOf& min_score_of);

/// Aligns a sequence with itself and keeps, for a band of unit lengths, the starts that may lead to
/// an accepted repeat; see first_copy_bound.h. Positions count from 0.
///
/// Use: judge a band, ask for its unit lengths, judge the next band.
class SelfAlignment {
 public:
  /// Survivors of a band may take this many bytes, or a fourth of a byte per residue when that is
  /// more.
  static constexpr std::size_t kMostMemory = std::size_t{64} << 20;

  /// `residues` must outlive this. `most_memory` is for tests.
  explicit SelfAlignment(std::string_view residues,
                         const AlignmentKernel& kernel = runnable_alignment_kernels().back(),
                         std::size_t most_memory = kMostMemory);

  /// Judges all starts for the unit lengths from `first` on, up to `last` if the survivors find
  /// room, and forgets those of the band before. `is_working` is called several times a second on a
  /// long sequence. Returns the last unit length that was judged, `first` or more.
  /// Requires that these are at most FirstCopyBound::kLongestUnit.
  /// Cost: two times residues * (last - first), with margins of a fourth, at some ten cells a
  /// nanosecond. Throws std::bad_alloc.
  unsigned judge(const FirstCopyBound& bound, unsigned first, unsigned last,
                 const MinScoreOf& min_score_of, const std::function<void()>& is_working);

  /// Whether the unit length belongs to the band that was judged last.
  bool has_judged(unsigned unit_length) const {
    return unit_length >= first_ && unit_length <= last_;
  }

  /// The starts that survive; among them may be some that are none, behind the last start or with a
  /// unit that holds N. Requires that the unit length was judged.
  const SparseStarts& survivors(unsigned unit_length) const {
    return survivors_[unit_length - first_];
  }

  /// Those of all unit lengths from `unit_length` on that were judged, to be narrowed down further.
  /// The same requirement.
  std::span<SparseStarts> survivors_from(unsigned unit_length) {
    return std::span(survivors_).subspan(unit_length - first_);
  }

 private:
  enum class Direction { kRight, kLeft };

  class Sweep;

  void align(Sweep& sweep, Direction direction, const std::function<void()>& is_working);
  /// Leaves out long units until the survivors fit.
  void make_room(Sweep& sweep, const std::vector<SparseStarts>& found);

  std::string_view residues_;
  AlignmentKernel kernel_;
  std::size_t most_memory_;
  unsigned first_ = 1;
  unsigned last_ = 0;
  std::vector<SparseStarts> survivors_;
};

}  // namespace vorlan
