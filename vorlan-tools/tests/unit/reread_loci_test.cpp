// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "compare/reread_loci.h"

#include <gtest/gtest.h>

#include <string>

namespace vorlan_tools {
namespace {

ComparedLocus locus_of(const std::string& unit, std::int64_t start, std::int64_t end) {
  ComparedLocus locus;
  locus.unit = unit;
  locus.start = start;
  locus.end = end;
  return locus;
}

ComparedReport report_of(const std::vector<ComparedLocus>& loci) {
  ComparedReport report;
  report.sequences = {{"a", 1000}};
  report.loci = loci;
  return report;
}

/// Pairs (0, 0) and (last, last).
Pairing ends_paired(const ComparedReport& first, const ComparedReport& second) {
  Pairing pairing;
  pairing.first_fates.assign(first.loci.size(), LocusFate::kUnpaired);
  pairing.second_fates.assign(second.loci.size(), LocusFate::kUnpaired);
  pairing.pairs.resize(2);
  pairing.pairs[1].first = first.loci.size() - 1;
  pairing.pairs[1].second = second.loci.size() - 1;
  for (const LocusPair& pair : pairing.pairs) {
    pairing.first_fates[pair.first] = LocusFate::kPaired;
    pairing.second_fates[pair.second] = LocusFate::kPaired;
  }
  return pairing;
}

TEST(RereadLoci, APartOfALocusOfTheSameUnit) {
  const ComparedReport first =
      report_of({locus_of("AC", 100, 120), locus_of("AC", 130, 150), locus_of("AG", 200, 220)});
  const ComparedReport second = report_of({locus_of("AC", 105, 155), locus_of("AG", 205, 225)});
  Pairing pairing = ends_paired(first, second);
  mark_reread_loci(first, second, pairing);
  EXPECT_EQ(pairing.first_fates[1], LocusFate::kReread);
  EXPECT_TRUE(pairing.pairs[0].is_shared);
  EXPECT_FALSE(pairing.pairs[1].is_shared);
}

TEST(RereadLoci, AnotherUnitOnlyWithTheSameBases) {
  ComparedReport first =
      report_of({locus_of("AC", 100, 120), locus_of("AAC", 140, 152), locus_of("AG", 200, 220)});
  ComparedReport second =
      report_of({locus_of("AC", 100, 120), locus_of("AACAAT", 141, 153), locus_of("AG", 200, 220)});
  Pairing pairing = ends_paired(first, second);
  mark_reread_loci(first, second, pairing);
  EXPECT_EQ(pairing.first_fates[1], LocusFate::kUnpaired);
  first.loci[1].bases = "CAACAACAACAA";
  second.loci[1].bases = "AACAATAACAAT";
  mark_reread_loci(first, second, pairing);
  EXPECT_EQ(pairing.first_fates[1], LocusFate::kReread);
  EXPECT_EQ(pairing.second_fates[1], LocusFate::kReread);
  EXPECT_FALSE(pairing.pairs[0].is_shared);
}

TEST(RereadLoci, ALocusElsewhereIsNone) {
  const ComparedReport first =
      report_of({locus_of("AC", 100, 120), locus_of("AC", 400, 420), locus_of("AG", 600, 620)});
  const ComparedReport second = report_of({locus_of("AC", 100, 120), locus_of("AG", 600, 620)});
  Pairing pairing = ends_paired(first, second);
  mark_reread_loci(first, second, pairing);
  EXPECT_EQ(pairing.first_fates[1], LocusFate::kUnpaired);
}

}  // namespace
}  // namespace vorlan_tools
