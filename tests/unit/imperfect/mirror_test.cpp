// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Extending backward is the mirror image of extending forward: on the reversed sequence it must
// give the mirrored record.

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <string>
#include <tuple>

#include "search/csearchcontroller.h"
#include "support/dna.h"
#include "support/fresh_settings.h"
#include "support/repeats.h"

namespace vorlan {
namespace {

/// Arrays of a random unit in which some residues are changed, inserted, lost or N.
class DivergedArrays {
 public:
  explicit DivergedArrays(std::uint32_t seed) : random_(seed) {}

  std::string next(std::size_t unit_length) {
    std::string unit;
    while (unit.size() < unit_length) unit += base();
    std::string array = unit;  // the first copy, which is the seed, stays perfect
    const std::size_t copies = 3 + below(8);
    for (std::size_t i = 0; i < copies * unit_length; ++i) {
      switch (below(25)) {
        case 0:
          array += base();
          break;
        case 1:
          array += base();
          array += unit[i % unit_length];
          break;
        case 2:
          break;
        case 3:
          array += std::string(1 + below(3), 'N');
          break;
        default:
          array += unit[i % unit_length];
      }
    }
    return array;
  }

  std::size_t below(std::size_t limit) { return random_() % limit; }

 private:
  char base() { return "ACGT"[below(4)]; }

  std::mt19937 random_;
};

/// What kinds of alignments a test has seen, so that it cannot pass on perfect repeats alone.
struct Seen {
  unsigned mismatches = 0;
  unsigned insertions = 0;
  unsigned deletions = 0;
  unsigned num_Ns = 0;
  unsigned negative_scores = 0;
};

/// An event at offset `position`, seen from the other end of a sequence of `length` residues: the
/// residue itself, or, for a deletion, the residue on the other side of the gap.
std::string mirrored_events(const Csat& sat, const Dna& dna) {
  const std::ptrdiff_t length = dna.end() - dna.at(0);
  std::string text;
  for (const auto& [position, kind] : sat.missense) {
    const std::ptrdiff_t offset = position - dna.at(0);
    const std::ptrdiff_t mirrored = kind == 'D' ? length - offset : length - 1 - offset;
    text += std::to_string(mirrored) + kind + ' ';
  }
  return text;
}

void expect_mirror_image(const Csat& forward, const Dna& dna, const Csat& backward,
                         const Dna& reversed) {
  const std::ptrdiff_t length = dna.end() - dna.at(0);
  const Span span = span_of(forward, dna);
  const Span expected{length - span.right, length - span.left,
                      length - span.unit_begin - span.unit_length, span.unit_length};
  EXPECT_EQ(span_of(backward, reversed), expected);
  EXPECT_EQ(backward.score, forward.score);
  EXPECT_EQ(backward.mismatches, forward.mismatches);
  EXPECT_EQ(backward.insertions, forward.insertions);
  EXPECT_EQ(backward.deletions, forward.deletions);
  EXPECT_EQ(backward.num_Ns, forward.num_Ns);
  EXPECT_EQ(events_of(backward, reversed), mirrored_events(forward, dna));
  EXPECT_EQ(reversed.end() - backward.unit_cursor_bwd, forward.unit_cursor_fwd - dna.at(0) + 1);
  EXPECT_EQ(reversed.end() - backward.unit_cursor_fwd, forward.unit_cursor_bwd - dna.at(0) + 1);
}

/// Preference for longer repeats, largest score reduction, N as missense.
using MirrorSettings = std::tuple<int, int, bool>;

class Mirror : public FreshSettings, public ::testing::WithParamInterface<MirrorSettings> {
 protected:
  void expect_mirror_image_of(const std::string& bases, std::ptrdiff_t unit_length) {
    Dna dna(bases);
    CSearchController controller(1, dna);
    Csat forward;
    forward.init(dna.at(0), dna.at(unit_length));
    controller.extend_imperfect_forward(forward, dna.end());

    Dna reversed(std::string(bases.rbegin(), bases.rend()));
    CSearchController reversed_controller(1, reversed);
    Csat backward;
    backward.init(reversed.end() - unit_length, reversed.end());
    reversed_controller.extend_imperfect_backward(backward, reversed.at(0));

    expect_mirror_image(forward, dna, backward, reversed);
    note(forward);
  }

  void note(const Csat& sat) {
    seen_.mismatches += sat.mismatches;
    seen_.insertions += sat.insertions;
    seen_.deletions += sat.deletions;
    seen_.num_Ns += sat.num_Ns;
    seen_.negative_scores += sat.score < 0;
  }

  Seen seen_;
};

TEST_P(Mirror, ExtendingBackwardOnTheReversedSequenceGivesTheMirroredRecord) {
  std::tie(global_prefer_longer_repeat, global_maximum_scorereduction,
           global_treat_Ns_as_missense) = GetParam();
  constexpr std::uint32_t kSeed = 20240611;
  constexpr int kArrays = 300;
  DivergedArrays arrays(kSeed);
  for (int i = 0; i < kArrays && !HasFailure(); ++i) {
    const std::size_t unit_length = 1 + arrays.below(9);
    const std::string bases = arrays.next(unit_length);
    SCOPED_TRACE("seed " + std::to_string(kSeed) + ", array " + std::to_string(i) +
                 ", unit length " + std::to_string(unit_length) + ": " + bases);
    expect_mirror_image_of(bases, static_cast<std::ptrdiff_t>(unit_length));
  }
  EXPECT_GT(seen_.mismatches, 50U);
  EXPECT_GT(seen_.insertions, 50U);
  EXPECT_GT(seen_.deletions, 50U);
  if (global_treat_Ns_as_missense) {
    EXPECT_EQ(seen_.num_Ns, 0U);
  } else {
    EXPECT_GT(seen_.num_Ns, 50U);
  }
}

INSTANTIATE_TEST_SUITE_P(Settings, Mirror,
                         ::testing::Combine(::testing::Values(1, 0),
                                            ::testing::Values(std::numeric_limits<int>::max(), 12),
                                            ::testing::Bool()));

}  // namespace
}  // namespace vorlan
