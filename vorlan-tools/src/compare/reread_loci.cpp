// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "compare/reread_loci.h"

#include <algorithm>

namespace vorlan_tools {

namespace {

constexpr std::size_t kNone = SIZE_MAX;
constexpr std::size_t kNeighbours = 24;

struct Partner {
  std::size_t locus = kNone;
  bool is_reverse = false;
};

/// One direction: loci of `here` that lie in loci of `there`.
class Marker {
 public:
  Marker(const std::vector<ComparedLocus>& here, const std::vector<ComparedLocus>& there,
         std::vector<Partner> partners)
      : here_(here), there_(there), partners_(std::move(partners)) {}

  /// Returns which loci of `there` cover marked ones.
  std::vector<bool> mark(std::vector<LocusFate>& fates) const {
    std::vector<bool> covers(there_.size());
    for (std::size_t i = 0; i < here_.size(); ++i) {
      if (fates[i] != LocusFate::kUnpaired) continue;
      std::size_t covering = covering_locus(i, false);
      if (covering == kNone) covering = covering_locus(i, true);
      if (covering == kNone) continue;
      fates[i] = LocusFate::kReread;
      covers[covering] = true;
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
    // Behind a neighbour that has become longer or shorter, its far border counts.
    const bool is_behind = i > anchor;
    const std::int64_t begin = is_behind ? far_start : start;
    return overlapping(partner.locus, locus.unit, begin, begin + locus.length());
  }

  std::size_t overlapping(std::size_t centre, const std::string& unit, std::int64_t start,
                          std::int64_t end) const {
    const std::size_t first = centre - std::min(centre, kNeighbours);
    const std::size_t last = std::min(there_.size(), centre + kNeighbours + 1);
    for (std::size_t j = first; j < last; ++j) {
      const ComparedLocus& other = there_[j];
      const bool is_there = other.sequence == there_[centre].sequence && other.unit == unit &&
                            other.start < end && start < other.end;
      if (is_there) return j;
    }
    return kNone;
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
