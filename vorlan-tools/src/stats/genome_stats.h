// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "stats/shown_repeats.h"
#include "stats/tally.h"
#include "stats/windows.h"

namespace vorlan_tools {

/// The repeats of one sequence.
struct SequenceStats {
  std::string name;                    ///< UTF-8
  std::optional<std::int64_t> length;  ///< in bases, N included; absent if nothing tells it
  std::optional<std::int64_t> ns;      ///< absent without the FASTA file
  std::int64_t covered = 0;            ///< bases in one or more repeats
  Tally tally;
  std::vector<std::pair<std::int64_t, Count>> by_unit_length;  ///< in ascending order
};

/// Tallies of units in their normal form over both strands. Full at half a million units or 32 MB
/// of text: units that come later are summed up in `others`, and so are repeats whose unit the
/// report does not tell.
class UnitTable {
 public:
  static constexpr std::size_t kMostUnits = 500000;
  static constexpr std::size_t kMostText = 32 << 20;

  void add(const Repeat& repeat, const std::string& unit);
  void add(const std::string& unit, const Tally& tally) { at(unit).add(tally); }
  void add(const UnitTable& other);

  const Tally& others() const { return others_; }
  std::size_t size() const { return tallies_.size(); }

  /// By falling number of repeats, then bases, then by the alphabet; at most `most`.
  std::vector<std::pair<std::string, Tally>> commonest(std::size_t most) const;

  /// For tables that were stored.
  void set_others(const Tally& others) { others_ = others; }

 private:
  Tally& at(const std::string& unit);

  std::unordered_map<std::string, Tally> tallies_;
  std::size_t text_ = 0;
  Tally others_;
};

/// What the repeats of a report are and where they lie.
struct GenomeStats {
  static constexpr std::size_t kShown = 20;
  static constexpr std::size_t kShownColumns = 3000;
  static constexpr std::int64_t kLeastDivergedBases = 50;

  std::string name;
  std::string version;
  std::vector<std::pair<std::string, std::string>>
      settings;             ///< as the head of the report has them
  bool knows_edits = true;  ///< whether the report counts mismatches, insertions and deletions

  std::vector<SequenceStats> sequences;
  Tally tally;
  std::int64_t covered = 0;
  ByUnitLength by_unit_length;
  UnitTable units;
  Windows windows;
  ShownRepeats longest{Rank::kLongest, kShown, kShownColumns};
  /// Of those with at least kLeastDivergedBases bases.
  ShownRepeats most_diverged{Rank::kMostDiverged, kShown, kShownColumns};

  /// Sums over the sequences; absent if one of them is not known.
  std::optional<std::int64_t> bases() const;
  std::optional<std::int64_t> ns() const;
};

/// The sums over several genomes, without windows and lists.
struct TotalStats {
  std::int64_t genomes = 0;
  std::int64_t sequences = 0;
  std::optional<std::int64_t> bases = 0;
  std::optional<std::int64_t> ns = 0;
  std::int64_t covered = 0;
  bool knows_edits = true;
  Tally tally;
  ByUnitLength by_unit_length;
  UnitTable units;

  void add(const GenomeStats& genome);
};

}  // namespace vorlan_tools
