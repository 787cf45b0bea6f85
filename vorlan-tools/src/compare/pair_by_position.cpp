// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include <algorithm>
#include <string>
#include <tuple>
#include <unordered_map>

#include "compare/locus_pairs.h"

namespace vorlan_tools {

namespace {

/// Loci of the second report by sequence of the first; where a name occurs more than once, the n-th
/// sequence of that name belongs to the n-th.
class SequencesByName {
 public:
  SequencesByName(const ComparedReport& first, const ComparedReport& second) {
    std::unordered_map<std::string, std::vector<std::size_t>> numbers;
    for (std::size_t i = 0; i < second.sequences.size(); ++i) {
      numbers[second.sequences[i].name].push_back(i);
    }
    std::unordered_map<std::string, std::size_t> used;
    for (const ComparedSequence& sequence : first.sequences) {
      const std::vector<std::size_t>& all = numbers[sequence.name];
      const std::size_t number = used[sequence.name]++;
      partners_.push_back(number < all.size() ? all[number] : second.sequences.size());
    }
  }

  std::size_t partner(std::size_t sequence) const { return partners_[sequence]; }

 private:
  std::vector<std::size_t> partners_;
};

struct Overlap {
  bool is_exact;
  std::int64_t bases;
  std::size_t first;
  std::size_t second;
};

void add_overlaps(const ComparedReport& first, const ComparedReport& second, std::size_t number,
                  std::size_t partner, std::size_t begin, std::vector<Overlap>& overlaps) {
  const ComparedLocus& locus = first.loci[number];
  for (std::size_t j = begin; j < second.loci.size(); ++j) {
    const ComparedLocus& other = second.loci[j];
    if (other.sequence != partner || other.start >= locus.end) break;
    const std::int64_t bases = std::min(locus.end, other.end) - std::max(locus.start, other.start);
    if (bases <= 0 || other.unit != locus.unit) continue;
    const bool is_exact = other.start == locus.start && other.end == locus.end;
    overlaps.push_back({is_exact, bases, number, j});
  }
}

std::vector<Overlap> find_overlaps(const ComparedReport& first, const ComparedReport& second) {
  const SequencesByName names(first, second);
  std::vector<std::size_t> starts(second.sequences.size() + 1, second.loci.size());
  // The furthest end up to each locus, within its sequence: behind which no earlier one reaches.
  std::vector<std::int64_t> reach(second.loci.size());
  for (std::size_t j = second.loci.size(); j-- > 0;) starts[second.loci[j].sequence] = j;
  for (std::size_t j = 0; j < second.loci.size(); ++j) {
    const bool is_first = j == starts[second.loci[j].sequence];
    reach[j] = is_first ? second.loci[j].end : std::max(reach[j - 1], second.loci[j].end);
  }
  std::vector<Overlap> overlaps;
  std::size_t begin = 0;
  for (std::size_t i = 0; i < first.loci.size(); ++i) {
    const std::size_t partner = names.partner(first.loci[i].sequence);
    const bool is_new_sequence = i == 0 || first.loci[i].sequence != first.loci[i - 1].sequence;
    if (is_new_sequence) begin = starts[partner];
    while (begin < second.loci.size() && second.loci[begin].sequence == partner &&
           reach[begin] <= first.loci[i].start) {
      ++begin;
    }
    add_overlaps(first, second, i, partner, begin, overlaps);
  }
  return overlaps;
}

}  // namespace

Pairing pair_by_position(const ComparedReport& first, const ComparedReport& second) {
  std::vector<Overlap> overlaps = find_overlaps(first, second);
  std::sort(overlaps.begin(), overlaps.end(), [](const Overlap& a, const Overlap& b) {
    return std::tie(b.is_exact, b.bases, a.first, a.second) <
           std::tie(a.is_exact, a.bases, b.first, b.second);
  });
  Pairing pairing;
  pairing.first_fates.assign(first.loci.size(), LocusFate::kUnpaired);
  pairing.second_fates.assign(second.loci.size(), LocusFate::kUnpaired);
  for (const Overlap& overlap : overlaps) {
    LocusFate& one = pairing.first_fates[overlap.first];
    LocusFate& other = pairing.second_fates[overlap.second];
    if (one == LocusFate::kPaired || other == LocusFate::kPaired) {
      // One of them is taken: what is left over is a part of what the other report has as one.
      if (one == LocusFate::kUnpaired) one = LocusFate::kReread;
      if (other == LocusFate::kUnpaired) other = LocusFate::kReread;
      continue;
    }
    one = other = LocusFate::kPaired;
    LocusPair pair;
    pair.first = overlap.first;
    pair.second = overlap.second;
    // By position, nothing has to move: lengths are compared as they are.
    pair.left_shift = pair.right_shift = BorderShift{0, true};
    pairing.pairs.push_back(pair);
  }
  std::sort(pairing.pairs.begin(), pairing.pairs.end(),
            [](const LocusPair& a, const LocusPair& b) { return a.first < b.first; });
  return pairing;
}

}  // namespace vorlan_tools
