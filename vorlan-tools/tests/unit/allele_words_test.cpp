// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "count/allele_words.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace vorlan_tools {
namespace {

std::string text_of(const std::string& allele, const std::vector<std::string>& motifs) {
  return words_text(divide_allele(allele, motifs));
}

TEST(AlleleWords, StringsOfForensicTables) {
  EXPECT_EQ(text_of("AATGAATGAATGATGAATGAATGAATG", {"AATG"}), "[AATG]3ATG[AATG]3");
  EXPECT_EQ(text_of("TCTATCTGTCTGTCTATCTA", {"TCTA", "TCTG"}), "[TCTA]1[TCTG]2[TCTA]2");
  EXPECT_EQ(text_of("TATCTATCAATC", {"TATC"}), "[TATC]2[AATC]1");
  EXPECT_EQ(text_of("TCTATCTATCTATATCTATCTATCTATCATCTATCTATCCATATCTATCTA", {"TCTA"}),
            "[TCTA]3TA[TCTA]3TCA[TCTA]2TCCATA[TCTA]2");
}

TEST(AlleleWords, TheMotifDecidesThePhase) {
  EXPECT_EQ(text_of("GCAGCAGCAG", {"CAG"}), "G[CAG]3");
  // 27 as another word five times, 32 with the motif between two rests; with eight copies 36.
  EXPECT_EQ(text_of("GCAGCAGCAGCAGCA", {"CAG"}), "[GCA]5");
  EXPECT_EQ(text_of("GCAGCAGCAGCAGCAGCAGCAGCA", {"CAG"}), "G[CAG]7CA");
  EXPECT_EQ(text_of("GCAGCAGCAGCAGCA", {"GCA"}), "[GCA]5");
}

TEST(AlleleWords, MotifsOfSeveralLengths) {
  EXPECT_EQ(text_of("AAAAGAAAAGAAAGGGAAAGGG", {"AAAAG", "AAAGGG"}), "[AAAAG]2[AAAGGG]2");
}

TEST(AlleleWords, ShortAndForeignAlleles) {
  EXPECT_EQ(text_of("", {"CAG"}), "");
  EXPECT_EQ(text_of("A", {"CAG"}), "A");
  EXPECT_EQ(text_of("NNN", {"CAG"}), "[NNN]1");
  EXPECT_EQ(text_of("CAG", {"CAG"}), "[CAG]1");
}

TEST(AlleleWords, CopiesAndOtherBases) {
  const auto words = divide_allele("TCTATCTGTCTGTCTATCAATCTA", {"TCTA"});
  EXPECT_EQ(words_text(words), "[TCTA]1[TCTG]2[TCTA]1[TCAA]1[TCTA]1");
  EXPECT_EQ(motif_copies(words), 3);
  EXPECT_EQ(other_bases(words), 12);
}

TEST(AlleleWords, WordsGiveTheAlleleBack) {
  std::mt19937 chance(20261122);
  for (int round = 0; round < 2000; ++round) {
    std::string allele;
    const auto size = chance() % 40;
    while (allele.size() < size)
      allele += chance() % 2 == 0 ? "CAG" : std::string(1, "ACGT"[chance() % 4]);
    std::string back;
    for (const AlleleWord& word : divide_allele(allele, {"CAG", "CA"})) {
      for (std::int64_t copy = 0; copy < word.copies; ++copy) back += word.word;
    }
    ASSERT_EQ(back, allele);
  }
}

TEST(AlleleWords, CountsAreWholeCopiesAndBases) {
  EXPECT_EQ(count_text(39, 4), "9.3");
  EXPECT_EQ(count_text(40, 4), "10");
  EXPECT_EQ(count_text(3, 4), "0.3");
  EXPECT_EQ(count_text(0, 4), "0");
  EXPECT_EQ(count_text(-1, 4), "");
}

}  // namespace
}  // namespace vorlan_tools
