// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include <iterator>
#include <optional>
#include <string>

#include "config/settings.h"
#include "output/alignment_display.h"
#include "output/bases.h"
#include "output/entry_text.h"
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

/// The numbers of an entry; those with a fraction are in single precision.
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
        perfection(repeat_perfection),
        repeat_number(static_cast<float>(repeat_length) / static_cast<float>(unit_length)),
        unit(std::move(unit_text)) {}

  const Csat& sat;
  const char* name;
  FlankedRepeat bases;
  int start;          // 1-based, inclusive
  int end;            // 1-based, inclusive
  int length;         // in the sequence ("bp")
  int repeat_length;  // in the perfect repeat ("BP")
  int unit_length;
  float perfection;     // per cent
  float repeat_number;  // units
  std::string unit;
};

void add_label(EntryText& text, const Entry& entry) {
  if (static_cast<std::size_t>(entry.unit_length) < std::size(REPEAT_NAMES)) {
    text.add_aligned(REPEAT_NAMES[entry.unit_length], 16);
  } else {
    text.add_number(entry.unit_length, 5).add("-nucleotide");
  }
}

void add_place_and_score(EntryText& text, const Entry& entry) {
  text.add(" ").add_number(entry.start, 9).add(" : ").add_number(entry.end, 9);
  text.add(" | ").add_number(entry.length, 6).add(" bp");
  text.add(" | ").add_number(entry.repeat_length, 6).add(" BP");
  text.add(" | ").add_number(entry.sat.score, 6).add(" pt");
  text.add(" | ").add_decimal(entry.perfection, 3, 7).add(" % |");
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
  EntryText text;
  add_label(text, entry);
  add_place_and_score(text, entry);
  text.add(" unit ").add(entry.unit).add("\n");
  text.write(stream);
  print_sequence_display(stream, entry);
}

void add_events(EntryText& text, const Csat& sat) {
  text.add("Missense: ");
  for (const auto& [position, kind] : sat.missense) {
    text.add("(").add_number(position - sat.pos_left + 1).add(",").add({&kind, 1}).add("),");
  }
  text.add("\n");
}

void print_extended(std::FILE* stream, const Entry& entry) {
  const Csat& sat = entry.sat;
  EntryText text;
  add_label(text, entry);
  add_place_and_score(text, entry);
  text.add(" ").add_number(sat.mismatches, 3).add(" mis");
  text.add(" | ").add_number(sat.insertions, 3).add(" ins");
  text.add(" | ").add_number(sat.deletions, 3).add(" del | ");
  if (!global_treat_Ns_as_missense) text.add_number(sat.num_Ns, 3).add(" N | ");
  // Together with the blank before, two blanks stand before "unit".
  text.add(" unit ").add(entry.unit).add("\n");
  add_events(text, sat);
  text.write(stream);
  print_sequence_display(stream, entry);
}

void print_gff(std::FILE* stream, const Entry& entry) {
  EntryText text;
  text.add(entry.name).add("\tVorlan\ttandem-repeat");
  text.add("\t").add_number(entry.start).add("\t").add_number(entry.end);
  text.add("\t").add_decimal(entry.perfection, 2).add("\t.\t.");
  text.add("\tName=\"repeat_region ").add_number(entry.start).add("-").add_number(entry.end);
  text.add(" unit_size ").add_number(entry.unit_length);
  text.add(" repeat_number ").add_decimal(entry.repeat_number, 3);
  text.add(" perfection ").add_decimal(entry.perfection, 3);
  text.add(" unit ").add(entry.unit_length > kLongestUnitInGff ? "." : entry.unit).add("\"\n");
  text.write(stream);
}

void print_one_per_line(std::FILE* stream, const Entry& entry) {
  const Csat& sat = entry.sat;
  EntryText text;
  text.add(entry.name).add("\t").add_number(entry.unit_length);
  text.add("\t").add_decimal(entry.perfection, 3);
  text.add("\t").add_number(entry.start).add("\t").add_number(entry.end);
  text.add("\t").add_number(entry.length);
  // The repeat number keeps its width although columns are separated by tabs.
  text.add("\t").add_decimal(entry.repeat_number, 3, 7);
  text.add("\t").add_number(sat.score).add("\t").add_number(sat.mismatches);
  text.add("\t").add_number(sat.insertions).add("\t").add_number(sat.deletions);
  if (global_treat_Ns_as_missense) {
    text.add("\t.");
  } else {
    text.add("\t").add_number(sat.num_Ns);
  }
  text.add("\t").add(entry.unit).add("\t");
  text.write(stream);
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
  EntryText text;
  text.add(">").add(entry.name);
  text.add(" ").add_number(entry.bases.left_flank.size() + 1);
  text.add(" ").add_number(entry.length).add(" ").add_number(entry.unit_length);
  text.add(" ").add_number(entry.start).add(" ").add_number(entry.end);
  text.add(" ").add_decimal(entry.repeat_number, 3).add(" ").add_number(sat.score);
  text.add(" ").add_decimal(entry.perfection, 3).add(" ").add_number(sat.mismatches);
  text.add(" ").add_number(sat.insertions).add(" ").add_number(sat.deletions).add("\n");
  text.write(stream);
  write_bases(stream, entry.bases.whole());
  std::fputc('\n', stream);
}

void print_old(std::FILE* stream, const Entry& entry) {
  // Perfections are never negative here, so this rounds to the nearest, halves up.
  const double perfection = static_cast<double>(entry.perfection);
  const int rounded = static_cast<int>(perfection + 0.5);  // NOLINT(bugprone-incorrect-roundings)
  EntryText text;
  text.add(entry.sat.get_repeat_name());
  text.add(" ").add_number(entry.start).add(" : ").add_number(entry.end);
  text.add(" -- length ").add_number(entry.repeat_length);
  text.add(" score ").add_number(entry.sat.score).add(" perfection ").add_number(rounded);
  text.add(" unit ").add(entry.unit).add("\n");
  text.write(stream);
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
