// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "check/entry_text.h"

#include <array>
#include <string>
#include <string_view>

#include "convert/text_append.h"

namespace vorlan_tools {

namespace {

void append_padded(RowText& text, std::int64_t number, std::size_t width) {
  text.append_padded(number, width);
}

void append_padded_thousandths(RowText& text, Thousandths value, std::size_t width) {
  constexpr std::size_t kFraction = 4;
  if (value >= 0) {
    text.append_padded(value / 1000, width - kFraction);
    append_fraction(text, static_cast<unsigned>(value % 1000));
    return;
  }
  RowText shown;
  append_thousandths(shown, value);
  for (std::size_t size = shown.size(); size < width; ++size) text += ' ';
  text += shown.view();
}

void append_label(RowText& text, std::int64_t unit_length) {
  constexpr std::array<std::string_view, 7> kNames = {"",
                                                      "  mononucleotide",
                                                      "    dinucleotide",
                                                      "   trinucleotide",
                                                      " tetranucleotide",
                                                      " pentanucleotide",
                                                      "  hexanucleotide"};
  if (unit_length < static_cast<std::int64_t>(kNames.size())) {
    text += kNames[static_cast<std::size_t>(unit_length)];
  } else {
    append_padded(text, unit_length, 5);
    text += "-nucleotide";
  }
}

void append_own_entry(RowText& text, const Repeat& repeat, const Settings& settings) {
  append_label(text, repeat.unit_length);
  append_padded(text += ' ', repeat.start, 9);
  append_padded(text += " : ", repeat.end, 9);
  append_padded(text += " | ", repeat.bases, 6);
  append_padded(text += " bp | ", *repeat.length, 6);
  append_padded(text += " BP | ", *repeat.score, 6);
  append_padded_thousandths(text += " pt | ", repeat.perfection, 7);
  text += " % | ";
  if (settings.format == Format::kExtended) {
    append_padded(text, *repeat.mismatches, 3);
    append_padded(text += " mis | ", *repeat.insertions, 3);
    append_padded(text += " ins | ", *repeat.deletions, 3);
    text += " del | ";
    if (!settings.ns_as_missense) {
      append_padded(text, *repeat.ns, 3);
      text += " N | ";
    }
    text += ' ';
  }
  (text += "unit ") += repeat.unit;
}

/// The number of hundredths has been read as thousandths.
void append_hundredths(RowText& text, Thousandths value) {
  append_thousandths(text, value);
  text.drop(1);
}

void append_gff_row(RowText& text, const Repeat& repeat, const std::string& name) {
  (text += name) += "\tVorlan\ttandem-repeat\t";
  append_number(text, repeat.start);
  append_number(text += '\t', repeat.end);
  append_hundredths(text += '\t', *repeat.perfection_of_score);
  append_number(text += "\t.\t.\tName=\"repeat_region ", repeat.start);
  append_number(text += '-', repeat.end);
  append_number(text += " unit_size ", repeat.unit_length);
  append_thousandths(text += " repeat_number ", repeat.copies);
  append_thousandths(text += " perfection ", repeat.perfection);
  append_or_dot(text += " unit ", repeat.unit);
  text += '"';
}

void append_table_row(RowText& text, const Repeat& repeat, const Settings& settings,
                      const std::string& name) {
  append_number((text += name) += '\t', repeat.unit_length);
  append_thousandths(text += '\t', repeat.perfection);
  append_number(text += '\t', repeat.start);
  append_number(text += '\t', repeat.end);
  append_number(text += '\t', repeat.bases);
  append_padded_thousandths(text += '\t', repeat.copies, 7);
  append_number(text += '\t', *repeat.score);
  append_number(text += '\t', *repeat.mismatches);
  append_number(text += '\t', *repeat.insertions);
  append_number(text += '\t', *repeat.deletions);
  append_or_dot(text += '\t', settings.ns_as_missense ? std::nullopt : repeat.ns);
  ((text += '\t') += repeat.unit) += '\t';
  text += repeat.residues;
  if (settings.flanking != 0) (((text += '\t') += repeat.left_flank) += '\t') += repeat.right_flank;
}

void append_fasta_header(RowText& text, const Repeat& repeat, const std::string& name) {
  append_number(((text += '>') += name) += ' ', *repeat.offset);
  append_number(text += ' ', repeat.bases);
  append_number(text += ' ', repeat.unit_length);
  append_number(text += ' ', repeat.start);
  append_number(text += ' ', repeat.end);
  append_thousandths(text += ' ', repeat.copies);
  append_number(text += ' ', *repeat.score);
  append_thousandths(text += ' ', repeat.perfection);
  append_number(text += ' ', *repeat.mismatches);
  append_number(text += ' ', *repeat.insertions);
  append_number(text += ' ', *repeat.deletions);
}

}  // namespace

void append_entry_text(RowText& text, const Repeat& repeat, const Settings& settings,
                       const std::string& name) {
  switch (settings.format) {
    case Format::kPlain:
    case Format::kExtended:
      return append_own_entry(text, repeat, settings);
    case Format::kGff:
      return append_gff_row(text, repeat, name);
    case Format::kTable:
      return append_table_row(text, repeat, settings, name);
    case Format::kFasta:
      return append_fasta_header(text, repeat, name);
  }
}

}  // namespace vorlan_tools
