// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The three searches against their slow twins on all short records over two or three letters, under
// settings that let short repeats count: every way in which the ends of a record, repeats, edits
// and N can lie next to each other occurs, whether or not somebody has thought of it.

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

#include "all_strings.h"
#include "search_adapter.h"

namespace differential {
namespace {

using reference::Settings;

struct Alphabet {
  std::string_view letters;
  std::size_t max_length;
};

// Checked builds are several times slower.
#ifdef VORLAN_DIFFERENTIAL_REDUCED
constexpr std::size_t kLess = 2;
#else
constexpr std::size_t kLess = 0;
#endif

constexpr int kNoLimit = 2147483647;

// Unit lengths 1 to 4, a minimum score of 2 at all of them, small penalties: a mismatch between two
// short matches is worth it.
Settings short_repeats() {
  Settings settings;
  settings.max_unit_length = 4;
  settings.mismatch_score = -2;
  settings.indel_score = -2;
  settings.maximum_recursion_depth = 2;
  settings.min_score = 2;
  settings.min_score_bx = 0;
  return settings;
}

template <class Change>
Settings short_repeats_with(Change change) {
  Settings settings = short_repeats();
  change(settings);
  return settings;
}

struct NamedSettings {
  std::string_view name;
  Settings settings;
};

const NamedSettings kSettings[] = {
    {"usual", short_repeats()},
    {"shorter_deep", short_repeats_with([](Settings& s) {
       s.prefer_longer_repeat = 0;
       s.maximum_recursion_depth = 3;
     })},
    {"dear_indels_shallow", short_repeats_with([](Settings& s) {
       s.mismatch_score = -2;
       s.indel_score = -3;
       s.min_score = 3;
       s.maximum_recursion_depth = 1;
     })},
    {"dear_mismatches_limited", short_repeats_with([](Settings& s) {
       s.mismatch_score = -3;
       s.indel_score = -2;
       s.maximum_scorereduction = 3;
       s.Ns_allowed_in_a_row = 1;
     })},
    {"no_N_limited", short_repeats_with([](Settings& s) {
       s.mismatch_score = -3;
       s.indel_score = -2;
       s.prefer_longer_repeat = 0;
       s.maximum_scorereduction = 3;
       s.Ns_allowed_in_a_row = 0;
     })},
    {"N_as_missense", short_repeats_with([](Settings& s) {
       s.maximum_scorereduction = 1;
       s.min_unit_length = 2;
       s.treat_Ns_as_missense = true;
     })},
    {"no_reduction", short_repeats_with([](Settings& s) {
       s.maximum_scorereduction = 0;
       s.N_and_perfection_mode = 2;
       s.max_perfection = 99;
     })},
    {"unit_length_3", short_repeats_with([](Settings& s) {
       s.maximum_recursion_depth = 3;
       s.maximum_scorereduction = 4;
       s.min_unit_length = 3;
       s.max_unit_length = 3;
       s.min_score = 3;
     })},
    {"by_length", short_repeats_with([](Settings& s) {
       s.min_score = -1;
       s.min_length = 6;
       s.Ns_allowed_in_a_row = 1;
     })},
    {"unit_length_2_score_0", short_repeats_with([](Settings& s) {
       s.min_score = 0;
       s.min_unit_length = 2;
       s.max_unit_length = 2;
       s.maximum_recursion_depth = 3;
       s.maximum_scorereduction = 3;
       s.prefer_longer_repeat = 0;
     })},
    {"unit_lengths_4_to_6", short_repeats_with([](Settings& s) {
       s.mismatch_score = -3;
       s.indel_score = -3;
       s.maximum_recursion_depth = 3;
       s.min_unit_length = 4;
       s.max_unit_length = 6;
       s.N_and_perfection_mode = 1;
     })},
    {"long_units_hardly_limited", short_repeats_with([](Settings& s) {
       s.mismatch_score = -4;
       s.min_score_bx = 1;
       s.max_unit_length = 20;
       s.maximum_scorereduction = kNoLimit - 1;
       s.maximum_recursion_depth = 1;
     })},
};

class AllShortRecords : public testing::TestWithParam<std::tuple<Alphabet, NamedSettings>> {};

TEST_P(AllShortRecords, give_the_same_repeats_in_all_modes) {
  const auto& [alphabet, named] = GetParam();
  ProductSearch product;
  std::size_t with_repeats = 0;
  const bool all_equal = for_each_string_up_to(
      alphabet.letters, alphabet.max_length,
      [&, &rules = named.settings, &alphabet = alphabet](const std::string& residues) {
        if (!find_plainly(Mode::kImperfect, residues, rules).empty()) ++with_repeats;
        // The longer ones are many; engines apart would take most of the time of all tests.
        const Engines engines =
            residues.size() + 3 <= alphabet.max_length ? Engines::kApart : Engines::kTogether;
        const std::optional<std::string> found = difference(product, residues, rules, engines);
        if (found) ADD_FAILURE() << *found;
        return !found;
      });
  if (!all_equal) return;
  EXPECT_GT(with_repeats, 0U) << "settings under which nothing is a repeat compare nothing";
}

std::string name_of_case(const testing::TestParamInfo<std::tuple<Alphabet, NamedSettings>>& info) {
  const auto& [alphabet, named] = info.param;
  return std::string(alphabet.letters) + "_" + std::string(named.name);
}

INSTANTIATE_TEST_SUITE_P(Over, AllShortRecords,
                         testing::Combine(testing::Values(Alphabet{"AC", 13 - kLess},
                                                          Alphabet{"ACN", 9 - kLess},
                                                          Alphabet{"ACG", 9 - kLess}),
                                          testing::ValuesIn(kSettings)),
                         name_of_case);

}  // namespace
}  // namespace differential
