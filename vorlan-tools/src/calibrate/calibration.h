// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorlan_tools {

/// Repeats of one unit length and score.
struct ScoreCount {
  std::int64_t found = 0;   ///< in the genome
  std::int64_t chance = 0;  ///< in all shuffled copies together
};

/// By unit length, then by score, in ascending order.
using ScoreCounts = std::map<std::int64_t, std::map<std::int64_t, ScoreCount>>;

/// What the counts say of one score. Shares are from 0 to 1.
struct ScoreShare {
  std::int64_t score = 0;
  ScoreCount count;
  double share = 0;       ///< of false ones among those found with this score
  double share_from = 0;  ///< of false ones among those found with this score or more
};

/// A least score for one unit length.
struct Threshold {
  std::int64_t score = 0;
  bool is_sure = true;  ///< false: too few repeats to tell; no repeat of chance had this score
};

/// A line that --minScore, --minScore_a and --minScore_b express.
struct ThresholdLine {
  std::int64_t constant = 0;
  std::int64_t intercept = 0;
  double slope = 0;
  std::int64_t kept = 0;      ///< repeats of the genome that it keeps
  double expected_false = 0;  ///< among them

  /// The least score that vorlan asks for.
  std::int64_t score(std::int64_t unit_length) const;
};

/// The levels for which thresholds are advised, as shares.
inline constexpr double kLevels[] = {0.05, 0.01};

struct UnitLengthShares {
  std::vector<ScoreShare> scores;  ///< those seen, ascending
  Threshold thresholds[2];         ///< for each of kLevels
};

/// How far repeats can be trusted, by unit length and score.
struct Calibration {
  std::string genome;
  std::string version;
  std::vector<std::pair<std::string, std::string>> settings;
  unsigned k = 3;
  std::int64_t window = 0;  ///< 0: whole sequences
  std::int64_t copies = 0;
  std::uint64_t seed = 0;
  std::int64_t mask_length = 0;
  std::int64_t bases = 0;         ///< of the genome, without N
  std::int64_t copied_bases = 0;  ///< of them in each copy
  std::map<std::int64_t, UnitLengthShares> by_unit_length;
  ThresholdLine lines[2];  ///< for each of kLevels

  /// The share of false ones among repeats of this unit length and score; absent where nothing was
  /// seen of that unit length. Between scores that were seen, that of the next lower one.
  std::optional<double> share(std::int64_t unit_length, std::int64_t score) const;
};

/// Computes everything that follows from the counts.
void evaluate(const ScoreCounts& counts, Calibration& calibration);

/// The repeats with at least that score that chance is expected to bring to the genome.
double expected_by_chance(const UnitLengthShares& shares, std::int64_t score, std::int64_t copies);

}  // namespace vorlan_tools
