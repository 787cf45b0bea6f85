// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/alignment_strings.h"
#include "convert/motif.h"
#include "convert/row_format.h"
#include "convert/sequence_names.h"
#include "convert/text_append.h"

namespace vorlan_tools {

namespace {

/// Terms of the Sequence Ontology, by unit length: monomeric_repeat is SO:0001934, microsatellite
/// (units of 2 to 10 bases) SO:0000289, minisatellite (10 to 40) SO:0000643, tandem_repeat
/// SO:0000705.
std::string_view type_of(std::int64_t unit_length) {
  if (unit_length == 1) return "monomeric_repeat";
  if (unit_length <= 10) return "microsatellite";
  return unit_length <= 40 ? "minisatellite" : "tandem_repeat";
}

/// All regions stand before the rows, since tabix knows no directives among them.
void append_region(RowText& text, const ListedSequence& sequence) {
  if (sequence.length == 0) return;
  ((text += "##sequence-region ") += gff3_name(sequence.name)) += " 1 ";
  append_number(text, sequence.length);
  text += '\n';
}

class Gff3Rows : public RowFormat {
 public:
  bool needs_sequences() const override { return true; }

  void append_head(RowText& text, const Head& head,
                   const std::vector<ListedSequence>& sequences) override {
    text += "##gff-version 3\n#!processor vorlan ";
    append_gff3_value(text, head.version);
    text += '\n';
    for (const ListedSequence& sequence : sequences) append_region(text, sequence);
  }

  void begin_sequence(const Sequence& /*sequence*/, std::string_view name) override {
    name_ = gff3_name(name);
  }

  void append_repeat(RowText& text, const Repeat& repeat) override {
    find_motif(repeat, motif_);
    ((text += name_) += "\tvorlan\t") += type_of(repeat.unit_length);
    append_number(text += '\t', repeat.start);
    append_number(text += '\t', repeat.end);
    append_or_dot(text += '\t', repeat.score);
    append_number(text += "\t.\t.\tID=repeat", ++count_);
    append_name(text, repeat);
    append_number(text += ";unit_length=", repeat.unit_length);
    if (!repeat.unit.empty()) append_gff3_value(text += ";unit=", repeat.unit);
    if (!motif_.empty()) (text += ";motif=") += motif_;
    append_thousandths(text += ";copies=", repeat.copies);
    append_thousandths(text += ";perfection=", repeat.perfection);
    append_count(text, ";mismatches=", repeat.mismatches);
    append_count(text, ";insertions=", repeat.insertions);
    append_count(text, ";deletions=", repeat.deletions);
    append_count(text, ";ns=", repeat.ns);
    append_alignment(text, repeat);
    text += '\n';
  }

 private:
  std::string_view shown_unit(const Repeat& repeat) const {
    return motif_.empty() ? repeat.unit : motif_;
  }

  void append_name(RowText& text, const Repeat& repeat) {
    if (shown_unit(repeat).empty()) return;
    append_gff3_value(text += ";Name=(", shown_unit(repeat));
    text += ")n";
  }

  static void append_count(RowText& text, std::string_view label,
                           const std::optional<std::int64_t>& count) {
    if (count) append_number(text += label, *count);
  }

  /// The target is the perfect repeat. Gap counts insertions in the target, so that a deletion of
  /// the report is an I there.
  void append_alignment(RowText& text, const Repeat& repeat) {
    if (!repeat.has_alignment() || motif_.empty()) return;
    const AlignmentCounts counts = count_operations(repeat);
    ((text += ";Target=(") += motif_) += ")n 1 ";
    append_number(text, counts.query_length());
    if (counts.inserted + counts.deleted > 0) append_gap(text += ";Gap=", repeat);
  }

  std::string name_;
  std::string motif_;
  std::int64_t count_ = 0;
};

}  // namespace

std::unique_ptr<RowFormat> gff3_rows() { return std::make_unique<Gff3Rows>(); }

}  // namespace vorlan_tools
