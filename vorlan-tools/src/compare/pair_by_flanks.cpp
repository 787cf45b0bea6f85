// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Loci of two assemblies, paired without an alignment.
//
// Idea. First what cannot be mistaken, then its neighbours.
//
// 1. Keys. Both flanks and the unit, read on the strand on which they come first in the alphabet: a
//    key that both reports have exactly once makes a pair, wherever the two lie. Then the unit with
//    one flank, read towards the repeat: such a key makes a pair if the other flank fits too, give
//    or take a quarter of its bases (border_shift.h).
// 2. Neighbours. Next to a pair, on the side and in the direction that its strand tells, the other
//    report must have the next locus: it is paired if its unit is the same and its flanks fit. Of
//    several, the one whose distance from the pair is most alike. That finds loci with changes in
//    both flanks, and tells copies of a transposon apart. New pairs have neighbours too: the step
//    is repeated until nothing is found.
// 3. What is left and equal in key is paired in its order; then loci with one unique flank whose
//    other side is another sequence: the ends of what has been moved or turned.
// 4. A locus that is left, but lies within or across one of the same unit at the place where its
//    neighbours are, was read as a part or as several parts: it is neither lost nor new.
//
//     first   ...[1]..[2]....[3]...[4]..        1 and 4 by keys, 2 and 3 (with changes in their
//     second  ...[4']..[3']...[2']..[1']...     flanks) as neighbours, backwards: it was turned
//
// Cost: sorting of the keys, plus a few steps for each locus that keys do not pair.
// Limits. In a long row of equal loci with equal neighbours (an array of genes) one more or less
// shifts the pairs; what differs then is which copy is the new one.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <tuple>

#include "compare/border_shift.h"
#include "compare/locus_keys.h"
#include "compare/locus_pairs.h"

namespace vorlan_tools {

namespace {

constexpr std::size_t kNone = SIZE_MAX;
constexpr int kRounds = 20;
/// How far from a pair a neighbour is looked for, in loci, and by how many bases its distance may
/// differ if one flank only fits.
constexpr std::size_t kNeighbours = 24;
constexpr std::int64_t kFarOff = 1000;
constexpr std::int64_t kCloseBy = 5;

/// Pairs in work.
class Pairer {
 public:
  Pairer(const ComparedReport& first, const ComparedReport& second, std::int64_t flank)
      : first_(first),
        second_(second),
        flank_(static_cast<std::size_t>(flank)),
        partner_(first.loci.size()),
        taken_(second.loci.size(), kNone) {
    for (LocusPair& pair : partner_) pair.second = kNone;
  }

  Pairing pair() {
    pair_by_keys(KeyKind::kBothFlanks, Demand::kNothing);
    pair_by_keys(KeyKind::kOneFlank, Demand::kBothSides);
    pair_neighbours();
    pair_equal_keys_in_order();
    pair_by_keys(KeyKind::kOneFlank, Demand::kNothing);
    pair_neighbours();
    return result();
  }

 private:
  enum class Demand { kNothing, kBothSides };
  using Keys = std::vector<Key>;

  bool is_paired(std::size_t first) const { return partner_[first].second != kNone; }
  bool is_taken(std::size_t second) const { return taken_[second] != kNone; }

  LocusPair measured(std::size_t i, std::size_t j, bool is_reverse) const {
    const BorderView one = view_borders(first_.loci[i], false, 0);
    const BorderView other = view_borders(second_.loci[j], is_reverse, flank_);
    LocusPair pair{i, j, is_reverse, {}, {}, false};
    pair.left_shift = border_shift(one.left_outside, other.left_outside, other.left_inside);
    pair.right_shift = border_shift(one.right_outside, other.right_outside, other.right_inside);
    return pair;
  }

  void take(const LocusPair& pair) {
    partner_[pair.first] = pair;
    taken_[pair.second] = pair.first;
  }

  /// The keys of all loci that have no partner.
  Keys keys_of(KeyKind kind) {
    Keys keys;
    for (const bool is_second : {false, true}) {
      const std::vector<ComparedLocus>& loci = is_second ? second_.loci : first_.loci;
      for (std::size_t i = 0; i < loci.size(); ++i) {
        if (is_second ? is_taken(i) : is_paired(i)) continue;
        if (kind == KeyKind::kBothFlanks) {
          add_both_flanks(loci[i], i, is_second, keys);
        } else {
          add_single_flanks(loci[i], i, is_second, keys);
        }
      }
    }
    std::sort(keys.begin(), keys.end(), [](const Key& a, const Key& b) {
      return std::tie(a.number, a.is_second, a.locus) < std::tie(b.number, b.is_second, b.locus);
    });
    return keys;
  }

  void add_both_flanks(const ComparedLocus& locus, std::size_t number, bool is_second, Keys& keys) {
    if (locus.left.size() + locus.right.size() < flank_) return;
    const bool is_reverse = reads_first_on_other_strand(locus);
    set_key_text(locus, KeyKind::kBothFlanks, is_reverse, text_);
    keys.push_back({number_of(text_), number, is_second, is_reverse});
  }

  void add_single_flanks(const ComparedLocus& locus, std::size_t number, bool is_second,
                         Keys& keys) {
    for (const bool is_reverse : {false, true}) {
      if ((is_reverse ? locus.right : locus.left).size() != flank_) continue;
      set_key_text(locus, KeyKind::kOneFlank, is_reverse, text_);
      keys.push_back({number_of(text_), number, is_second, is_reverse});
    }
  }

  void pair_by_keys(KeyKind kind, Demand demand) {
    const Keys keys = keys_of(kind);
    for (std::size_t i = 0; i < keys.size();) {
      std::size_t end = i + 1;
      while (end < keys.size() && keys[end].number == keys[i].number) ++end;
      const bool is_unique = end == i + 2 && !keys[i].is_second && keys[i + 1].is_second;
      if (is_unique) offer(keys[i], keys[i + 1], kind, demand);
      i = end;
    }
  }

  void offer(const Key& one, const Key& other, KeyKind kind, Demand demand) {
    if (is_paired(one.locus) || is_taken(other.locus)) return;
    set_key_text(first_.loci[one.locus], kind, one.is_reverse, text_);
    set_key_text(second_.loci[other.locus], kind, other.is_reverse, other_text_);
    if (text_ != other_text_) return;
    const bool is_reverse = one.is_reverse != other.is_reverse;
    const LocusPair pair = kind == KeyKind::kBothFlanks
                               ? with_equal_flanks(one.locus, other.locus, is_reverse)
                               : measured(one.locus, other.locus, is_reverse);
    if (demand == Demand::kBothSides && !(pair.left_shift && pair.right_shift)) return;
    take(pair);
  }

  LocusPair with_equal_flanks(std::size_t i, std::size_t j, bool is_reverse) const {
    LocusPair pair{i, j, is_reverse, {}, {}, false};
    if (!first_.loci[i].left.empty()) pair.left_shift = BorderShift{0, true};
    if (!first_.loci[i].right.empty()) pair.right_shift = BorderShift{0, true};
    return pair;
  }

  void pair_equal_keys_in_order() {
    const Keys keys = keys_of(KeyKind::kBothFlanks);
    for (std::size_t i = 0; i < keys.size();) {
      std::size_t middle = i;
      const auto is_equal = [&](std::size_t k) {
        return k < keys.size() && keys[k].number == keys[i].number;
      };
      while (is_equal(middle) && !keys[middle].is_second) ++middle;
      std::size_t end = middle;
      while (is_equal(end)) ++end;
      for (std::size_t one = i, other = middle; one < middle && other < end; ++one, ++other) {
        offer(keys[one], keys[other], KeyKind::kBothFlanks, Demand::kNothing);
      }
      i = end;
    }
  }

  /// The distance between two loci, from the earlier one to the later one as `is_reverse` reads.
  static std::int64_t gap(const ComparedLocus& near, const ComparedLocus& far, bool is_right) {
    return is_right ? far.start - near.end : near.start - far.end;
  }

  /// Looks for the partner of locus `i` beside the partner of its paired neighbour `anchor`.
  bool pair_beside(std::size_t i, std::size_t anchor) {
    const LocusPair& known = partner_[anchor];
    const bool is_right = i > anchor;
    const bool goes_right = is_right != known.is_reverse;
    const ComparedLocus& locus = first_.loci[i];
    const ComparedLocus& partner = second_.loci[known.second];
    const std::int64_t expected = gap(first_.loci[anchor], locus, is_right);
    std::optional<LocusPair> best;
    std::int64_t best_off = kFarOff + 1;
    for (std::size_t step = 1; step <= kNeighbours; ++step) {
      const std::size_t j = goes_right ? known.second + step : known.second - step;
      if (j >= second_.loci.size() || second_.loci[j].sequence != partner.sequence) break;
      if (is_taken(j) || second_.loci[j].unit != locus.unit) continue;
      const std::int64_t off = std::abs(gap(partner, second_.loci[j], goes_right) - expected);
      if (off >= best_off) continue;
      const LocusPair pair = measured(i, j, known.is_reverse);
      const int sides = (pair.left_shift ? 1 : 0) + (pair.right_shift ? 1 : 0);
      if (sides == 0 || (sides == 1 && off > kCloseBy)) continue;
      best = pair;
      best_off = off;
    }
    if (best) take(*best);
    return best.has_value();
  }

  /// The nearest paired locus of the same sequence on that side; kNone if there is none close by.
  std::size_t nearest_paired(std::size_t i, bool is_right) const {
    for (std::size_t step = 1; step <= kNeighbours; ++step) {
      const std::size_t k = is_right ? i + step : i - step;
      if (k >= first_.loci.size() || first_.loci[k].sequence != first_.loci[i].sequence) break;
      if (is_paired(k)) return k;
    }
    return kNone;
  }

  bool pair_with_a_neighbour(std::size_t i) {
    for (const bool is_right : {false, true}) {
      const std::size_t anchor = nearest_paired(i, is_right);
      if (anchor != kNone && pair_beside(i, anchor)) return true;
    }
    return false;
  }

  void pair_neighbours() {
    bool is_changed = true;
    for (int round = 0; is_changed && round < kRounds; ++round) {
      is_changed = false;
      for (std::size_t i = 0; i < first_.loci.size(); ++i) {
        if (!is_paired(i) && pair_with_a_neighbour(i)) is_changed = true;
      }
      for (std::size_t i = first_.loci.size(); i-- > 0;) {
        if (!is_paired(i) && pair_with_a_neighbour(i)) is_changed = true;
      }
    }
  }

  Pairing result() const {
    Pairing pairing;
    pairing.first_fates.assign(first_.loci.size(), LocusFate::kUnpaired);
    pairing.second_fates.assign(second_.loci.size(), LocusFate::kUnpaired);
    for (const LocusPair& pair : partner_) {
      if (pair.second == kNone) continue;
      pairing.pairs.push_back(pair);
      pairing.first_fates[pair.first] = LocusFate::kPaired;
      pairing.second_fates[pair.second] = LocusFate::kPaired;
    }
    return pairing;
  }

  const ComparedReport& first_;
  const ComparedReport& second_;
  std::size_t flank_;
  std::vector<LocusPair> partner_;  ///< of each first locus; `second` kNone: none yet
  std::vector<std::size_t> taken_;  ///< by which first locus
  std::string text_;                ///< of a key; these two keep their memory
  std::string other_text_;
};

}  // namespace

Pairing pair_by_flanks(const ComparedReport& first, const ComparedReport& second,
                       std::int64_t flank) {
  return Pairer(first, second, flank).pair();
}

}  // namespace vorlan_tools
