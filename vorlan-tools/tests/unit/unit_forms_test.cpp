// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "check/unit_forms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace vorlan_tools {
namespace {

std::string plain_smallest(const std::string& text) {
  std::string smallest = text;
  for (std::size_t shift = 1; shift < text.size(); ++shift) {
    smallest = std::min(smallest, text.substr(shift) + text.substr(0, shift));
  }
  return smallest;
}

bool plain_primitive(const std::string& text) {
  for (std::size_t shift = 1; shift < text.size(); ++shift) {
    if (text.substr(shift) + text.substr(0, shift) == text) return false;
  }
  return true;
}

/// All texts of up to `length` letters of `alphabet`.
std::vector<std::string> all_texts(const std::string& alphabet, std::size_t length) {
  std::vector<std::string> texts{""};
  for (std::size_t begin = 0, size = 1; size <= length; ++size) {
    const std::size_t end = texts.size();
    for (; begin < end; ++begin) {
      for (const char letter : alphabet) texts.push_back(texts[begin] + letter);
    }
  }
  texts.erase(texts.begin());
  return texts;
}

TEST(UnitForms, AgreeWithThePlainDefinitionOnAllSmallTexts) {
  for (const auto& [alphabet, length] :
       {std::pair("AC", 12), std::pair("ACG", 7), std::pair("ACGT", 6)}) {
    for (const std::string& text : all_texts(alphabet, static_cast<std::size_t>(length))) {
      ASSERT_EQ(smallest_rotation(text), plain_smallest(text)) << text;
      ASSERT_EQ(is_primitive(text), plain_primitive(text)) << text;
    }
  }
}

TEST(UnitForms, OtherLettersHaveNoOtherStrand) {
  EXPECT_EQ(reverse_complement("AACGTT"), "AACGTT");
  EXPECT_EQ(reverse_complement("GANTx"), "?A?TC");
  EXPECT_EQ(reverse_complement(""), "");
}

TEST(UnitForms, ShownUnits) {
  EXPECT_EQ(shown_unit("CA", UnitMode::kAsIs), "CA");
  EXPECT_EQ(shown_unit("TG", UnitMode::kAlphabetical), "GT");
  EXPECT_EQ(shown_unit("TG", UnitMode::kReverseComplement), "AC");
  EXPECT_EQ(shown_unit("GA", UnitMode::kReverseComplement), "AG");
  EXPECT_EQ(shown_unit("CTT", UnitMode::kReverseComplement), "AAG");
  EXPECT_EQ(shown_unit("T", UnitMode::kReverseComplement), "A");
  EXPECT_TRUE(fits_motif("GCA", "CAG", UnitMode::kAsIs));
  EXPECT_FALSE(fits_motif("CTG", "CAG", UnitMode::kAsIs));
}

}  // namespace
}  // namespace vorlan_tools
