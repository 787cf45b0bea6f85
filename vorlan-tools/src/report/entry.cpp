// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "report/entry.h"

#include <array>

#include "report/field_cursor.h"

namespace vorlan_tools {

namespace {

constexpr std::array<std::string_view, 7> kUnitNames = {"",
                                                        "mononucleotide",
                                                        "dinucleotide",
                                                        "trinucleotide",
                                                        "tetranucleotide",
                                                        "pentanucleotide",
                                                        "hexanucleotide"};

/// No two names of units begin with the same two letters.
bool begins_alike(std::string_view text, std::string_view name) {
  return text.size() > 1 && text[0] == name[0] && text[1] == name[1];
}

/// "dinucleotide" or "12-nucleotide", with leading blanks.
FieldCursor& read_label(FieldCursor& fields, std::int64_t& unit_length) {
  fields.blanks();
  const std::string_view rest = fields.rest();
  if (!rest.empty() && rest[0] >= '0' && rest[0] <= '9')
    return fields.number(unit_length).literal("-nucleotide");
  for (std::size_t i = 1; i < kUnitNames.size(); ++i) {
    unit_length = static_cast<std::int64_t>(i);
    if (begins_alike(rest, kUnitNames[i])) break;
  }
  return fields.literal(kUnitNames[static_cast<std::size_t>(unit_length)]);
}

void compute_copies(Repeat& repeat) {
  repeat.copies =
      thousandths_of(static_cast<float>(*repeat.length) / static_cast<float>(repeat.unit_length));
}

void compute_length(Repeat& repeat) {
  repeat.length = repeat.bases - *repeat.insertions + *repeat.deletions;
}

/// Letters, and the '?' that stands for what has no complement.
bool is_unit(std::string_view text) {
  for (const char c : text) {
    if ((c < 'A' || c > 'Z') && c != '?') return false;
  }
  return !text.empty();
}

bool is_sane(const Repeat& repeat) {
  return repeat.unit_length > 0 && repeat.start > 0 && repeat.end >= repeat.start;
}

/// Splits LEFT:MIDDLE:RIGHT; without flanks all is the middle.
bool split_flanks(std::string_view line, const Settings& settings, std::string_view& left,
                  std::string_view& middle, std::string_view& right) {
  left = right = {};
  middle = line;
  if (settings.flanking == 0) return true;
  const std::size_t first = line.find(':');
  const std::size_t last = line.rfind(':');
  if (first == last) return false;
  left = line.substr(0, first);
  middle = line.substr(first + 1, last - first - 1);
  right = line.substr(last + 1);
  return middle.find(':') == std::string_view::npos;
}

/// The part of a match or unit line that lies below the repeat; what lies below the flanks must be
/// blank.
bool below_repeat(std::string_view line, const Settings& settings, const Repeat& repeat,
                  std::string_view& middle) {
  const std::size_t beside = settings.flanking == 0 ? 0 : 1;
  const std::size_t left = repeat.left_flank.size() + beside;
  const std::size_t right = repeat.right_flank.size() + beside;
  const std::size_t length = repeat.sequence_line.size();
  if (line.size() != left + length + right) return false;
  middle = line.substr(left, length);
  return line.substr(0, left).find_first_not_of(' ') == std::string_view::npos &&
         line.substr(left + length).find_first_not_of(' ') == std::string_view::npos;
}

/// Cuts `line` behind the tab that has `tabs` - 1 tabs to its right.
bool split_from_right(std::string_view line, int tabs, std::string_view& name,
                      std::string_view& columns) {
  std::size_t at = line.size();
  for (int i = 0; i < tabs; ++i) {
    if (at == 0) return false;
    at = line.rfind('\t', at - 1);
    if (at == std::string_view::npos) return false;
  }
  name = line.substr(0, at);
  columns = line.substr(at + 1);
  return true;
}

}  // namespace

bool read_own_entry(std::string_view line, const Settings& settings, Repeat& repeat) {
  FieldCursor fields(line);
  read_label(fields, repeat.unit_length)
      .literal(" ")
      .number(repeat.start)
      .literal(" : ")
      .number(repeat.end);
  fields.literal(" | ")
      .number(repeat.bases)
      .literal(" bp | ")
      .optional_number(repeat.length)
      .literal(" BP | ");
  fields.optional_number(repeat.score)
      .literal(" pt | ")
      .decimal(repeat.perfection)
      .literal(" % | ");
  if (settings.format == Format::kExtended) {
    fields.optional_number(repeat.mismatches).literal(" mis | ").optional_number(repeat.insertions);
    fields.literal(" ins | ").optional_number(repeat.deletions).literal(" del | ");
    if (!settings.ns_as_missense) fields.optional_number(repeat.ns).literal(" N | ");
    fields.literal(" ");
  }
  std::string_view unit;
  fields.literal("unit ").text_until_end(unit);
  if (!fields.ok() || !is_sane(repeat) || !is_unit(unit)) return false;
  repeat.unit = unit;
  compute_copies(repeat);
  return true;
}

bool read_events_line(std::string_view line, Repeat& repeat) {
  constexpr std::string_view kLabel = "Missense: ";
  if (line.substr(0, kLabel.size()) != kLabel) return false;
  repeat.events = line.substr(kLabel.size());
  return true;
}

bool read_gff_row(std::string_view line, Repeat& repeat, std::string_view& name) {
  constexpr int kTabsBehindName = 8;
  std::string_view columns;
  if (!split_from_right(line, kTabsBehindName, name, columns)) return false;
  FieldCursor fields(columns);
  fields.literal("Vorlan\ttandem-repeat\t")
      .number(repeat.start)
      .literal("\t")
      .number(repeat.end)
      .literal("\t");
  fields.decimal(repeat.perfection_of_score.emplace(), 2).literal("\t.\t.\tName=\"repeat_region ");
  std::int64_t start = 0;
  std::int64_t end = 0;
  fields.number(start).literal("-").number(end).literal(" unit_size ").number(repeat.unit_length);
  fields.literal(" repeat_number ")
      .decimal(repeat.copies)
      .literal(" perfection ")
      .decimal(repeat.perfection);
  std::string_view unit;
  fields.literal(" unit ").text_until('"', unit);
  if (!fields.at_end() || !is_sane(repeat) || start != repeat.start || end != repeat.end)
    return false;
  repeat.bases = repeat.end - repeat.start + 1;
  repeat.unit = unit == "." ? std::string_view() : unit;
  return unit == "." || is_unit(unit);
}

bool read_table_row(std::string_view line, const Settings& settings, Repeat& repeat,
                    std::string_view& name) {
  const int tabs_behind_name = settings.flanking == 0 ? 13 : 15;
  std::string_view columns;
  if (!split_from_right(line, tabs_behind_name, name, columns)) return false;
  FieldCursor fields(columns);
  fields.number(repeat.unit_length)
      .literal("\t")
      .decimal(repeat.perfection)
      .literal("\t")
      .number(repeat.start);
  fields.literal("\t")
      .number(repeat.end)
      .literal("\t")
      .number(repeat.bases)
      .literal("\t")
      .decimal(repeat.copies);
  fields.literal("\t")
      .optional_number(repeat.score)
      .literal("\t")
      .optional_number(repeat.mismatches);
  fields.literal("\t")
      .optional_number(repeat.insertions)
      .literal("\t")
      .optional_number(repeat.deletions);
  fields.literal("\t");
  if (settings.ns_as_missense) {
    fields.literal(".");
  } else {
    fields.optional_number(repeat.ns);
  }
  std::string_view unit;
  std::string_view residues;
  std::string_view left;
  std::string_view right;
  fields.literal("\t").text_until('\t', unit);
  if (settings.flanking == 0) {
    fields.text_until_end(residues);
  } else {
    fields.text_until('\t', residues).text_until('\t', left).text_until_end(right);
  }
  if (!fields.ok() || !is_sane(repeat) || !is_unit(unit)) return false;
  repeat.unit = unit;
  repeat.residues = residues;
  repeat.left_flank = left;
  repeat.right_flank = right;
  compute_length(repeat);
  return true;
}

bool read_fasta_header(std::string_view line, Repeat& repeat, std::string_view& name) {
  FieldCursor fields(line);
  fields.literal(">")
      .text_until(' ', name)
      .optional_number(repeat.offset)
      .literal(" ")
      .number(repeat.bases);
  fields.literal(" ")
      .number(repeat.unit_length)
      .literal(" ")
      .number(repeat.start)
      .literal(" ")
      .number(repeat.end);
  fields.literal(" ")
      .decimal(repeat.copies)
      .literal(" ")
      .optional_number(repeat.score)
      .literal(" ");
  fields.decimal(repeat.perfection).literal(" ").optional_number(repeat.mismatches).literal(" ");
  fields.optional_number(repeat.insertions).literal(" ").optional_number(repeat.deletions);
  if (!fields.at_end() || !is_sane(repeat)) return false;
  compute_length(repeat);
  return true;
}

bool read_fragment(std::string_view line, const Settings& settings, Repeat& repeat) {
  const std::int64_t left = *repeat.offset - 1;
  const std::int64_t right = static_cast<std::int64_t>(line.size()) - left - repeat.bases;
  if (left < 0 || right < 0 || repeat.bases < 0 || left > settings.flanking ||
      right > settings.flanking)
    return false;
  const auto left_size = static_cast<std::size_t>(left);
  const auto size = static_cast<std::size_t>(repeat.bases);
  repeat.left_flank = line.substr(0, left_size);
  repeat.residues = line.substr(left_size, size);
  repeat.right_flank = line.substr(left_size + size);
  return true;
}

bool read_bases_line(std::string_view line, const Settings& settings, Repeat& repeat) {
  std::string_view left;
  std::string_view middle;
  std::string_view right;
  if (!split_flanks(line, settings, left, middle, right)) return false;
  repeat.left_flank = left;
  repeat.residues = middle;
  repeat.right_flank = right;
  return true;
}

bool read_sequence_line(std::string_view line, const Settings& settings, Repeat& repeat) {
  std::string_view left;
  std::string_view middle;
  std::string_view right;
  if (!split_flanks(line, settings, left, middle, right) || middle.empty()) return false;
  repeat.left_flank = left;
  repeat.sequence_line = middle;
  repeat.right_flank = right;
  return true;
}

bool read_match_line(std::string_view line, const Settings& settings, Repeat& repeat) {
  std::string_view middle;
  if (!below_repeat(line, settings, repeat, middle)) return false;
  repeat.match_line = middle;
  return true;
}

bool read_unit_line(std::string_view line, const Settings& settings, Repeat& repeat) {
  std::string_view middle;
  if (!below_repeat(line, settings, repeat, middle)) return false;
  repeat.unit_line = middle;
  return true;
}

}  // namespace vorlan_tools
