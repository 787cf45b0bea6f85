// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Conversion and comparison; see the header.

#include "search_adapter.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <stdexcept>

#include "config/settings.h"
#include "description.h"
#include "imperfect/filter/series_filter.h"
#include "random.h"
#include "random_residues.h"
#include "settings_exchange.h"

namespace differential {
namespace {

using reference::Repeat;
using reference::Settings;
using vorlan::Accelerations;

void set_product_settings(const Settings& settings) {
  vorlan::init_param();
  reference::set_settings_of_the_product(settings);
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

// The background costs far more than most records, so few are laid beside it.
bool lies_beside_background(std::string_view residues) {
  return std::hash<std::string_view>{}(residues) % 64 == 0;
}

// The neighbours are copies of the record, so that what stands at its ends goes on in them.
std::vector<Repeat> find_in_series(vorlan::CSequence_Mol& sequence, const Settings& settings,
                                   const Accelerations& engines) {
  set_product_settings(settings);
  const std::string_view residues = sequence.residues.view();
  vorlan::SeriesFilter series;
  series.append(residues);
  const std::size_t offset = series.append(residues);
  series.append(residues);
  if (lies_beside_background(residues)) series.append(background());
  series.judge(vorlan::CSearchController::user_min_scores());
  const vorlan::SeriesSurvivors survivors = series.record(offset);
  vorlan::CSearchController controller(1, sequence, {}, engines);
  controller.set_series_survivors(&survivors);
  controller.complete_imperfect_search(nullptr);
  controller.remove_hidden(controller.imperfect_sats);
  controller.complete_events(controller.imperfect_sats);
  return converted(controller.imperfect_sats, sequence);
}

std::vector<Repeat> find_in(Mode mode, vorlan::CSequence_Mol& sequence, const Settings& settings,
                            const Accelerations& engines) {
  std::vector<Repeat> repeats;
  search_record(
      mode, sequence, settings,
      [&](vorlan::CSearchController&, const vorlan::CsatContainer& sats) {
        repeats = converted(sats, sequence);
      },
      engines);
  return repeats;
}

// A search of one record in one mode, with some engines.
struct Trial {
  Mode mode;
  std::string_view residues;
  Settings settings;
  Buffer buffer;
  std::string engines_name;
  Accelerations engines;
};

std::string explained(const Trial& trial, const std::vector<Repeat>& expected,
                      const std::vector<Repeat>& found) {
  constexpr std::array kNames = {"buffer of exact size", "reused buffer", "in a series"};
  return std::string(name_of(trial.mode)) + " search, " +
         kNames.at(static_cast<std::size_t>(trial.buffer)) + ", with " + trial.engines_name + "\n" +
         describe(trial.settings) + "\n" + std::to_string(trial.residues.size()) +
         " residues: " + std::string(trial.residues) + "\n" +
         describe_first_difference(expected, found);
}

// Whether an engine has anything to do in a mode. The filter of a series works in a series alone.
bool works_in(const vorlan::NamedAcceleration& engine, Mode mode) {
  using vorlan::Accelerations;
  const auto is = [&](bool Accelerations::*which) { return engine.is_on == which; };
  switch (mode) {
    case Mode::kExact:
      return is(&Accelerations::run_samples) || is(&Accelerations::exact_filter);
    case Mode::kExtendExact:
      return !is(&Accelerations::candidate_filter) && !is(&Accelerations::self_alignment) &&
             !is(&Accelerations::wraparound) && !is(&Accelerations::joint_bound) &&
             !is(&Accelerations::series_filter) && !is(&Accelerations::late_marks);
    case Mode::kImperfect:
      break;
  }
  return !is(&Accelerations::run_samples) && !is(&Accelerations::exact_filter);
}

// Each engine alone. The joint bound judges what the self-alignment lets pass, and decisions by
// bits are those that are kept: they can do nothing without.
std::vector<Trial> trials_apart(const Trial& together) {
  using vorlan::Accelerations;
  std::vector<Trial> trials;
  Trial trial = together;
  trial.buffer = Buffer::kReused;
  trial.engines = Accelerations::none();
  trial.engines_name = "no engine";
  trials.push_back(trial);
  for (const vorlan::NamedAcceleration& engine : vorlan::kAccelerations) {
    if (!works_in(engine, together.mode)) continue;
    trial.engines = Accelerations::none();
    trial.engines.*engine.is_on = true;
    if (engine.is_on == &Accelerations::joint_bound) trial.engines.self_alignment = true;
    if (engine.is_on == &Accelerations::kept_decisions) trial.engines.bit_look_ahead = true;
    trial.buffer = trial.engines.series_filter ? Buffer::kSeries : Buffer::kReused;
    trial.engines_name = std::string("the engine ") + engine.name;
    trials.push_back(trial);
  }
  return trials;
}

std::optional<std::string> difference(ProductSearch& product, const Trial& trial,
                                      const std::vector<Repeat>& expected) {
  const std::vector<Repeat> found =
      product.find(trial.mode, trial.residues, trial.settings, trial.buffer, trial.engines);
  if (found == expected) return std::nullopt;
  return explained(trial, expected, found);
}

}  // namespace

std::vector<Repeat> converted(const vorlan::CsatContainer& sats,
                              const vorlan::CSequence_Mol& sequence) {
  std::vector<Repeat> repeats;
  for (const vorlan::Csat* sat : sats) repeats.push_back(repeat_of(*sat, sequence.residues.buf));
  return repeats;
}

void search_record(Mode mode, vorlan::CSequence_Mol& sequence, const Settings& settings,
                   const Visit& visit, const Accelerations& engines) {
  set_product_settings(settings);
  vorlan::CSearchController controller(1, sequence, {}, engines);
  vorlan::CsatContainer& sats = search(controller, mode);
  controller.remove_hidden(sats);
  controller.complete_events(sats);
  visit(controller, sats);
}

const char* name_of(Mode mode) {
  constexpr std::array kNames = {"exact", "extend-exact", "imperfect"};
  return kNames.at(static_cast<std::size_t>(mode));
}

ProductSearch::ProductSearch() : reused_(vorlan::CSequence_Mol::kDna, 1) {}

std::vector<Repeat> ProductSearch::find(Mode mode, std::string_view residues,
                                        const Settings& settings, Buffer buffer,
                                        const Accelerations& engines) {
  if (buffer != Buffer::kExact) {
    replace_residues(reused_, residues);
    return buffer == Buffer::kSeries && mode == Mode::kImperfect
               ? find_in_series(reused_, settings, engines)
               : find_in(mode, reused_, settings, engines);
  }
  const auto size = static_cast<std::uint32_t>(std::max<std::size_t>(residues.size(), 1));
  vorlan::CSequence_Mol sequence(vorlan::CSequence_Mol::kDna, size);
  replace_residues(sequence, residues);
  return find_in(mode, sequence, settings, engines);
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
                                      const Settings& settings, Engines engines) {
  Trial trial{mode, residues, settings, Buffer::kExact, "all engines", {}};
  const std::vector<Repeat> all = find_plainly(mode, residues, settings);
  trial.settings.remove_mostly_hidden = false;
  if (auto found = difference(product, trial, all)) return found;
  trial.settings.remove_mostly_hidden = true;
  const std::vector<Repeat> expected = reference::without_hidden(all, trial.settings);
  std::vector<Buffer> buffers = {Buffer::kReused};
  // Only the imperfect search knows of series.
  if (mode == Mode::kImperfect) buffers.push_back(Buffer::kSeries);
  for (const Buffer buffer : buffers) {
    trial.buffer = buffer;
    if (auto found = difference(product, trial, expected)) return found;
  }
  if (engines == Engines::kTogether) return std::nullopt;
  for (const Trial& apart : trials_apart(trial)) {
    if (auto found = difference(product, apart, expected)) return found;
  }
  return std::nullopt;
}

std::optional<std::string> difference(ProductSearch& product, std::string_view residues,
                                      const Settings& settings, Engines engines) {
  for (const Mode mode : kAllModes) {
    if (auto found = difference(product, mode, residues, settings, engines)) return found;
  }
  return std::nullopt;
}

}  // namespace differential
