// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "compare/comparison_rows.h"

#include "convert/sequence_names.h"
#include "convert/text_append.h"

namespace vorlan_tools {

namespace {

constexpr std::string_view kNothing = "\t.\t.\t.";
constexpr std::int64_t kThousand = 1000;

std::string_view word_of(PairStatus status) {
  switch (status) {
    case PairStatus::kChanged:
      return "changed";
    case PairStatus::kUnclear:
      return "unclear";
    default:
      return "same";
  }
}

/// In thousandths of a copy, rounded away from 0 at a half.
Thousandths as_copies(std::int64_t bases, const ComparedLocus& locus) {
  const auto unit = static_cast<std::int64_t>(locus.unit.size());
  const std::int64_t half = bases < 0 ? -unit : unit;
  return (2 * bases * kThousand + half) / (2 * unit);
}

void append_place(std::string& text, const ComparedReport& report, const ComparedLocus& locus) {
  text += '\t' + tsv_name(report.sequences[locus.sequence].name);
  append_number(text += '\t', locus.start + 1);
  append_number(text += '\t', locus.end);
}

}  // namespace

void append_comparison_head(std::string& text) {
  text +=
      "status\tunit\tsequence\tstart\tend\tother_sequence\tother_start\tother_end\tstrand\tbases\t"
      "other_bases\tdifference\tcopies\tother_copies\tcopies_difference\n";
}

void append_pair_row(std::string& text, const ComparedReport& first, const ComparedReport& second,
                     const LocusPair& pair, const ComparedPair& compared) {
  const ComparedLocus& one = first.loci[pair.first];
  const ComparedLocus& other = second.loci[pair.second];
  text += word_of(compared.status);
  text += '\t' + one.unit;
  append_place(text, first, one);
  append_place(text, second, other);
  text += pair.is_reverse ? "\t-" : "\t+";
  append_number(text += '\t', one.length());
  append_number(text += '\t', other.length());
  append_number(text += '\t', compared.difference);
  append_thousandths(text += '\t', one.copies);
  append_thousandths(text += '\t', other.copies);
  append_thousandths(text += '\t', as_copies(compared.difference, one));
  text += '\n';
}

void append_first_row(std::string& text, const ComparedReport& first, const ComparedLocus& locus,
                      LocusFate fate) {
  text += fate == LocusFate::kReread ? "reread" : "lost";
  text += '\t' + locus.unit;
  append_place(text, first, locus);
  text += kNothing;
  append_number(text += "\t.\t", locus.length());
  append_thousandths(text += "\t.\t.\t", locus.copies);
  text += "\t.\t.\n";
}

void append_second_row(std::string& text, const ComparedReport& second, const ComparedLocus& locus,
                       LocusFate fate) {
  text += fate == LocusFate::kReread ? "reread" : "new";
  text += '\t' + locus.unit;
  text += kNothing;
  append_place(text, second, locus);
  append_number(text += "\t.\t.\t", locus.length());
  append_thousandths(text += "\t.\t.\t", locus.copies);
  text += "\t.\n";
}

void append_vcf_head(std::string& text, const ComparedReport& first) {
  text += "##fileformat=VCFv4.3\n##source=vorlan-tools\n";
  for (const ComparedSequence& sequence : first.sequences) {
    require_sam_name(sequence.name);
    text += "##contig=<ID=" + sequence.name;
    if (sequence.length) append_number(text += ",length=", *sequence.length);
    text += ">\n";
  }
  text +=
      "##INFO=<ID=RU,Number=1,Type=String,Description=\"Unit as the report shows it\">\n"
      "##INFO=<ID=BASES,Number=1,Type=Integer,Description=\"Bases more or less\">\n"
      "##INFO=<ID=COPIES,Number=1,Type=Float,Description=\"Copies more or less\">\n"
      "##INFO=<ID=OTHER,Number=1,Type=String,Description=\"Place in the other assembly\">\n"
      "##INFO=<ID=TURNED,Number=0,Type=Flag,Description=\"On the other strand there\">\n"
      "#CHROM\tPOS\tID\tREF\tALT\tQUAL\tFILTER\tINFO\n";
}

void append_vcf_row(std::string& text, const ComparedReport& first, const ComparedReport& second,
                    const LocusPair& pair, const ComparedPair& compared) {
  const ComparedLocus& one = first.loci[pair.first];
  const ComparedLocus& other = second.loci[pair.second];
  const std::string allele = second_allele(other, pair);
  if (one.bases.empty() || allele == one.bases) return;
  // The base before, where there is one, is part of both alleles.
  const std::string before =
      one.left.empty() ? std::string() : one.left.substr(one.left.size() - 1);
  if (before.empty() && allele.empty()) return;
  text += first.sequences[one.sequence].name;
  append_number(text += '\t', one.start + 1 - static_cast<std::int64_t>(before.size()));
  text += "\t.\t" + before + one.bases + '\t' + before + allele;
  text += "\t.\t.\tRU=" + one.unit;
  append_number(text += ";BASES=", compared.difference);
  append_thousandths(text += ";COPIES=", as_copies(compared.difference, one));
  text += ";OTHER=" + gff3_name(second.sequences[other.sequence].name);
  append_number(text += ':', other.start + 1);
  append_number(text += '-', other.end);
  if (pair.is_reverse) text += ";TURNED";
  text += '\n';
}

}  // namespace vorlan_tools
