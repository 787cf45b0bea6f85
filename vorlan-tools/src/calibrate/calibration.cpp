// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// From counts in a genome and in shuffled copies of it to shares of false repeats.
//
// In R copies, C repeats of a unit length have a score of s; chance alone then brings C / R of them
// to the genome, where F were found. Of those with score s the share C / (R F) is false.
//
// For single scores these quotients are noisy. Higher scores cannot be worse than lower ones, so
// neighbours that contradict that are pooled until shares fall (isotonic regression):
//
//     score        6     7     8     9
//     C / R       90    12    16     1
//     F          100    40    40    50
//     quotient  0.90  0.30  0.40  0.02
//     share     0.90  0.35  0.35  0.02     (12 + 16) / (40 + 40)
//
// Among all with score s or more the share is the sum of chance over the sum of found, and the
// least of that for any threshold up to s. An advised threshold has to hold with one more repeat of
// chance than was seen in all copies, so that silence of few copies proves nothing.

#include "calibrate/calibration.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace vorlan_tools {

namespace {

constexpr std::int64_t kLeastMinScore = 2;  // what --minScore takes
constexpr int kSlopeSteps = 20;
constexpr double kSlopeStep = 0.25;

double quotient(double chance, double found) {
  if (chance <= 0) return 0;
  return found > 0 ? std::min(1.0, chance / found) : 1.0;
}

/// A run of scores with one share.
struct Block {
  std::size_t begin;
  double chance;
  double found;

  /// Whether the share is above that of `other`, without division by zero.
  bool is_above(const Block& other) const { return chance * other.found > other.chance * found; }
};

void set_shares(std::vector<ScoreShare>& scores, double copies) {
  std::vector<Block> blocks;
  for (std::size_t i = 0; i < scores.size(); ++i) {
    const ScoreCount& count = scores[i].count;
    blocks.push_back(
        {i, static_cast<double>(count.chance) / copies, static_cast<double>(count.found)});
    while (blocks.size() > 1 && blocks.back().is_above(*std::prev(blocks.end(), 2))) {
      Block& before = *std::prev(blocks.end(), 2);
      before.chance += blocks.back().chance;
      before.found += blocks.back().found;
      blocks.pop_back();
    }
  }
  std::size_t end = scores.size();
  std::for_each(blocks.rbegin(), blocks.rend(), [&](const auto& block) {
    for (std::size_t i = block.begin; i < end; ++i) {
      scores[i].share = quotient(block.chance, block.found);
    }
    end = block.begin;
  });
}

void set_shares_from(std::vector<ScoreShare>& scores, double copies) {
  double chance = 0;
  double found = 0;
  std::for_each(scores.rbegin(), scores.rend(), [&](ScoreShare& score) {
    chance += static_cast<double>(score.count.chance) / copies;
    found += static_cast<double>(score.count.found);
    score.share_from = quotient(chance, found);
  });
  double least = 1;
  for (ScoreShare& score : scores) score.share_from = least = std::min(least, score.share_from);
}

std::int64_t found_from(const UnitLengthShares& shares, std::int64_t score) {
  std::int64_t sum = 0;
  for (const ScoreShare& entry : shares.scores) {
    if (entry.score >= score) sum += entry.count.found;
  }
  return sum;
}

Threshold threshold_of(const UnitLengthShares& shares, double level, std::int64_t copies) {
  std::int64_t above_chance = shares.scores.front().score;
  for (const ScoreShare& entry : shares.scores) {
    const double chance =
        expected_by_chance(shares, entry.score, copies) + 1.0 / static_cast<double>(copies);
    const auto found = static_cast<double>(found_from(shares, entry.score));
    if (found > 0 && chance <= level * found) return {entry.score, true};
    if (entry.count.chance > 0) above_chance = entry.score + 1;
  }
  return {above_chance, false};
}

/// The lowest line of that slope, beside that constant, which is nowhere below the thresholds.
ThresholdLine line_above(const Calibration& calibration, std::size_t level, std::int64_t constant,
                         double slope) {
  ThresholdLine line{constant, INT32_MIN, slope, 0, 0};
  for (const auto& [length, shares] : calibration.by_unit_length) {
    const std::int64_t wanted = shares.thresholds[level].score;
    if (wanted <= constant) continue;
    // ceil(a + b * u) is at least t if a is above t - 1 - b * u.
    const double limit = static_cast<double>(wanted - 1) - slope * static_cast<double>(length);
    line.intercept = std::max(line.intercept, static_cast<std::int64_t>(std::floor(limit)) + 1);
  }
  if (line.intercept == INT32_MIN) {
    line.intercept = 0;
    line.slope = 0;
  }
  for (const auto& [length, shares] : calibration.by_unit_length) {
    line.kept += found_from(shares, line.score(length));
    line.expected_false += expected_by_chance(shares, line.score(length), calibration.copies);
  }
  return line;
}

/// Of all lines above the thresholds the one that keeps most; of equals the flattest.
ThresholdLine best_line(const Calibration& calibration, std::size_t level) {
  ThresholdLine best;
  best.constant = kLeastMinScore;
  if (calibration.by_unit_length.empty()) return best;
  best.kept = -1;
  for (int step = 0; step <= 2 * kSlopeSteps; ++step) {
    const int steps_away = (step + 1) / 2;
    const double size = kSlopeStep * steps_away;
    const double slope = step % 2 == 0 && step > 0 ? -size : size;
    const auto consider = [&](std::int64_t constant) {
      const ThresholdLine line =
          line_above(calibration, level, std::max(constant, kLeastMinScore), slope);
      if (line.kept > best.kept) best = line;
    };
    for (const auto& [length, shares] : calibration.by_unit_length) {
      consider(shares.thresholds[level].score);
    }
  }
  return best;
}

}  // namespace

std::int64_t ThresholdLine::score(std::int64_t unit_length) const {
  const double value = static_cast<double>(intercept) + slope * static_cast<double>(unit_length);
  return std::max(constant, static_cast<std::int64_t>(std::ceil(value)));
}

double expected_by_chance(const UnitLengthShares& shares, std::int64_t score, std::int64_t copies) {
  std::int64_t sum = 0;
  for (const ScoreShare& entry : shares.scores) {
    if (entry.score >= score) sum += entry.count.chance;
  }
  return static_cast<double>(sum) / static_cast<double>(copies);
}

std::optional<double> Calibration::share(std::int64_t unit_length, std::int64_t score) const {
  const auto found = by_unit_length.find(unit_length);
  if (found == by_unit_length.end()) return std::nullopt;
  const std::vector<ScoreShare>& scores = found->second.scores;
  const auto above = std::upper_bound(
      scores.begin(), scores.end(), score,
      [](std::int64_t value, const ScoreShare& entry) { return value < entry.score; });
  return above == scores.begin() ? scores.front().share : std::prev(above)->share;
}

void evaluate(const ScoreCounts& counts, Calibration& calibration) {
  for (const auto& [length, scores] : counts) {
    UnitLengthShares& shares = calibration.by_unit_length[length];
    for (const auto& [score, count] : scores) shares.scores.push_back({score, count, 0, 0});
    const auto copies = static_cast<double>(calibration.copies);
    set_shares(shares.scores, copies);
    set_shares_from(shares.scores, copies);
    for (std::size_t level = 0; level < std::size(kLevels); ++level) {
      shares.thresholds[level] = threshold_of(shares, kLevels[level], calibration.copies);
    }
  }
  for (std::size_t level = 0; level < std::size(kLevels); ++level) {
    calibration.lines[level] = best_line(calibration, level);
  }
}

}  // namespace vorlan_tools
