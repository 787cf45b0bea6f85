// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "stats/stats_table.h"

#include <charconv>

#include "convert/sequence_names.h"
#include "convert/text_append.h"
#include "stats/stats_json.h"

namespace vorlan_tools {

namespace {

using Number = std::optional<std::int64_t>;

void append_real(std::string& text, const std::optional<double>& value) {
  if (!value) {
    text += '.';
    return;
  }
  char digits[64];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, *value).ptr);
}

class Table {
 public:
  Table() {
    text_ =
        "genome\tlevel\tname\tbases\tns\trepeats\tperfect\tbases_in_repeats\tbases_in_perfect\t"
        "covered\tcovered_percent\tloci_per_mb\tbases_per_mb\tcopies\tlongest\tmismatches\t"
        "insertions\tdeletions\tedits_per_100_bases\n";
  }

  void begin_genome(const std::string& name, bool knows_edits) {
    genome_ = tsv_name(name);
    knows_edits_ = knows_edits;
  }

  /// A line of a genome or sequence, for which bases and coverage have a meaning.
  void append_place(const char* level, const std::string& name, const Tally& tally,
                    std::int64_t covered, const Number& bases, const Number& ns) {
    begin_line(level, name, bases, ns);
    append_counts(tally);
    append_number(text_ += '\t', covered);
    append_real(text_ += '\t', percent(covered, bases));
    append_real(text_ += '\t', per_million(tally.repeats, bases));
    append_real(text_ += '\t', per_million(covered, bases));
    end_line(tally);
  }

  void append_class(const char* level, const std::string& name, const Tally& tally) {
    begin_line(level, name, {}, {});
    append_counts(tally);
    text_ += "\t.\t.\t.\t.";
    end_line(tally);
  }

  void append_count(const char* level, const std::string& name, const Count& count) {
    begin_line(level, name, {}, {});
    append_number(text_ += '\t', count.repeats);
    append_number(text_ += "\t.\t", count.bases);
    text_ += "\t.\t.\t.\t.\t.\t.\t.\t.\t.\t.\t.\n";
  }

  std::string take() { return std::move(text_); }

 private:
  void begin_line(const char* level, const std::string& name, const Number& bases,
                  const Number& ns) {
    ((text_ += genome_) += '\t') += level;
    (text_ += '\t') += name;
    append_or_dot(text_ += '\t', bases);
    append_or_dot(text_ += '\t', ns);
  }

  void append_counts(const Tally& tally) {
    append_number(text_ += '\t', tally.repeats);
    append_number(text_ += '\t', tally.perfect);
    append_number(text_ += '\t', tally.bases);
    append_number(text_ += '\t', tally.perfect_bases);
  }

  void end_line(const Tally& tally) {
    append_thousandths(text_ += '\t', tally.copies);
    append_number(text_ += '\t', tally.longest);
    for (const std::int64_t edits : {tally.mismatches, tally.insertions, tally.deletions}) {
      append_or_dot(text_ += '\t', knows_edits_ ? Number(edits) : Number());
    }
    append_real(text_ += '\t', edits_per_100_bases(tally, knows_edits_));
    text_ += '\n';
  }

  std::string text_;
  std::string genome_;
  bool knows_edits_ = true;
};

void append_genome(Table& table, const GenomeStats& genome) {
  table.begin_genome(genome.name, genome.knows_edits);
  table.append_place("genome", ".", genome.tally, genome.covered, genome.bases(), genome.ns());
  for (const SequenceStats& sequence : genome.sequences) {
    table.append_place("sequence", tsv_name(sequence.name), sequence.tally, sequence.covered,
                       sequence.length, sequence.ns);
  }
  UnitLengthStats all;
  for (const auto& [length, stats] : genome.by_unit_length) {
    table.append_class("unit_length", std::to_string(length), stats.tally);
    all.add(stats);
  }
  for (const auto& [unit, tally] : genome.units.commonest(genome.units.size())) {
    table.append_class("unit", unit, tally);
  }
  if (genome.units.others().repeats > 0) {
    table.append_class("unit", "other", genome.units.others());
  }
  for (std::size_t i = 0; i < all.by_copies.size(); ++i) {
    if (all.by_copies[i].repeats > 0) {
      table.append_count("copies", copy_class_name(i), all.by_copies[i]);
    }
  }
  for (std::size_t i = 0; i < all.by_divergence.size(); ++i) {
    if (all.by_divergence[i].repeats > 0) {
      table.append_count("divergence", divergence_class_name(i), all.by_divergence[i]);
    }
  }
}

}  // namespace

std::string copy_class_name(std::size_t index) {
  const std::string begin = std::to_string(kCopyClasses[index]);
  if (index + 1 == kCopyClasses.size()) return begin + "-";
  const std::int64_t last = kCopyClasses[index + 1] - 1;
  return last == kCopyClasses[index] ? begin : begin + "-" + std::to_string(last);
}

std::string divergence_class_name(std::size_t index) {
  if (index == 0) return "0";
  const std::string begin = std::to_string(index - 1) + "-";
  return index + 1 == kDivergenceClasses ? begin : begin + std::to_string(index);
}

std::string stats_table(const std::vector<GenomeStats>& genomes) {
  Table table;
  for (const GenomeStats& genome : genomes) append_genome(table, genome);
  return table.take();
}

}  // namespace vorlan_tools
