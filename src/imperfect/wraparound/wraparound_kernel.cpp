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

/// The groups of one batch, in one direction after the other.
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

  void judge(const StartGroup* groups, std::size_t count, bool* can_reach) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      const bool is_used = lane < count;
      best_[lane] = is_used ? static_cast<Lane>(-plan_.floor) : Lane{0};
      const std::ptrdiff_t turns = is_used ? groups[lane].last - groups[lane].first : 0;
      turns_[lane] = static_cast<Lane>(turns);
      if (turns > most_turns_) most_turns_ = turns;
    }
    follow_paths<1>(groups, count);
    follow_paths<-1>(groups, count);
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
      rows[row] = __builtin_convertvector(bits_of(narrow), Lanes);
    }
  }

  // A bit for each letter: residues match when they share one.
  static Narrow bits_of(Narrow residues) {
    constexpr unsigned char kLetters[] = {'A', 'C', 'G', 'T', 'N'};
    constexpr unsigned char kBits[] = {1, 2, 4, 8, kN};
    Narrow bits{};
    for (int i = 0; i < 5; ++i) {
      bits |= reinterpret_cast<Narrow>(residues == kLetters[i]) & (Narrow{} + kBits[i]);
    }
    return bits;
  }

  // The unit of the first start that is met in this direction, read in that direction, and then the
  // residues ahead of it.
  template <std::ptrdiff_t direction>
  const char* unit_of(const StartGroup& group) const {
    return plan_.seq_begin + (direction > 0 ? group.first : group.last + plan_.unit_length);
  }

  // Writes `length` residues of each group from `distance` behind the begin of the unit on.
  template <std::ptrdiff_t direction>
  void read_ahead(const StartGroup* groups, std::size_t count, std::ptrdiff_t distance,
                  std::ptrdiff_t length, Lanes* rows) const {
    for (std::ptrdiff_t first = 0; first < length; first += std::ptrdiff_t{kReadAhead}) {
      read_rows(count, rows + first, [&](std::size_t lane) {
        const char* unit = unit_of<direction>(groups[lane]);
        const std::ptrdiff_t most = direction > 0 ? plan_.seq_end - unit : unit - plan_.seq_begin;
        const std::ptrdiff_t from = distance + first < most ? distance + first : most;
        const std::ptrdiff_t to = distance + length < most ? distance + length : most;
        bool has_N = false;
        return Reader<direction>(unit + direction * from, unit + direction * to, 0).read(has_N);
      });
    }
  }

  // Writes the units of all groups as their bases are due. Where the group has turned on, the base
  // is one of two.
  template <std::ptrdiff_t direction>
  void read_units(const StartGroup* groups, std::size_t count) {
    const std::ptrdiff_t length = plan_.unit_length;
    read_ahead<direction>(groups, count, 0, length, unit_);
    Lanes ahead[kReadAhead];
    for (std::ptrdiff_t turn = 0; turn < most_turns_; ++turn) {
      const std::ptrdiff_t i = turn % std::ptrdiff_t{kReadAhead};
      if (i == 0) read_ahead<direction>(groups, count, length + turn, kReadAhead, ahead);
      unit_[turn] |= ahead[i] & reinterpret_cast<Lanes>(turns_ > static_cast<Lane>(turn));
    }
  }

  // Moves the paths of a cell over a residue: `here` are those that are in it, at `base`. Returns
  // what the cell of the next row has then.
  template <bool kHasN>
  static Lanes step(Lanes here, Lanes base, Lanes residue, const Costs& costs, Passing& passing) {
    const auto matches = (residue & base) != static_cast<Lane>(0);
    auto moves = matches;
    // A path that is gone does not come back by a match.
    Lanes gain = smaller(here, Lanes{} + static_cast<Lane>(1));
    if constexpr (kHasN) {
      moves |= residue == kN;
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

  // Drops the paths of groups that have enough.
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

  // Lets the start that is met after so many rows begin its paths.
  void begin_paths(std::ptrdiff_t row, Lanes score) {
    const Lanes begins = reinterpret_cast<Lanes>(turns_ >= static_cast<Lane>(row)) & ~dropped_;
    cells_[row] = larger(cells_[row], score & begins);
    if (width_ == 0) first_ = row;
    const std::ptrdiff_t distance = row >= first_ ? row - first_ : row - first_ + plan_.unit_length;
    if (distance >= width_) width_ = distance + 1;
  }

  // Raises the best scores to what the paths of all starts reach in one direction.
  template <std::ptrdiff_t direction>
  void follow_paths(const StartGroup* groups, std::size_t count) {
    read_units<direction>(groups, count);
    Reader<direction> readers[kLanes];
    const char* const end = direction > 0 ? plan_.seq_end : plan_.seq_begin;
    for (std::size_t lane = 0; lane < count; ++lane) {
      const char* ahead = unit_of<direction>(groups[lane]) + direction * plan_.unit_length;
      readers[lane] = Reader<direction>(ahead, end, plan_.longest_N_run);
    }
    for (std::ptrdiff_t i = 0; i < plan_.unit_length; ++i) cells_[i] = Lanes{};
    first_ = width_ = 0;
    dropped_ = Lanes{};
    drop_decided();
    const Lanes begin_score = best_;
    begin_paths(0, begin_score);
    for (std::ptrdiff_t row = 0; width_ > 0 || row <= most_turns_;) {
      if (row >= plan_.most_rows) return give_up();
      Lanes text[kReadAhead];
      bool has_N = false;
      read_rows(count, text, [&](std::size_t lane) { return readers[lane].read(has_N); });
      for (const Lanes& residue : text) {
        if (has_N) {
          step_row<true>(residue);
        } else {
          step_row<false>(residue);
        }
        if (++row <= most_turns_) begin_paths(row, begin_score);
        if (row % kWraparoundRowsPerLook == 0) drop_decided();
      }
    }
  }

  static constexpr Lane kN = 16;

  Costs costs_;
  Lanes enough_;
  Lanes best_{};     ///< Above the floor, so far.
  Lanes dropped_{};  ///< All bits of the groups whose paths are no longer followed.
  Lanes turns_{};    ///< How many bases the last start of the group lies behind the first.
  std::ptrdiff_t most_turns_ = 0;
  const WraparoundPlan& plan_;
  Lanes* cells_;
  Lanes* unit_;
  std::ptrdiff_t first_ = 0;  ///< Of the band of live cells.
  std::ptrdiff_t width_ = 0;
};

template <class Lane>
void judge(const WraparoundPlan& plan, const StartGroup* groups, std::size_t count,
           std::byte* memory, bool* can_reach) {
  Batch<Lane>(plan, memory).judge(groups, count, can_reach);
}

}  // namespace

const WraparoundKernel kWraparoundKernel{kRegisterBytes, judge<std::uint8_t>, judge<std::int16_t>};

}  // namespace vorlan::VORLAN_FILTER_LEVEL
