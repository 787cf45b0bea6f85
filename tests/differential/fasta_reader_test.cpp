// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The reader, which takes a file character by character through a buffer, against one that has the
// whole text at once.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "all_strings.h"
#include "fasta_adapter.h"
#include "fasta_by_rules.h"
#include "random.h"

namespace differential {
namespace {

#ifdef VORLAN_DIFFERENTIAL_REDUCED
constexpr std::size_t kLess = 1;
constexpr std::uint64_t kRandomTexts = 2000;
#else
constexpr std::size_t kLess = 0;
constexpr std::uint64_t kRandomTexts = 20000;
#endif

class FastaReader : public testing::Test {
 protected:
  testing::AssertionResult reads_by_the_rules(std::string_view bytes) {
    const std::optional<std::string> found = difference(product_, bytes);
    return found ? testing::AssertionFailure() << *found : testing::AssertionSuccess();
  }

 private:
  ProductFastaReader product_;
};

TEST_F(FastaReader, reads_all_short_texts) {
  for_each_string_up_to(">#A1 \n\r-", 6 - kLess, [&](const std::string& text) {
    const auto result = reads_by_the_rules(text);
    EXPECT_TRUE(result);
    return static_cast<bool>(result);
  });
}

// After a header the rest of the text matters more.
TEST_F(FastaReader, reads_all_short_texts_after_a_header) {
  for_each_string_up_to(">A1 \n\r", 6 - kLess, [&](const std::string& text) {
    const auto result = reads_by_the_rules(">s t\nC" + text);
    EXPECT_TRUE(result);
    return static_cast<bool>(result);
  });
}

TEST_F(FastaReader, reads_every_byte_in_a_header_and_among_residues) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string one(1, static_cast<char>(byte));
    EXPECT_TRUE(reads_by_the_rules(one)) << byte;
    EXPECT_TRUE(reads_by_the_rules(one + ">s\nAC\n")) << byte;
    EXPECT_TRUE(reads_by_the_rules(">s" + one + "t u\nAC\n")) << byte;
    EXPECT_TRUE(reads_by_the_rules(">s\nA" + one + "C\nGT\n")) << byte;
    EXPECT_TRUE(reads_by_the_rules(">s\nAC" + one)) << byte;
  }
}

std::string random_line(Random& random) {
  constexpr std::string_view kHeader = "ab1 >#\t|.%\xE9";
  constexpr std::string_view kResidues = "ACGTacgtuUNnxRYKMSWBDHV?-* \t\v\f";
  std::string line = random.per_cent(25) ? ">" : "";
  const std::string_view alphabet = line.empty() ? kResidues : kHeader;
  const std::size_t length = random.below(12);
  for (std::size_t i = 0; i < length; ++i) line += alphabet[random.below(alphabet.size())];
  if (random.per_mille(15)) line += random.one_of({'1', 'Z', '>', '#', '.', '\0', '\x80', '!'});
  return line;
}

std::string random_line_end(Random& random) {
  return random.one_of<const char*>({"\n", "\n", "\r\n", "\r", "\n\n", "\n\r", "\r\r\n"});
}

std::string random_text(Random& random) {
  std::string text;
  for (int i = random.between(0, 3); i > 0; --i) {
    text += random.one_of<const char*>({"", " ", "# comment", "#", "#>s", "\t"}) +
            random_line_end(random);
  }
  if (!random.per_cent(5)) text += ">first " + random_line(random) + random_line_end(random);
  for (int i = random.between(0, 14); i > 0; --i) {
    text += random_line(random) + random_line_end(random);
  }
  if (random.per_cent(40)) text += random_line(random);
  return text;
}

TEST_F(FastaReader, reads_random_texts) {
  std::size_t well_formed = 0;
  for (std::uint64_t seed = 0; seed < kRandomTexts; ++seed) {
    Random random(seed);
    const std::string text = random_text(random);
    ASSERT_TRUE(reads_by_the_rules(text)) << "seed " << seed;
    if (!reference::read_fasta_by_rules(text).malformed) ++well_formed;
  }
  EXPECT_GT(well_formed, kRandomTexts / 4);
  EXPECT_LT(well_formed, kRandomTexts);
}

// The input is buffered by the million bytes, each later time one less since one byte is kept. What
// stands across such a seam must read as anywhere else.
TEST_F(FastaReader, reads_line_ends_and_headers_across_the_ends_of_its_buffer) {
  constexpr std::size_t kLine = 1000;  // with its line end
  for (const std::size_t seam : {std::size_t{1'000'000}, std::size_t{1'999'999}}) {
    std::string before = ">s t\n";
    while (before.size() + kLine < seam - 1) before += std::string(kLine - 1, 'A') + "\n";
    before += std::string(seam - 1 - before.size(), 'C');
    for_each_string_up_to(">A\n\r", 3 - kLess, [&](const std::string& text) {
      for (const std::string_view end : {"", "\nGT1\n"}) {
        EXPECT_TRUE(reads_by_the_rules(before + text + std::string(end))) << "seam " << seam;
      }
      return !HasFailure();
    });
  }
}

}  // namespace
}  // namespace differential
