// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Settings and residues from bytes; see the header.

#include "search_input.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string_view>
#include <utility>

#include "random_cases.h"
#include "search/csat.h"

namespace fuzz {
namespace {

using differential::Mode;
using reference::Settings;

constexpr int kSmallest = std::numeric_limits<int>::min();
constexpr int kLargest = std::numeric_limits<int>::max();

constexpr unsigned kLongestUnit = 40;
constexpr std::size_t kMostResidues = 700;

// The first choice is always the default.

void read_unit_lengths(InputBytes& bytes, Settings& settings) {
  settings.min_unit_length = bytes.below(kLongestUnit) + 1;
  const unsigned more = (bytes.below(kLongestUnit) + 9) % kLongestUnit;
  settings.max_unit_length = std::min(settings.min_unit_length + more, kLongestUnit);
}

int read_penalty(InputBytes& bytes) {
  return bytes.one_of({-5, -2, -3, -4, -6, -7, -8, -9, -1000000, kSmallest + 1, kSmallest});
}

int read_scorereduction(InputBytes& bytes) {
  const int reduction = static_cast<int>(bytes.byte());
  if (reduction == 0) return kLargest;
  if (reduction <= 200) return reduction / 2;
  return bytes.one_of({kLargest - 1, -1, -2, -7, -10, kSmallest + 1, kSmallest});
}

void read_N_rules(InputBytes& bytes, Settings& settings) {
  settings.Ns_allowed_in_a_row = bytes.one_of({2, 0, 1, 3, 5, 12, kLargest});
  settings.treat_Ns_as_missense = bytes.flag();
  settings.N_and_perfection_mode = static_cast<int>(bytes.below(3));
}

void read_thresholds(InputBytes& bytes, Settings& settings) {
  settings.min_score = bytes.one_of({6, 2, 3, 4, 5, 8, 12, 20, 0, -1, -2, -10, kSmallest});
  settings.min_score_a = bytes.one_of({0, -10, -3, 1, 5, kSmallest});
  settings.min_score_bx = bytes.one_of({1.0F, 0.0F, 1.5F, 0.3F, 1.1F, -1.0F, 3.0F});
  settings.min_length = bytes.one_of({0, 2, 3, 6, 10, 20, 40});
  settings.min_length_a = bytes.one_of({0, -10, 3, 20});
  settings.min_length_bx = bytes.one_of({0.0F, 1.0F, 2.0F, 2.5F, 3.3F});
}

void read_perfection(InputBytes& bytes, Settings& settings) {
  settings.min_perfection = bytes.one_of({0.0F, 60.0F, 80.0F, 90.0F, 100.0F});
  settings.max_perfection = bytes.one_of({100.0F, 99.0F, 95.0F, 80.0F});
}

Settings read_settings(InputBytes& bytes) {
  Settings settings;
  read_unit_lengths(bytes, settings);
  settings.mismatch_score = read_penalty(bytes);
  settings.indel_score = read_penalty(bytes);
  settings.maximum_recursion_depth = bytes.one_of({5, 1, 2, 3, 4, 6});
  settings.maximum_scorereduction = read_scorereduction(bytes);
  settings.prefer_longer_repeat = bytes.flag() ? 0 : 1;
  read_N_rules(bytes, settings);
  read_thresholds(bytes, settings);
  read_perfection(bytes, settings);
  settings.remove_mostly_hidden = !bytes.flag();
  return settings;
}

// Writes residues step by step. The unit is a copy, since it stays as it was when the residues that
// it was taken from are followed by others.
class Writer {
 public:
  void step(unsigned what, unsigned how_much) {
    switch (what) {
      case 0:
        // Between two copies an insertion: the array goes on where it was.
        return add(kLetters[how_much % 4]);
      case 1:
        return take_unit(how_much + 1);
      case 2:
        return copy(how_much + 1);
      case 3:
        return mismatch(how_much);
      case 4:
        return add_background(how_much + 1);
      case 5:
        return skip(how_much % 4 + 1);
      case 6:
        return add_Ns(how_much);
      default:
        return how_much < 16 ? take_unit(how_much + 25) : copy(8 * how_much);
    }
  }

  std::size_t size() const { return residues_.size(); }
  std::string take() { return std::move(residues_); }

 private:
  static constexpr std::string_view kLetters = "ACGT";

  // Without a repeat that any usual threshold keeps.
  static constexpr std::string_view kBackground =
      "GCTAACGGTCATTGACCTGCGTATAGTCCGAAGATCTTACAGGCACTTCGCAATGTGGAAC";

  void add(char residue) { residues_ += residue; }

  void add_background(std::size_t count) {
    for (; count > 0; --count) add(kBackground[residues_.size() % kBackground.size()]);
  }

  void take_unit(std::size_t length) {
    unit_ = residues_.substr(residues_.size() - std::min(residues_.size(), length));
    place_ = 0;
  }

  // The next residue of the array; nothing while there is no unit.
  char expected() const { return unit_[place_ % unit_.size()]; }

  void copy(std::size_t count) {
    for (; count > 0 && !unit_.empty(); --count, ++place_) add(expected());
  }

  void mismatch(unsigned which) {
    if (unit_.empty()) return;
    const std::size_t letter = kLetters.find(expected()) + 1 + which % 3;
    add(kLetters[letter % 4]);
    ++place_;
  }

  void skip(std::size_t count) { place_ += count; }

  // Half of the runs stand in place of residues of the array.
  void add_Ns(unsigned how_much) {
    const std::size_t count = how_much / 2 % 8 + 1;
    residues_.append(count, 'N');
    if (how_much % 2 == 0) place_ += count;
  }

  std::string residues_;
  std::string unit_;
  std::size_t place_ = 0;
};

std::string read_residues(InputBytes& bytes) {
  constexpr unsigned kKinds = 8;
  Writer writer;
  while (!bytes.empty() && writer.size() < kMostResidues) {
    const unsigned step = bytes.byte();
    writer.step(step % kKinds, step / kKinds);
  }
  return writer.take().substr(0, kMostResidues);
}

// Some milliseconds of a slow twin. With it the default depth still has its full say in an array of
// 200 residues.
constexpr double kBudget = 3'000'000;

void bound_cost(SearchInput& input) {
  const auto is_too_expensive = [&input] {
    return differential::estimated_cost(input.settings, input.residues.size()) > kBudget;
  };
  Settings& settings = input.settings;
  while (is_too_expensive() && settings.max_unit_length - settings.min_unit_length > 10) {
    --settings.max_unit_length;
  }
  while (is_too_expensive() && input.residues.size() > 200) input.residues.pop_back();
  while (is_too_expensive() && settings.maximum_recursion_depth > 1) {
    --settings.maximum_recursion_depth;
  }
}

}  // namespace

SearchInput read_search_input(InputBytes& bytes) {
  SearchInput input;
  input.mode = bytes.one_of({Mode::kImperfect, Mode::kExtendExact, Mode::kExact});
  input.settings = read_settings(bytes);
  input.residues = read_residues(bytes);
  bound_cost(input);
  return input;
}

PoolOfOneInput::~PoolOfOneInput() {
  for (vorlan::Csat* sat : vorlan::sat_alloc) delete sat;
  vorlan::sat_alloc.clear();
}

}  // namespace fuzz
