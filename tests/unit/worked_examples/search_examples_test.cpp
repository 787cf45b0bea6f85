// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The worked examples at the heads of the files in src/search, residue by residue as they stand
// there. Each test has the name of its file.

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "search/bit_planes.h"
#include "search/canchorseq.h"
#include "search/csearchcontroller.h"
#include "search/exact_filter.h"
#include "search/start_block.h"
#include "search/walk.h"
#include "support/dna.h"
#include "support/fresh_settings.h"
#include "support/repeats.h"

namespace vorlan {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using SearchExamples = FreshSettings;

constexpr std::ptrdiff_t kUpToTwoNs = 2;

TEST_F(SearchExamples, DirectionH) {
  const Dna dna("ACACTCA");
  const UnitSpan unit{dna.at(0), dna.at(2)};
  Front right{dna.at(0), unit.begin};
  Steps steps;
  EXPECT_EQ(walk<Forward>(right, unit, dna.end(), 0, steps), WalkEnd::kDifference);
  EXPECT_EQ(right.place, dna.at(4));
  EXPECT_EQ(*Forward::residue(right.place), 'T');
  EXPECT_EQ(right.cursor, unit.begin);
  EXPECT_EQ(*Forward::unit_base_after(right.cursor, unit, 1), 'C');
  EXPECT_EQ(*Forward::unit_base_after(right.cursor, unit, 2), 'A');

  // The mirror image: ACTCACA from its end, T where A is due.
  const Dna mirrored("ACTCACA");
  const UnitSpan unit_of_end{mirrored.at(5), mirrored.at(7)};
  Front left{mirrored.end(), unit_of_end.end - 1};
  EXPECT_EQ(walk<Backward>(left, unit_of_end, mirrored.at(0), 0, steps), WalkEnd::kDifference);
  EXPECT_EQ(left.place, mirrored.at(3));
  EXPECT_EQ(*Backward::residue(left.place), 'T');
  EXPECT_EQ(*left.cursor, 'A');
  EXPECT_EQ(*Backward::unit_base_after(left.cursor, unit_of_end, 1), 'C');
}

TEST_F(SearchExamples, WalkH) {
  const Dna fits("ACNCACT");
  Front front{fits.at(0), fits.at(0)};
  Steps steps;
  EXPECT_EQ(walk<Forward>(front, {fits.at(0), fits.at(2)}, fits.end(), kUpToTwoNs, steps),
            WalkEnd::kDifference);
  EXPECT_EQ(*front.place, 'T');
  EXPECT_EQ(*front.cursor, 'A');
  EXPECT_EQ(steps.matches, 5U);
  EXPECT_EQ(steps.Ns, 1U);

  const Dna too_long("ACNNNC");
  front = {too_long.at(0), too_long.at(0)};
  steps = {};
  EXPECT_EQ(
      walk<Forward>(front, {too_long.at(0), too_long.at(2)}, too_long.end(), kUpToTwoNs, steps),
      WalkEnd::kLongNRun);
  EXPECT_EQ(front.place, too_long.at(2));
  EXPECT_EQ(steps.matches, 2U);
  EXPECT_EQ(steps.Ns, 0U);
}

/// The first of a few starts that the exact filter leaves, and those after it, as text.
std::vector<int> left_by_exact_filter(std::string_view residues, std::size_t unit_length,
                                      int min_score) {
  const Dna dna(residues);
  const BitPlanes planes(dna.at(0), residues.size(), ExactFilter::margin(unit_length));
  const ExactFilter filter(planes, unit_length, min_score);
  std::uint64_t starts[StartBlock::kWords] = {(std::uint64_t{1} << residues.size()) - 1};
  filter.keep_survivors(0, starts);
  std::vector<int> left;
  for (int start = 0; start < 64; ++start) {
    if ((starts[0] >> start & 1) != 0) left.push_back(start);
  }
  return left;
}

TEST_F(SearchExamples, ExactFilterH) {
  EXPECT_THAT(left_by_exact_filter("GACACACT", 2, 4), ElementsAre(1, 2, 3, 4, 5));
  EXPECT_THAT(left_by_exact_filter("GACACATT", 2, 4), IsEmpty());
  EXPECT_THAT(left_by_exact_filter("GACACATT", 2, 3), ElementsAre(1, 2, 3, 4));
}

TEST_F(SearchExamples, ExactSearchCpp) {
  search_only(2);
  accept_from_score(4);
  {
    Dna dna("GACACACT");
    CSearchController controller(1, dna);
    controller.exact_search_2();
    ASSERT_THAT(spans_of(controller.exact_sats, dna), ElementsAre(Span{1, 7, 1, 2}));
    EXPECT_EQ(controller.exact_sats.front()->score, 4);
  }
  {
    Dna dna("GACACATT");
    CSearchController controller(1, dna);
    controller.exact_search_2();
    EXPECT_THAT(controller.exact_sats, IsEmpty());
  }
  // Kept but not printed.
  global_max_perfection = 99;
  Dna dna("GACACACT");
  CSearchController controller(1, dna);
  controller.exact_search_2();
  EXPECT_THAT(spans_of(controller.exact_sats, dna),
              ElementsAre(Span{1, 7, 1, 2}, Span{1, 7, 2, 2}, Span{1, 7, 3, 2}, Span{1, 7, 4, 2},
                          Span{1, 7, 5, 2}));
}

TEST_F(SearchExamples, ExtendExactCpp) {
  search_only(2);
  {
    Dna dna("ACACACTCACACAC");
    CSearchController controller(1, dna);
    controller.search_exact_and_extend_to_imperfect_repeats();
    const std::vector<Span> spans = spans_of(controller.imperfect_sats, dna);
    EXPECT_EQ(spans.size(), 10U);
    EXPECT_THAT(spans,
                Each(AllOf(::testing::Field(&Span::left, 0), ::testing::Field(&Span::right, 14))));
    for (const Csat* sat : controller.imperfect_sats) {
      EXPECT_EQ(sat->score, 6);
      EXPECT_EQ(events_of(*sat, dna), "6M ");
    }
    controller.remove_hidden(controller.imperfect_sats);
    EXPECT_THAT(spans_of(controller.imperfect_sats, dna), ElementsAre(spans.front()));
    EXPECT_EQ(spans.front(), (Span{0, 14, 0, 2}));
  }
  Dna dna("ACACGT");
  CSearchController controller(1, dna);
  controller.search_exact_and_extend_to_imperfect_repeats();
  EXPECT_THAT(controller.imperfect_sats, IsEmpty());
}

/// What overlap removal leaves of two repeats.
class TwoRepeats {
 public:
  void add(int left, int right, int unit_length, int score) {
    Csat* const sat = new_sat(dna_.at(left), dna_.at(left + unit_length));
    sat->pos_right = dna_.at(right);
    sat->score = score;
    controller_.imperfect_sats.push_back(sat);
  }

  std::vector<Span> left() {
    controller_.remove_hidden(controller_.imperfect_sats);
    return spans_of(controller_.imperfect_sats, dna_);
  }

 private:
  Dna dna_{std::string(300, 'A')};
  CSearchController controller_{1, dna_};
};

TEST_F(SearchExamples, RemoveHiddenCpp) {
  const Span long_one{100, 160, 100, 2};
  {
    TwoRepeats repeats;
    repeats.add(100, 160, 2, 30);
    repeats.add(110, 150, 4, 31);
    EXPECT_THAT(repeats.left(), ElementsAre(Span{110, 150, 110, 4}));
  }
  {
    TwoRepeats repeats;
    repeats.add(100, 160, 2, 30);
    repeats.add(110, 150, 4, 30);
    EXPECT_THAT(repeats.left(), ElementsAre(long_one));
  }
  TwoRepeats repeats;
  repeats.add(100, 160, 2, 30);
  repeats.add(150, 190, 3, 31);
  EXPECT_THAT(repeats.left(), ElementsAre(long_one, Span{150, 190, 150, 3}));
}

TEST_F(SearchExamples, CanchorseqH) {
  constexpr std::uint64_t kFirstStarts = 0b111111;  // 0 to 5
  const Dna dna("ACGTACGT");
  CAnchorSeq marks(dna.at(0), 8);
  EXPECT_EQ(marks.may_anchor(0, 2) & kFirstStarts, kFirstStarts);
  marks.close(dna.at(2), dna.at(3));
  EXPECT_EQ(marks.may_anchor(0, 2) & kFirstStarts, kFirstStarts);
  marks.close(dna.at(3), dna.at(4));
  EXPECT_EQ(marks.may_anchor(0, 2) & kFirstStarts, 0b110001U);

  // The drawing: first and last, before and last, first and after; unit length 4 from residue 2.
  const auto may_anchor = [&](std::initializer_list<int> open) {
    CAnchorSeq drawn(dna.at(0), 8);
    drawn.close(dna.at(0), dna.end());
    for (const int residue : open) drawn.open(dna.at(residue));
    return (drawn.may_anchor(0, 4) >> 2 & 1) != 0;
  };
  const int before = 1;
  const int first = 2;
  const int last = 5;
  const int after = 6;
  EXPECT_TRUE(may_anchor({first, last}));
  EXPECT_TRUE(may_anchor({before, last}));
  EXPECT_TRUE(may_anchor({first, after}));
  EXPECT_FALSE(may_anchor({before, after}));
  EXPECT_FALSE(may_anchor({before, first}));
  EXPECT_FALSE(may_anchor({last, after}));
}

}  // namespace
}  // namespace vorlan
