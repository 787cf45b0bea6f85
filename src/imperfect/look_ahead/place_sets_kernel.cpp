// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Compiled once for each instruction set, each time into the namespace VORLAN_FILTER_LEVEL. Uses
// nothing of the library: an inline function of it, compiled here for wide registers, could be the
// copy that the linker keeps for the whole program.
//
// There is no copy for AVX-512: a register of AVX2 holds all first moves, and such a copy takes 1.4
// times as long (bench, kernels look_ahead/).
#ifndef __AVX512F__

#include "imperfect/look_ahead/place_sets_kernel.h"

namespace vorlan::VORLAN_FILTER_LEVEL {
namespace {

constexpr std::int32_t kBits = 64;
constexpr std::int32_t kFirstMoves = 3;

// A word for each first move, and one that stays empty.
#if defined(__AVX2__)
using Words __attribute__((vector_size(32))) = std::uint64_t;

std::uint64_t word(const Words& words, std::int32_t i) { return words[i]; }
Words in_all(std::uint64_t word) { return Words{} + word; }
Words in_lane(std::int32_t i, std::uint64_t word) {
  Words words{};
  words[i] = word;
  return words;
}
#else
using Pair __attribute__((vector_size(16))) = std::uint64_t;
struct Words {
  Pair low;
  Pair high;

  friend Words operator|(Words a, Words b) { return {a.low | b.low, a.high | b.high}; }
  friend Words operator&(Words a, Words b) { return {a.low & b.low, a.high & b.high}; }
  friend Words operator+(Words a, Words b) { return {a.low + b.low, a.high + b.high}; }
  friend Words operator~(Words a) { return {~a.low, ~a.high}; }
  friend Words operator<<(Words a, std::int32_t n) { return {a.low << n, a.high << n}; }
  friend Words operator>>(Words a, std::int32_t n) { return {a.low >> n, a.high >> n}; }
};

std::uint64_t word(const Words& words, std::int32_t i) {
  const Pair& pair = i < 2 ? words.low : words.high;
  return pair[i % 2];
}
Words in_all(std::uint64_t word) { return {Pair{} + word, Pair{} + word}; }
Words in_lane(std::int32_t i, std::uint64_t word) {
  Words words{};
  Pair& pair = i < 2 ? words.low : words.high;
  pair[i % 2] = word;
  return words;
}
#endif

/// A set of places for each first move. The lowest bit of the first words is the nearest place.
template <std::int32_t kWords>
struct Sets {
  Words words[kWords];

  friend Sets operator|(const Sets& a, const Sets& b) {
    Sets both;
    for (std::int32_t w = 0; w < kWords; ++w) both.words[w] = a.words[w] | b.words[w];
    return both;
  }

  /// All places `n` further on; n < kBits.
  Sets moved(std::int32_t n) const {
    if (n == 0) return *this;
    Sets result;
    for (std::int32_t w = 0; w < kWords; ++w) {
      result.words[w] = words[w] << n;
      if (w > 0) result.words[w] = result.words[w] | words[w - 1] >> (kBits - n);
    }
    return result;
  }

  /// Without the places nearer than `first`.
  Sets from(std::int32_t first) const {
    Sets result;
    for (std::int32_t w = 0; w < kWords; ++w) {
      const std::int32_t bit = first - w * kBits;
      constexpr std::uint64_t kAll = ~std::uint64_t{0};
      result.words[w] = words[w] & in_all(bit <= 0 ? kAll : bit < kBits ? kAll << bit : 0);
    }
    return result;
  }

  bool is_empty() const { return furthest() < 0; }

  /// The furthest place, or -1.
  std::int32_t furthest() const {
    return highest_bit([](const Words& w) { return word(w, 0) | word(w, 1) | word(w, 2); });
  }

  /// The furthest place of a first move, or -1.
  std::int32_t furthest(std::int32_t first_move) const {
    return highest_bit([first_move](const Words& w) { return word(w, first_move); });
  }

 private:
  template <class BitsOf>
  std::int32_t highest_bit(const BitsOf& bits_of) const {
    for (std::int32_t w = kWords - 1; w >= 0; --w) {
      const std::uint64_t bits = bits_of(words[w]);
      if (bits != 0) return w * kBits + kBits - 1 - __builtin_clzll(bits);
    }
    return -1;
  }
};

/// One decision. With `kMayFall` the threshold is so near that it may end paths.
template <std::int32_t kWords, bool kMayFall>
class Decision {
 public:
  Decision(const PlaceSetsPlan& plan, const DiagonalWords& differs, std::int32_t threshold)
      : plan_(plan), threshold_(threshold), differs_(differs) {}

  FirstEditChoice choose() {
    make_first_edits();
    make_edits_from<2>();
    // Sets that are moved by their deletions must not lose a place.
    const bool is_known = all_.from(kWords * kBits - 1 - plan_.most_edits).is_empty();
    return is_known ? best() : FirstEditChoice{FirstEdit::kUnknown, kNoScore, kWords * kBits};
  }

 private:
  using PlaceSets = Sets<kWords>;

  static constexpr std::int32_t kSide = kMostEditsOfSets + 2;
  static constexpr std::int32_t kNoScore = -(1 << 30);

  // By insertions and deletions, with an empty set on the near sides. The other edits are
  // mismatches.
  PlaceSets& set(std::int32_t insertions, std::int32_t deletions) {
    return sets_[insertions + 1][deletions + 1];
  }

  // The score of all paths with so many edits, minus their place, if none of them is a deletion;
  // each deletion adds one, since it consumes no residue.
  std::int32_t lead_of(std::int32_t edits, std::int32_t indels) const {
    return (edits - indels) * (plan_.mismatch_score - 1) + indels * (plan_.indel_score - 1);
  }

  PlaceSets walk(const PlaceSets& arrivals, std::int32_t diagonal) const {
    PlaceSets ends;
    Words carried{};
    for (std::int32_t w = 0; w < kWords; ++w) {
      // The last place ends all walks; from there nothing is known.
      const std::uint64_t end = w + 1 < kWords ? 0 : std::uint64_t{1} << (kBits - 1);
      const Words differs = in_all(differs_.first[w * differs_.distance + diagonal] | end);
      const Words matches = ~differs;
      const Words begins = arrivals.words[w] & matches;
      const Words sum = matches + begins + carried;
      ends.words[w] = (sum | arrivals.words[w]) & differs;
      // A one leaves the word where both have one, or one of them and the sum has none.
      if (w + 1 < kWords) carried = (begins | (matches & ~sum)) >> (kBits - 1);
    }
    return ends;
  }

  PlaceSets allowed(const PlaceSets& arrivals, std::int32_t lead) const {
    if constexpr (!kMayFall) return arrivals;
    return arrivals.from(threshold_ - lead + 1);
  }

  void make_first_edits() {
    for (std::int32_t i = -1; i <= plan_.most_edits; ++i) set(i, -1) = set(-1, i) = PlaceSets{};
    make_first_edit(FirstEdit::kMismatch, 0, 0);
    make_first_edit(FirstEdit::kInsertion, 1, 0);
    make_first_edit(FirstEdit::kDeletion, 0, 1);
    goes_on_ = !all_.is_empty();
  }

  // A deletion consumes no residue: it leads to place 0, the others to place 1.
  void make_first_edit(FirstEdit edit, std::int32_t insertions, std::int32_t deletions) {
    const std::int32_t lead = lead_of(1, insertions + deletions) + deletions;
    PlaceSets arrivals{};
    arrivals.words[0] = in_lane(static_cast<std::int32_t>(edit), deletions == 1 ? 1 : 2);
    const PlaceSets ends = walk(allowed(arrivals, lead), insertions - deletions);
    set(insertions, deletions) = ends;
    note(ends, lead);
    all_ = all_ | ends;
  }

  template <std::int32_t kEdits>
  void make_edits_from() {
    if (!goes_on_ || kEdits > plan_.most_edits) return;
    make_edits<kEdits>();
    if constexpr (kEdits < kMostEditsOfSets) make_edits_from<kEdits + 1>();
  }

  // Turns the sets behind one edit less into those behind `kEdits`: from the highest numbers down,
  // so that those they depend on are still old. Unrolled, this takes two thirds of the time.
  template <std::int32_t kEdits>
  void make_edits() {
    for (std::int32_t i = 0; i <= kEdits; ++i) set(i, kEdits - i) = PlaceSets{};
    PlaceSets scores{};
    PlaceSets any{};
#pragma GCC unroll 8
    for (std::int32_t indels = kEdits; indels >= 0; --indels) {
      const std::int32_t lead = lead_of(kEdits, indels);
#pragma GCC unroll 8
      for (std::int32_t deletions = 0; deletions <= indels; ++deletions) {
        const std::int32_t insertions = indels - deletions;
        const PlaceSets before = set(insertions, deletions) | set(insertions - 1, deletions);
        const PlaceSets arrivals = before.moved(1) | set(insertions, deletions - 1);
        const PlaceSets ends = walk(allowed(arrivals, lead + deletions), insertions - deletions);
        set(insertions, deletions) = ends;
        any = any | ends;
        scores = scores | ends.moved(deletions);
      }
      // With equal costs the leads of all these paths differ by their deletions alone.
      if (plan_.mismatch_score == plan_.indel_score && indels > 0) continue;
      note(scores, lead);
      scores = PlaceSets{};
    }
    all_ = all_ | any;
    goes_on_ = !any.is_empty();
  }

  // Raises the values to the highest scores of paths with this lead.
  void note(const PlaceSets& places, std::int32_t lead) {
    for (std::int32_t first = 0; first < kFirstMoves; ++first) {
      const std::int32_t furthest = places.furthest(first);
      if (furthest >= 0 && furthest + lead > values_[first]) values_[first] = furthest + lead;
    }
  }

  FirstEditChoice best() const {
    std::int32_t best = 0;
    for (std::int32_t first = 1; first < kFirstMoves; ++first) {
      if (values_[first] > values_[best]) best = first;
    }
    const std::int32_t value = values_[best];
    return {value == kNoScore ? FirstEdit::kNone : static_cast<FirstEdit>(best), value,
            all_.furthest()};
  }

  const PlaceSetsPlan plan_;
  const std::int32_t threshold_;
  const DiagonalWords differs_;
  /// The highest scores behind the first moves.
  std::int32_t values_[kFirstMoves] = {kNoScore, kNoScore, kNoScore};
  bool goes_on_ = false;
  PlaceSets sets_[kSide][kSide];  ///< Behind the last edits made.
  PlaceSets all_{};               ///< All places where walks have ended.
};

template <std::int32_t kWords>
FirstEditChoice choose(const PlaceSetsPlan& plan, const DiagonalWords& differs,
                       std::int32_t threshold) {
  const std::int32_t dearest =
      plan.mismatch_score < plan.indel_score ? plan.mismatch_score : plan.indel_score;
  if (threshold < plan.most_edits * dearest) {
    return Decision<kWords, false>(plan, differs, threshold).choose();
  }
  return Decision<kWords, true>(plan, differs, threshold).choose();
}

}  // namespace

FirstEditChoice choose_first_edit(const PlaceSetsPlan& plan, const DiagonalWords& differs,
                                  std::int32_t threshold) {
  switch (differs.count) {
    case 1:
      return choose<1>(plan, differs, threshold);
    case 2:
      return choose<2>(plan, differs, threshold);
    default:
      return choose<kMostWordsOfSets>(plan, differs, threshold);
  }
}

}  // namespace vorlan::VORLAN_FILTER_LEVEL

#endif
