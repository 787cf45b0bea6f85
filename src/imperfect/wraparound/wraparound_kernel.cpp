// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Compiled once for each instruction set, each time into the namespace VORLAN_FILTER_LEVEL. Uses
// nothing of the library: an inline function of it, compiled here for wide registers, could be the
// copy that the linker keeps for the whole program.

#include "imperfect/wraparound/wraparound_kernel.h"

#include "imperfect/wraparound/wraparound_text.h"

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace vorlan::VORLAN_FILTER_LEVEL {
namespace {

#if defined(__AVX512BW__)
constexpr std::size_t kRegisterBytes = 64;
#elif defined(__AVX2__)
constexpr std::size_t kRegisterBytes = 32;
#else
constexpr std::size_t kRegisterBytes = 16;
#endif

// The comparisons below are known to compilers: one instruction each. SSE2 has them for unsigned
// bytes and signed words.
template <class Lanes>
Lanes larger(Lanes a, Lanes b) {
  return a > b ? a : b;
}
template <class Lanes>
Lanes smaller(Lanes a, Lanes b) {
  return a < b ? a : b;
}
/// a - b, but not less than 0. Requires that neither is negative.
template <class Lanes>
Lanes less(Lanes a, Lanes b) {
#if defined(__AVX512BW__)
  const auto x = reinterpret_cast<__m512i>(a);
  const auto y = reinterpret_cast<__m512i>(b);
  return reinterpret_cast<Lanes>(sizeof(a[0]) == 1 ? _mm512_subs_epu8(x, y)
                                                   : _mm512_subs_epu16(x, y));
#elif defined(__AVX2__)
  const auto x = reinterpret_cast<__m256i>(a);
  const auto y = reinterpret_cast<__m256i>(b);
  return reinterpret_cast<Lanes>(sizeof(a[0]) == 1 ? _mm256_subs_epu8(x, y)
                                                   : _mm256_subs_epu16(x, y));
#elif defined(__SSE2__)
  const auto x = reinterpret_cast<__m128i>(a);
  const auto y = reinterpret_cast<__m128i>(b);
  return reinterpret_cast<Lanes>(sizeof(a[0]) == 1 ? _mm_subs_epu8(x, y) : _mm_subs_epu16(x, y));
#else
  return larger(a, b) - b;
#endif
}

template <class Lanes>
bool has_any(Lanes lanes) {
#if defined(__AVX512BW__)
  const auto bits = reinterpret_cast<__m512i>(lanes);
  return _mm512_test_epi64_mask(bits, bits) != 0;
#elif defined(__AVX2__)
  const auto bits = reinterpret_cast<__m256i>(lanes);
  return _mm256_testz_si256(bits, bits) == 0;
#elif defined(__SSE2__)
  constexpr int kAllBytes = 0xFFFF;
  const auto bits = reinterpret_cast<__m128i>(lanes);
  return _mm_movemask_epi8(_mm_cmpeq_epi8(bits, _mm_setzero_si128())) != kAllBytes;
#else
  std::uint64_t any = 0;
  for (std::size_t i = 0; i < sizeof lanes / sizeof lanes[0]; ++i) {
    any |= static_cast<std::uint64_t>(lanes[i]);
  }
  return any != 0;
#endif
}

/// The starts of one batch, in one direction after the other.
template <class Lane>
class Batch {
 public:
  static constexpr std::size_t kLanes = kRegisterBytes / sizeof(Lane);
  using Lanes __attribute__((vector_size(kRegisterBytes))) = Lane;
  using Narrow __attribute__((vector_size(kLanes))) = unsigned char;

  Batch(const WraparoundPlan& plan, std::byte* memory)
      : costs_{Lanes{} + static_cast<Lane>(plan.mismatch_cost),
               Lanes{} + static_cast<Lane>(plan.indel_cost)},
        enough_(Lanes{} + static_cast<Lane>(plan.min_score - plan.floor)),
        plan_(plan),
        cells_(reinterpret_cast<Lanes*>(memory)),
        unit_(cells_ + plan.unit_length) {}

  void judge(const std::ptrdiff_t* starts, std::size_t count, bool* can_reach) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      best_[lane] = lane < count ? static_cast<Lane>(-plan_.floor) : Lane{0};
    }
    follow_paths<1>(starts, count);
    follow_paths<-1>(starts, count);
    for (std::size_t lane = 0; lane < count; ++lane) can_reach[lane] = best_[lane] >= enough_[0];
  }

 private:
  struct Costs {
    Lanes mismatch;
    Lanes indel;
  };

  /// What passes from one cell of a row to the next.
  struct Passing {
    Lanes matched{};  ///< Over this residue, by a match or a mismatch.
    Lanes deleted{};  ///< In this row, by a deletion.

    bool has_path() const { return has_any(matched | deleted); }
  };

  static constexpr std::size_t kBlocks = (kLanes + kReadAhead - 1) / kReadAhead;

  // Writes kReadAhead rows of lanes: what `read` gives for each lane. Lanes behind the last start
  // read kNothing.
  template <class Read>
  static void read_rows(std::size_t count, Lanes* rows, Read read) {
    unsigned char bytes[kReadAhead][kBlocks * kReadAhead];
    for (std::size_t block = 0; block < kBlocks; ++block) {
      Residues columns[kReadAhead];
      for (std::size_t i = 0; i < kReadAhead; ++i) {
        const std::size_t lane = block * kReadAhead + i;
        columns[i] = lane < count ? read(lane) : Residues{};
      }
      transpose(columns);
      for (std::size_t row = 0; row < kReadAhead; ++row) {
        __builtin_memcpy(&bytes[row][block * kReadAhead], &columns[row], kReadAhead);
      }
    }
    for (std::size_t row = 0; row < kReadAhead; ++row) {
      Narrow narrow;
      __builtin_memcpy(&narrow, bytes[row], sizeof narrow);
      rows[row] = __builtin_convertvector(narrow, Lanes);
    }
  }

  // Writes the units of all starts as their bases are due.
  template <std::ptrdiff_t direction>
  void read_units(const std::ptrdiff_t* starts, std::size_t count) {
    const std::ptrdiff_t length = plan_.unit_length;
    for (std::ptrdiff_t first = 0; first < length; first += std::ptrdiff_t{kReadAhead}) {
      read_rows(count, unit_ + first, [&](std::size_t lane) {
        const char* unit = plan_.seq_begin + starts[lane];
        bool has_N = false;
        return direction > 0 ? Reader<1>(unit + first, unit + length, 0).read(has_N)
                             : Reader<-1>(unit + length - first, unit, 0).read(has_N);
      });
    }
  }

  // Moves the paths of a cell over a residue: `here` are those that are in it, at `base`. Returns
  // what the cell of the next row has then.
  template <bool kHasN>
  static Lanes step(Lanes here, Lanes base, Lanes residue, const Costs& costs, Passing& passing) {
    const auto matches = residue == base;
    auto moves = matches;
    // A path that is gone does not come back by a match.
    Lanes gain = smaller(here, Lanes{} + static_cast<Lane>(1));
    if constexpr (kHasN) {
      moves |= residue == static_cast<Lane>('N');
      gain = matches ? gain : Lanes{};
    }
    const Lanes behind_gap = moves ? Lanes{} : less(here, costs.indel);
    const Lanes next = larger(passing.matched, behind_gap);
    passing.matched = moves ? here + gain : less(here, costs.mismatch);
    passing.deleted = behind_gap;
    return next;
  }

  // Moves the paths in the cells from `first` up to `last`. Returns the best of the next row there.
  template <bool kHasN>
  Lanes step_cells(std::ptrdiff_t first, std::ptrdiff_t last, Lanes residue,
                   Passing& passing) const {
    Lanes best{};
    // Copies, since bytes may alias everything: nothing is read again for each cell.
    Passing moving = passing;
    const Costs costs = costs_;
    Lanes* const cells = cells_;
    const Lanes* const unit = unit_;
    for (std::ptrdiff_t i = first; i < last; ++i) {
      cells[i] = step<kHasN>(larger(cells[i], moving.deleted), unit[i], residue, costs, moving);
      best = larger(best, cells[i]);
    }
    passing = moving;
    return best;
  }

  std::ptrdiff_t next_cell(std::ptrdiff_t cell) const {
    return cell + 1 == plan_.unit_length ? 0 : cell + 1;
  }

  // Makes the next row. The band of live cells begins at `first_` and goes round.
  template <bool kHasN>
  void step_row(Lanes residue) {
    Passing passing;
    const std::ptrdiff_t end = first_ + width_;
    const std::ptrdiff_t length = plan_.unit_length;
    Lanes best = step_cells<kHasN>(first_, end < length ? end : length, residue, passing);
    if (end > length) best = larger(best, step_cells<kHasN>(0, end - length, residue, passing));
    std::ptrdiff_t cell = end < length ? end : end - length;
    // Into cells that were empty, in which there is only what arrives.
    for (; width_ < length && passing.has_path(); ++width_, cell = next_cell(cell)) {
      cells_[cell] = step<kHasN>(passing.deleted, unit_[cell], residue, costs_, passing);
      best = larger(best, cells_[cell]);
    }
    // Once round: cells that have been moved already. What arrives goes on from there, and joins.
    for (std::ptrdiff_t i = 0; i < length && passing.has_path(); ++i, cell = next_cell(cell)) {
      cells_[cell] =
          larger(cells_[cell], step<kHasN>(passing.deleted, unit_[cell], residue, costs_, passing));
      best = larger(best, cells_[cell]);
    }
    best_ = larger(best_, best);
    trim_band();
  }

  void trim_band() {
    while (width_ > 0 && !has_any(cells_[first_])) {
      first_ = next_cell(first_);
      --width_;
    }
    while (width_ > 0) {
      const std::ptrdiff_t last = first_ + width_ - 1;
      if (has_any(cells_[last < plan_.unit_length ? last : last - plan_.unit_length])) return;
      --width_;
    }
  }

  // Drops the paths of starts that have enough.
  void drop_decided() {
    const Lanes decided = reinterpret_cast<Lanes>(best_ >= enough_);
    if (!has_any(decided & ~dropped_)) return;
    dropped_ = decided;
    for (std::ptrdiff_t i = 0; i < plan_.unit_length; ++i) cells_[i] &= ~decided;
    trim_band();
  }

  // Leaves to the extension what is not decided.
  void give_up() {
    Lanes alive{};
    for (std::ptrdiff_t i = 0; i < plan_.unit_length; ++i) alive |= cells_[i];
    best_ = larger(best_, reinterpret_cast<Lanes>(alive > Lanes{}) & enough_);
  }

  // Raises the best scores to what the paths of all starts reach in one direction.
  template <std::ptrdiff_t direction>
  void follow_paths(const std::ptrdiff_t* starts, std::size_t count) {
    read_units<direction>(starts, count);
    Reader<direction> readers[kLanes];
    for (std::size_t lane = 0; lane < count; ++lane) {
      const char* unit = plan_.seq_begin + starts[lane];
      readers[lane] = direction > 0 ? Reader<direction>(unit + plan_.unit_length, plan_.seq_end,
                                                        plan_.longest_N_run)
                                    : Reader<direction>(unit, plan_.seq_begin, plan_.longest_N_run);
    }
    for (std::ptrdiff_t i = 0; i < plan_.unit_length; ++i) cells_[i] = Lanes{};
    cells_[0] = best_;
    first_ = 0;
    width_ = 1;
    dropped_ = Lanes{};
    drop_decided();
    for (std::ptrdiff_t rows = 0; width_ > 0; rows += std::ptrdiff_t{kReadAhead}) {
      if (rows >= plan_.most_rows) return give_up();
      Lanes text[kReadAhead];
      bool has_N = false;
      read_rows(count, text, [&](std::size_t lane) { return readers[lane].read(has_N); });
      for (std::size_t row = 0; row < kReadAhead && width_ > 0; ++row) {
        if (has_N) {
          step_row<true>(text[row]);
        } else {
          step_row<false>(text[row]);
        }
        if (row % kWraparoundRowsPerLook == kWraparoundRowsPerLook - 1) drop_decided();
      }
    }
  }

  Costs costs_;
  Lanes enough_;
  Lanes best_{};     ///< Above the floor, so far.
  Lanes dropped_{};  ///< All bits of the starts whose paths are no longer followed.
  const WraparoundPlan& plan_;
  Lanes* cells_;
  Lanes* unit_;
  std::ptrdiff_t first_ = 0;  ///< Of the band of live cells.
  std::ptrdiff_t width_ = 0;
};

template <class Lane>
void judge(const WraparoundPlan& plan, const std::ptrdiff_t* starts, std::size_t count,
           std::byte* memory, bool* can_reach) {
  Batch<Lane>(plan, memory).judge(starts, count, can_reach);
}

}  // namespace

const WraparoundKernel kWraparoundKernel{kRegisterBytes, judge<std::uint8_t>, judge<std::int16_t>};

}  // namespace vorlan::VORLAN_FILTER_LEVEL
