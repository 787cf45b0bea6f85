// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The reader, which takes a file character by character through a buffer, against one that has the
// whole text at once.

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "all_strings.h"
#include "fasta_by_rules.h"
#include "input/cfile.h"
#include "input/csequence_mol.h"
#include "random.h"

namespace reference {

// Called by GoogleTest for its messages.
void PrintTo(const FastaFile& file, std::ostream* out) {
  for (const FastaRecord& record : file.records) {
    *out << "header " << testing::PrintToString(record.header) << " name "
         << testing::PrintToString(record.name) << " description "
         << testing::PrintToString(record.description) << " residues "
         << testing::PrintToString(record.residues) << "\n";
  }
  *out << (file.malformed ? "malformed at line " + std::to_string(file.malformed_line)
                          : std::string("well formed"));
}

}  // namespace reference

namespace differential {
namespace {

using reference::FastaFile;

#ifdef VORLAN_DIFFERENTIAL_REDUCED
constexpr std::size_t kLess = 1;
constexpr std::uint64_t kRandomTexts = 2000;
#else
constexpr std::size_t kLess = 0;
constexpr std::uint64_t kRandomTexts = 20000;
#endif

// The texts stand in a file in memory, which exists as long as the test.
class FastaReader : public testing::Test {
 protected:
  FastaReader() : descriptor_(memfd_create("fasta", 0)) {
    if (descriptor_ < 0) throw std::runtime_error("no file in memory");
    name_ = "/proc/self/fd/" + std::to_string(descriptor_);
  }
  ~FastaReader() override { close(descriptor_); }

  // What the product reads from a file of these bytes.
  FastaFile read(std::string_view bytes) {
    write(bytes);
    file_.open(name_.c_str());
    FastaFile result = read_records();
    file_.close();
    return result;
  }

  testing::AssertionResult reads_by_the_rules(std::string_view bytes) {
    const FastaFile expected = reference::read_fasta_by_rules(bytes);
    const FastaFile found = read(bytes);
    if (found == expected) return testing::AssertionSuccess();
    // Of a long text the end is enough.
    constexpr std::size_t kShown = 2000;
    const std::string shown(bytes.substr(bytes.size() - std::min(bytes.size(), kShown)));
    return testing::AssertionFailure()
           << testing::PrintToString(shown) << "\nexpected " << testing::PrintToString(expected)
           << "\nfound " << testing::PrintToString(found);
  }

 private:
  void write(std::string_view bytes) {
    const auto size = static_cast<ssize_t>(bytes.size());
    if (ftruncate(descriptor_, size) != 0 ||
        pwrite(descriptor_, bytes.data(), bytes.size(), 0) != size) {
      throw std::runtime_error("cannot write the file in memory");
    }
  }

  // The loop of a run: until the end, or up to the first malformed record.
  FastaFile read_records() {
    FastaFile result;
    vorlan::CSequence_Mol sequence(vorlan::CSequence_Mol::kDna, 1);
    while (!file_.eof()) {
      sequence.readFastaSequence(file_);
      if (file_.fail() && !file_.eof()) {
        result.malformed = true;
        result.malformed_line = file_.line_number();
        break;
      }
      result.records.push_back(
          {std::string(sequence.header.view()), std::string(sequence.name.view()),
           std::string(sequence.description.view()), std::string(sequence.residues.view())});
    }
    return result;
  }

  int descriptor_;
  std::string name_;
  vorlan::CFile file_;
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
