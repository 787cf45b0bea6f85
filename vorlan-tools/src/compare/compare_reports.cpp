// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "compare/compare_reports.h"

#include <algorithm>
#include <iostream>

#include "compare/comparison_rows.h"
#include "compare/reread_loci.h"
#include "errors.h"
#include "io/compression_by_name.h"
#include "io/file_identity.h"
#include "io/output_file.h"

namespace vorlan_tools {

namespace {

void check(const Comparison& comparison) {
  if (comparison.first == "-" && comparison.second == "-") {
    throw UsageError("Only one of the reports can be standard input.");
  }
  if (comparison.is_vcf && comparison.flank == 0) {
    throw UsageError(
        "--vcf needs --flank: by position, alleles of two assemblies have no borders.");
  }
  refuse_input_as_output({comparison.first, comparison.second}, comparison.output);
}

struct Tally {
  std::int64_t same = 0;
  std::int64_t changed = 0;
  std::int64_t unclear = 0;
  std::int64_t reread = 0;
  std::int64_t lost = 0;
  std::int64_t added = 0;

  void count(PairStatus status) {
    ++(status == PairStatus::kSame ? same : status == PairStatus::kChanged ? changed : unclear);
  }
};

/// Writes rows while it counts.
class Writer {
 public:
  Writer(const Comparison& comparison, const ComparedReport& first, const ComparedReport& second,
         OutputFile& output)
      : comparison_(comparison), first_(first), second_(second), output_(output) {
    if (comparison.is_vcf) {
      append_vcf_head(text_, first);
    } else {
      append_comparison_head(text_);
    }
    flush();
  }

  void write(const Pairing& pairing) {
    auto pair = pairing.pairs.begin();
    for (std::size_t i = 0; i < first_.loci.size(); ++i) {
      if (pairing.first_fates[i] == LocusFate::kPaired) {
        write_pair(*pair++);
      } else {
        ++(pairing.first_fates[i] == LocusFate::kReread ? tally_.reread : tally_.lost);
        if (!comparison_.is_vcf) {
          append_first_row(text_, first_, first_.loci[i], pairing.first_fates[i]);
        }
      }
      flush();
    }
    for (std::size_t j = 0; j < second_.loci.size(); ++j) {
      if (pairing.second_fates[j] == LocusFate::kPaired) continue;
      ++(pairing.second_fates[j] == LocusFate::kReread ? tally_.reread : tally_.added);
      if (!comparison_.is_vcf) {
        append_second_row(text_, second_, second_.loci[j], pairing.second_fates[j]);
      }
      flush();
    }
  }

  const Tally& tally() const { return tally_; }

 private:
  void write_pair(const LocusPair& pair) {
    const ComparedPair compared =
        compare_pair(first_.loci[pair.first], second_.loci[pair.second], pair);
    tally_.count(compared.status);
    if (comparison_.is_vcf) {
      if (compared.status == PairStatus::kChanged) {
        append_vcf_row(text_, first_, second_, pair, compared);
      }
    } else if (comparison_.shows_same || compared.status != PairStatus::kSame) {
      append_pair_row(text_, first_, second_, pair, compared);
    }
  }

  void flush() {
    output_.write(text_);
    text_.clear();
  }

  const Comparison& comparison_;
  const ComparedReport& first_;
  const ComparedReport& second_;
  OutputFile& output_;
  std::string text_;
  Tally tally_;
};

/// A VCF has the bases of both alleles.
void require_bases(const ComparedReport& report, const std::string& name) {
  const bool has_bases =
      std::all_of(report.loci.begin(), report.loci.end(),
                  [](const ComparedLocus& locus) { return !locus.bases.empty(); });
  if (!has_bases) {
    throw DataError(name + " does not show the bases of repeats, which a VCF needs.");
  }
}

}  // namespace

void compare_reports(const Comparison& comparison) {
  check(comparison);
  const ComparedReport first = read_compared_report(comparison.first, comparison.flank);
  const ComparedReport second = read_compared_report(comparison.second, comparison.flank);
  if (comparison.is_vcf) {
    require_bases(first, comparison.first);
    require_bases(second, comparison.second);
  }
  Pairing pairing = comparison.flank == 0 ? pair_by_position(first, second)
                                          : pair_by_flanks(first, second, comparison.flank);
  if (comparison.flank > 0) mark_reread_loci(first, second, pairing);
  OutputFile output(comparison.output, compression_by_name(comparison.output));
  Writer writer(comparison, first, second, output);
  writer.write(pairing);
  output.finish();
  const Tally& tally = writer.tally();
  std::cerr << "same " << tally.same << ", changed " << tally.changed << ", lost " << tally.lost
            << ", new " << tally.added << ", unclear " << tally.unclear << ", reread "
            << tally.reread << '\n';
}

}  // namespace vorlan_tools
