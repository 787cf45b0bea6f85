// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "compare/compared_locus.h"

#include <algorithm>
#include <tuple>

#include "check/unit_forms.h"
#include "errors.h"

namespace vorlan_tools {

namespace {

void set_bases(const Repeat& repeat, std::string& bases) {
  if (!repeat.has_alignment()) {
    bases = repeat.residues;
    return;
  }
  bases = repeat.sequence_line;
  std::erase(bases, '-');
}

ComparedLocus to_locus(const ReportReader& report, std::size_t sequence, std::size_t flank) {
  const Repeat& repeat = report.repeat();
  if (repeat.unit.empty()) {
    throw LineError(report.name(), repeat.line,
                    "the repeat shows no unit, so that it cannot be compared.");
  }
  ComparedLocus locus;
  locus.sequence = sequence;
  locus.start = repeat.start - 1;
  locus.end = repeat.end;
  locus.copies = repeat.copies;
  locus.unit = report.settings().unit_mode == UnitMode::kReverseComplement
                   ? repeat.unit
                   : shown_unit(repeat.unit, UnitMode::kReverseComplement);
  set_bases(repeat, locus.bases);
  locus.left = repeat.left_flank.size() > flank
                   ? repeat.left_flank.substr(repeat.left_flank.size() - flank)
                   : repeat.left_flank;
  locus.right = repeat.right_flank.substr(0, flank);
  return locus;
}

}  // namespace

ComparedReport read_compared_report(const std::string& name, std::int64_t flank) {
  ReportReader reader(name);
  if (reader.settings().flanking < flank) {
    throw DataError(reader.name() + " shows flanks of " +
                    std::to_string(reader.settings().flanking) + " bases, but " +
                    std::to_string(flank) + " are asked for: run vorlan with -f " +
                    std::to_string(flank) + ".");
  }
  ComparedReport report;
  for (auto item = reader.next(); item != ReportReader::Item::kEnd; item = reader.next()) {
    if (item == ReportReader::Item::kSequence) {
      report.sequences.push_back({reader.sequence().name, reader.sequence().length});
    } else {
      report.loci.push_back(
          to_locus(reader, report.sequences.size() - 1, static_cast<std::size_t>(flank)));
    }
  }
  const auto is_before = [](const ComparedLocus& a, const ComparedLocus& b) {
    return std::tie(a.sequence, a.start, a.end, a.unit) <
           std::tie(b.sequence, b.start, b.end, b.unit);
  };
  if (!std::is_sorted(report.loci.begin(), report.loci.end(), is_before)) {
    std::stable_sort(report.loci.begin(), report.loci.end(), is_before);
  }
  return report;
}

}  // namespace vorlan_tools
