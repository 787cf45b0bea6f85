// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "catalog/locus.h"

#include "convert/sequence_names.h"
#include "convert/text_append.h"

namespace vorlan_tools {

namespace {

std::int64_t period_of(const Locus& locus) { return static_cast<std::int64_t>(locus.motif.size()); }

/// Sequence, start and end of a table, from 0 or from 1.
void append_place(std::string& text, std::string_view name, const Locus& locus,
                  bool counts_from_one) {
  text += name;
  append_number(text += '\t', locus.start + (counts_from_one ? 1 : 0));
  append_number(text += '\t', locus.end);
}

/// Differs for all loci of a catalogue, if the names of sequences do.
void append_id(std::string& text, std::string_view name, const Locus& locus) {
  text += name;
  append_number(text += '_', locus.start);
  append_number(text += '_', locus.end);
  (text += '_') += locus.motif;
}

void append_trgt(std::string& text, std::string_view name, const Locus& locus) {
  append_place(text, name, locus, false);
  append_id(text += "\tID=", name, locus);
  ((text += ";MOTIFS=") += locus.motif) += ";STRUC=<TR>\n";
}

void append_hipstr(std::string& text, std::string_view name, const Locus& locus) {
  append_place(text, name, locus, true);
  append_number(text += '\t', period_of(locus));
  const std::int64_t thousandths =
      (locus.length() * 1000 + period_of(locus) / 2) / period_of(locus);
  append_thousandths(text += '\t', thousandths);
  append_id(text += '\t', name, locus);
  text += '\n';
}

void append_gangstr(std::string& text, std::string_view name, const Locus& locus) {
  append_place(text, name, locus, true);
  append_number(text += '\t', period_of(locus));
  ((text += '\t') += locus.motif) += '\n';
}

void append_expansion_hunter(std::string& text, std::string_view name, const Locus& locus) {
  std::string id;
  append_id(id, name, locus);
  std::string region(name);
  append_number(region += ':', locus.start);
  append_number(region += '-', locus.end);
  append_json_string(text += "  {\n    \"LocusId\": ", id);
  ((text += ",\n    \"LocusStructure\": \"(") += locus.motif) += ")*\"";
  append_json_string(text += ",\n    \"ReferenceRegion\": ", region);
  text += ",\n    \"VariantType\": \"Repeat\"\n  }";
}

void append_longtr(std::string& text, std::string_view name, const Locus& locus) {
  append_place(text, name, locus, true);
  (text += '\t') += locus.motif;
  append_id(text += '\t', name, locus);
  text += '\n';
}

void append_atarva(std::string& text, std::string_view name, const Locus& locus) {
  append_place(text, name, locus, false);
  (text += '\t') += locus.motif;
  append_number(text += '\t', period_of(locus));
  append_id(text += '\t', name, locus);
  text += '\n';
}

void append_straglr(std::string& text, std::string_view name, const Locus& locus) {
  append_place(text, name, locus, false);
  ((text += '\t') += locus.motif) += '\n';
}

}  // namespace

void append_locus(std::string& text, Genotyper genotyper, std::string_view name,
                  const Locus& locus) {
  switch (genotyper) {
    case Genotyper::kTrgt:
      return append_trgt(text, name, locus);
    case Genotyper::kHipStr:
      return append_hipstr(text, name, locus);
    case Genotyper::kGangStr:
      return append_gangstr(text, name, locus);
    case Genotyper::kExpansionHunter:
      return append_expansion_hunter(text, name, locus);
    case Genotyper::kLongTr:
      return append_longtr(text, name, locus);
    case Genotyper::kAtarva:
      return append_atarva(text, name, locus);
    case Genotyper::kStraglr:
      return append_straglr(text, name, locus);
  }
}

std::string_view catalog_opening(Genotyper genotyper) {
  return genotyper == Genotyper::kExpansionHunter ? "[\n" : "";
}

std::string_view catalog_separator(Genotyper genotyper) {
  return genotyper == Genotyper::kExpansionHunter ? ",\n" : "";
}

std::string_view catalog_ending(Genotyper genotyper) {
  return genotyper == Genotyper::kExpansionHunter ? "\n]\n" : "";
}

}  // namespace vorlan_tools
