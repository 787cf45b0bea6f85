// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "fasta/bases.h"

#include <gtest/gtest.h>

#include <string>

namespace vorlan_tools {
namespace {

TEST(Bases, AreFourLettersOfAllBytes) {
  std::string bases;
  for (int byte = 0; byte < 256; ++byte) {
    if (is_base(static_cast<char>(byte))) bases += static_cast<char>(byte);
  }
  EXPECT_EQ(bases, "ACGT");
}

TEST(Bases, AnotherByteIsFoundAtEachPlace) {
  EXPECT_TRUE(holds_only_bases(""));
  for (std::size_t size = 1; size < 70; ++size) {
    const std::string bases = std::string(size / 2, 'G') + std::string(size - size / 2, 'T');
    ASSERT_TRUE(holds_only_bases(bases)) << size;
    for (std::size_t place = 0; place < size; ++place) {
      std::string other = bases;
      other[place] = 'N';
      ASSERT_FALSE(holds_only_bases(other)) << size << ' ' << place;
    }
  }
}

TEST(Bases, PlainLinesHoldElevenBytesOfAll) {
  std::string plain;
  for (int byte = 0; byte < 256; ++byte) {
    const std::string text =
        "acgtnACGTN\nACGTACGTACGTACGT" + std::string(1, static_cast<char>(byte));
    if (holds_only_plain_lines(text)) plain += static_cast<char>(byte);
  }
  EXPECT_EQ(plain, "\nACGNTacgnt");
  EXPECT_TRUE(holds_only_bases_or_ns("ACGTN"));
  EXPECT_FALSE(holds_only_bases_or_ns("ACGTn"));
}

}  // namespace
}  // namespace vorlan_tools
