// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "monomers/array_text.h"

#include "convert/sequence_names.h"
#include "convert/text_append.h"

namespace vorlan_tools {

namespace {

constexpr std::int64_t kPerfect = 100000;  // 100 % in thousandths
constexpr std::int64_t kHighestScore = 1000;

/// `part` of `all` in thousandths of a per cent, rounded; 0 of nothing.
Thousandths per_cent(std::int64_t part, std::int64_t all) {
  return part == 0 ? 0 : (2 * part * kPerfect + all) / (2 * all);
}

/// Edits of all copies together.
Thousandths divergence(const Dissection& dissection) {
  std::int64_t edits = 0;
  std::int64_t columns = 0;
  for (const Monomer& monomer : dissection.monomers) {
    edits += monomer.edits();
    columns += monomer.columns();
  }
  return per_cent(edits, columns);
}

/// Places of the unit that the array reaches, as copies.
Thousandths copies_of(const Dissection& dissection) {
  std::int64_t places = 0;
  for (const Monomer& monomer : dissection.monomers) places += monomer.places;
  const auto unit = static_cast<std::int64_t>(dissection.consensus.size());
  return (2 * places * 1000 + unit) / (2 * unit);
}

void append_copy_name(RowText& text, const DissectedArray& array, std::size_t copy) {
  append_number(text, array.number);
  append_number(text += '.', static_cast<std::int64_t>(copy) + 1);
}

/// The columns from the score to the divergence. Nearly all copies are without an edit.
void append_likeness(RowText& text, const Monomer& monomer) {
  if (monomer.edits() == 0) {
    append_number(text += "\t1000\t.\t", monomer.end - monomer.start);
    append_number(text += '\t', monomer.places);
    text += "\t0\t0\t0\t0.000";
    return;
  }
  const Thousandths diverged = per_cent(monomer.edits(), monomer.columns());
  append_number(text += '\t', (kPerfect - diverged) * kHighestScore / kPerfect);
  append_number(text += "\t.\t", monomer.end - monomer.start);
  append_number(text += '\t', monomer.places);
  append_number(text += '\t', monomer.mismatches);
  append_number(text += '\t', monomer.insertions);
  append_number(text += '\t', monomer.deletions);
  append_thousandths(text += '\t', diverged);
}

void append_order(RowText& text, const HigherOrder& higher_order) {
  append_number(text, static_cast<std::int64_t>(higher_order.order));
}

}  // namespace

void append_monomer_rows(RowText& text, const DissectedArray& array) {
  require_bed_name(array.array.sequence);
  const Dissection& dissection = array.dissection;
  const std::size_t order = dissection.higher_order.order;
  for (std::size_t copy = 0; copy < dissection.monomers.size(); ++copy) {
    const Monomer& monomer = dissection.monomers[copy];
    text += array.array.sequence;
    append_number(text += '\t', array.array.start + monomer.start);
    append_number(text += '\t', array.array.start + monomer.end);
    append_copy_name(text += '\t', array, copy);
    append_likeness(text, monomer);
    if (order > 1) {
      append_number(text += '\t', static_cast<std::int64_t>(copy % order) + 1);
    } else {
      text += "\t.";
    }
    text += '\n';
  }
}

void append_monomer_records(RowText& text, const DissectedArray& array) {
  const std::vector<Monomer>& monomers = array.dissection.monomers;
  for (std::size_t copy = 0; copy < monomers.size(); ++copy) {
    const Monomer& monomer = monomers[copy];
    append_copy_name(text += '>', array, copy);
    (text += ' ') += array.array.sequence;
    append_number(text += ':', array.array.start + monomer.start + 1);
    append_number(text += '-', array.array.start + monomer.end);
    append_thousandths(text += " divergence=", per_cent(monomer.edits(), monomer.columns()));
    text += '\n';
    text += array.bases.substr(static_cast<std::size_t>(monomer.start),
                               static_cast<std::size_t>(monomer.end - monomer.start));
    text += '\n';
  }
}

void append_consensus_record(RowText& text, const DissectedArray& array) {
  const Dissection& dissection = array.dissection;
  append_number(text += '>', array.number);
  (text += ' ') += array.array.sequence;
  append_number(text += ':', array.array.start + 1);
  append_number(text += '-', array.array.end);
  append_number(text += " unit_length=", static_cast<std::int64_t>(dissection.consensus.size()));
  append_thousandths(text += " copies=", copies_of(dissection));
  append_thousandths(text += " divergence=", divergence(dissection));
  append_order(text += " order=", dissection.higher_order);
  ((text += '\n') += dissection.consensus) += '\n';
}

void append_consensus_head(RowText& text) {
  text +=
      "array\tsequence\tstart\tend\treported_unit_length\tunit_length\tcopies\tdivergence\torder\t"
      "order_difference\tunit\n";
}

void append_consensus_row(RowText& text, const DissectedArray& array) {
  const Dissection& dissection = array.dissection;
  append_number(text, array.number);
  (text += '\t') += tsv_name(array.array.sequence);
  append_number(text += '\t', array.array.start + 1);
  append_number(text += '\t', array.array.end);
  append_number(text += '\t', static_cast<std::int64_t>(array.array.unit.size()));
  append_number(text += '\t', static_cast<std::int64_t>(dissection.consensus.size()));
  append_thousandths(text += '\t', copies_of(dissection));
  append_thousandths(text += '\t', divergence(dissection));
  append_order(text += '\t', dissection.higher_order);
  append_thousandths(text += '\t',
                     per_cent(dissection.higher_order.differing, dissection.higher_order.places));
  ((text += '\t') += dissection.consensus) += '\n';
}

}  // namespace vorlan_tools
