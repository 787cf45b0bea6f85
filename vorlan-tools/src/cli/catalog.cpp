// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/catalog.h"

#include <CLI/CLI.hpp>
#include <map>
#include <memory>
#include <string>

#include "catalog/catalog.h"
#include "cli/exit_status.h"
#include "cli/filter_options.h"
#include "cli/output_options.h"

namespace vorlan_tools {

namespace {

struct CatalogOptions {
  CatalogRequest request;
  std::string target;
  std::string output_type;
  std::string overlaps = "best";
  FilterOptions filter;
};

const std::map<std::string, Genotyper> kGenotypers = {
    {"trgt", Genotyper::kTrgt},       {"hipstr", Genotyper::kHipStr},
    {"gangstr", Genotyper::kGangStr}, {"eh", Genotyper::kExpansionHunter},
    {"longtr", Genotyper::kLongTr},   {"atarva", Genotyper::kAtarva},
    {"straglr", Genotyper::kStraglr},
};

const std::map<std::string, OverlapPolicy> kPolicies = {
    {"best", OverlapPolicy::kBest}, {"all", OverlapPolicy::kAll}, {"drop", OverlapPolicy::kDrop}};

void add_catalog_options(CLI::App& command, CatalogOptions& options) {
  CatalogRequest& request = options.request;
  command
      .add_option("-t,--to", options.target,
                  "Genotyper: trgt, hipstr, gangstr, eh (ExpansionHunter), longtr, atarva or "
                  "straglr")
      ->required()
      ->check(CLI::IsMember(kGenotypers));
  command.add_option("-g,--genome", request.fasta, "FASTA file that the report was made from")
      ->required();
  add_output_options(command, request.output, options.output_type);
  command.add_flag("--write-index", request.write_index,
                   "Write the tabix index of a compressed table beside the output");
  command.add_option("--rejected", request.rejected,
                     "Table of the repeats that are dropped, with the reason");
  command.add_flag("--cut-names", request.cut_names,
                   "End the names of sequences at their first tab, as samtools faidx does");
}

void add_locus_options(CLI::App& command, CatalogOptions& options) {
  CatalogRequest& request = options.request;
  command
      .add_option("--overlaps", options.overlaps,
                  "Of loci that overlap: keep the best (default), all, or drop them all")
      ->check(CLI::IsMember(kPolicies));
  command
      .add_option("--min-gap", request.min_gap,
                  "Loci with fewer bases than this between them count as overlapping")
      ->check(CLI::Range(0, 1000000000));
  command
      .add_option(
          "--flank", request.flank,
          "Bases from a locus to an end of its sequence (default: what the genotyper needs)")
      ->check(CLI::Range(0, 1000000000));
  command.add_option("--max-period", request.max_period, "Longest unit")
      ->check(CLI::Range(1, 1000000000));
  command
      .add_option("--max-length", request.max_length,
                  "Longest locus in bases (default: what the genotyper takes)")
      ->check(CLI::Range(1, 1000000000));
  command.add_flag("--trim-to-units", request.trims_to_units,
                   "End each locus with a whole unit (always so for gangstr)");
}

int run_catalog(const CatalogOptions& options) {
  CatalogRequest request = options.request;
  request.genotyper = kGenotypers.at(options.target);
  request.overlaps = kPolicies.at(options.overlaps);
  request.filter = filter_of(options.filter);
  request.compression = compression_of(request.output, options.output_type);
  make_catalog(request);
  return kSuccess;
}

}  // namespace

void add_catalog(CLI::App& app, Action& action) {
  const auto options = std::make_shared<CatalogOptions>();
  CLI::App* const command =
      app.add_subcommand("catalog", "Write the repeats of a report as loci for a genotyper");
  command->add_option("report", options->request.report, "Report to read; - is standard input")
      ->required();
  add_catalog_options(*command, *options);
  add_locus_options(*command, *options);
  add_filter_options(*command, options->filter);
  command->callback([&action, options] { action = [options] { return run_catalog(*options); }; });
}

}  // namespace vorlan_tools
