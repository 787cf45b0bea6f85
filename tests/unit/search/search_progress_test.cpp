// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include <gmock/gmock.h>

#include <ostream>
#include <string>

#include "imperfect/filter/series_filter.h"
#include "search/csearchcontroller.h"
#include "support/dna.h"
#include "support/fresh_settings.h"
#include "support/recording_console.h"

namespace vorlan {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The search of a record whose starts have been judged before.
void search_as_one_of_a_series(CSearchController& controller) {
  SeriesFilter series;
  const std::size_t offset = series.append(controller.sequence.residues.view());
  series.judge(UnitLengthThresholds::of_scores());
  const SeriesSurvivors survivors = series.record(offset);
  controller.set_series_survivors(&survivors);
  controller.complete_imperfect_search(nullptr);
}

/// How a search is started, with the name that its tests have.
struct Search {
  const char* name;
  void (*start)(CSearchController&);
};

void PrintTo(const Search& search, std::ostream* out) { *out << search.name; }

constexpr Search kSearches[] = {
    {"Exact", [](CSearchController& controller) { controller.exact_search_2(); }},
    {"Imperfect",
     [](CSearchController& controller) { controller.complete_imperfect_search(nullptr); }},
    {"ImperfectInSeries", search_as_one_of_a_series},
};

class SearchProgress : public FreshSettings, public ::testing::WithParamInterface<Search> {
 protected:
  static std::vector<unsigned> unit_lengths_shown(const std::string& bases) {
    const RecordingConsole console(true);
    Dna dna(bases);
    CSearchController controller(7, dna, console.hooks());
    GetParam().start(controller);
    return RecordingConsole::unit_lengths();
  }
};

// 600 bases: starts 0, 256 and 512 ask in every unit length.
TEST_P(SearchProgress, IsAskedForEvery256StartsAndAtEachUnitLength) {
  global_max_unit_length = 3;
  EXPECT_THAT(unit_lengths_shown(repeated("ACGT", 150)), ElementsAre(1, 1, 1, 2, 2, 2, 3, 3, 3));
}

// The last base is no start, since nothing follows its unit: 258 bases have the starts 0 to 256.
TEST_P(SearchProgress, IsAskedForAtStart256AndNotBefore) {
  global_max_unit_length = 1;
  const std::string bases = repeated("ACGT", 65);
  EXPECT_THAT(unit_lengths_shown(bases.substr(0, 257)), ElementsAre(1));
  EXPECT_THAT(unit_lengths_shown(bases.substr(0, 258)), ElementsAre(1, 1));
}

TEST_P(SearchProgress, ShowsRecordNumberNameAndUnitLength) {
  const RecordingConsole console(true);
  Dna dna("ACGTACGTACGT", "chr1 some text");
  search_only(4);
  CSearchController controller(7, dna, console.hooks());
  GetParam().start(controller);
  EXPECT_THAT(RecordingConsole::lines,
              ElementsAre(RecordingConsole::ProgressLine{7, "chr1", 4, 'r'}));
}

TEST_P(SearchProgress, AUnitLengthAsLongAsTheSequenceIsNotWorkedOn) {
  global_max_unit_length = 10;
  EXPECT_THAT(unit_lengths_shown("ACGTA"), ElementsAre(1, 2, 3, 4));
}

TEST_P(SearchProgress, StartsWithoutRepeatsAskToo) {
  global_max_unit_length = 2;
  global_min_score = 1000;
  EXPECT_THAT(unit_lengths_shown(repeated("ACGT", 150)), ElementsAre(1, 1, 1, 2, 2, 2));
}

// Base 0 is N and so never a start of unit length 1, but a position of the scan for longer ones.
TEST_P(SearchProgress, InUnitLength1OnlyStartsThatAreVisitedAsk) {
  global_max_unit_length = 2;
  EXPECT_THAT(unit_lengths_shown("NACGTACGT"), ElementsAre(2));
}

TEST_P(SearchProgress, NothingIsShownWhenNoLineIsDue) {
  const RecordingConsole console(false);
  Dna dna(repeated("ACGT", 150));
  global_max_unit_length = 3;
  CSearchController controller(7, dna, console.hooks());
  GetParam().start(controller);
  EXPECT_EQ(RecordingConsole::questions, 9);
  EXPECT_THAT(RecordingConsole::lines, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(ExactAndImperfect, SearchProgress, ::testing::ValuesIn(kSearches),
                         [](const auto& test) { return test.param.name; });

using ExactSearchProgress = FreshSettings;

// 300 A are one repeat: the scan goes on behind it at 300 and passes start 256 over.
TEST_F(ExactSearchProgress, PassesOverTheStartsInsideARunOfOneBase) {
  const RecordingConsole console(true);
  Dna dna(std::string(300, 'A') + repeated("CG", 150));
  search_only(1);
  CSearchController controller(7, dna, console.hooks());
  controller.exact_search_2();
  EXPECT_THAT(RecordingConsole::unit_lengths(), ElementsAre(1, 1));
}

}  // namespace
}  // namespace vorlan
