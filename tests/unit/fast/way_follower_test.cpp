// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Extensions that take stored ways against extensions that make every decision themselves.

#include "imperfect/ways/way_follower.h"

#include <gtest/gtest.h>

#include <string>

#include "description.h"
#include "extension_settings.h"
#include "imperfect/record_search.h"
#include "plain_candidate.h"
#include "random.h"
#include "random_residues.h"
#include "support/dna.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

using differential::Random;
using reference::Settings;

TEST(StoredWays, ShortUnitsMeetEverywhere) {
  for (std::uint32_t place = 0; place < 1000; ++place) {
    ASSERT_TRUE(StoredWays::may_meet_at(place, 1));
    ASSERT_TRUE(StoredWays::may_meet_at(place, 16));
  }
}

TEST(StoredWays, LongUnitsMeetAtTheSameEighthOfThePlaces) {
  int places = 0;
  for (std::uint32_t place = 0; place < 80'000; ++place) {
    const bool may_meet = StoredWays::may_meet_at(place, 17);
    places += may_meet ? 1 : 0;
    ASSERT_EQ(StoredWays::may_meet_at(place, 2000), may_meet);
  }
  EXPECT_GT(places, 9'500);
  EXPECT_LT(places, 10'500);
}

// A period that never came by a meeting place would make all of its decisions anew.
TEST(StoredWays, EachPeriodComesByMeetingPlacesSoon) {
  for (std::uint32_t period = 1; period <= 2000; ++period) {
    std::uint32_t place = 0;
    while (place < 100 * period && !StoredWays::may_meet_at(place + period, 17)) place += period;
    ASSERT_LT(place, 100 * period) << "period " << period;
  }
}

/// Perfect copies, whose starts have the same unit, then diverged ones, where decisions are made.
class ArrayOfALongUnit {
 public:
  ArrayOfALongUnit(Random& random, const Settings& settings)
      : settings_(settings),
        unit_length_(static_cast<std::size_t>(random.between(17, 19))),
        residues_(residues(random, unit_length_)),
        dna_(residues_),
        record_(dna_.residues.view(), static_cast<unsigned>(unit_length_), SeedKind::kUnit, {}) {}

  /// Extends the copies from some starts. Each has the results of the plain extension.
  void extend_some(Random& random) {
    for (int i = 0; i < 12; ++i) {
      const std::size_t nodes = record_.ways().nodes();
      const auto start = static_cast<std::size_t>(random.between(0, kPerfectResidues / 2));
      ASSERT_NO_FATAL_FAILURE(expect_same_as_plain(start)) << "start " << start;
      const std::size_t new_nodes = record_.ways().nodes() - nodes;
      if (i == 0) nodes_of_first_way_ = new_nodes;
      if (i > 0 && new_nodes * 4 < nodes_of_first_way_) ++extensions_that_met_a_way_;
    }
  }

  int extensions_that_met_a_way() const { return extensions_that_met_a_way_; }
  const std::string& residues() const { return residues_; }

 private:
  static constexpr int kPerfectResidues = 400;

  static std::string residues(Random& random, std::size_t unit_length) {
    const std::string unit = differential::random_residues(random, unit_length, "ACGT");
    return differential::array_of(unit, kPerfectResidues) +
           differential::diverged(random, differential::array_of(unit, 1500),
                                  random.between(20, 80));
  }

  void expect_same_as_plain(std::size_t start) {
    Csat sat;
    sat.init(dna_.at(0) + start, dna_.at(0) + start + unit_length_);
    PassedOver passed_over;
    ASSERT_TRUE(record_.extend_and_accept(sat, {0, 0}, passed_over));
    reference::Repeat expected = extended_plainly(residues_, settings_, start, unit_length_);
    EXPECT_EQ(sat.pos_left, dna_.at(0) + expected.begin);
    EXPECT_EQ(sat.pos_right, dna_.at(0) + expected.end);
    EXPECT_EQ(sat.score, expected.score);
    EXPECT_EQ(sat.mismatches, expected.mismatches);
    EXPECT_EQ(sat.insertions, expected.insertions);
    EXPECT_EQ(sat.deletions, expected.deletions);
    record_.ways().append_events<Forward>(passed_over.forward, sat);
    record_.ways().append_events<Backward>(passed_over.backward, sat);
    sat.sort_missense();
    reference::sort_events(expected);
    ASSERT_EQ(sat.missense.size, expected.events.size());
    for (std::size_t i = 0; i < expected.events.size(); ++i) {
      EXPECT_EQ(sat.missense.buf[i].first, dna_.at(0) + expected.events[i].position);
      EXPECT_EQ(sat.missense.buf[i].second, expected.events[i].kind);
    }
  }

  const Settings& settings_;
  std::size_t unit_length_;
  std::string residues_;
  Dna dna_;
  RecordSearch record_;
  std::size_t nodes_of_first_way_ = 0;
  int extensions_that_met_a_way_ = 0;
};

using StoredWaysOfLongUnits = FreshSettings;

TEST_F(StoredWaysOfLongUnits, LeadWhereAnExtensionComesByItself) {
  int extensions_that_met_a_way = 0;
  for (int seed = 0; seed < 15 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(static_cast<std::uint64_t>(seed));
    Settings settings = random_unlimited_settings(random);
    settings.maximum_recursion_depth = random.between(1, 3);
    reference::set_settings_of_the_product(settings);
    ArrayOfALongUnit array(random, settings);
    ASSERT_NO_FATAL_FAILURE(array.extend_some(random)) << differential::describe(settings) << "\n"
                                                       << array.residues();
    extensions_that_met_a_way += array.extensions_that_met_a_way();
  }
  EXPECT_GT(extensions_that_met_a_way, 60 * kWorkload);
}

}  // namespace
}  // namespace vorlan
