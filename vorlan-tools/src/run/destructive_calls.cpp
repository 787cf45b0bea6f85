// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/destructive_calls.h"

#include <filesystem>
#include <string_view>

#include "errors.h"
#include "io/file_identity.h"
#include "io/line_reader.h"

namespace vorlan_tools {

namespace {

constexpr std::string_view kBeginningOfReport = "# Results computed with:";

/// Whether the file holds FASTA and is no report: comment and blank lines may come before the first
/// header. What cannot be read is none.
bool is_fasta(const std::string& name) try {
  if (!std::filesystem::is_regular_file(name)) return false;
  LineReader lines(name);
  for (std::string_view line; lines.next(line);) {
    if (line.starts_with(kBeginningOfReport)) return false;
    const std::size_t first = line.find_first_not_of(" \t\v\f\r");
    if (first == std::string_view::npos || line[first] == '#') continue;
    return line[first] == '>';
  }
  return false;
} catch (const DataError&) {
  return false;
}

void refuse_if_input(const std::string& output, const char* role,
                     const std::vector<RunFiles>& runs) {
  for (const RunFiles& run : runs) {
    const bool is_input = is_same_file(run.input, output) || (output != "-" && output == run.input);
    if (!is_input) continue;
    const std::string name = output == "-" ? "standard output" : output;
    throw UsageError("The " + std::string(role) + " " + name + " is the same file as the input " +
                     (run.input == "-" ? "on standard input" : run.input) + ".");
  }
}

/// Also for files that do not exist yet, which have no identity: their folder has.
bool lead_to_one_file(const std::string& one, const std::string& other) {
  if (one == "-" || other == "-") return false;
  const auto resolved = [](const std::string& name) {
    std::error_code error;
    return std::filesystem::weakly_canonical(std::filesystem::absolute(name), error);
  };
  return resolved(one) == resolved(other) || is_same_file(one, other);
}

void refuse_shared_output(const std::string& one, const std::string& other) {
  if (!lead_to_one_file(one, other)) return;
  throw UsageError("Two outputs would be the same file: " + one + " and " + other + ".");
}

void refuse_shared_outputs(const std::vector<RunFiles>& runs) {
  std::vector<std::string> outputs;
  for (const RunFiles& run : runs) {
    for (const std::string& output : {run.report, run.masked}) {
      if (output.empty()) continue;
      for (const std::string& earlier : outputs) refuse_shared_output(earlier, output);
      outputs.push_back(output);
    }
  }
}

}  // namespace

void refuse_destructive_calls(const std::vector<RunFiles>& runs) {
  for (const RunFiles& run : runs) {
    refuse_if_input(run.report, "report", runs);
    if (!run.masked.empty()) refuse_if_input(run.masked, "masked file", runs);
    if (run.report != "-" && is_fasta(run.report)) {
      throw UsageError("The report " + run.report +
                       " exists and is a FASTA file: remove it first if it is not needed.");
    }
  }
  refuse_shared_outputs(runs);
}

}  // namespace vorlan_tools
