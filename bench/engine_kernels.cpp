// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The engines of the imperfect search on their own.
//
//   glance/, close_look/   the two looks of the filter, by each kernel that this processor can run;
//                          items are starts that are judged
//   wraparound/            the bound behind the filter, by kernel; items are starts that are judged
//   look_ahead/            all decisions on the way through an array, by each look-ahead, and by
//                          each kernel of the one by bits; items are decisions
//   extension/             through an array, by steps, with ways that are new, and over
//                          stored ones; items are residues

#include "engine_kernels.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "imperfect/extension_steps.h"
#include "imperfect/filter/candidate_filter.h"
#include "imperfect/record_search.h"
#include "imperfect/wraparound/wraparound_bound.h"
#include "kernel_inputs.h"
#include "search/bit_planes.h"
#include "search/csat.h"

namespace {

using vorlan::Accelerations;
using vorlan::BitPlanes;
using vorlan::CandidateFilter;
using vorlan::Csat;
using vorlan::FilterKernel;
using vorlan::Forward;
using vorlan::RecordSearch;

// ---- Filter ---------------------------------------------------------------------------------

constexpr std::size_t kFilterText = 262'144;
constexpr std::size_t kBoundText = 16'384;
constexpr std::array kFilterUnits{2U, 10U, 50U, 100U};
/// The default.
constexpr int kLeastScore = 6;

enum class Look : std::uint8_t { kGlance, kClose };

/// Judges all starts of the text and times one of the two looks. Returns how many starts that look
/// has judged.
std::int64_t judge_all(benchmark::State& state, CandidateFilter& filter, std::ptrdiff_t starts,
                       Look timed) {
  std::int64_t judged = 0;
  const auto look_closely = [&](std::size_t least_doubts) {
    while (filter.doubts() >= least_doubts) {
      if (timed == Look::kGlance) {
        state.PauseTiming();
      } else {
        state.ResumeTiming();
        judged += std::min<std::int64_t>(static_cast<std::int64_t>(filter.doubts()),
                                         vorlan::kFilterStarts);
      }
      benchmark::DoNotOptimize(filter.look_closely().data());
      if (timed == Look::kGlance) {
        state.ResumeTiming();
      } else {
        state.PauseTiming();
      }
    }
  };
  constexpr auto kWords = static_cast<std::ptrdiff_t>(vorlan::kFilterWords);
  for (std::ptrdiff_t word = 0; word * vorlan::kBitsPerWord < starts; word += kWords) {
    std::array<std::uint64_t, vorlan::kFilterWords> candidates;
    candidates.fill(~std::uint64_t{0});
    filter.glance(word, candidates.data());
    if (timed == Look::kGlance) judged += vorlan::kFilterStarts;
    look_closely(vorlan::kFilterStarts);
  }
  look_closely(1);
  return judged;
}

void filter_kernel(benchmark::State& state, const FilterKernel& kernel, unsigned unit_length,
                   unsigned gc_of_256, Look timed) {
  const std::string residues = kernel_inputs::background(kFilterText, gc_of_256);
  const BitPlanes planes(residues.data(), residues.size(), CandidateFilter::margin(unit_length));
  // Whole blocks of starts, which all have a unit.
  const std::ptrdiff_t starts =
      static_cast<std::ptrdiff_t>(residues.size()) - vorlan::kFilterStarts;
  const int min_score = std::max(kLeastScore, static_cast<int>(unit_length));
  std::int64_t judged = 0;
  for ([[maybe_unused]] auto _ : state) {
    if (timed == Look::kClose) state.PauseTiming();
    CandidateFilter filter(planes, unit_length, min_score, starts, kernel);
    judged += judge_all(state, filter, starts, timed);
    if (timed == Look::kClose) state.ResumeTiming();
  }
  state.SetItemsProcessed(judged);
}

void wraparound_kernel(benchmark::State& state, const vorlan::WraparoundKernel& kernel,
                       std::ptrdiff_t unit_length) {
  const std::string residues = kernel_inputs::background(kBoundText, kernel_inputs::kHalf);
  const int min_score = std::max(kLeastScore, static_cast<int>(unit_length));
  vorlan::WraparoundBound bound(residues, {unit_length, unit_length}, min_score, 1, {&kernel, 1});
  std::vector<std::ptrdiff_t> starts(kernel.register_bytes);
  const std::ptrdiff_t last = static_cast<std::ptrdiff_t>(residues.size()) - unit_length;
  std::int64_t judged = 0;
  for ([[maybe_unused]] auto _ : state) {
    for (std::ptrdiff_t first = 0; first + std::ssize(starts) <= last;
         first += std::ssize(starts)) {
      std::iota(starts.begin(), starts.end(), first);
      benchmark::DoNotOptimize(bound.keep_survivors(starts));
      judged += std::ssize(starts);
    }
  }
  state.SetItemsProcessed(judged);
}

// ---- Decisions ------------------------------------------------------------------------------

constexpr std::size_t kArrayLength = 20'000;
constexpr std::string_view kUnit = "AT";
/// So far above the floor that all edits of the look-ahead are possible.
constexpr std::int64_t kHighScore = 100;
/// One edit above the floor of unit length 2.
constexpr std::int64_t kLowScore = 4;

/// An array and a candidate at its begin.
class ArrayCandidate {
 public:
  explicit ArrayCandidate(const Accelerations& engines)
      : residues_(kernel_inputs::diverged_array(kArrayLength)),
        record_(residues_, kUnit.size(), vorlan::SeedKind::kUnit, engines) {}

  RecordSearch& record() { return record_; }
  /// The first copy of the unit of the array.
  Csat& first() {
    const char* const unit = residues_.data() + residues_.find(kUnit);
    return spare_.candidate(unit, unit + kUnit.size());
  }

 private:
  std::string residues_;
  RecordSearch record_;
  vorlan::SpareSat spare_;
};

/// All places where an extension of the array that is never given up decides.
std::vector<vorlan::Front> decision_points(ArrayCandidate& array) {
  Csat& sat = array.first();
  vorlan::ExtensionSteps<Forward> steps(sat, array.record().end(), array.record());
  std::vector<vorlan::Front> fronts;
  vorlan::Front front = Forward::front(sat);
  vorlan::AlignmentTotals totals;
  while (steps.reach_decision(front, totals)) {
    fronts.push_back(front);
    steps.make(steps.decide(front, kHighScore, kHighScore), front, totals);
  }
  return fronts;
}

void decisions(benchmark::State& state, const Accelerations& engines,
               vorlan::ChooseFirstEdit* kernel, std::int64_t score) {
  ArrayCandidate array(engines);
  array.record().bit_memory().choose_first_edit = kernel;
  const std::vector<vorlan::Front> fronts = decision_points(array);
  vorlan::ExtensionSteps<Forward> steps(array.first(), array.record().end(), array.record());
  for ([[maybe_unused]] auto _ : state) {
    for (const vorlan::Front& front : fronts) {
      benchmark::DoNotOptimize(steps.decide(front, score, score));
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(fronts.size()));
}

Accelerations without_look_aheads() {
  Accelerations engines;
  engines.bit_look_ahead = false;
  engines.merged_look_ahead = false;
  return engines;
}

Accelerations only_merged_look_ahead() {
  Accelerations engines = without_look_aheads();
  engines.merged_look_ahead = true;
  return engines;
}

// ---- Extensions -----------------------------------------------------------------------------

/// Extends from the first start; `again`: where that was done before and has left its ways.
void extension(benchmark::State& state, const Accelerations& engines, bool again) {
  std::int64_t residues = 0;
  for ([[maybe_unused]] auto _ : state) {
    state.PauseTiming();
    ArrayCandidate array(engines);
    vorlan::PassedOver passed_over;
    const vorlan::Thresholds thresholds{kLeastScore, 0};
    if (again) {
      array.record().extend_and_accept(array.first(), thresholds, passed_over);
      passed_over = {};
    }
    Csat& sat = array.first();
    state.ResumeTiming();
    array.record().extend_and_accept(sat, thresholds, passed_over);
    residues += sat.pos_right - sat.pos_left;
  }
  state.SetItemsProcessed(residues);
}

// ---- Registration ---------------------------------------------------------------------------

template <class Kernel>
void add(const std::string& name, Kernel kernel) {
  benchmark::RegisterBenchmark(name.c_str(), std::move(kernel))->Unit(benchmark::kMillisecond);
}

void add_filter_kernels(const char* text, unsigned gc_of_256) {
  const std::vector<FilterKernel>& kernels = vorlan::runnable_filter_kernels();
  for (const unsigned unit_length : kFilterUnits) {
    for (std::size_t i = 0; i < kernels.size(); ++i) {
      const std::string label =
          std::string("/") + text + "/unit_" + std::to_string(unit_length) + "/" + kernels[i].name;
      for (const auto& [name, look] :
           {std::pair{"glance", Look::kGlance}, std::pair{"close_look", Look::kClose}}) {
        add(name + label,
            [kernel = kernels[i], unit_length, gc_of_256, look = look](benchmark::State& state) {
              filter_kernel(state, kernel, unit_length, gc_of_256, look);
            });
      }
    }
  }
}

void add_wraparound_kernels() {
  for (const unsigned unit_length : kFilterUnits) {
    for (const vorlan::WraparoundKernel& kernel : vorlan::runnable_wraparound_kernels()) {
      const std::string label = "wraparound/unit_" + std::to_string(unit_length) +
                                "/registers_of_" + std::to_string(kernel.register_bytes);
      add(label, [kernel, unit_length](benchmark::State& state) {
        wraparound_kernel(state, kernel, static_cast<std::ptrdiff_t>(unit_length));
      });
    }
  }
}

void add_decisions(const std::string& name, const Accelerations& engines,
                   vorlan::ChooseFirstEdit* kernel) {
  for (const auto& [label, score] :
       {std::pair{"/high_score", kHighScore}, std::pair{"/low_score", kLowScore}}) {
    add("look_ahead/" + name + label,
        [=, score = score](benchmark::State& state) { decisions(state, engines, kernel, score); });
  }
}

void add_all_decisions() {
  const std::vector<vorlan::PlaceSetsKernel>& kernels = vorlan::runnable_place_sets_kernels();
  add_decisions("plain", without_look_aheads(), kernels.back().choose);
  add_decisions("merged", only_merged_look_ahead(), kernels.back().choose);
  for (const vorlan::PlaceSetsKernel& kernel : kernels) {
    add_decisions(std::string("all_") + kernel.name, {}, kernel.choose);
  }
}

void add_extensions() {
  Accelerations no_ways;
  no_ways.shared_ways = false;
  add("extension/by_steps", [=](benchmark::State& state) { extension(state, no_ways, false); });
  add("extension/new_ways", [](benchmark::State& state) { extension(state, {}, false); });
  add("extension/stored_ways", [](benchmark::State& state) { extension(state, {}, true); });
}

}  // namespace

void add_engine_kernels() {
  add_filter_kernels("background", kernel_inputs::kHalf);
  add_filter_kernels("at_rich", kernel_inputs::kAtRich);
  add_wraparound_kernels();
  add_all_decisions();
  add_extensions();
}
