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
        lengths_(plan.last_length - plan.first_length + 1),
        cells_(reinterpret_cast<Lanes*>(memory)) {}

  void judge(const StartGroup* groups, std::size_t count, bool* can_reach) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      const bool is_used = lane < count;
      best_[lane] = is_used ? static_cast<Lane>(-plan_.floor) : Lane{0};
      const std::ptrdiff_t turns = is_used ? groups[lane].last - groups[lane].first : 0;
      turns_[lane] = static_cast<Lane>(turns);
      if (turns > most_turns_) most_turns_ = turns;
    }
    size_ = plan_.last_length + most_turns_ + 1;
    arriving_ = cells_ + size_;
    bases_ = arriving_ + arrivals();
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

  /// Cells from the first up to the end, outside of which there is no path.
  struct Band {
    std::ptrdiff_t first = 0;
    std::ptrdiff_t end = 0;

    bool is_empty() const { return first == end; }
    void cover(const Band& other) {
      if (is_empty()) first = end = other.first;
      if (other.first < first) first = other.first;
      if (other.end > end) end = other.end;
    }
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

  // Where the strip of bases begins, in the direction of reading.
  template <std::ptrdiff_t direction>
  const char* strip_of(const StartGroup& group) const {
    return plan_.seq_begin + (direction > 0 ? group.first : group.last + plan_.last_length);
  }

  // Writes the strips of all groups, with nothing behind the ends of the sequence and for N, which
  // belongs to no unit.
  template <std::ptrdiff_t direction>
  void read_strips(const StartGroup* groups, std::size_t count) {
    for (std::ptrdiff_t first = 0; first < size_; first += std::ptrdiff_t{kReadAhead}) {
      read_rows(count, bases_ + first, [&](std::size_t lane) {
        const char* strip = strip_of<direction>(groups[lane]);
        const std::ptrdiff_t most = direction > 0 ? plan_.seq_end - strip : strip - plan_.seq_begin;
        const std::ptrdiff_t from = first < most ? first : most;
        const std::ptrdiff_t to = size_ < most ? size_ : most;
        bool has_N = false;
        return Reader<direction>(strip + direction * from, strip + direction * to, 0).read(has_N);
      });
    }
    for (std::ptrdiff_t i = 0; i < size_; ++i) bases_[i] &= static_cast<Lane>(~kN);
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

  // Moves the paths in the cells from `first` up to `last`, before any unit ends. Returns the best
  // of the next row there.
  template <bool kHasN>
  Lanes step_cells(std::ptrdiff_t first, std::ptrdiff_t last, Lanes residue,
                   Passing& passing) const {
    Lanes best{};
    // Copies, since bytes may alias everything: nothing is read again for each cell.
    Passing moving = passing;
    const Costs costs = costs_;
    Lanes* const cells = cells_;
    const Lanes* const bases = bases_;
    for (std::ptrdiff_t i = first; i < last; ++i) {
      cells[i] = step<kHasN>(larger(cells[i], moving.deleted), bases[i], residue, costs, moving);
      best = larger(best, cells[i]);
    }
    passing = moving;
    return best;
  }

  // The same for one cell, with what is in it. From the end of the shortest unit on, paths may also
  // go round; from the end of the longest on, some must.
  template <bool kHasN>
  Lanes step_cell(std::ptrdiff_t cell, Lanes here, Lanes residue, Passing& passing) {
    if (cell >= plan_.first_length) {
      Lanes& arriving = arriving_[cell - plan_.first_length];
      arriving = larger(arriving, here);
      going_round_ |= here;
    }
    if (cell >= plan_.last_length) {
      here &= reinterpret_cast<Lanes>(turns_ > static_cast<Lane>(cell - plan_.last_length));
    }
    return step<kHasN>(here, bases_[cell], residue, costs_, passing);
  }

  // Makes the next row in a band, which may grow up to `limit`. Returns its best.
  template <bool kHasN>
  Lanes step_band(Band& band, std::ptrdiff_t limit, Lanes residue, Passing& passing) {
    const std::ptrdiff_t simple = band.end < plan_.first_length ? band.end : plan_.first_length;
    std::ptrdiff_t cell = band.first;
    Lanes best{};
    if (cell < simple) {
      best = step_cells<kHasN>(cell, simple, residue, passing);
      cell = simple;
    }
    // Behind the band there is only what arrives.
    for (; cell < band.end || (cell < limit && passing.has_path()); ++cell) {
      cells_[cell] =
          step_cell<kHasN>(cell, larger(cells_[cell], passing.deleted), residue, passing);
      best = larger(best, cells_[cell]);
    }
    band.end = cell;
    return best;
  }

  // From a cell p, a path may go to p - u for each unit length u: afterwards `arriving_` has for
  // each cell the best of as many as there are unit lengths, from that cell's own on.
  void spread_arrivals() {
    std::ptrdiff_t spread = 1;
    const auto spread_by = [this](std::ptrdiff_t more) {
      for (std::ptrdiff_t i = 0; i + more < arrivals(); ++i) {
        arriving_[i] = larger(arriving_[i], arriving_[i + more]);
      }
    };
    for (; 2 * spread <= lengths_; spread *= 2) spread_by(spread);
    if (spread < lengths_) spread_by(lengths_ - spread);
  }

  // Moves the paths that have gone round over the residue. The cells where they arrive have been
  // moved already: the paths go on from there, and join. Returns the best of the next row there.
  template <bool kHasN>
  Lanes go_round(Lanes residue) {
    Lanes best{};
    while (has_any(going_round_)) {
      going_round_ = Lanes{};
      spread_arrivals();
      Passing passing;
      std::ptrdiff_t cell = 0;
      for (; cell < size_ && (cell < arrivals() || passing.has_path()); ++cell) {
        Lanes here = passing.deleted;
        if (cell < arrivals()) {
          here = larger(here, arriving_[cell]);
          arriving_[cell] = Lanes{};
        }
        cells_[cell] = larger(cells_[cell], step_cell<kHasN>(cell, here, residue, passing));
        best = larger(best, cells_[cell]);
      }
      (cell < upper_.first ? lower_ : upper_).cover({0, cell});
    }
    return best;
  }

  // Makes the next row.
  template <bool kHasN>
  void step_row(Lanes residue) {
    Passing passing;
    if (!lower_.is_empty()) {
      best_ = larger(best_, step_band<kHasN>(lower_, upper_.first, residue, passing));
    }
    best_ = larger(best_, step_band<kHasN>(upper_, size_, residue, passing));
    best_ = larger(best_, go_round<kHasN>(residue));
    trim_bands();
  }

  void trim(Band& band) const {
    while (!band.is_empty() && !has_any(cells_[band.first])) ++band.first;
    while (!band.is_empty() && !has_any(cells_[band.end - 1])) --band.end;
  }

  // Makes one band of two when they meet, or when one has come to its end.
  void trim_bands() {
    trim(upper_);
    if (lower_.is_empty()) return;
    trim(lower_);
    if (!lower_.is_empty() && !upper_.is_empty() && lower_.end < upper_.first) return;
    if (!lower_.is_empty()) upper_.cover(lower_);
    lower_ = {};
  }

  // Drops the paths of groups that have enough.
  void drop_decided() {
    const Lanes decided = reinterpret_cast<Lanes>(best_ >= enough_);
    if (!has_any(decided & ~dropped_)) return;
    dropped_ = decided;
    for (std::ptrdiff_t i = 0; i < size_; ++i) cells_[i] &= ~decided;
    trim_bands();
  }

  // Leaves to the extension what is not decided.
  void give_up() {
    Lanes alive{};
    for (std::ptrdiff_t i = 0; i < size_; ++i) alive |= cells_[i];
    best_ = larger(best_, reinterpret_cast<Lanes>(alive > Lanes{}) & enough_);
  }

  /// After so many rows the last candidate of the largest group begins its paths.
  std::ptrdiff_t last_begin() const { return most_turns_ + lengths_ - 1; }

  // Lets the candidates that are met after so many rows begin their paths. To the right, a
  // candidate is met one row later for each base that its start lies further on or that its unit is
  // longer. To the left, those of a start are met together; of the shorter units, bases are due
  // that lie further on in the strip.
  template <std::ptrdiff_t direction>
  void begin_paths(std::ptrdiff_t row, Lanes score) {
    const std::ptrdiff_t others = lengths_ - 1;
    const std::ptrdiff_t first = direction > 0 ? (row > others ? row - others : 0) : row;
    const std::ptrdiff_t last =
        direction > 0 ? (row < most_turns_ ? row : most_turns_) : row + others;
    if (direction < 0 && row > most_turns_) return;
    for (std::ptrdiff_t cell = first; cell <= last; ++cell) {
      const Lane turn = static_cast<Lane>(direction > 0 ? cell : row);
      const Lanes begins = reinterpret_cast<Lanes>(turns_ >= turn) & ~dropped_;
      cells_[cell] = larger(cells_[cell], score & begins);
    }
    (lower_.is_empty() ? upper_ : lower_).cover({first, last + 1});
    trim_bands();
  }

  // Raises the best scores to what the paths of all candidates reach in one direction.
  template <std::ptrdiff_t direction>
  void follow_paths(const StartGroup* groups, std::size_t count) {
    read_strips<direction>(groups, count);
    Reader<direction> readers[kLanes];
    const char* const end = direction > 0 ? plan_.seq_end : plan_.seq_begin;
    for (std::size_t lane = 0; lane < count; ++lane) {
      const char* ahead = plan_.seq_begin + (direction > 0 ? groups[lane].first + plan_.first_length
                                                           : groups[lane].last);
      readers[lane] = Reader<direction>(ahead, end, plan_.longest_N_run);
    }
    for (std::ptrdiff_t i = 0; i < size_; ++i) cells_[i] = Lanes{};
    for (std::ptrdiff_t i = 0; i < arrivals(); ++i) arriving_[i] = Lanes{};
    lower_ = upper_ = {};
    dropped_ = Lanes{};
    drop_decided();
    const Lanes begin_score = best_;
    begin_paths<direction>(0, begin_score);
    for (std::ptrdiff_t row = 0; !upper_.is_empty() || row <= last_begin();) {
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
        if (++row <= last_begin()) begin_paths<direction>(row, begin_score);
        if (row % kWraparoundRowsPerLook == 0) drop_decided();
      }
    }
  }

  /// Cells at which paths that have gone round may arrive.
  std::ptrdiff_t arrivals() const { return most_turns_ + lengths_; }

  static constexpr Lane kN = 16;

  Costs costs_;
  Lanes enough_;
  Lanes best_{};         ///< Above the floor, so far.
  Lanes dropped_{};      ///< All bits of the groups whose paths are no longer followed.
  Lanes turns_{};        ///< How many bases the last start of the group lies behind the first.
  Lanes going_round_{};  ///< Not zero where `arriving_` is not.
  std::ptrdiff_t most_turns_ = 0;
  std::ptrdiff_t size_ = 0;  ///< Of the strip, and of each row.
  const WraparoundPlan& plan_;
  std::ptrdiff_t lengths_;
  Lanes* cells_;
  Lanes* arriving_ = nullptr;  ///< By the cell that is left behind less the shortest unit length.
  Lanes* bases_ = nullptr;
  Band upper_;
  Band lower_;  ///< Of paths that have gone round, as long as the bands have not met.
};

template <class Lane>
void judge(const WraparoundPlan& plan, const StartGroup* groups, std::size_t count,
           std::byte* memory, bool* can_reach) {
  Batch<Lane>(plan, memory).judge(groups, count, can_reach);
}

}  // namespace

const WraparoundKernel kWraparoundKernel{kRegisterBytes, judge<std::uint8_t>, judge<std::int16_t>};

}  // namespace vorlan::VORLAN_FILTER_LEVEL
