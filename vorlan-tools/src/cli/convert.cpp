// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "cli/convert.h"

#include <map>
#include <memory>
#include <string>

#include "cli/exit_status.h"
#include "cli/filter_options.h"
#include "cli/output_options.h"
#include "convert/conversion.h"
#include "errors.h"

namespace vorlan_tools {

namespace {

struct ConvertOptions {
  Conversion conversion;
  std::string target;
  std::string output_type;
  FilterOptions filter;
};

const std::map<std::string, Target> kTargets = {
    {"bed", Target::kBed}, {"gff3", Target::kGff3}, {"jsonl", Target::kJsonLines},
    {"sam", Target::kSam}, {"bam", Target::kBam},   {"paf", Target::kPaf},
    {"tsv", Target::kTsv},
};

/// BAM is compressed, whatever its name, unless asked not to be.
Compression compression_for(const ConvertOptions& options, Target target) {
  if (target == Target::kBam && options.output_type.empty()) return Compression::kBgzip;
  return compression_of(options.conversion.output, options.output_type);
}

int run_convert(const ConvertOptions& options) {
  Conversion conversion = options.conversion;
  conversion.target = kTargets.at(options.target);
  conversion.compression = compression_for(options, conversion.target);
  conversion.filter = filter_of(options.filter);
  convert(conversion);
  return kSuccess;
}

void add_writing_options(CLI::App& command, ConvertOptions& options) {
  Conversion& conversion = options.conversion;
  command.add_option("-t,--to", options.target, "Target: bed, gff3, jsonl, sam, bam, paf or tsv")
      ->required()
      ->check(CLI::IsMember(kTargets));
  add_output_options(command, conversion.output, options.output_type);
  command.get_option("--output-type")
      ->description(
          "z: compress with bgzip, u: do not (default: z for bam, and if the output ends in .gz, "
          ".bgz or .bgzf)");
  command.add_flag("--write-index", conversion.write_index,
                   "Write the index of a bam, or of a compressed bed or gff3, beside the output");
  command.add_flag("--sort", conversion.sort, "Order by name of sequence, then start, then end");
  command.add_flag("--cut-names", conversion.cut_names,
                   "End the names of sequences at their first tab, as samtools faidx does");
  command.add_option("--calibration", conversion.calibration,
                     "Add the share of false repeats, from a file of calibrate --json");
  add_thread_option(command, conversion.threads);
}

}  // namespace

void add_convert(CLI::App& app, Action& action) {
  const auto options = std::make_shared<ConvertOptions>();
  CLI::App* const command =
      app.add_subcommand("convert", "Write the repeats of a report for other programs");
  command
      ->add_option("report", options->conversion.report, "Report to convert; - is standard input")
      ->required();
  add_writing_options(*command, *options);
  add_filter_options(*command, options->filter);
  command->callback([&action, options] { action = [options] { return run_convert(*options); }; });
}

}  // namespace vorlan_tools
