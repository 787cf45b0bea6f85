// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// The stages of a run on their own: reader, exact search, imperfect search, report. Rates
// (items_per_second) are bases per second; for the report, bases of the repeats written. The
// engines within the imperfect search are in engine_kernels.cpp.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "config/settings.h"
#include "engine_kernels.h"
#include "input/cfile.h"
#include "input/csequence_mol.h"
#include "kernel_inputs.h"
#include "search/csearchcontroller.h"

namespace {

using kernel_inputs::background;
using kernel_inputs::diverged_array;
using kernel_inputs::fasta;
using kernel_inputs::kAtRich;
using kernel_inputs::kHalf;
using kernel_inputs::sequence_of;
using kernel_inputs::TemporaryFile;
using vorlan::CFile;
using vorlan::CSearchController;
using vorlan::CSequence_Mol;

std::string lower_case(std::string text) {
  for (char& ch : text) {
    if (ch >= 'A' && ch <= 'Z') ch = static_cast<char>(ch - 'A' + 'a');
  }
  return text;
}

// ---- Kernels --------------------------------------------------------------------------------

/// Residues of all records of a file; -1 when one is malformed.
std::int64_t read_all(const char* name, CSequence_Mol& sequence) {
  CFile file;
  file.open(name);
  std::int64_t residues = 0;
  while (!file.eof()) {
    sequence.readFastaSequence(file);
    if (file.fail() && !file.eof()) return -1;
    residues += sequence.residues.size;
  }
  return residues;
}

void read_fasta(benchmark::State& state, const std::string& text, std::int64_t expected_residues) {
  const TemporaryFile file(text);
  CSequence_Mol sequence(CSequence_Mol::kDna, 0);
  for ([[maybe_unused]] auto _ : state) {
    if (read_all(file.name(), sequence) != expected_residues) {
      state.SkipWithError("residues are missing");
      break;
    }
  }
  state.SetItemsProcessed(state.iterations() * expected_residues);
}

void exact_search(CSearchController& controller) { controller.exact_search_2(); }

void imperfect_search(CSearchController& controller) {
  controller.complete_imperfect_search(nullptr);
}

void search(benchmark::State& state, const std::string& residues, void (*run)(CSearchController&)) {
  const std::unique_ptr<CSequence_Mol> sequence = sequence_of(residues);
  std::size_t repeats = 0;
  for ([[maybe_unused]] auto _ : state) {
    CSearchController controller(1, *sequence);
    run(controller);
    repeats = controller.exact_sats.size() + controller.imperfect_sats.size();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(residues.size()));
  state.counters["repeats"] = static_cast<double>(repeats);
}

void report(benchmark::State& state, const std::string& residues) {
  const std::unique_ptr<CSequence_Mol> sequence = sequence_of(residues);
  CSearchController controller(1, *sequence);
  controller.complete_imperfect_search(nullptr);
  controller.remove_hidden(controller.imperfect_sats);
  controller.complete_events(controller.imperfect_sats);
  std::int64_t bases = 0;
  for (const vorlan::Csat* sat : controller.imperfect_sats) bases += sat->pos_right - sat->pos_left;

  std::FILE* nowhere = std::fopen("/dev/null", "wb");
  if (nowhere == nullptr) throw std::runtime_error("/dev/null could not be opened");
  for ([[maybe_unused]] auto _ : state) {
    controller.report_SATList(nowhere, controller.imperfect_sats);
  }
  std::fclose(nowhere);
  state.SetItemsProcessed(state.iterations() * bases);
  state.counters["repeats"] = static_cast<double>(controller.imperfect_sats.size());
}

// ---- Workloads ------------------------------------------------------------------------------

// Long enough that the start of a search does not show, short enough for several iterations of the
// slowest kernel.
constexpr std::size_t kTextLength = 8'000'000;
constexpr std::size_t kBackgroundLength = 1'000'000;
constexpr std::size_t kArrayLength = 20'000;
constexpr std::size_t kTinyRecord = 150;

template <class Kernel>
void add(const char* name, Kernel kernel) {
  benchmark::RegisterBenchmark(name, std::move(kernel))->Unit(benchmark::kMillisecond);
}

void add_reader() {
  const auto read = [](std::string (*edited)(std::string), std::size_t record_length) {
    return [=](benchmark::State& state) {
      const std::string residues = background(kTextLength, kHalf);
      read_fasta(state, edited(fasta(residues, record_length)), kTextLength);
    };
  };
  const auto as_it_is = [](std::string text) { return text; };
  add("read/upper_case", read(as_it_is, kTextLength));
  add("read/lower_case", read(lower_case, kTextLength));
  add("read/records_of_150", read(as_it_is, kTinyRecord));
}

void add_searches(const char* name, const std::string& residues) {
  const std::string label = name;
  add(("exact/" + label).c_str(),
      [=](benchmark::State& state) { search(state, residues, exact_search); });
  add(("imperfect/" + label).c_str(),
      [=](benchmark::State& state) { search(state, residues, imperfect_search); });
}

void add_report() {
  add("report/at_rich",
      [](benchmark::State& state) { report(state, background(kBackgroundLength, kAtRich)); });
  add("report/diverged_array",
      [](benchmark::State& state) { report(state, diverged_array(kArrayLength)); });
}

}  // namespace

int main(int argc, char** argv) {
  vorlan::init_param();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  add_reader();
  add_searches("background", background(kBackgroundLength, kHalf));
  add_searches("at_rich", background(kBackgroundLength, kAtRich));
  add_searches("diverged_array", diverged_array(kArrayLength));
  add_report();
  add_engine_kernels();
  // A filter that matches nothing must not pass for a result.
  const bool any = benchmark::RunSpecifiedBenchmarks() > 0;
  benchmark::Shutdown();
  return any ? 0 : 1;
}
