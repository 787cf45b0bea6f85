// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The kernels of the candidate filter, all that this machine can run, against the slow twin of the
// filter: bit for bit, with any plan, for looks at whole blocks and at starts that lie anywhere.

#include "imperfect/filter/candidate_filter_kernel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include "all_strings.h"
#include "extension_settings.h"
#include "plain_filter.h"
#include "random.h"
#include "random_residues.h"
#include "support/dna.h"
#include "support/kernel_look.h"

namespace vorlan {
namespace {

using differential::Random;

reference::FilterRules rules_of(const FilterPlan& plan) {
  return {.unit_length = plan.unit_length,
          .floor = plan.floor,
          .penalty = plan.penalty,
          .min_score = plan.min_score,
          .horizon = plan.horizon,
          .first_check = plan.first_check,
          .few_enough_to_stop = plan.few_enough_to_stop,
          .checks_without_loss = plan.checks_without_loss,
          .max_gain = plan.max_gain,
          .bridges_N = plan.bridges_N};
}

std::string described(const FilterPlan& plan) {
  return "unit length " + std::to_string(plan.unit_length) + ", floor " +
         std::to_string(plan.floor) + ", penalty " + std::to_string(plan.penalty) + ", score " +
         std::to_string(plan.min_score) + ", horizon " + std::to_string(plan.horizon) +
         ", first check " + std::to_string(plan.first_check) + ", few " +
         std::to_string(plan.few_enough_to_stop) + ", checks " +
         std::to_string(plan.checks_without_loss) + ", gain " + std::to_string(plan.max_gain) +
         (plan.bridges_N ? ", N bridged" : ", N not bridged");
}

/// The starts that are looked at together, and which of them are wanted.
struct Wanted {
  std::vector<std::ptrdiff_t> starts;
  std::vector<bool> is_wanted;
};

KernelLook::Bits bits_of(const std::vector<bool>& values) {
  KernelLook::Bits bits{};
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i]) bits[i / 64] |= std::uint64_t{1} << i % 64;
  }
  return bits;
}

/// How often which outcome was seen, so that no test passes on looks that decide nothing.
struct Counts {
  long survivors = 0;
  long hopeless = 0;
  long differences_by_stopping = 0;  ///< Starts that survive only because the look ended early.
  long looks = 0;
};

class CandidateFilterKernelTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    std::cout << "kernels:";
    for (const FilterKernel& kernel : runnable_filter_kernels()) std::cout << ' ' << kernel.name;
    std::cout << '\n';
  }

  /// Asks the twin, and every kernel by `look`.
  template <class Look>
  void expect_same(std::string_view residues, const FilterPlan& plan, const Wanted& wanted,
                   Look look) {
    reference::FilterRules rules = rules_of(plan);
    const std::vector<bool> expected =
        filter_survivors(residues, rules, wanted.starts, wanted.is_wanted);
    for (const FilterKernel& kernel : runnable_filter_kernels()) {
      ASSERT_EQ(look(kernel, bits_of(wanted.is_wanted)), bits_of(expected))
          << kernel.name << ", " << described(plan) << "\nfrom start " << wanted.starts.front()
          << " of\n"
          << residues;
    }
    const auto count = [](const std::vector<bool>& values) {
      return std::count(values.begin(), values.end(), true);
    };
    ++counts_.looks;
    counts_.survivors += count(expected);
    counts_.hopeless += count(wanted.is_wanted) - count(expected);
    if (counts_.looks % 2 != 0) return;
    rules.first_check = rules.horizon + 1;
    counts_.differences_by_stopping +=
        count(expected) - count(filter_survivors(residues, rules, wanted.starts, wanted.is_wanted));
  }

  /// The wanted starts have room for their unit and a base behind it.
  static Wanted chosen(Random& random, std::vector<std::ptrdiff_t> starts, std::size_t residues,
                       int unit_length, int share) {
    Wanted wanted{std::move(starts), {}};
    for (const std::ptrdiff_t start : wanted.starts) {
      wanted.is_wanted.push_back(start + unit_length < static_cast<std::ptrdiff_t>(residues) &&
                                 random.per_cent(share));
    }
    return wanted;
  }

  void expect_same_in_blocks(Random& random, const Dna& dna, std::string_view residues,
                             const FilterPlan& plan, int share) {
    KernelLook looks(dna, plan);
    const auto size = static_cast<std::ptrdiff_t>(residues.size());
    for (std::ptrdiff_t begin = 0; begin < size; begin += kFilterStarts) {
      std::vector<std::ptrdiff_t> starts;
      for (int i = 0; i < kFilterStarts; ++i) starts.push_back(begin + i);
      const Wanted wanted =
          chosen(random, std::move(starts), residues.size(), plan.unit_length, share);
      ASSERT_NO_FATAL_FAILURE(expect_same(
          residues, plan, wanted, [&](const FilterKernel& kernel, const KernelLook::Bits& bits) {
            return looks.judged_block(kernel, begin / kBitsPerWord, bits);
          }));
    }
  }

  /// Starts with gaps between them; those behind the last one repeat it, as in a close look.
  void expect_same_anywhere(Random& random, const Dna& dna, std::string_view residues,
                            const FilterPlan& plan, int share) {
    KernelLook looks(dna, plan);
    const auto last = std::max<std::ptrdiff_t>(
        0, static_cast<std::ptrdiff_t>(residues.size()) - plan.unit_length - 1);
    KernelLook::Starts starts;
    auto start = static_cast<std::ptrdiff_t>(random.below(20));
    for (std::ptrdiff_t& next : starts) {
      next = start = std::min(start, last);
      start += random.between(1, 4);
    }
    Wanted wanted =
        chosen(random, {starts.begin(), starts.end()}, residues.size(), plan.unit_length, share);
    for (std::size_t i = 1; i < starts.size(); ++i) {
      if (starts[i] == starts[i - 1]) wanted.is_wanted[i] = false;
    }
    ASSERT_NO_FATAL_FAILURE(expect_same(
        residues, plan, wanted, [&](const FilterKernel& kernel, const KernelLook::Bits& bits) {
          return looks.judged_starts(kernel, starts, bits);
        }));
  }

  Counts counts_;
};

/// A plan like those of the filter, but with numbers of all sizes.
FilterPlan random_plan(Random& random, int unit_length) {
  FilterPlan plan{};
  plan.unit_length = unit_length;
  plan.floor = -unit_length - random.between(0, 1);
  plan.penalty = random.per_cent(5) ? 1 << 20 : random.between(2, 9);
  plan.min_score = random.per_cent(80) ? random.between(1, 14) : random.between(1, 200);
  plan.horizon = unit_length + random.one_of({1, 2, 6, 6, 6, 6, 16, 16, 16, 32});
  plan.first_check = random.one_of({2, 4, 4, 5, 10, 200});
  plan.few_enough_to_stop = random.one_of({0, 5, 16, 40});
  plan.checks_without_loss = random.one_of({0, 1, 1, 2, unit_length, 14});
  plan.max_gain = std::min(plan.min_score, random.one_of({1, 3, 3, 8, 8}));
  plan.bridges_N = random.per_cent(60);
  return completed(plan);
}

std::string random_text(Random& random, std::size_t length) {
  if (random.per_cent(20)) return differential::random_residues(random, length, "ACGT");
  std::string residues = differential::random_record(random, length);
  if (random.per_cent(40)) {
    differential::overwrite_with_Ns(random, residues, static_cast<int>(length / 40 + 1), 4);
  }
  return residues;
}

int random_unit_length(Random& random) {
  return random.per_cent(85) ? random.between(1, 10) : random.between(11, 70);
}

TEST_F(CandidateFilterKernelTest, GlancesLeaveWhatTheSlowTwinLeaves) {
  for (std::uint64_t seed = 0; seed < 10 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(seed);
    const int unit_length = random_unit_length(random);
    const FilterPlan plan = random_plan(random, unit_length);
    const std::string residues =
        random_text(random, static_cast<std::size_t>(unit_length) + 1 + random.below(600));
    const Dna dna(residues);
    ASSERT_NO_FATAL_FAILURE(
        expect_same_in_blocks(random, dna, residues, plan, random.one_of({100, 100, 50, 5})));
  }
  EXPECT_GT(counts_.survivors, 150 * kWorkload);
  EXPECT_GT(counts_.hopeless, 150 * kWorkload);
  EXPECT_GT(counts_.differences_by_stopping, 2 * kWorkload);
}

TEST_F(CandidateFilterKernelTest, CloseLooksLeaveWhatTheSlowTwinLeaves) {
  for (std::uint64_t seed = 0; seed < 6 * kWorkload; ++seed) {
    SCOPED_TRACE(seed);
    Random random(1'000 + seed);
    const int unit_length = random_unit_length(random);
    const FilterPlan plan = random_plan(random, unit_length);
    const std::string residues =
        random_text(random, static_cast<std::size_t>(unit_length) + 1 + random.below(1'200));
    const Dna dna(residues);
    ASSERT_NO_FATAL_FAILURE(
        expect_same_anywhere(random, dna, residues, plan, random.one_of({100, 100, 50, 5})));
  }
  EXPECT_GT(counts_.survivors, 150 * kWorkload);
  EXPECT_GT(counts_.hopeless, 150 * kWorkload);
  EXPECT_GT(counts_.differences_by_stopping, 2 * kWorkload);
}

/// Every text of a few letters, at both ends of the sequence at once, and with the unit lengths and
/// floors that it has room for.
TEST_F(CandidateFilterKernelTest, AgreeWithTheSlowTwinOnAllShortTexts) {
#ifdef VORLAN_FAST_PATH_REDUCED
  constexpr std::size_t kLongest = 5;
#else
  constexpr std::size_t kLongest = 7;
#endif
  Random random(3);
  differential::for_each_string_up_to("ACN", kLongest, [&](const std::string& text) {
    const Dna dna(text);
    for (int unit_length = 1; unit_length < static_cast<int>(text.size()); ++unit_length) {
      FilterPlan plan = random_plan(random, std::min(unit_length, 3));
      plan.penalty = random.between(1, 3);
      plan.min_score = random.between(1, 5);
      plan.max_gain = random.between(1, plan.min_score);
      plan.first_check = random.between(1, 4);
      plan = completed(plan);
      expect_same_in_blocks(random, dna, text, plan, 100);
      expect_same_anywhere(random, dna, text, plan, 100);
    }
    return !HasFatalFailure();
  });
  EXPECT_GT(counts_.looks, 1'000);
  EXPECT_GT(counts_.survivors, 1'000);
  EXPECT_GT(counts_.hopeless, 1'000);
}

}  // namespace
}  // namespace vorlan
