// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Records one after another through one process, as in a run: recycled repeat records and residue
// buffers must not let one record influence the next. And records whose ends, repeats and edits lie
// at multiples of powers of two, where code that takes residues in blocks has its seams.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "random.h"
#include "random_residues.h"
#include "search_adapter.h"

namespace differential {
namespace {

using reference::Repeat;
using reference::Settings;

Settings usual() { return {}; }

Settings sensitive() {
  Settings settings;
  settings.max_unit_length = 14;
  settings.mismatch_score = -3;
  settings.indel_score = -4;
  settings.maximum_recursion_depth = 2;
  settings.min_score = 4;
  settings.maximum_scorereduction = 12;
  return settings;
}

TEST(RecordSeries, many_records_give_the_same_repeats_as_each_alone) {
  const Settings settings = sensitive();
  std::vector<std::string> records;
  for (std::uint64_t seed = 0; seed < 400; ++seed) {
    Random random(seed);
    records.push_back(random_record(random, random.below(300)));
  }
  std::vector<std::vector<Repeat>> first_pass;
  ProductSearch product;
  for (const std::string& record : records) {
    first_pass.push_back(product.find(Mode::kImperfect, record, settings, Buffer::kReused));
    ASSERT_EQ(first_pass.back(),
              reference::without_hidden(find_plainly(Mode::kImperfect, record, settings), settings))
        << "record " << first_pass.size() - 1 << " " << record;
  }
  // Backwards: every record now comes after others than before, with other modes in between.
  for (std::size_t i = records.size(); i-- > 0;) {
    product.find(Mode::kExtendExact, records[i / 2], settings, Buffer::kReused);
    product.find(Mode::kExact, records[i / 3], settings, Buffer::kReused);
    ASSERT_EQ(product.find(Mode::kImperfect, records[i], settings, Buffer::kReused), first_pass[i])
        << "record " << i << " " << records[i];
  }
}

TEST(RecordSeries, a_continuation_behind_the_end_of_a_record_is_not_read) {
  ProductSearch product;
  for (const std::string_view unit : {"A", "AC", "CATTC", "AAACCCT", "ACGTTGCAAG"}) {
    for (const std::size_t length : {20U, 63U, 64U, 65U, 100U, 128U}) {
      const std::string whole = array_of(unit, length + 200);
      for (const Mode mode : kAllModes) {
        product.find(mode, whole, usual(), Buffer::kReused);
        const std::string record = whole.substr(0, length);
        const std::optional<std::string> found = difference(product, mode, record, usual());
        ASSERT_FALSE(found) << *found;
      }
    }
  }
}

// Lengths around the multiples of 64 that are powers of two, and some other multiples.
std::vector<std::size_t> lengths_at_block_boundaries() {
  std::vector<std::size_t> lengths;
  for (const std::size_t multiple :
       {8U, 16U, 32U, 64U, 128U, 192U, 256U, 320U, 512U, 768U, 1024U}) {
    for (std::size_t length = multiple - 1; length <= multiple + 1; ++length) {
      lengths.push_back(length);
    }
  }
  return lengths;
}

// Overwrites the record with the text, so that the text begins at `begin`; cuts both of its ends
// where they lie outside.
void place(std::string& record, std::string_view text, std::ptrdiff_t begin) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::ptrdiff_t at = begin + static_cast<std::ptrdiff_t>(i);
    if (at >= 0 && at < static_cast<std::ptrdiff_t>(record.size())) {
      record[static_cast<std::size_t>(at)] = text[i];
    }
  }
}

std::string random_text_for_a_seam(Random& random) {
  if (random.per_cent(15)) return std::string(1 + random.below(6), 'N');
  const std::string unit = random_residues(random, 1 + random.below(10), "ACGT");
  const std::string perfect = array_of(unit, unit.size() * 2 + random.below(40));
  return random.per_cent(50) ? perfect : diverged(random, perfect, 80);
}

// Background with repeats and N runs that begin or end next to multiples of 64 or of the half, and
// at both ends of the record.
std::string record_with_seams(Random& random, std::size_t length) {
  std::string record = random_residues(random, length, "ACGT");
  for (std::size_t seam = 0; seam <= length + 1; seam += 32) {
    if (random.per_cent(40)) continue;
    const std::string text = random_text_for_a_seam(random);
    const auto end_or_begin = static_cast<std::ptrdiff_t>(seam) + random.between(-2, 2);
    const bool ends_here = random.per_cent(50);
    place(record, text,
          ends_here ? end_or_begin - static_cast<std::ptrdiff_t>(text.size()) : end_or_begin);
  }
  const std::string last = random_text_for_a_seam(random);
  if (random.per_cent(60)) {
    place(record, last,
          static_cast<std::ptrdiff_t>(length) - static_cast<std::ptrdiff_t>(last.size()));
  }
  if (random.per_cent(60)) place(record, random_text_for_a_seam(random), 0);
  return record;
}

class BlockBoundaries : public testing::TestWithParam<std::uint64_t> {};

TEST_P(BlockBoundaries, repeats_at_the_seams_and_ends_are_the_same) {
  ProductSearch product;
  Random random(GetParam());
  for (const std::size_t length : lengths_at_block_boundaries()) {
    const std::string record = record_with_seams(random, length);
    for (const Settings& settings : {usual(), sensitive()}) {
      const std::optional<std::string> found = difference(product, record, settings);
      ASSERT_FALSE(found) << "seed " << GetParam() << ", " << *found;
    }
  }
}

TEST_P(BlockBoundaries, whole_records_of_one_array_are_the_same) {
  ProductSearch product;
  Random random(GetParam());
  for (const std::size_t length : lengths_at_block_boundaries()) {
    const std::string unit = random_residues(random, 1 + random.below(10), "ACGT");
    std::string record = diverged(random, array_of(unit, length + 200), 10).substr(0, length);
    // One edit or N at the very first or last residues, or at a seam.
    const std::size_t place_of_edit = random.one_of(
        {std::size_t{0}, std::size_t{1}, length - 1, length - 2, length / 2,
         std::min<std::size_t>(64, length - 1), std::min<std::size_t>(63, length - 1)});
    record[place_of_edit] = random.one_of({'A', 'C', 'G', 'T', 'N'});
    const std::optional<std::string> found = difference(product, record, usual(), Engines::kApart);
    ASSERT_FALSE(found) << "seed " << GetParam() << ", " << *found;
  }
}

#ifdef VORLAN_DIFFERENTIAL_REDUCED
constexpr std::uint64_t kSeeds = 8;
#else
constexpr std::uint64_t kSeeds = 16;
#endif
INSTANTIATE_TEST_SUITE_P(Seeds, BlockBoundaries, testing::Range<std::uint64_t>(0, kSeeds));

}  // namespace
}  // namespace differential
