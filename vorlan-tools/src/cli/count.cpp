// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/count.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "cli/exit_status.h"
#include "count/count_loci.h"
#include "count/flanks.h"

namespace vorlan_tools {

void add_count(CLI::App& app, Action& action) {
  constexpr int kLongestFlank = 1000;
  constexpr int kLongestAllele = 1000000;
  const auto counting = std::make_shared<Counting>();
  CLI::App* const command =
      app.add_subcommand("count", "Count the copies of motifs at loci of one or several genomes");
  command->add_option("-l,--loci", counting->loci, "BED file of loci; - is standard input")
      ->required();
  command
      ->add_option("-g,--genome", counting->genomes,
                   "FASTA files; the loci are places of the first one")
      ->required();
  command->add_option("-o,--output", counting->output,
                      "File to write; - is standard output (default)");
  command
      ->add_option("--flank", counting->flank,
                   "Bases on each side that tell a locus in other sequences (default 50)")
      ->check(CLI::Range(static_cast<int>(FlankFinder::kLeastFlank), kLongestFlank));
  command
      ->add_option("--max-length", counting->longest,
                   "Longest allele to look for, in bases (default 10000)")
      ->check(CLI::Range(1, kLongestAllele));
  command->callback([&action, counting] {
    action = [counting] {
      count_loci(*counting);
      return kSuccess;
    };
  });
}

}  // namespace vorlan_tools
