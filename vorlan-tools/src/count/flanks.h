// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vorlan_tools {

/// What stands on both sides of a bracket on its reference. Empty where the reference has too few
/// bases: such a bracket cannot be found elsewhere.
struct Flanks {
  std::string left;
  std::string right;
};

/// A bracket found by its flanks.
struct Bracket {
  std::size_t locus = 0;    ///< its number among the flanks
  bool is_reverse = false;  ///< flanks stand on the other strand
  std::int64_t start = 0;   ///< from 0, on the strand of the sequence
  std::int64_t end = 0;     ///< excluded
  int edits = 0;            ///< differences in both flanks together
};

/// Finds brackets in any sequence by the flanks that they have on a reference. A flank may differ
/// by one base in ten, inserted and deleted bases included; 16 bases in a row must be equal.
class FlankFinder {
 public:
  /// Flanks of at least kLeastFlank bases. Brackets of more than `longest` bases are not looked
  /// for.
  FlankFinder(std::vector<Flanks> flanks, std::int64_t longest);

  /// All brackets in a sequence, by start, then number of locus. Where several places fit a flank,
  /// the flanks that stand nearest to each other make a bracket. Linear in the sequence, plus the
  /// square of a flank for each place that resembles it.
  std::vector<Bracket> find(std::string_view residues) const;

  static constexpr std::int64_t kSeed = 16;
  static constexpr std::int64_t kLeastFlank = 20;

 private:
  /// A flank as it stands on the strand that is read; its inner border touches the bracket.
  struct Pattern {
    std::string bases;
    std::size_t locus;
    bool is_reverse;
    bool is_before;  ///< the bracket follows behind it
  };
  struct Seed {
    std::size_t pattern;
    std::int64_t offset;
  };
  /// The place of the inner border of a pattern.
  struct Border {
    std::int64_t place;
    int edits;
  };
  using Borders = std::vector<std::vector<Border>>;

  void add_pattern(Pattern pattern);
  void look_up(std::uint32_t seed, std::int64_t place, std::string_view residues,
               Borders& borders) const;
  void add_border(const Pattern& pattern, std::int64_t expected, std::string_view residues,
                  std::vector<Border>& borders) const;
  void pair_borders(const Borders& borders, std::size_t before, std::size_t behind,
                    std::vector<Bracket>& brackets) const;

  std::vector<Pattern> patterns_;
  std::unordered_map<std::uint32_t, std::vector<Seed>> seeds_;
  std::vector<bool> may_be_seed_;
  std::int64_t longest_;
};

}  // namespace vorlan_tools
