// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/wraparound/joint_bound.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstdint>
#include <vector>

namespace vorlan {
namespace {

// The bench varies all but kFewestLengths: table "Tuning".

/// Unit lengths of the largest groups: this part of the unit length, since the floor of the longest
/// is so much lower than that of the shortest.
constexpr unsigned kLengthsInUnit = 10;
/// With one alone, nothing would be judged together.
constexpr unsigned kFewestLengths = 2;

/// A group has so many times the unit lengths of the next smaller ones.
constexpr unsigned kSplit = 6;

/// Starts that are no more than this part of a unit and one more apart are judged together.
constexpr std::ptrdiff_t kJointGroupsInUnit = 14;
constexpr std::ptrdiff_t kFewestStarts = 2;

/// Enough to fill several batches of the kernel, few enough for a second between two calls that
/// tell that work goes on.
constexpr std::size_t kStartsAtOnce = 1 << 12;

/// The sets of several unit lengths, of which the first is `first_length`, as one: of each, the
/// starts that the marks allow.
class UnitedStarts {
 public:
  UnitedStarts(std::span<const SparseStarts> sets, std::size_t first_length,
               const CAnchorSeq& anchors)
      : first_length_(first_length), anchors_(anchors), readers_(sets.begin(), sets.end()) {}

  /// As SparseStarts::Reader.
  std::ptrdiff_t next_word(std::ptrdiff_t position) {
    std::ptrdiff_t next = SparseStarts::kNone;
    for (SparseStarts::Reader& reader : readers_) {
      const std::ptrdiff_t word = reader.next_word(position);
      if (word != SparseStarts::kNone && (next == SparseStarts::kNone || word < next)) next = word;
    }
    return next;
  }

  /// The same, but requires that units of the first of the 64 starts lie in the sequence.
  std::uint64_t word(std::ptrdiff_t position) {
    std::uint64_t starts = 0;
    std::size_t unit_length = first_length_;
    for (SparseStarts::Reader& reader : readers_) {
      if (const std::uint64_t similar = reader.word(position); similar != 0) {
        starts |= similar & anchors_.may_anchor(position / kBitsPerWord, unit_length);
      }
      ++unit_length;
    }
    return starts;
  }

 private:
  std::size_t first_length_;
  const CAnchorSeq& anchors_;
  std::vector<SparseStarts::Reader> readers_;
};

/// The bits of the starts up to `last`, of 64 from `position` on.
std::uint64_t up_to(std::ptrdiff_t last, std::ptrdiff_t position) {
  const std::ptrdiff_t behind = position + kBitsPerWord - 1 - last;
  if (behind <= 0) return ~std::uint64_t{0};
  return behind < kBitsPerWord ? ~std::uint64_t{0} >> behind : 0;
}

/// Adds to `rejected` those of `starts` that are not among `kept`. Both are in rising order.
void add_rejected(std::span<const std::ptrdiff_t> starts, std::span<const std::ptrdiff_t> kept,
                  SparseStarts& rejected) {
  for (auto start = starts.begin(); start != starts.end();) {
    const std::ptrdiff_t word = *start - *start % kBitsPerWord;
    std::uint64_t bits = 0;
    for (; start != starts.end() && *start < word + kBitsPerWord; ++start) {
      if (!kept.empty() && kept.front() == *start) {
        kept = kept.subspan(1);
      } else {
        bits |= std::uint64_t{1} << (*start - word);
      }
    }
    rejected.add_rising(word, bits);
  }
}

}  // namespace

bool JointBound::narrow_down(unsigned unit_length, std::span<SparseStarts> starts,
                             const UnitLengthThresholds& min_scores, const CAnchorSeq& anchors,
                             const std::function<void()>& is_working) {
  assert(!starts.empty());
  unsigned last = unit_length + static_cast<unsigned>(starts.size()) - 1;
  unsigned together = std::max(kFewestLengths, unit_length / kLengthsInUnit);
  for (Level& level : levels_) {
    last = std::min(last, unit_length + together - 1);
    if (unit_length > level.judged_until) {
      int min_score = min_scores[unit_length];
      for (unsigned i = unit_length; i <= last; ++i) min_score = std::min(min_score, min_scores[i]);
      if (!WraparoundBound::can_judge(last, min_score)) return false;
      judge(level, {unit_length, last}, starts.first(last + 1 - unit_length), min_score, anchors,
            is_working);
      level.judged_until = last;
      if (last == unit_length) break;
    }
    last = level.judged_until;
    together = std::max(1U, together / kSplit);
  }
  return true;
}

void JointBound::judge(Level& level, const UnitLengths& lengths, std::span<SparseStarts> starts,
                       int min_score, const CAnchorSeq& anchors,
                       const std::function<void()>& is_working) {
  const std::ptrdiff_t group = kFewestStarts + lengths.first / kJointGroupsInUnit;
  WraparoundBound bound(residues_, lengths, min_score, group, runnable_wraparound_kernels(),
                        &level.records);
  SparseStarts rejected;
  std::vector<std::ptrdiff_t> doubtful;
  const auto judge_doubtful = [&] {
    std::vector<std::ptrdiff_t> kept = doubtful;
    kept.resize(bound.keep_survivors(kept));
    add_rejected(doubtful, kept, rejected);
    doubtful.clear();
    is_working();
  };
  UnitedStarts united(starts, static_cast<std::size_t>(lengths.first), anchors);
  const std::ptrdiff_t last_start = std::ssize(residues_) - lengths.last;
  for (std::ptrdiff_t word = united.next_word(0); word != SparseStarts::kNone && word <= last_start;
       word = united.next_word(word + kBitsPerWord)) {
    for (std::uint64_t left = united.word(word) & up_to(last_start, word); left != 0;
         left &= left - 1) {
      doubtful.push_back(word + std::countr_zero(left));
    }
    if (doubtful.size() >= kStartsAtOnce) judge_doubtful();
  }
  if (!doubtful.empty()) judge_doubtful();
  for (SparseStarts& set : starts) set.subtract(rejected);
}

}  // namespace vorlan
