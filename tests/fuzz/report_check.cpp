// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The check; see the header.

#include "report_check.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <stdexcept>

#include "description.h"
#include "normal_form.h"

namespace fuzz {
namespace {

using reference::Repeat;
using reference::Settings;

[[noreturn]] void fail(const std::string& reason) { throw std::runtime_error(reason); }

void require(bool holds, const std::string& reason) {
  if (!holds) fail(reason);
}

// A text made by a printf format.
template <class... Values>
std::string text_of(const char* format, Values... values) {
  const int size = std::snprintf(nullptr, 0, format, values...);
  std::string text(static_cast<std::size_t>(size) + 1, '\0');
  std::snprintf(text.data(), text.size(), format, values...);
  text.pop_back();
  return text;
}

// ---- Which repeats are reported ---------------------------------------------

// Each operation in single precision.
float percentage(long part, long whole) {
  return static_cast<float>(part) / static_cast<float>(whole) * 100.0F;
}

float perfection(long repeat_length, long edits, long num_Ns, int N_mode) {
  const long without_edits = repeat_length - edits;
  if (N_mode == 2) return percentage(without_edits, repeat_length);
  return percentage(without_edits - num_Ns, N_mode == 1 ? repeat_length - num_Ns : repeat_length);
}

reference::UnitForm unit_form(const Repeat& repeat, const ReportedRecord& record) {
  return reference::unit_normal_form(
      std::string_view(record.residues)
          .substr(repeat.unit_begin, repeat.unit_end - repeat.unit_begin),
      static_cast<reference::UnitMode>(record.unit_mode));
}

bool is_reported(const Repeat& repeat, const ReportedRecord& record) {
  const long edits = long{repeat.mismatches} + repeat.insertions + repeat.deletions;
  const long length =
      static_cast<long>(repeat.end - repeat.begin) - repeat.insertions + repeat.deletions;
  const float percent =
      perfection(length, edits, repeat.num_Ns, record.settings.N_and_perfection_mode);
  return record.settings.min_perfection <= percent && percent <= record.settings.max_perfection &&
         unit_form(repeat, record).primitive;
}

// ---- Reading ----------------------------------------------------------------

// Takes a text apart from its begin.
class Lines {
 public:
  explicit Lines(std::string_view text) : rest_(text) {}

  // The next line, without its end.
  std::string_view take() {
    const std::size_t end = rest_.find('\n');
    require(end != std::string_view::npos, "the report ends too early");
    const std::string_view line = rest_.substr(0, end);
    rest_.remove_prefix(end + 1);
    return line;
  }

  void expect(const std::string& text, const std::string& what) {
    require(rest_.substr(0, text.size()) == text,
            what + " must be\n" + text + "but the report goes on\n" + std::string(rest_));
    rest_.remove_prefix(text.size());
  }

  bool empty() const { return rest_.empty(); }

 private:
  std::string_view rest_;
};

struct Flanks {
  std::string_view left;
  std::string_view right;
};

Flanks flanks_of(long start, long end, const ReportedRecord& record) {
  const std::string_view residues = record.residues;
  const long left = std::min<long>(record.flanking, start - 1);
  const auto after = static_cast<std::size_t>(end);
  return {
      residues.substr(static_cast<std::size_t>(start - 1 - left), static_cast<std::size_t>(left)),
      residues.substr(after, static_cast<std::size_t>(record.flanking))};
}

// Sequence, match and unit line of a repeat, without its flanks.
using AlignmentLines = std::array<std::string_view, 3>;

AlignmentLines without_flanks(AlignmentLines lines, const Flanks& flanks, bool has_flanks) {
  require(lines[0].size() == lines[1].size() && lines[0].size() == lines[2].size(),
          "alignment lines of different lengths");
  if (!has_flanks) return lines;
  const std::string left_end = std::string(flanks.left).append(":");
  const std::string right_end = std::string(":").append(flanks.right);
  const std::size_t before = left_end.size();
  const std::size_t behind = right_end.size();
  require(lines[0].size() > before + behind, "an alignment of nothing but flanks");
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string left = i == 0 ? left_end : std::string(before, ' ');
    const std::string right = i == 0 ? right_end : std::string(behind, ' ');
    require(lines[i].substr(0, before) == left, "left flank is not " + left);
    require(lines[i].substr(lines[i].size() - behind) == right, "right flank is not " + right);
    lines[i] = lines[i].substr(before, lines[i].size() - before - behind);
  }
  return lines;
}

// What the columns of an alignment add up to.
struct Alignment {
  long matches = 0;
  std::string residues;
  std::string unrolled;  // the unit again and again
};

// 'M', 'I' or 'D' for an edit, '|' or '*'.
char kind_of_column(char base, char sign, char unit_base) {
  if (sign == ' ') {
    require(base != unit_base, "an edit where bases are equal");
    return base == '-' ? 'D' : unit_base == '-' ? 'I' : 'M';
  }
  require(base != '-' && unit_base != '-', "a match at a gap");
  require(sign == '*' ? base == 'N' : base == unit_base && base != 'N', "a match of other bases");
  require(sign == '*' || sign == '|', "an unknown sign between the lines");
  return sign;
}

Alignment read_alignment(const AlignmentLines& lines, ReportEntry& entry) {
  Alignment alignment;
  for (std::size_t i = 0; i < lines[0].size(); ++i) {
    const char kind = kind_of_column(lines[0][i], lines[1][i], lines[2][i]);
    if (kind == 'M' || kind == 'I' || kind == 'D') {
      entry.events += text_of("(%zu,%c),", alignment.residues.size() + 1, kind);
    }
    entry.mismatches += kind == 'M' ? 1 : 0;
    entry.insertions += kind == 'I' ? 1 : 0;
    entry.deletions += kind == 'D' ? 1 : 0;
    entry.num_Ns += kind == '*' ? 1 : 0;
    alignment.matches += kind == '|' ? 1 : 0;
    if (lines[0][i] != '-') alignment.residues += lines[0][i];
    if (lines[2][i] != '-') alignment.unrolled += lines[2][i];
  }
  return alignment;
}

// The unit goes round, and is the one of the list in some rotation.
void check_unrolled(const std::string& unrolled, std::string_view unit) {
  require(unrolled.size() >= unit.size(), "an alignment shorter than its unit");
  for (std::size_t i = unit.size(); i < unrolled.size(); ++i) {
    require(unrolled[i] == unrolled[i - unit.size()], "the unit line does not go round");
  }
  const std::string twice = std::string(unit) + std::string(unit);
  require(twice.find(unrolled.substr(0, unit.size())) != std::string::npos,
          "the unit line shows another unit");
}

void compute_numbers(ReportEntry& entry, const Alignment& alignment, const Settings& settings) {
  const long edits = entry.mismatches + entry.insertions + entry.deletions;
  entry.repeat_length = static_cast<long>(alignment.unrolled.size());
  // The first copy of the unit earns nothing.
  entry.score = alignment.matches - entry.unit_length +
                entry.mismatches * long{settings.mismatch_score} +
                (entry.insertions + entry.deletions) * long{settings.indel_score};
  entry.perfection =
      perfection(entry.repeat_length, edits, entry.num_Ns, settings.N_and_perfection_mode);
}

// The list and the report must mean the same repeat.
void check_against_list(const ReportEntry& entry, const Repeat& repeat) {
  const bool same = entry.score == repeat.score && entry.mismatches == repeat.mismatches &&
                    entry.insertions == repeat.insertions && entry.deletions == repeat.deletions &&
                    entry.num_Ns == repeat.num_Ns;
  require(same, "the alignment is not that of " + differential::describe(repeat));
}

// ---- Writing ----------------------------------------------------------------

std::string label(long unit_length, bool padded) {
  constexpr std::array kNames = {"mono", "di", "tri", "tetra", "penta", "hexa"};
  const auto index = static_cast<std::size_t>(unit_length - 1);
  if (index >= kNames.size())
    return text_of(padded ? "%5ld-nucleotide" : "%ld-nucleotide", unit_length);
  return text_of(padded ? "%16s" : "%s", (std::string(kNames[index]) + "nucleotide").c_str());
}

std::string name_of(const ReportedRecord& record) {
  return record.header.substr(0, record.header.find(' '));
}

std::string bases_of(const ReportEntry& entry, const ReportedRecord& record) {
  return record.residues.substr(static_cast<std::size_t>(entry.start - 1),
                                static_cast<std::size_t>(entry.end - entry.start + 1));
}

// In single precision, as a number of units.
double repeat_number(const ReportEntry& entry) {
  return static_cast<double>(static_cast<float>(entry.repeat_length) /
                             static_cast<float>(entry.unit_length));
}

double percent(const ReportEntry& entry) { return static_cast<double>(entry.perfection); }

std::string own_line(const ReportEntry& entry) {
  return label(entry.unit_length, true) +
         text_of(" %9ld : %9ld | %6ld bp | %6ld BP | %6ld pt | %7.3f %% | ", entry.start, entry.end,
                 entry.end - entry.start + 1, entry.repeat_length, entry.score, percent(entry));
}

std::string extended_lines(const ReportEntry& entry, const ReportedRecord& record) {
  const std::string Ns =
      record.settings.treat_Ns_as_missense ? "" : text_of("%3ld N | ", entry.num_Ns);
  return own_line(entry) +
         text_of("%3ld mis | %3ld ins | %3ld del | ", entry.mismatches, entry.insertions,
                 entry.deletions) +
         Ns + " unit " + entry.unit + "\nMissense: " + entry.events + "\n";
}

std::string gff_line(const ReportEntry& entry, const ReportedRecord& record) {
  return name_of(record) +
         text_of("\tVorlan\ttandem-repeat\t%ld\t%ld\t%.2f\t.\t.\tName=\"repeat_region %ld-%ld ",
                 entry.start, entry.end, percent(entry), entry.start, entry.end) +
         text_of("unit_size %ld repeat_number %.3f perfection %.3f unit %s\"\n", entry.unit_length,
                 repeat_number(entry), percent(entry),
                 entry.unit_length > 50 ? "." : entry.unit.c_str());
}

std::string table_line(const ReportEntry& entry, const ReportedRecord& record) {
  const Flanks flanks = flanks_of(entry.start, entry.end, record);
  std::string line = name_of(record);
  line += text_of("\t%ld\t%.3f\t%ld\t%ld\t%ld\t%7.3f\t%ld\t%ld\t%ld\t%ld", entry.unit_length,
                  percent(entry), entry.start, entry.end, entry.end - entry.start + 1,
                  repeat_number(entry), entry.score, entry.mismatches, entry.insertions,
                  entry.deletions);
  line += record.settings.treat_Ns_as_missense ? "\t." : text_of("\t%ld", entry.num_Ns);
  line += "\t" + entry.unit + "\t" + bases_of(entry, record);
  if (record.flanking != 0) {
    line.append("\t").append(flanks.left).append("\t").append(flanks.right);
  }
  return line + "\n";
}

std::string fasta_lines(const ReportEntry& entry, const ReportedRecord& record) {
  const Flanks flanks = flanks_of(entry.start, entry.end, record);
  const std::string numbers = text_of(
      " %zu %ld %ld %ld %ld %.3f %ld %.3f %ld %ld %ld\n", flanks.left.size() + 1,
      entry.end - entry.start + 1, entry.unit_length, entry.start, entry.end, repeat_number(entry),
      entry.score, percent(entry), entry.mismatches, entry.insertions, entry.deletions);
  std::string lines = ">";
  lines.append(name_of(record))
      .append(numbers)
      .append(flanks.left)
      .append(bases_of(entry, record))
      .append(flanks.right);
  return lines + "\n";
}

std::string old_line(const ReportEntry& entry) {
  return label(entry.unit_length, false) +
         text_of(" %ld : %ld -- length %ld score %ld perfection %d unit %s\n", entry.start,
                 entry.end, entry.repeat_length, entry.score,
                 static_cast<int>(percent(entry) + 0.5), entry.unit.c_str());
}

std::string sequence_display(const ReportEntry& entry, const ReportedRecord& record,
                             int sequence_mode) {
  if (sequence_mode == 0) return "";
  if (sequence_mode == 2) return entry.alignment;
  if (record.flanking == 0) return bases_of(entry, record) + "\n";
  const Flanks flanks = flanks_of(entry.start, entry.end, record);
  return std::string(flanks.left) + ":" + bases_of(entry, record) + ":" +
         std::string(flanks.right) + "\n";
}

std::string expected_entry(const ReportEntry& entry, const ReportedRecord& record,
                           const Layout& layout) {
  switch (layout.format) {
    case 2:
      return gff_line(entry, record);
    case 3:
      return table_line(entry, record);
    case 4:
      return fasta_lines(entry, record);
    default:
      break;
  }
  const std::string lines = layout.format == 0   ? own_line(entry) + "unit " + entry.unit + "\n"
                            : layout.format == 1 ? extended_lines(entry, record)
                                                 : old_line(entry);
  return lines + sequence_display(entry, record, layout.sequence_mode);
}

bool is_own_format(int format) { return format == 0 || format == 1 || format == 5; }

std::string opening(const ReportedRecord& record, int format) {
  if (is_own_format(format)) {
    return ">" + record.header + text_of("\nsequence length: %zu\n", record.residues.size());
  }
  if (format == 4 || !record.info_as_comment) return "";
  return "# Full sequence name:\n#>" + record.header + "\n##sequence-region " + name_of(record) +
         text_of(" 1 %zu\n", record.residues.size());
}

std::string closing(const ReportedRecord& record, int format) {
  if (!is_own_format(format) && (format == 4 || !record.info_as_comment)) return "";
  return "# Analysis of sequence \"" + (is_own_format(format) ? record.header : name_of(record)) +
         "\" completed.\n";
}

// Takes the entry of this repeat of the list.
ReportEntry read_entry(Lines& lines, const Repeat& repeat, const ReportedRecord& record) {
  Lines entry_lines = lines;
  lines.take();
  lines.take();
  const AlignmentLines shown = {lines.take(), lines.take(), lines.take()};

  ReportEntry entry;
  entry.start = static_cast<long>(repeat.begin) + 1;
  entry.end = static_cast<long>(repeat.end);
  entry.unit_length = static_cast<long>(repeat.unit_end - repeat.unit_begin);
  entry.unit = unit_form(repeat, record).text;
  const Alignment alignment = read_alignment(
      without_flanks(shown, flanks_of(entry.start, entry.end, record), record.flanking != 0),
      entry);
  require(alignment.residues == bases_of(entry, record), "the alignment shows other residues");
  check_unrolled(alignment.unrolled,
                 std::string_view(record.residues)
                     .substr(repeat.unit_begin, repeat.unit_end - repeat.unit_begin));
  compute_numbers(entry, alignment, record.settings);
  check_against_list(entry, repeat);
  for (const std::string_view line : shown) entry.alignment += std::string(line) + "\n";
  entry_lines.expect(extended_lines(entry, record), "the entry");
  return entry;
}

}  // namespace

std::vector<ReportEntry> read_extended_report(std::string_view report,
                                              const ReportedRecord& record) {
  std::vector<ReportEntry> entries;
  Lines lines(report);
  lines.expect(opening(record, 1), "the opening");
  for (const Repeat& repeat : record.repeats) {
    if (is_reported(repeat, record)) entries.push_back(read_entry(lines, repeat, record));
  }
  lines.expect(closing(record, 1), "the closing line");
  require(lines.empty(), "the report goes on behind its closing line");
  return entries;
}

std::string expected_report(const std::vector<ReportEntry>& entries, const ReportedRecord& record,
                            const Layout& layout) {
  std::string report = opening(record, layout.format);
  for (const ReportEntry& entry : entries) report += expected_entry(entry, record, layout);
  return report + closing(record, layout.format);
}

std::string expected_masked_record(const ReportedRecord& record) {
  constexpr std::size_t kResiduesPerLine = 80;
  std::string residues = record.residues;
  for (const Repeat& repeat : record.repeats) {
    for (std::size_t i = repeat.begin; i < repeat.end; ++i) residues[i] = 'X';
  }
  std::string text = ">" + record.header + "\n";
  for (std::size_t i = 0; i < residues.size(); ++i) {
    text += residues[i];
    if ((i + 1) % kResiduesPerLine == 0 || i + 1 == residues.size()) text += '\n';
  }
  return text;
}

}  // namespace fuzz
