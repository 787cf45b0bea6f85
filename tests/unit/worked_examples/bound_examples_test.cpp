// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The worked examples at the heads of the files below src/imperfect that bound what an extension
// can reach and that decide by bits, residue by residue as they stand there. Each test has the name
// of its file.

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <iterator>
#include <string>
#include <utility>

#include "imperfect/leap_ahead.h"
#include "imperfect/look_ahead/bit_look_ahead.h"
#include "imperfect/wraparound/wraparound_bound.h"
#include "support/dna.h"
#include "support/fresh_settings.h"

namespace vorlan {
namespace {

using BoundExamples = FreshSettings;

/// A decision behind the unit AC, where A is due, and what lies in the sequence from there on.
struct DecisionBehindAC {
  explicit DecisionBehindAC(std::string_view ahead)
      : dna("AC" + std::string(ahead)),
        unit{dna.at(0), dna.at(2)},
        planes(dna.at(0), dna.residues.size, DiagonalMasks<Forward>::kMargin),
        bits(scoring, unit, dna.end(), &planes, dna.at(0), memory, nullptr) {}

  Front front() const { return {dna.at(2), unit.begin}; }

  Dna dna;
  UnitSpan unit;
  Scoring scoring = Scoring::of_the_run();
  BitPlanes planes;
  BitLookAheadMemory memory;
  BitLookAhead<Forward> bits;
};

TEST_F(BoundExamples, ComebackH) {
  constexpr std::int64_t kThreshold = -3;
  ASSERT_EQ(Scoring::of_the_run().threshold(3, 2), kThreshold);
  DecisionBehindAC over("GTGTGTGT");
  EXPECT_TRUE(over.bits.stays_below(3, over.front(), 3, kThreshold));
  EXPECT_FALSE(over.bits.stays_below(-2, over.front(), 3, kThreshold));
  DecisionBehindAC comes_back("GACACAC");
  EXPECT_FALSE(comes_back.bits.stays_below(4, comes_back.front(), 3, kThreshold));
}

TEST_F(BoundExamples, DiagonalMasksH) {
  const Dna dna("ACATAC");
  const BitPlanes planes(dna.at(0), dna.residues.size, DiagonalMasks<Forward>::kMargin);
  UnitStrip unit;
  unit.assign(planes.words(), 0, 2);
  DiagonalMasks<Forward> masks;
  masks.read_unit(planes.words(), unit);
  masks.start(2, 0, 1);
  masks.open(1);
  const auto bits = [&](std::int32_t diagonal) {
    std::string text;
    for (std::int32_t ahead = 0; ahead < 4; ++ahead) {
      text += masks.next_mismatch(diagonal, ahead) == ahead ? '1' : '0';
    }
    return text;
  };
  EXPECT_EQ(bits(0), "0100");
  EXPECT_EQ(bits(-1), "1111");
}

// The drawing: one mismatch leads to place 1 and its walk to 2; two more to 4 and, over three
// matches, to 7. Mismatches cost a point, and the threshold forbids indels.
TEST_F(BoundExamples, PlaceSetsKernelHDrawing) {
  std::array<std::uint64_t, 7> differs{};
  differs.fill(~std::uint64_t{0});
  differs[3] = ~std::uint64_t{0b01110011};
  for (const PlaceSetsKernel& kernel : runnable_place_sets_kernels()) {
    const DiagonalWords words{&differs[3], std::ssize(differs), 1};
    const auto chosen = [&](std::int32_t depth) {
      const FirstEditChoice choice = kernel.choose({-1, -9, depth}, words, -5);
      return std::tuple(choice.edit, choice.value, choice.furthest);
    };
    EXPECT_EQ(chosen(1), std::tuple(FirstEdit::kMismatch, 0, 2));
    EXPECT_EQ(chosen(3), std::tuple(FirstEdit::kMismatch, 1, 7));
  }
}

TEST_F(BoundExamples, DecisionMemoryH) {
  const Dna dna("ACGTTGCAACGATGCAACG");
  const auto unit = [&](std::ptrdiff_t begin, std::ptrdiff_t length) {
    return UnitSpan{dna.at(begin), dna.at(begin + length)};
  };
  const Front front{dna.at(11), dna.at(3)};
  DecisionMemory<Forward> decisions(dna.at(0), dna.residues.size);
  decisions.keep(front, unit(0, 8), Move::kMismatch, 5);
  EXPECT_EQ(decisions.find(front, unit(1, 8)), Move::kMismatch);
  EXPECT_EQ(decisions.find(front, unit(0, 7)), std::nullopt);
}

TEST_F(BoundExamples, PlaceSetsKernelH) {
  DecisionBehindAC decision("GTACAC");
  const auto behind = [&](std::initializer_list<Move> moves) {
    Front front = decision.front();
    for (const Move move : moves) front = after<Forward>(move, front, decision.unit);
    return std::pair(front.place, front.cursor);
  };
  EXPECT_EQ(behind({Move::kMismatch, Move::kInsertion}),
            behind({Move::kInsertion, Move::kMismatch}));
  EXPECT_NE(behind({Move::kInsertion}), behind({Move::kMismatch}));

  const LeapAhead<Forward> plain(decision.scoring, decision.unit, decision.dna.end());
  for (std::int64_t score = 0; score < 30; ++score) {
    EXPECT_EQ(decision.bits.best_move(decision.front(), score, score),
              plain.best_move(decision.front(), score, 0, score).move)
        << "score " << score;
  }
}

TEST_F(BoundExamples, WraparoundKernelH) {
  const auto survives = [](std::string_view residues, int min_score,
                           const WraparoundKernel& kernel) {
    WraparoundBound bound(residues, {2, 2}, min_score, 1, {&kernel, 1});
    std::ptrdiff_t starts[] = {2};
    return bound.keep_survivors(starts) == 1;
  };
  for (const WraparoundKernel& kernel : runnable_wraparound_kernels()) {
    EXPECT_FALSE(survives("GTACACACGGTT", 6, kernel));
    EXPECT_FALSE(survives("GTACACACGGTT", 5, kernel));
    EXPECT_TRUE(survives("GTACACACGGTT", 4, kernel));
    EXPECT_TRUE(survives("GTACACACACGG", 6, kernel));
  }
}

TEST_F(BoundExamples, WraparoundKernelHGroups) {
  const auto survivors = [&](int min_score, std::ptrdiff_t group) {
    WraparoundBound bound("GTACACACGGTT", {2, 2}, min_score, group);
    std::ptrdiff_t starts[] = {2, 3};
    return bound.keep_survivors(starts);
  };
  EXPECT_EQ(survivors(4, 1), 2U);
  EXPECT_EQ(survivors(5, 1), 0U);
  EXPECT_EQ(survivors(5, 2), 2U);
  EXPECT_EQ(survivors(6, 2), 0U);
}

TEST_F(BoundExamples, JointBoundH) {
  const std::string_view residues = "ACAACACACAC";
  const auto survives = [&](const UnitLengths& lengths, int min_score) {
    WraparoundBound bound(residues, lengths, min_score);
    std::ptrdiff_t starts[] = {0};
    return bound.keep_survivors(starts) == 1;
  };
  for (const int least : {1, 2}) EXPECT_EQ(survives({2, 2}, least), least == 1);
  for (const int least : {3, 4}) EXPECT_EQ(survives({3, 3}, least), least == 3);
  for (const int least : {8, 9}) EXPECT_EQ(survives({2, 3}, least), least == 8);
}

}  // namespace
}  // namespace vorlan
