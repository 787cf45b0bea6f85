// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "compare/reread_loci.h"

#include <algorithm>

#include "fasta/other_strand.h"

namespace vorlan_tools {

namespace {

constexpr std::size_t kNone = SIZE_MAX;
constexpr std::size_t kOtherUnit = SIZE_MAX - 1;
constexpr std::size_t kNeighbours = 24;
/// A place that a neighbour tells may be so many bases off, since borders move.
constexpr std::int64_t kPlay = 5;

struct Partner {
  std::size_t locus = kNone;
  bool is_reverse = false;
};

/// Whether bases that would begin at `start` are those of `other`, as far as both reach: three of
/// four, over at least half of the shorter one.
bool are_same_bases(const std::string& bases, const ComparedLocus& other, std::int64_t start) {
  const auto size = static_cast<std::int64_t>(bases.size());
  const auto other_size = static_cast<std::int64_t>(other.bases.size());
  for (std::int64_t play = -kPlay; play <= kPlay; ++play) {
    const std::int64_t offset = start + play - other.start;
    const std::int64_t begin = std::max<std::int64_t>(0, -offset);
    const std::int64_t end = std::min(size, other_size - offset);
    std::int64_t equal = 0;
    for (std::int64_t k = begin; k < end; ++k) {
      equal +=
          bases[static_cast<std::size_t>(k)] == other.bases[static_cast<std::size_t>(k + offset)];
    }
    const bool is_enough = 2 * (end - begin) >= std::min(size, other_size) && end > begin;
    if (is_enough && 4 * equal >= 3 * (end - begin)) return true;
  }
  return false;
}

/// One direction: loci of `here` that lie in loci of `there`.
class Marker {
 public:
  Marker(const std::vector<ComparedLocus>& here, const std::vector<ComparedLocus>& there,
         std::vector<Partner> partners)
      : here_(here), there_(there), partners_(std::move(partners)) {}

  /// Returns which loci of `there` cover marked ones of their unit.
  std::vector<bool> mark(std::vector<LocusFate>& fates) const {
    std::vector<bool> covers(there_.size());
    for (std::size_t i = 0; i < here_.size(); ++i) {
      if (fates[i] != LocusFate::kUnpaired) continue;
      std::size_t covering = covering_locus(i, false);
      if (covering == kNone) covering = covering_locus(i, true);
      if (covering == kNone) continue;
      fates[i] = LocusFate::kReread;
      if (covering != kOtherUnit) covers[covering] = true;
    }
    return covers;
  }

 private:
  /// By its nearest paired neighbour on that side.
  std::size_t covering_locus(std::size_t i, bool is_right) const {
    for (std::size_t step = 1; step <= kNeighbours; ++step) {
      const std::size_t k = is_right ? i + step : i - step;
      if (k >= here_.size() || here_[k].sequence != here_[i].sequence) return kNone;
      if (partners_[k].locus != kNone) return beside_partner(i, k);
    }
    return kNone;
  }

  std::size_t beside_partner(std::size_t i, std::size_t anchor) const {
    const ComparedLocus& locus = here_[i];
    const ComparedLocus& known = here_[anchor];
    const Partner& partner = partners_[anchor];
    const ComparedLocus& beside = there_[partner.locus];
    // The distance from the start of the neighbour; on the other strand, from its end.
    const std::int64_t start = partner.is_reverse ? beside.end - (locus.end - known.start)
                                                  : beside.start + (locus.start - known.start);
    const std::int64_t far_start = partner.is_reverse ? beside.start - (locus.end - known.end)
                                                      : beside.end + (locus.start - known.end);
    // Beside a neighbour that has become longer or shorter, its near border counts, unless other
    // loci became a part of it.
    const bool is_behind = i > anchor;
    const std::size_t found = overlapping(locus, partner, is_behind ? far_start : start);
    return found != kNone ? found : overlapping(locus, partner, is_behind ? start : far_start);
  }

  /// The locus that covers a place of the unit of `locus`; kOtherUnit if one of another unit has
  /// its bases; kNone.
  std::size_t overlapping(const ComparedLocus& locus, const Partner& centre,
                          std::int64_t start) const {
    const std::int64_t end = start + locus.length();
    const std::size_t first = centre.locus - std::min(centre.locus, kNeighbours);
    const std::size_t last = std::min(there_.size(), centre.locus + kNeighbours + 1);
    std::size_t found = kNone;
    for (std::size_t j = first; j < last; ++j) {
      const ComparedLocus& other = there_[j];
      const bool is_there =
          other.sequence == there_[centre.locus].sequence && other.start < end && start < other.end;
      if (!is_there) continue;
      if (other.unit == locus.unit) return j;
      const std::string bases = centre.is_reverse ? other_strand(locus.bases) : locus.bases;
      if (are_same_bases(bases, other, start)) found = kOtherUnit;
    }
    return found;
  }

  const std::vector<ComparedLocus>& here_;
  const std::vector<ComparedLocus>& there_;
  std::vector<Partner> partners_;
};

}  // namespace

void mark_reread_loci(const ComparedReport& first, const ComparedReport& second, Pairing& pairing) {
  std::vector<Partner> of_first(first.loci.size());
  std::vector<Partner> of_second(second.loci.size());
  for (const LocusPair& pair : pairing.pairs) {
    of_first[pair.first] = {pair.second, pair.is_reverse};
    of_second[pair.second] = {pair.first, pair.is_reverse};
  }
  const std::vector<bool> of_second_covers =
      Marker(first.loci, second.loci, std::move(of_first)).mark(pairing.first_fates);
  const std::vector<bool> of_first_covers =
      Marker(second.loci, first.loci, std::move(of_second)).mark(pairing.second_fates);
  for (LocusPair& pair : pairing.pairs) {
    pair.is_shared = of_first_covers[pair.first] || of_second_covers[pair.second];
  }
}

}  // namespace vorlan_tools
