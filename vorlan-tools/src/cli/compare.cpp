// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/compare.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "cli/exit_status.h"
#include "compare/compare_reports.h"

namespace vorlan_tools {

void add_compare(CLI::App& app, Action& action) {
  constexpr int kShortestFlank = 10;
  constexpr int kLongestFlank = 1000;
  const auto comparison = std::make_shared<Comparison>();
  CLI::App* const command = app.add_subcommand("compare", "Tell which loci of two reports differ");
  command->add_option("first", comparison->first, "Report; - is standard input")->required();
  command->add_option("second", comparison->second, "Report to compare with it")->required();
  command
      ->add_option("--flank", comparison->flank,
                   "Find loci by so many bases beside them (default: by position)")
      ->check(CLI::Range(kShortestFlank, kLongestFlank));
  command->add_flag("--all", comparison->shows_same, "Write loci that are the same, too");
  command->add_flag("--vcf", comparison->is_vcf, "Write changed loci as a VCF");
  command->add_option("-o,--output", comparison->output,
                      "File to write; - is standard output (default)");
  command->callback([&action, comparison] {
    action = [comparison] {
      compare_reports(*comparison);
      return kSuccess;
    };
  });
}

}  // namespace vorlan_tools
