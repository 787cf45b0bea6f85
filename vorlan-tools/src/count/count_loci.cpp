// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "count/count_loci.h"

#include <algorithm>
#include <string_view>

#include "convert/sequence_names.h"
#include "convert/text_append.h"
#include "count/allele_words.h"
#include "count/flanks.h"
#include "count/locus.h"
#include "errors.h"
#include "fasta/fasta_reader.h"
#include "fasta/other_strand.h"
#include "io/compression_by_name.h"
#include "io/file_identity.h"
#include "io/output_file.h"
#include "io/rereadable_input.h"

namespace vorlan_tools {

namespace {

constexpr std::string_view kColumnNames =
    "locus\tfile\tsequence\tstart\tend\tstrand\tbases\tcount\tcopies\tother_bases\tflank_edits\t"
    "allele\n";

void check(const Counting& counting) {
  const auto inputs = std::count(counting.genomes.begin(), counting.genomes.end(), "-") +
                      (counting.loci == "-" ? 1 : 0);
  if (inputs > 1) throw UsageError("Only one of the files can be standard input.");
  refuse_input_as_output(counting.genomes, counting.output);
  refuse_input_as_output({counting.loci}, counting.output);
}

std::string_view slice(std::string_view text, std::int64_t start, std::int64_t end) {
  return text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
}

Flanks flanks_of(const Locus& locus, std::string_view residues, std::int64_t size) {
  const auto length = static_cast<std::int64_t>(residues.size());
  const std::int64_t left = std::max<std::int64_t>(0, locus.start - size);
  const std::int64_t right = std::min(length, locus.end + size);
  const bool is_enough =
      std::min(locus.start - left, right - locus.end) >= FlankFinder::kLeastFlank;
  if (!is_enough) return {};
  return {std::string(slice(residues, left, locus.start)),
          std::string(slice(residues, locus.end, right))};
}

/// The flanks of all loci on the reference.
std::vector<Flanks> read_flanks(const std::vector<Locus>& loci, FastaReader& reference,
                                const Counting& counting) {
  std::vector<Flanks> flanks(loci.size());
  std::vector<bool> is_found(loci.size());
  while (reference.next_header()) {
    bool is_read = false;
    for (std::size_t i = 0; i < loci.size(); ++i) {
      if (is_found[i] || loci[i].sequence != reference.sequence_name()) continue;
      if (!is_read) reference.read_residues();
      is_read = true;
      is_found[i] = true;
      if (loci[i].end > static_cast<std::int64_t>(reference.residues().size())) {
        throw LineError(counting.loci, loci[i].line,
                        "the locus ends behind the end of its sequence.");
      }
      flanks[i] = flanks_of(loci[i], reference.residues(), counting.flank);
    }
  }
  for (std::size_t i = 0; i < loci.size(); ++i) {
    if (is_found[i]) continue;
    throw LineError(counting.loci, loci[i].line,
                    reference.name() + " has no sequence " + quoted_name(loci[i].sequence) + ".");
  }
  return flanks;
}

class RowWriter {
 public:
  RowWriter(const std::vector<Locus>& loci, OutputFile& output)
      : loci_(loci), output_(output), is_seen_(loci.size()) {
    output_.write(kColumnNames);
  }

  void begin_file(const std::string& name) {
    file_ = tsv_name(name);
    is_seen_.assign(loci_.size(), false);
  }

  void write(const Bracket& bracket, std::string_view sequence, std::string_view residues) {
    const Locus& locus = loci_[bracket.locus];
    is_seen_[bracket.locus] = true;
    std::string allele(slice(residues, bracket.start, bracket.end));
    if (bracket.is_reverse) allele = other_strand(allele);
    const std::vector<AlleleWord> words = divide_allele(allele, locus.motifs);
    const auto bases = static_cast<std::int64_t>(allele.size());
    std::string text = tsv_name(locus.name) + '\t' + file_ + '\t' + tsv_name(sequence);
    append_number(text += '\t', bracket.start + 1);
    append_number(text += '\t', bracket.end);
    text += bracket.is_reverse ? "\t-" : "\t+";
    append_number(text += '\t', bases);
    append_or_dot(text += '\t', count_text(bases - locus.uncounted, locus.period()));
    append_number(text += '\t', motif_copies(words));
    append_number(text += '\t', other_bases(words));
    append_number(text += '\t', bracket.edits);
    append_or_dot(text += '\t', words_text(words));
    output_.write(text += '\n');
  }

  void end_file() {
    for (std::size_t i = 0; i < loci_.size(); ++i) {
      if (is_seen_[i]) continue;
      output_.write(tsv_name(loci_[i].name) + '\t' + file_ + "\t.\t.\t.\t.\t.\t.\t.\t.\t.\t.\n");
    }
  }

 private:
  const std::vector<Locus>& loci_;
  OutputFile& output_;
  std::string file_;
  std::vector<bool> is_seen_;
};

/// Where a locus is at home, its own coordinates hold, whatever the flanks say.
void put_home(std::vector<Bracket>& brackets, std::size_t number, const Locus& locus) {
  const auto overlaps = [&](const Bracket& bracket) {
    return bracket.locus == number && !bracket.is_reverse && bracket.start < locus.end &&
           locus.start < bracket.end;
  };
  brackets.erase(std::remove_if(brackets.begin(), brackets.end(), overlaps), brackets.end());
  const Bracket home{number, false, locus.start, locus.end, 0};
  const auto place = std::find_if(brackets.begin(), brackets.end(), [&](const Bracket& bracket) {
    return bracket.start > home.start || (bracket.start == home.start && bracket.locus > number);
  });
  brackets.insert(place, home);
}

void count_in(FastaReader& genome, const std::vector<Locus>& loci, const FlankFinder& finder,
              bool is_reference, RowWriter& rows) {
  std::vector<bool> was_home(loci.size());
  while (genome.next_header()) {
    genome.read_residues();
    std::vector<Bracket> brackets = finder.find(genome.residues());
    for (std::size_t i = 0; is_reference && i < loci.size(); ++i) {
      if (was_home[i] || loci[i].sequence != genome.sequence_name()) continue;
      was_home[i] = true;
      put_home(brackets, i, loci[i]);
    }
    for (const Bracket& bracket : brackets) {
      rows.write(bracket, genome.sequence_name(), genome.residues());
    }
  }
}

}  // namespace

void count_loci(const Counting& counting) {
  check(counting);
  const std::vector<Locus> loci = read_loci(counting.loci);
  const RereadableInput reference(counting.genomes.front());
  std::vector<Flanks> flanks;
  {
    FastaReader reader(reference.open_again(), reference.name());
    flanks = read_flanks(loci, reader, counting);
  }
  const FlankFinder finder(std::move(flanks), counting.longest);
  OutputFile output(counting.output, compression_by_name(counting.output));
  RowWriter rows(loci, output);
  for (std::size_t i = 0; i < counting.genomes.size(); ++i) {
    const bool is_reference = i == 0;
    rows.begin_file(counting.genomes[i]);
    FastaReader genome(
        is_reference ? reference.open_again() : RereadableInput(counting.genomes[i]).open_again(),
        counting.genomes[i]);
    count_in(genome, loci, finder, is_reference, rows);
    rows.end_file();
  }
  output.finish();
}

}  // namespace vorlan_tools
