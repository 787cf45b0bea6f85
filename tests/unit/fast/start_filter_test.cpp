// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Candidate filter and wraparound bound together, against the bound by its definition and the
// extension by the slow twin.

#include "imperfect/filter/start_filter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "extension_settings.h"
#include "filter_blocks.h"
#include "plain_candidate.h"
#include "plain_wraparound.h"
#include "random.h"
#include "random_residues.h"
#include "support/dna.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

using differential::Random;
using reference::Settings;

/// The bound of all starts that may be judged together with this one, as far as they have a unit.
std::int64_t bound_of_neighbours(std::string_view residues, const Settings& settings,
                                 std::size_t start, std::size_t unit_length) {
  const std::size_t distance = unit_length / 8;
  const std::size_t last = residues.size() - unit_length - 1;
  return plain_wraparound_bound(residues, settings, start - std::min(start, distance),
                                std::min(start + distance, last), unit_length);
}

/// The settings under which the parts of the filter take turns.
struct Work {
  std::string name;
  unsigned unit_length;
  int penalty;
  std::size_t residues;
};

class StartFilterTest : public FreshSettings, public testing::WithParamInterface<Work> {
 protected:
  static Settings settings_of(const Work& work) {
    Settings settings;
    settings.mismatch_score = settings.indel_score = work.penalty;
    settings.maximum_recursion_depth = 1;
    return settings;
  }

  /// Background with repeats in it.
  static std::string residues_of(const Work& work) {
    Random random(work.residues + work.unit_length);
    std::string residues;
    while (residues.size() < work.residues) {
      residues += differential::random_residues(random, 300 + random.below(600), "ACGT");
      const std::string unit = differential::random_residues(random, work.unit_length, "ACGT");
      const std::size_t length = 3 * unit.size() + random.below(2 * unit.size());
      residues += differential::diverged(random, differential::array_of(unit, length), 30);
    }
    differential::overwrite_with_Ns(random, residues, 5, 4);
    return residues;
  }

  /// The starts that survive, asked for as the search does.
  static StartBits survivors(std::string_view residues, const Dna& dna, unsigned unit_length,
                             int min_score) {
    const BitPlanes planes(dna.at(0), residues.size(), CandidateFilter::margin(unit_length));
    StartFilter filter(dna.residues.view(), planes, unit_length, min_score,
                       static_cast<std::ptrdiff_t>(residues.size() - unit_length), {});
    StartBits starts = all_starts(residues.size(), unit_length);
    for (std::size_t start = 0; start < residues.size(); ++start) {
      if (residues[start] == 'N') starts[start / 64] &= ~(std::uint64_t{1} << start % 64);
    }
    const auto look = [&] {
      for (const std::ptrdiff_t start : filter.look_closely()) {
        add_start(starts, static_cast<std::size_t>(start));
      }
    };
    for (std::size_t word = 0; word < starts.size(); word += kFilterWords) {
      filter.glance(static_cast<std::ptrdiff_t>(word), starts.data() + word);
      while (filter.doubts() >= filter.enough_doubts()) look();
    }
    while (filter.doubts() > 0) look();
    return starts;
  }
};

TEST_P(StartFilterTest, KeepsWhatIsAcceptedAndNothingThatIsOutOfReach) {
  const Work work = GetParam();
  const Settings settings = settings_of(work);
  reference::set_settings_of_the_product(settings);
  const std::string residues = residues_of(work);
  const Dna dna(residues);
  const auto min_score = static_cast<int>(work.unit_length);
  const StartBits left = survivors(residues, dna, work.unit_length, min_score);
  std::size_t accepted = 0;
  std::size_t rejected = 0;
  for (std::size_t start = 0; start + work.unit_length < residues.size(); ++start) {
    const auto unit = std::string_view(residues).substr(start, work.unit_length);
    if (!holds_only_bases(unit)) continue;
    const int score = extended_plainly(residues, settings, start, work.unit_length).score;
    const bool is_left = has_start(left, start);
    if (score >= min_score) {
      ++accepted;
      EXPECT_TRUE(is_left) << start;
    } else if (bound_of_neighbours(residues, settings, start, work.unit_length) < min_score) {
      ++rejected;
      EXPECT_FALSE(is_left) << start;
    }
  }
  EXPECT_GT(accepted, 10U);
  EXPECT_GT(rejected, 20U);
}

// A glance rejects most at the default penalties, and next to nothing where edits are cheap.
INSTANTIATE_TEST_SUITE_P(
    OfAllKinds, StartFilterTest,
    testing::Values(Work{"CloseLookFirst", 10, -5, 10'000}, Work{"BoundAfterGlance", 40, -5, 9'000},
                    Work{"BoundAlone", 15, -2, 12'000}, Work{"ShortSequence", 12, -2, 1'200},
                    Work{"BehindTheLongestUnitOfTheAutomaton", 257, -5, 1'300}),
    [](const auto& work) { return work.param.name; });

}  // namespace
}  // namespace vorlan
