// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "stats/read_genomes.h"

#include <algorithm>
#include <unordered_set>

#include "errors.h"
#include "io/line_reader.h"
#include "io/rereadable_input.h"
#include "stats/collect.h"
#include "stats/stats_json.h"

namespace vorlan_tools {

namespace {

void require_sense(const GenomeInputs& request) {
  const std::size_t count = request.inputs.size();
  if (!request.fastas.empty() && request.fastas.size() != count) {
    throw UsageError("--genome must be given once for each report, or not at all.");
  }
  if (!request.names.empty() && request.names.size() != count) {
    throw UsageError("--name must be given once for each report, or not at all.");
  }
  std::vector<std::string> all = request.inputs;
  all.insert(all.end(), request.fastas.begin(), request.fastas.end());
  if (std::count(all.begin(), all.end(), "-") > 1) {
    throw UsageError("Only one input can be standard input.");
  }
}

bool is_json(const RereadableInput& input) {
  LineReader lines(input.open_again(), input.name());
  std::string_view first;
  return lines.peek(first) && !first.empty() && first[0] == '{';
}

std::string text_of(const RereadableInput& input) {
  LineReader lines(input.open_again(), input.name());
  std::string text;
  for (std::string_view line; lines.next(line);) (text += line) += '\n';
  return text;
}

/// The genomes of the n-th input.
std::vector<GenomeStats> read_input(const GenomeInputs& request, std::size_t n) {
  const RereadableInput input(request.inputs[n]);
  const GenomeRequest genome{request.fastas.empty() ? "" : request.fastas[n],
                             request.names.empty() ? "" : request.names[n]};
  std::vector<GenomeStats> genomes;
  if (!is_json(input)) {
    genomes.push_back(collect_stats(input, genome));
    return genomes;
  }
  if (!genome.fasta.empty()) {
    throw UsageError(input.name() + " is no report: nothing of its --genome would be read.");
  }
  genomes = genomes_from_json(text_of(input), input.name());
  if (genome.name.empty()) return genomes;
  for (GenomeStats& stats : genomes) stats.name = as_utf8(genome.name);
  return genomes;
}

void make_names_differ(std::vector<GenomeStats>& genomes) {
  std::unordered_set<std::string> used;
  for (GenomeStats& genome : genomes) {
    const std::string name = genome.name;
    for (int number = 2; !used.insert(genome.name).second; ++number) {
      genome.name = name + " (" + std::to_string(number) + ")";
    }
  }
}

}  // namespace

std::vector<GenomeStats> read_genomes(const GenomeInputs& request) {
  require_sense(request);
  std::vector<GenomeStats> genomes;
  for (std::size_t n = 0; n < request.inputs.size(); ++n) {
    for (GenomeStats& genome : read_input(request, n)) genomes.push_back(std::move(genome));
  }
  make_names_differ(genomes);
  return genomes;
}

}  // namespace vorlan_tools
