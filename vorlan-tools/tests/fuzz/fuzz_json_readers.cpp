// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Any bytes as a file of `stats --json` and of `calibrate --json`. Reading may end in a DataError
// and in nothing else; what has been read is written in every form, and as JSON it is read again to
// the same text.

#include <string>
#include <vector>

#include "calibrate/calibration_json.h"
#include "errors.h"
#include "fuzz_target.h"
#include "page/page.h"
#include "stats/multiqc.h"
#include "stats/stats_json.h"
#include "stats/stats_table.h"

namespace {

using vorlan_tools::Calibration;
using vorlan_tools::Detail;
using vorlan_tools::GenomeStats;

void require_same(const std::string& text, const std::string& again, const char* what) {
  if (text != again) fuzz::report_fault(std::string(what) + ": " + text + "\nagain: " + again);
}

void try_stats(const std::string& text) {
  const std::vector<GenomeStats> genomes = vorlan_tools::genomes_from_json(text, "x");
  const std::string written = to_json(genomes, Detail::kAll).dump();
  const std::vector<GenomeStats> again = vorlan_tools::genomes_from_json(written, "x");
  require_same(written, to_json(again, Detail::kAll).dump(), "stats");
  vorlan_tools::stats_table(genomes);
  vorlan_tools::multiqc_files(genomes);
  vorlan_tools::page_text(genomes, {});
}

void try_calibration(const std::string& text) {
  const Calibration calibration = vorlan_tools::calibration_from_json(text, "x");
  const std::string written = to_json(calibration).dump();
  const Calibration again = vorlan_tools::calibration_from_json(written, "x");
  require_same(written, to_json(again).dump(), "calibration");
  vorlan_tools::calibration_table(calibration);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  for (const auto& try_one : {try_stats, try_calibration}) {
    try {
      try_one(text);
    } catch (const vorlan_tools::DataError&) {
      continue;
    }
  }
  return 0;
}
