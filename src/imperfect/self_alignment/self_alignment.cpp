// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/self_alignment/self_alignment.h"

#include <algorithm>
#include <bit>
#include <limits>

#include "imperfect/self_alignment/residue_codes.h"
#include "imperfect/vector_level.h"

namespace vorlan {
namespace {

using Lane = std::int16_t;
constexpr std::ptrdiff_t kGroup = kAlignmentGroup;
constexpr std::ptrdiff_t kSteps = kAlignmentSteps;

/// Residues are made codes for so many tiles at once.
constexpr std::ptrdiff_t kTilesPerChunk = 16;

/// Cells between two calls that tell that work goes on: a fraction of a second.
constexpr std::ptrdiff_t kCellsPerCall = std::ptrdiff_t{1} << 28;

/// More than any score that is kept.
constexpr Lane kNeverReached = std::numeric_limits<Lane>::max();

/// Whole registers in a row.
struct alignas(64) Group {
  Lane lanes[kAlignmentGroup];
};

/// A row of lanes, with a group before and one behind that can be read.
class Row {
 public:
  explicit Row(std::ptrdiff_t groups) : groups_(static_cast<std::size_t>(groups) + 2) {}
  Lane* begin() { return groups_[1].lanes; }

 private:
  std::vector<Group> groups_;
};

std::ptrdiff_t rounded_up(std::ptrdiff_t number, std::ptrdiff_t unit) {
  return (number + unit - 1) / unit * unit;
}

}  // namespace

// Whole groups of lanes, of which the first belongs to an even offset.
OffsetBand offsets_of(const FirstCopyBound& bound, unsigned first, unsigned last,
                      const MinScoreOf& min_score_of) {
  const std::ptrdiff_t highest = rounded_up(last + bound.margin(last, min_score_of(last), 1), 2);
  const std::ptrdiff_t below = first - bound.margin(first, min_score_of(first), -1);
  return {highest + 1 - rounded_up(highest + 1 - below, 2 * kGroup), highest};
}

/// Rows and codes for one band of offsets, and the tiles that it is covered with. Tile i begins at
/// the antidiagonal i * 2 * kSteps.
class SelfAlignment::Sweep {
 public:
  Sweep(const FirstCopyBound& bound, std::string_view residues, unsigned first, unsigned last,
        const MinScoreOf& min_score_of)
      : residues_(static_cast<std::ptrdiff_t>(residues.size())),
        codes_(residues, bound.longest_N_run()),
        band_(offsets_of(bound, first, last, min_score_of)),
        lanes_((band_.highest + 1 - band_.lowest) / 2),
        scores_{Row(groups()), Row(groups())},
        caps_{Row(groups()), Row(groups())},
        wanted_{Row(groups()), Row(groups())},
        costs_(bound.costs()) {
    for (int odd = 0; odd < 2; ++odd) {
      hits_[odd].resize(static_cast<std::size_t>(groups() * kSteps));
      has_hits_[odd].resize(static_cast<std::size_t>(groups()));
      for (std::ptrdiff_t lane = -1; lane <= lanes_; ++lane) {
        const std::ptrdiff_t offset = offset_of(odd, lane);
        const auto unit_length = static_cast<unsigned>(
            std::clamp<std::ptrdiff_t>(offset, static_cast<std::ptrdiff_t>(first), last));
        const int min_score = min_score_of(unit_length);
        caps_[odd].begin()[lane] = bound.cap(offset, unit_length, min_score);
        wanted_[odd].begin()[lane] =
            offset == unit_length ? bound.wanted(unit_length, min_score) : kNeverReached;
      }
    }
    left_.resize(static_cast<std::size_t>(kTilesPerChunk * kSteps + lanes_ + 1));
    right_.resize(left_.size());
  }

  std::ptrdiff_t cells_per_chunk() const { return 2 * kTilesPerChunk * kSteps * lanes_; }

  /// Before and behind the tiles between these, all scores are 0: one residue of each pair lies
  /// outside the sequence.
  std::ptrdiff_t first_tile() const { return lowest_offset() / (2 * kSteps); }
  std::ptrdiff_t last_tile() const { return (2 * residues_ - lowest_offset()) / (2 * kSteps); }

  /// Wants no unit longer than `last` any more.
  void leave_out_beyond(unsigned last) {
    for (int odd = 0; odd < 2; ++odd) {
      for (std::ptrdiff_t lane = 0; lane < lanes_ && offset_of(odd, lane) > last; ++lane) {
        wanted_[odd].begin()[lane] = kNeverReached;
      }
    }
  }

  /// Begins where nothing matches: there is nothing but what comes in from outside the band, where
  /// every score counts as its cap.
  void begin() {
    for (int odd = 0; odd < 2; ++odd) {
      score_at(band_.lowest - 1 - odd) = cap_at(band_.lowest - 1 - odd);
      score_at(band_.highest + 1 + odd) = cap_at(band_.highest + 1 + odd);
    }
    for (std::ptrdiff_t offset = band_.lowest; offset <= band_.highest; ++offset) {
      const int rest = score_at(offset - 1) - costs_.deletion;
      score_at(offset) = static_cast<Lane>(std::clamp<int>(rest, 0, cap_at(offset)));
    }
    for (std::ptrdiff_t offset = band_.highest; offset >= band_.lowest; --offset) {
      const int rest = score_at(offset + 1) - costs_.insertion;
      score_at(offset) =
          std::max(score_at(offset), static_cast<Lane>(std::clamp<int>(rest, 0, cap_at(offset))));
    }
  }

  /// Makes codes for the tiles from `tile` on. A cell of the alignment to the left looks at the
  /// residues before its boundaries.
  void begin_chunk(std::ptrdiff_t tile, Direction direction) {
    chunk_ = tile;
    const std::ptrdiff_t before = direction == Direction::kLeft ? 1 : 0;
    const std::ptrdiff_t leftmost = first_x(tile) - before;
    const std::ptrdiff_t rightmost = first_x(tile + kTilesPerChunk) + band_.highest - 1 - before;
    codes_.read(leftmost, left_);
    codes_.read(rightmost + 1 - static_cast<std::ptrdiff_t>(right_.size()), right_);
    std::reverse(right_.begin(), right_.end());
  }

  void align(std::ptrdiff_t tile, AlignTile* align_tile) {
    const std::ptrdiff_t steps = (tile - chunk_) * kSteps;
    AlignmentTile work{};
    work.groups = static_cast<int>(groups());
    work.costs = costs_;
    for (int odd = 0; odd < 2; ++odd) {
      work.scores[odd] = scores_[odd].begin();
      work.caps[odd] = caps_[odd].begin();
      work.wanted[odd] = wanted_[odd].begin();
      work.hits[odd] = hits_[odd].data();
      work.has_hits[odd] = has_hits_[odd].data();
    }
    work.left = left_.data() + steps;
    work.right = right_.data() + kTilesPerChunk * kSteps - 1 - steps;
    align_tile(work);
  }

  /// Gives the hits of a tile to `take`, up to 64 starts of one unit length at a time, and forgets
  /// them.
  template <class Take>
  void harvest(std::ptrdiff_t tile, const Take& take) {
    for (int odd = 0; odd < 2; ++odd) {
      for (std::ptrdiff_t group = 0; group < groups(); ++group) {
        std::uint8_t& has_hits = has_hits_[odd][static_cast<std::size_t>(group)];
        if (has_hits == 0) continue;
        has_hits = 0;
        const std::array<std::uint64_t, kAlignmentGroup> starts =
            take_hits(hits_[odd].data() + group * kSteps);
        for (std::ptrdiff_t i = 0; i < kGroup; ++i) {
          const std::uint64_t bits = starts[static_cast<std::size_t>(i)];
          const std::ptrdiff_t lane = group * kGroup + i;
          if (bits == 0) continue;
          take(static_cast<unsigned>(offset_of(odd, lane)), first_x(tile) + odd + lane, bits);
        }
      }
    }
  }

 private:
  std::ptrdiff_t groups() const { return lanes_ / kGroup; }
  std::ptrdiff_t offset_of(int odd, std::ptrdiff_t lane) const {
    return band_.highest - odd - 2 * lane;
  }
  std::ptrdiff_t lowest_offset() const { return std::max<std::ptrdiff_t>(0, band_.lowest); }
  /// For offsets of the band and two on either side.
  Lane& score_at(std::ptrdiff_t offset) { return at(scores_, offset); }
  Lane& cap_at(std::ptrdiff_t offset) { return at(caps_, offset); }
  Lane& at(Row (&rows)[2], std::ptrdiff_t offset) const {
    const std::ptrdiff_t odd = offset & 1;
    return rows[odd].begin()[(band_.highest - odd - offset) / 2];
  }
  /// The left boundary in lane 0 of the first antidiagonal of a tile.
  std::ptrdiff_t first_x(std::ptrdiff_t tile) const { return tile * kSteps - band_.highest / 2; }

  /// From masks with a bit for each lane to words with a bit for each step.
  static std::array<std::uint64_t, kAlignmentGroup> take_hits(std::uint32_t* masks) {
    std::array<std::uint64_t, kAlignmentGroup> starts{};
    for (std::ptrdiff_t j = 0; j < kSteps; ++j) {
      for (std::uint32_t left = masks[j]; left != 0; left &= left - 1) {
        starts[static_cast<std::size_t>(std::countr_zero(left))] |= std::uint64_t{1} << j;
      }
      masks[j] = 0;
    }
    return starts;
  }

  std::ptrdiff_t residues_;
  ResidueCodes codes_;
  OffsetBand band_;
  std::ptrdiff_t lanes_;
  Row scores_[2];
  Row caps_[2];
  Row wanted_[2];
  AlignmentCosts costs_;
  std::vector<std::uint32_t> hits_[2];
  std::vector<std::uint8_t> has_hits_[2];
  std::ptrdiff_t chunk_ = 0;
  std::vector<Lane> left_;
  std::vector<Lane> right_;
};

SelfAlignment::SelfAlignment(std::string_view residues, const AlignmentKernel& kernel,
                             std::size_t most_memory)
    : residues_(residues),
      kernel_(kernel),
      most_memory_(std::max(most_memory, residues.size() / 4)) {}

unsigned SelfAlignment::judge(const FirstCopyBound& bound, unsigned first, unsigned last,
                              const MinScoreOf& min_score_of,
                              const std::function<void()>& is_working) {
  first_ = first;
  last_ = last;
  survivors_.assign(last - first + 1, {});
  Sweep sweep(bound, residues_, first, last, min_score_of);
  align(sweep, Direction::kRight, is_working);
  align(sweep, Direction::kLeft, is_working);
  return last_;
}

void SelfAlignment::align(Sweep& sweep, Direction direction,
                          const std::function<void()>& is_working) {
  const bool rising = direction == Direction::kLeft;
  std::vector<SparseStarts> found(survivors_.size());
  const auto take = [&](unsigned unit_length, std::ptrdiff_t start, std::uint64_t bits) {
    SparseStarts& starts = found[unit_length - first_];
    rising ? starts.add_rising(start, bits) : starts.add_falling(start, bits);
  };
  const std::ptrdiff_t first_tile = sweep.first_tile();
  const std::ptrdiff_t chunks = (sweep.last_tile() - first_tile) / kTilesPerChunk + 1;
  std::ptrdiff_t cells = 0;
  sweep.begin();
  for (std::ptrdiff_t i = 0; i < chunks; ++i) {
    const std::ptrdiff_t chunk = first_tile + (rising ? i : chunks - 1 - i) * kTilesPerChunk;
    sweep.begin_chunk(chunk, direction);
    for (std::ptrdiff_t j = 0; j < kTilesPerChunk; ++j) {
      const std::ptrdiff_t tile = chunk + (rising ? j : kTilesPerChunk - 1 - j);
      sweep.align(tile, rising ? kernel_.align_rising : kernel_.align_falling);
      sweep.harvest(tile, take);
    }
    make_room(sweep, found);
    found.resize(survivors_.size());
    cells += sweep.cells_per_chunk();
    if (cells >= kCellsPerCall) {
      cells = 0;
      is_working();
    }
  }
  for (std::size_t i = 0; i < found.size(); ++i) {
    if (!rising) found[i].reverse();
    survivors_[i].unite(found[i]);
    found[i].clear();
  }
}

void SelfAlignment::make_room(Sweep& sweep, const std::vector<SparseStarts>& found) {
  std::size_t memory = 0;
  std::size_t fitting = 0;
  for (; fitting < found.size(); ++fitting) {
    memory += found[fitting].memory() + survivors_[fitting].memory();
    if (memory > most_memory_) break;
  }
  if (fitting == found.size() || found.size() == 1) return;
  // Much fewer than fit now, because more will be found.
  survivors_.resize(std::max<std::size_t>(1, fitting / 2));
  last_ = first_ + static_cast<unsigned>(survivors_.size()) - 1;
  sweep.leave_out_beyond(last_);
}

namespace {

std::vector<AlignmentKernel> kernels_of_this_processor() {
  std::vector<AlignmentKernel> kernels{{portable::align_rising, portable::align_falling}};
#ifdef VORLAN_X86_KERNELS
  if (runs_avx2()) kernels.push_back({avx2::align_rising, avx2::align_falling});
  if (runs_avx512()) kernels.push_back({avx512::align_rising, avx512::align_falling});
#endif
  return kernels;
}

}  // namespace

const std::vector<AlignmentKernel>& runnable_alignment_kernels() {
  static const std::vector<AlignmentKernel> kernels = kernels_of_this_processor();
  return kernels;
}

}  // namespace vorlan
