// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include <iterator>
#include <optional>
#include <string>

#include "config/settings.h"
#include "output/alignment_display.h"
#include "output/bases.h"
#include "output/repeat_unit.h"
#include "output/report.h"
#include "search/csat.h"

namespace vorlan {
namespace {

/// Indexed by unit length. No repeat has unit length 0.
constexpr const char* REPEAT_NAMES[] = {"***  ERROR  ***", "mononucleotide",  "dinucleotide",
                                        "trinucleotide",   "tetranucleotide", "pentanucleotide",
                                        "hexanucleotide"};

/// GFF attributes do not show units longer than this, in bases.
constexpr int kLongestUnitInGff = 50;

/// The numbers of an entry, as they are printed.
struct Entry {
  Entry(const Csat& repeat, CSequence_Mol& molecule, float repeat_perfection, std::string unit_text)
      : sat(repeat),
        name(molecule.name.terminate()),
        bases(repeat, molecule),
        start(static_cast<int>(repeat.pos_left - molecule.residues.buf) + 1),
        end(static_cast<int>(repeat.pos_right - molecule.residues.buf)),
        length(end - start + 1),
        repeat_length(repeat.repeat_length()),
        unit_length(static_cast<int>(repeat.unit_length())),
        perfection(static_cast<double>(repeat_perfection)),
        repeat_number(static_cast<double>(static_cast<float>(repeat_length) /
                                          static_cast<float>(unit_length))),
        unit(std::move(unit_text)) {}

  const Csat& sat;
  const char* name;
  FlankedRepeat bases;
  int start;          // 1-based, inclusive
  int end;            // 1-based, inclusive
  int length;         // in the sequence ("bp")
  int repeat_length;  // in the perfect repeat ("BP")
  int unit_length;
  double perfection;     // per cent
  double repeat_number;  // units
  std::string unit;
};

void print_label(std::FILE* stream, const Entry& entry) {
  if (static_cast<std::size_t>(entry.unit_length) < std::size(REPEAT_NAMES)) {
    std::fprintf(stream, "%16s", REPEAT_NAMES[entry.unit_length]);
  } else {
    std::fprintf(stream, "%5d-nucleotide", entry.unit_length);
  }
}

void print_place_and_score(std::FILE* stream, const Entry& entry) {
  std::fprintf(stream, " %9d : %9d | %6d bp | %6d BP | %6d pt | %7.3f %% |", entry.start, entry.end,
               entry.length, entry.repeat_length, entry.sat.score, entry.perfection);
}

void print_sequence_display(std::FILE* stream, const Entry& entry) {
  if (global_print_sat_seq_mode == kSequence) {
    if (global_flanking == 0) {
      write_bases(stream, entry.bases.repeat);
    } else {
      write_bases(stream, entry.bases.left_flank);
      std::fputc(':', stream);
      write_bases(stream, entry.bases.repeat);
      std::fputc(':', stream);
      write_bases(stream, entry.bases.right_flank);
    }
    std::fputc('\n', stream);
  } else if (global_print_sat_seq_mode == kAlignment) {
    const AlignmentDisplay display(entry.sat, entry.bases);
    for (const faststring* line :
         {&display.sequence_line, &display.match_line, &display.unit_line}) {
      write_bases(stream, line->view());
      std::fputc('\n', stream);
    }
  }
}

void print_vorlan(std::FILE* stream, const Entry& entry) {
  print_label(stream, entry);
  print_place_and_score(stream, entry);
  std::fprintf(stream, " unit %s\n", entry.unit.c_str());
  print_sequence_display(stream, entry);
}

void print_events(std::FILE* stream, const Csat& sat) {
  std::fputs("Missense: ", stream);
  for (const auto& [position, kind] : sat.missense) {
    std::fprintf(stream, "(%d,%c),", static_cast<int>(position - sat.pos_left) + 1, kind);
  }
  std::fputc('\n', stream);
}

void print_extended(std::FILE* stream, const Entry& entry) {
  const Csat& sat = entry.sat;
  print_label(stream, entry);
  print_place_and_score(stream, entry);
  std::fprintf(stream, " %3u mis | %3u ins | %3u del | ", sat.mismatches, sat.insertions,
               sat.deletions);
  if (!global_treat_Ns_as_missense) std::fprintf(stream, "%3u N | ", sat.num_Ns);
  // Together with the blank before, two blanks stand before "unit".
  std::fprintf(stream, " unit %s\n", entry.unit.c_str());
  print_events(stream, sat);
  print_sequence_display(stream, entry);
}

void print_gff(std::FILE* stream, const Entry& entry) {
  std::fprintf(stream,
               "%s\tVorlan\ttandem-repeat\t%d\t%d\t%.2f\t.\t.\tName=\"repeat_region %d-%d "
               "unit_size %d repeat_number %.3f perfection %.3f unit %s\"\n",
               entry.name, entry.start, entry.end, entry.perfection, entry.start, entry.end,
               entry.unit_length, entry.repeat_number, entry.perfection,
               entry.unit_length > kLongestUnitInGff ? "." : entry.unit.c_str());
}

void print_one_per_line(std::FILE* stream, const Entry& entry) {
  const Csat& sat = entry.sat;
  // The repeat number keeps its width although columns are separated by tabs.
  std::fprintf(stream, "%s\t%d\t%.3f\t%d\t%d\t%d\t%7.3f\t%d\t%u\t%u\t%u", entry.name,
               entry.unit_length, entry.perfection, entry.start, entry.end, entry.length,
               entry.repeat_number, sat.score, sat.mismatches, sat.insertions, sat.deletions);
  if (global_treat_Ns_as_missense) {
    std::fputs("\t.", stream);
  } else {
    std::fprintf(stream, "\t%u", sat.num_Ns);
  }
  std::fprintf(stream, "\t%s\t", entry.unit.c_str());
  write_bases(stream, entry.bases.repeat);
  if (global_flanking != 0) {
    std::fputc('\t', stream);
    write_bases(stream, entry.bases.left_flank);
    std::fputc('\t', stream);
    write_bases(stream, entry.bases.right_flank);
  }
  std::fputc('\n', stream);
}

void print_fasta(std::FILE* stream, const Entry& entry) {
  const Csat& sat = entry.sat;
  const auto offset = entry.bases.left_flank.size() + 1;
  std::fprintf(stream, ">%s %zu %d %d %d %d %.3f %d %.3f %u %u %u\n", entry.name, offset,
               entry.length, entry.unit_length, entry.start, entry.end, entry.repeat_number,
               sat.score, entry.perfection, sat.mismatches, sat.insertions, sat.deletions);
  write_bases(stream, entry.bases.whole());
  std::fputc('\n', stream);
}

void print_old(std::FILE* stream, const Entry& entry) {
  // Perfections are never negative here, so this rounds to the nearest, halves up.
  const int rounded =
      static_cast<int>(entry.perfection + 0.5);  // NOLINT(bugprone-incorrect-roundings)
  std::fprintf(stream, "%s %d : %d -- length %d score %d perfection %d unit %s\n",
               entry.sat.get_repeat_name(), entry.start, entry.end, entry.repeat_length,
               entry.sat.score, rounded, entry.unit.c_str());
  std::fflush(stream);
  print_sequence_display(stream, entry);
}

void print_entry(std::FILE* stream, const Entry& entry) {
  switch (global_print_sat_mode) {
    case kFormatVorlan:
      return print_vorlan(stream, entry);
    case kFormatExtended:
      return print_extended(stream, entry);
    case kFormatGff:
      return print_gff(stream, entry);
    case kFormatOnePerLine:
      return print_one_per_line(stream, entry);
    case kFormatFasta:
      return print_fasta(stream, entry);
    case kFormatOld:
      return print_old(stream, entry);
    default:
      std::fputs("Internal error. Unknown output format. Please report this bug", stream);
  }
}

}  // namespace

const char* Csat::get_repeat_name() const {
  static char long_unit_name[30];
  const std::uint32_t length = unit_length();
  if (length < std::size(REPEAT_NAMES)) return REPEAT_NAMES[length];
  std::snprintf(long_unit_name, sizeof long_unit_name, "%u-nucleotide", length);
  return long_unit_name;
}

void Csat::report_sat(std::FILE* stream, CSequence_Mol& sequence) const {
  const float percent = perfection();
  if (global_min_perfection > percent || percent > global_max_perfection) return;
  std::optional<std::string> unit =
      reported_unit({unit_begin, static_cast<std::size_t>(unit_end - unit_begin)});
  if (!unit) return;
  print_entry(stream, Entry(*this, sequence, percent, std::move(*unit)));
}

}  // namespace vorlan
