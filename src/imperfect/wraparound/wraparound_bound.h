// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "imperfect/vector_level.h"
#include "imperfect/wraparound/wraparound_kernel.h"

namespace vorlan {

/// The kernels that this processor can run, the narrowest registers first.
const std::vector<WraparoundKernel>& runnable_wraparound_kernels();

/// Unit lengths from `first` to `last`, both included, in bases.
struct UnitLengths {
  std::ptrdiff_t first;
  std::ptrdiff_t last;
};

/// What looks of one kind have been worth of late: of starts that are narrowed down already they
/// may leave nearly all.
class LookRecord {
 public:
  /// Whether the next look will probably reject enough. Now and then it is tried all the same.
  bool is_worth_it();

  /// Adds a look at `judged` starts that left `kept` of them.
  void add(std::size_t judged, std::size_t kept);

 private:
  std::size_t judged_ = 0;
  std::size_t kept_ = 0;
  unsigned passed_over_ = 0;
};

/// One for each kind of look.
struct LookRecords {
  LookRecord narrow;
  LookRecord wide;
};

/// Tells which candidates cannot reach the least score, whatever way their extension takes. It
/// never rejects one that the extension would accept; see wraparound_kernel.h for why.
class WraparoundBound {
 public:
  /// Whether there is anything to judge by: no start is hopeless where no score is asked for, and
  /// scores must fit the lanes.
  static bool can_judge(std::ptrdiff_t unit_length, int min_score);

  /// For units of these lengths in `residues`, which must outlive this, with the penalties of the
  /// settings. `min_score` is the least that is asked for of any of them. Starts less than `group`
  /// bases apart are judged together, and so are all unit lengths: that is faster where most are
  /// hopeless, and leaves more. Requires that the longest unit can be judged, and
  /// 1 <= `group` <= the shortest unit. With `records`, which must outlive this, looks that they
  /// call worthless are left out.
  WraparoundBound(std::string_view residues, const UnitLengths& lengths, int min_score,
                  std::ptrdiff_t group = 1,
                  std::span<const WraparoundKernel> kernels = runnable_wraparound_kernels(),
                  LookRecords* records = nullptr);

  /// Moves those of `starts` that are not hopeless with all of the unit lengths to the front, in
  /// the same order. Returns how many they are. Requires rising order, and that the longest units
  /// of all starts lie in the sequence. Throws std::bad_alloc.
  std::size_t keep_survivors(std::span<std::ptrdiff_t> starts);

 private:
  struct Look {
    WraparoundPlan plan;
    bool is_narrow;
  };

  static std::size_t lanes(const Look& look, const WraparoundKernel& kernel) {
    return kernel.register_bytes / (look.is_narrow ? sizeof(std::uint8_t) : sizeof(std::int16_t));
  }

  void allocate();
  std::size_t keep_survivors(const Look& look, std::span<std::ptrdiff_t> starts);
  void judge(const Look& look, std::span<const StartGroup> groups, bool* can_reach);

  /// One, or two for units whose scores do not fit 8 bits: most starts gain so little that those
  /// are enough to reject them.
  std::vector<Look> looks_;
  std::ptrdiff_t group_;
  std::span<const WraparoundKernel> kernels_;  ///< The narrowest registers first.
  LookRecords* records_;
  RegisterMemory memory_;
};

}  // namespace vorlan
