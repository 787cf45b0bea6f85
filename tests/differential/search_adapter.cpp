// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Conversion and comparison; see the header.

#include "search_adapter.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "config/settings.h"
#include "description.h"
#include "imperfect/series_filter.h"
#include "random.h"
#include "random_residues.h"

namespace differential {
namespace {

using reference::Repeat;
using reference::Settings;

void copy_into_globals(const Settings& settings) {
  vorlan::init_param();
  vorlan::global_min_unit_length = settings.min_unit_length;
  vorlan::global_max_unit_length = settings.max_unit_length;
  vorlan::global_mismatch_score = settings.mismatch_score;
  vorlan::global_indel_score = settings.indel_score;
  vorlan::global_maximum_recursion_depth = settings.maximum_recursion_depth;
  vorlan::global_maximum_scorereduction = settings.maximum_scorereduction;
  vorlan::global_Ns_allowed_in_a_row = settings.Ns_allowed_in_a_row;
  vorlan::global_treat_Ns_as_missense = settings.treat_Ns_as_missense;
  vorlan::global_prefer_longer_repeat = settings.prefer_longer_repeat;
  vorlan::global_min_score = settings.min_score;
  vorlan::global_min_score_a = settings.min_score_a;
  vorlan::global_min_score_bx = settings.min_score_bx;
  vorlan::global_min_length = settings.min_length;
  vorlan::global_min_length_a = settings.min_length_a;
  vorlan::global_min_length_bx = settings.min_length_bx;
  vorlan::global_N_and_perfection_mode = settings.N_and_perfection_mode;
  vorlan::global_min_perfection = settings.min_perfection;
  vorlan::global_max_perfection = settings.max_perfection;
  vorlan::global_remove_mostly_hidden = settings.remove_mostly_hidden;
  // The thresholds are those of the first controller of a run.
  vorlan::CSearchController::reset_minimum_arrays();
}

Repeat repeat_of(const vorlan::Csat& sat, const char* first_residue) {
  const auto offset = [first_residue](const char* position) {
    return static_cast<std::size_t>(position - first_residue);
  };
  Repeat repeat;
  repeat.begin = offset(sat.pos_left);
  repeat.end = offset(sat.pos_right);
  repeat.unit_begin = offset(sat.unit_begin);
  repeat.unit_end = offset(sat.unit_end);
  repeat.cursor_forward = offset(sat.unit_cursor_fwd);
  repeat.cursor_backward = offset(sat.unit_cursor_bwd);
  repeat.score = sat.score;
  repeat.mismatches = sat.mismatches;
  repeat.insertions = sat.insertions;
  repeat.deletions = sat.deletions;
  repeat.num_Ns = sat.num_Ns;
  for (const vorlan::Missense& event : sat.missense) {
    repeat.events.push_back({offset(event.first), event.second});
  }
  return repeat;
}

void require_empty(const vorlan::CsatContainer& other_list, Mode mode) {
  if (other_list.empty()) return;
  throw std::logic_error(std::string(name_of(mode)) + " search left records in the other list");
}

vorlan::CsatContainer& search(vorlan::CSearchController& controller, Mode mode) {
  switch (mode) {
    case Mode::kExact:
      controller.exact_search_2();
      require_empty(controller.imperfect_sats, mode);
      return controller.exact_sats;
    case Mode::kExtendExact:
      controller.search_exact_and_extend_to_imperfect_repeats();
      break;
    case Mode::kImperfect:
      controller.complete_imperfect_search(nullptr);
      break;
  }
  require_empty(controller.exact_sats, mode);
  return controller.imperfect_sats;
}

void replace_residues(vorlan::CSequence_Mol& sequence, std::string_view residues) {
  sequence.residues.size = 0;
  for (const char residue : residues) sequence.residues.push_back(residue);
}

// So many residues that a series with them is looked at twice, the first time at a glance.
const std::string& background() {
  static const std::string residues = [] {
    Random random(1);
    return random_residues(random, 1600, "ACGT");
  }();
  return residues;
}

// The neighbours are copies of the record, so that what stands at its ends goes on in them.
std::vector<Repeat> find_in_series(vorlan::CSequence_Mol& sequence, const Settings& settings) {
  copy_into_globals(settings);
  const std::string_view residues = sequence.residues.view();
  vorlan::SeriesFilter series;
  series.append(residues);
  const std::size_t offset = series.append(residues);
  series.append(residues);
  if (residues.size() % 2 == 0) series.append(background());
  series.judge(vorlan::UnitLengthThresholds::of_scores());
  const vorlan::JudgedStarts judged = series.record(offset);
  vorlan::CSearchController controller(1, sequence);
  controller.use(&judged);
  controller.complete_imperfect_search(nullptr);
  controller.remove_hidden(controller.imperfect_sats);
  return converted(controller.imperfect_sats, sequence);
}

std::vector<Repeat> find_in(Mode mode, vorlan::CSequence_Mol& sequence, const Settings& settings) {
  std::vector<Repeat> repeats;
  search_record(mode, sequence, settings,
                [&](vorlan::CSearchController&, const vorlan::CsatContainer& sats) {
                  repeats = converted(sats, sequence);
                });
  return repeats;
}

std::string explained(Mode mode, std::string_view residues, const Settings& settings, Buffer buffer,
                      const std::vector<Repeat>& expected, const std::vector<Repeat>& found) {
  constexpr std::array kNames = {"buffer of exact size", "reused buffer", "in a series"};
  return std::string(name_of(mode)) + " search, " + kNames.at(static_cast<std::size_t>(buffer)) +
         "\n" + describe(settings) + "\n" + std::to_string(residues.size()) +
         " residues: " + std::string(residues) + "\n" + describe_first_difference(expected, found);
}

}  // namespace

std::vector<Repeat> converted(const vorlan::CsatContainer& sats,
                              const vorlan::CSequence_Mol& sequence) {
  std::vector<Repeat> repeats;
  for (const vorlan::Csat* sat : sats) repeats.push_back(repeat_of(*sat, sequence.residues.buf));
  return repeats;
}

void search_record(Mode mode, vorlan::CSequence_Mol& sequence, const Settings& settings,
                   const Visit& visit) {
  copy_into_globals(settings);
  vorlan::CSearchController controller(1, sequence);
  vorlan::CsatContainer& sats = search(controller, mode);
  controller.remove_hidden(sats);
  visit(controller, sats);
}

const char* name_of(Mode mode) {
  constexpr std::array kNames = {"exact", "extend-exact", "imperfect"};
  return kNames.at(static_cast<std::size_t>(mode));
}

ProductSearch::ProductSearch() : reused_(vorlan::CSequence_Mol::kDna, 1) {}

std::vector<Repeat> ProductSearch::find(Mode mode, std::string_view residues,
                                        const Settings& settings, Buffer buffer) {
  if (buffer != Buffer::kExact) {
    replace_residues(reused_, residues);
    return buffer == Buffer::kSeries && mode == Mode::kImperfect ? find_in_series(reused_, settings)
                                                                 : find_in(mode, reused_, settings);
  }
  const auto size = static_cast<std::uint32_t>(std::max<std::size_t>(residues.size(), 1));
  vorlan::CSequence_Mol sequence(vorlan::CSequence_Mol::kDna, size);
  replace_residues(sequence, residues);
  return find_in(mode, sequence, settings);
}

std::vector<Repeat> find_plainly(Mode mode, std::string_view residues, const Settings& settings) {
  switch (mode) {
    case Mode::kExact:
      return reference::exact_search(residues, settings);
    case Mode::kExtendExact:
      return reference::extend_exact_search(residues, settings);
    case Mode::kImperfect:
      break;
  }
  return reference::imperfect_search(residues, settings);
}

std::optional<std::string> difference(ProductSearch& product, Mode mode, std::string_view residues,
                                      const Settings& settings) {
  const std::vector<Repeat> all = find_plainly(mode, residues, settings);
  for (const Buffer buffer : {Buffer::kExact, Buffer::kReused, Buffer::kSeries}) {
    Settings with_removal_set = settings;
    with_removal_set.remove_mostly_hidden = buffer != Buffer::kExact;
    const std::vector<Repeat> expected = reference::without_hidden(all, with_removal_set);
    const std::vector<Repeat> found = product.find(mode, residues, with_removal_set, buffer);
    if (found != expected) {
      return explained(mode, residues, with_removal_set, buffer, expected, found);
    }
  }
  return std::nullopt;
}

std::optional<std::string> difference(ProductSearch& product, std::string_view residues,
                                      const Settings& settings) {
  for (const Mode mode : kAllModes) {
    if (auto found = difference(product, mode, residues, settings)) return found;
  }
  return std::nullopt;
}

}  // namespace differential
