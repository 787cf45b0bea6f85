// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "driver/masked_file.h"

#include <gtest/gtest.h>

#include <string>

#include "support/captured_output.h"
#include "support/dna.h"
#include "support/repeats.h"

namespace vorlan {
namespace {

std::string masked_record(Dna& dna) {
  CapturedStream out;
  write_masked_record(out.stream(), dna);
  return out.text();
}

/// A repeat that covers the residues [left, right).
void cover(Csat& sat, const Dna& dna, int left, int right) {
  sat.init(dna.at(left), dna.at(right));
}

TEST(MaskedFile, ARepeatIsOverwrittenFromItsFirstToItsLastResidue) {
  Dna dna(repeated("ACGT", 10));
  Csat residues_11_to_20;
  cover(residues_11_to_20, dna, 10, 20);
  mask_repeats({&residues_11_to_20}, dna);
  EXPECT_EQ(dna.residues.view(), "ACGTACGTAC" + std::string(10, 'X') + repeated("ACGT", 5));
}

TEST(MaskedFile, OverlappingRepeatsAreOverwrittenTogether) {
  Dna dna("ACGTACGTAC");
  Csat first;
  Csat second;
  cover(first, dna, 0, 4);
  cover(second, dna, 2, 6);
  mask_repeats({&first, &second}, dna);
  EXPECT_EQ(dna.residues.view(), "XXXXXXGTAC");
}

TEST(MaskedFile, LinesHold80Residues) {
  const std::string bases = repeated("ACGTA", 40);
  Dna dna(bases, "chr1 some text");
  EXPECT_EQ(masked_record(dna), ">chr1 some text\n" + bases.substr(0, 80) + "\n" +
                                    bases.substr(80, 80) + "\n" + bases.substr(160, 40) + "\n");
}

TEST(MaskedFile, AFullLastLineIsNotFollowedByAnEmptyOne) {
  const std::string bases = repeated("ACGTA", 16);
  Dna dna(bases);
  EXPECT_EQ(masked_record(dna), ">seq\n" + bases + "\n");
}

TEST(MaskedFile, ARecordWithoutResiduesIsItsHeaderAlone) {
  Dna dna("", "empty one");
  mask_repeats({}, dna);
  EXPECT_EQ(masked_record(dna), ">empty one\n");
}

}  // namespace
}  // namespace vorlan
