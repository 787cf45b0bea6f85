// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Brackets by their flanks.
//
// Idea. Each flank, on both strands, is cut into all its words of 16 bases. A sequence is read word
// by word; a word that a flank has too tells where the flank's inner border ought to be. There the
// whole flank is aligned (edit distance), and the border is where the best alignment ends.
//
//     sequence  ..TTCGATTACAGGAGATAGATAGATCCAGTTTGAC..
//     flanks         GATTACAGG            CCAGTTTGA
//     bracket                 AGATAGATAGAT              from the one border to the other
//
// On the other strand the right flank comes first, and both are turned round. A flank that occurs
// twice gives two borders; a bracket takes the two that stand nearest to each other, and each
// border is taken at most once, so that a flank that is missing on one side makes no bracket.
//
// Limits. A flank with a change in every stretch of 16 bases is not found: with 50 bases that takes
// 3 changes, well spread. Edits beside the bracket are ambiguous: where two alignments are equally
// good, the border is the one that the word tells.

#include "count/flanks.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "fasta/other_strand.h"

namespace vorlan_tools {

namespace {

constexpr std::size_t kFilterBits = 22;
constexpr int kBasesForAnEdit = 10;
constexpr int kNoCode = 4;
/// Each locus has so many patterns: left and right flank on both strands.
constexpr std::size_t kPatternsOfALocus = 4;

constexpr std::array<std::uint8_t, 256> make_codes() {
  std::array<std::uint8_t, 256> codes{};
  codes.fill(kNoCode);
  codes['A'] = 0;
  codes['C'] = 1;
  codes['G'] = 2;
  codes['T'] = 3;
  return codes;
}

constexpr std::array<std::uint8_t, 256> kCodes = make_codes();

std::size_t filter_place(std::uint32_t seed) {
  constexpr std::uint32_t kGoldenRatio = 2654435769U;  // 2^32 divided by the golden ratio
  return (seed * kGoldenRatio) >> (32 - kFilterBits);
}

/// Calls visit(seed, place of its first base) for each word of 16 bases without an N.
template <typename Visit>
void for_each_seed(std::string_view residues, Visit visit) {
  std::uint32_t seed = 0;
  std::int64_t run = 0;
  for (std::size_t i = 0; i < residues.size(); ++i) {
    const std::uint8_t code = kCodes[static_cast<unsigned char>(residues[i])];
    if (code == kNoCode) {
      run = 0;
      continue;
    }
    seed = seed << 2 | code;
    if (++run >= FlankFinder::kSeed) {
      visit(seed, static_cast<std::int64_t>(i) + 1 - FlankFinder::kSeed);
    }
  }
}

struct End {
  std::int64_t place;
  int edits;
};

/// Where the best alignment of all of `flank` ends in `window`; it may begin anywhere. Of equally
/// good ends the one nearest to `expected`.
End best_end(std::string_view flank, std::string_view window, std::int64_t expected) {
  std::vector<int> row(window.size() + 1, 0);
  for (std::size_t i = 0; i < flank.size(); ++i) {
    int diagonal = row[0];
    row[0] = static_cast<int>(i) + 1;
    for (std::size_t j = 0; j < window.size(); ++j) {
      const int aligned = diagonal + (flank[i] == window[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({aligned, row[j + 1] + 1, row[j] + 1});
    }
  }
  End best{0, row[0]};
  for (std::size_t j = 1; j < row.size(); ++j) {
    const auto place = static_cast<std::int64_t>(j);
    const bool is_nearer = std::abs(place - expected) < std::abs(best.place - expected);
    if (row[j] < best.edits || (row[j] == best.edits && is_nearer)) best = {place, row[j]};
  }
  return best;
}

}  // namespace

FlankFinder::FlankFinder(std::vector<Flanks> flanks, std::int64_t longest)
    : may_be_seed_(std::size_t{1} << kFilterBits), longest_(longest) {
  for (std::size_t locus = 0; locus < flanks.size(); ++locus) {
    const Flanks& both = flanks[locus];
    add_pattern({both.left, locus, false, true});
    add_pattern({both.right, locus, false, false});
    add_pattern({other_strand(both.right), locus, true, true});
    add_pattern({other_strand(both.left), locus, true, false});
  }
}

void FlankFinder::add_pattern(Pattern pattern) {
  patterns_.push_back(std::move(pattern));
  for_each_seed(patterns_.back().bases, [this](std::uint32_t seed, std::int64_t offset) {
    seeds_[seed].push_back({patterns_.size() - 1, offset});
    may_be_seed_[filter_place(seed)] = true;
  });
}

/// `expected` is the place of the inner border if no base is inserted or deleted.
void FlankFinder::add_border(const Pattern& pattern, std::int64_t expected,
                             std::string_view residues, std::vector<Border>& borders) const {
  const auto size = static_cast<std::int64_t>(pattern.bases.size());
  const std::int64_t slack = size / kBasesForAnEdit;
  const auto length = static_cast<std::int64_t>(residues.size());
  const std::int64_t outer = pattern.is_before ? size + slack : slack;
  const std::int64_t begin = std::max<std::int64_t>(0, expected - outer);
  const std::int64_t end = std::min(length, expected + size + 2 * slack - outer);
  if (begin >= end) return;
  const std::string window(
      residues.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin)));
  Border found{};
  if (pattern.is_before) {
    const End best = best_end(pattern.bases, window, expected - begin);
    found = {begin + best.place, best.edits};
  } else {
    const std::string turned(pattern.bases.rbegin(), pattern.bases.rend());
    const End best =
        best_end(turned, {std::string(window.rbegin(), window.rend())}, end - expected);
    found = {end - best.place, best.edits};
  }
  if (found.edits > slack) return;
  for (Border& border : borders) {
    if (std::abs(border.place - found.place) > slack) continue;
    if (found.edits < border.edits) border = found;
    return;
  }
  borders.push_back(found);
}

void FlankFinder::look_up(std::uint32_t seed, std::int64_t place, std::string_view residues,
                          Borders& borders) const {
  const auto found = seeds_.find(seed);
  if (found == seeds_.end()) return;
  for (const Seed& hit : found->second) {
    const Pattern& pattern = patterns_[hit.pattern];
    const auto size = static_cast<std::int64_t>(pattern.bases.size());
    const std::int64_t expected = place - hit.offset + (pattern.is_before ? size : 0);
    std::vector<Border>& known = borders[hit.pattern];
    // Words of one flank follow each other: the border that the first one told is enough.
    const bool is_known = !known.empty() && known.back().place == expected;
    if (!is_known) add_border(pattern, expected, residues, known);
  }
}

void FlankFinder::pair_borders(const Borders& borders, std::size_t before, std::size_t behind,
                               std::vector<Bracket>& brackets) const {
  const std::vector<Border>& starts = borders[before];
  const std::vector<Border>& ends = borders[behind];
  for (std::size_t i = 0; i < starts.size(); ++i) {
    const auto end = std::find_if(ends.begin(), ends.end(), [&](const Border& border) {
      return border.place >= starts[i].place;
    });
    if (end == ends.end() || end->place - starts[i].place > longest_) continue;
    const bool is_nearest = i + 1 == starts.size() || starts[i + 1].place > end->place;
    if (!is_nearest) continue;
    const Pattern& pattern = patterns_[before];
    brackets.push_back({pattern.locus, pattern.is_reverse, starts[i].place, end->place,
                        starts[i].edits + end->edits});
  }
}

std::vector<Bracket> FlankFinder::find(std::string_view residues) const {
  Borders borders(patterns_.size());
  for_each_seed(residues, [&](std::uint32_t seed, std::int64_t place) {
    if (may_be_seed_[filter_place(seed)]) look_up(seed, place, residues, borders);
  });
  for (std::vector<Border>& all : borders) {
    std::sort(all.begin(), all.end(),
              [](const Border& a, const Border& b) { return a.place < b.place; });
  }
  std::vector<Bracket> brackets;
  for (std::size_t first = 0; first < patterns_.size(); first += kPatternsOfALocus) {
    pair_borders(borders, first, first + 1, brackets);
    pair_borders(borders, first + 2, first + 3, brackets);
  }
  std::sort(brackets.begin(), brackets.end(), [](const Bracket& a, const Bracket& b) {
    if (a.start != b.start) return a.start < b.start;
    return a.locus != b.locus ? a.locus < b.locus : a.is_reverse < b.is_reverse;
  });
  return brackets;
}

}  // namespace vorlan_tools
