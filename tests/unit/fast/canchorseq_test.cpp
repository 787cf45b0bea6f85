// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The marks, 64 in a word, against one bool for each residue.

#include "search/canchorseq.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "extension_settings.h"
#include "plain_marks.h"
#include "random.h"
#include "support/dna.h"

namespace vorlan {
namespace {

using differential::Random;

/// Both kinds of marks of one sequence, changed together.
class MarkPair {
 public:
  explicit MarkPair(std::size_t length)
      : dna_(std::string(length, 'A')),
        length_(static_cast<std::ptrdiff_t>(length)),
        anchors_(dna_.at(0), length),
        plain_(dna_.at(0), length) {}

  void close(std::ptrdiff_t begin, std::ptrdiff_t end) {
    anchors_.close(dna_.at(begin), dna_.at(end));
    plain_.set(dna_.at(begin), dna_.at(end), false);
  }

  void open(std::ptrdiff_t position) {
    anchors_.open(dna_.at(position));
    plain_.set(dna_.at(position), dna_.at(position + 1), true);
  }

  void close_repeat(std::ptrdiff_t begin, std::ptrdiff_t end, std::ptrdiff_t edit) {
    Csat sat;
    sat.init(dna_.at(begin), dna_.at(end));
    sat.missense.push_back({dna_.at(edit), kMismatchEvent});
    anchors_.close(sat);
    plain_.close(sat);
  }

  void reset() {
    anchors_.reset();
    plain_.set(dna_.at(0), dna_.end(), true);
  }

  /// Asks for all starts that have room.
  void expect_same_anchors(std::ptrdiff_t unit_length) const {
    const std::ptrdiff_t starts = length_ - unit_length;
    for (std::ptrdiff_t word = 0; word * 64 < starts; ++word) {
      const std::uint64_t bits = anchors_.may_anchor(word, static_cast<std::size_t>(unit_length));
      for (std::ptrdiff_t start = word * 64; start < std::min(starts, word * 64 + 64); ++start) {
        ASSERT_EQ((bits >> start % 64 & 1) != 0, plain_.may_anchor(start, unit_length))
            << "start " << start << " unit length " << unit_length << " length " << length_;
      }
    }
  }

 private:
  Dna dna_;
  std::ptrdiff_t length_;
  CAnchorSeq anchors_;
  PlainMarks plain_;
};

/// A position from 0 to `last`, often at or next to a word boundary.
std::ptrdiff_t random_position(Random& random, std::ptrdiff_t last) {
  if (random.per_cent(50)) return random.between(0, static_cast<int>(last));
  const int words = static_cast<int>(last / 64);
  const std::ptrdiff_t near = 64 * random.between(0, words + 1) + random.between(-1, 1);
  return std::clamp<std::ptrdiff_t>(near, 0, last);
}

void change(Random& random, MarkPair& marks, std::ptrdiff_t length) {
  const auto [begin, end] =
      std::minmax({random_position(random, length), random_position(random, length)});
  switch (random.between(0, 9)) {
    case 0:
    case 1:
    case 2:
      marks.close(begin, end);
      break;
    case 3:
      if (begin < end) {
        marks.close_repeat(begin, end,
                           begin + random.between(0, static_cast<int>(end - begin) - 1));
      }
      break;
    case 4:
      if (random.per_cent(20)) marks.reset();
      break;
    default:
      marks.open(random_position(random, length - 1));
  }
}

TEST(CAnchorSeq, AllowsTheStartsThatBoolsAllowAfterAnyChanges) {
  for (int seed = 0; seed < 40 * kWorkload; ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    const std::ptrdiff_t length = random.per_cent(40)
                                      ? 64 * random.between(1, 4) + random.between(-1, 2)
                                      : random.between(2, 300);
    MarkPair marks(static_cast<std::size_t>(length));
    for (int i = 0; i < 30; ++i) {
      change(random, marks, length);
      const int longest = static_cast<int>(length) - 1;
      marks.expect_same_anchors(random.between(1, std::min(longest, 8)));
      marks.expect_same_anchors(random.between(1, longest));
      ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed << " change " << i;
    }
  }
}

TEST(CAnchorSeq, ClosesEveryStretchAndNothingElse) {
  constexpr std::ptrdiff_t kLength = 140;
  for (std::ptrdiff_t begin = 0; begin <= kLength; ++begin) {
    for (std::ptrdiff_t end = begin; end <= kLength; ++end) {
      MarkPair marks(kLength);
      marks.close(begin, end);
      // A stretch of one residue may be tried exactly when its own mark is open.
      marks.expect_same_anchors(1);
      marks.expect_same_anchors(5);
      ASSERT_FALSE(testing::Test::HasFailure()) << "closed " << begin << " to " << end;
    }
  }
}

TEST(CAnchorSeq, KeepsTheMarksOutsideTheSequenceOpen) {
  for (const std::size_t length : {3U, 63U, 64U, 65U, 66U, 128U, 129U}) {
    const Dna dna(std::string(length, 'A'));
    CAnchorSeq anchors(dna.at(0), length);
    anchors.close(dna.at(0), dna.end());
    anchors.open(dna.at(1));
    // Start 0, unit length 2: the residue before the sequence and residue 1 are open.
    EXPECT_EQ(anchors.may_anchor(0, 2) & 1U, 1U) << length;
    anchors.close(dna.at(0), dna.end());
    EXPECT_EQ(anchors.may_anchor(0, 2) & 1U, 0U) << length;
  }
}

}  // namespace
}  // namespace vorlan
