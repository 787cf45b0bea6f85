// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "fasta/matching_records.h"

#include "convert/sequence_names.h"
#include "errors.h"

namespace vorlan_tools {

namespace {

/// Whether `aligned`, a line of an alignment, shows `bases`.
bool shows(std::string_view aligned, std::string_view bases) {
  std::size_t at = 0;
  for (const char base : aligned) {
    if (base == '-') continue;
    if (at == bases.size() || bases[at] != base) return false;
    ++at;
  }
  return at == bases.size();
}

}  // namespace

MatchingRecords::MatchingRecords(const std::string& fasta, const Settings& settings)
    : fasta_(fasta), has_record_(fasta_.next_header()) {
  while (has_record_ && fasta_.number() < settings.first_sequence)
    has_record_ = fasta_.next_header();
}

void MatchingRecords::find(const Sequence& sequence) {
  while (has_record_ && (is_used_ || fasta_.sequence_name() != sequence.name)) {
    has_record_ = fasta_.next_header();
    is_used_ = false;
  }
  if (!has_record_) {
    throw DataError(fasta_.name() + " has no sequence " + quoted_name(sequence.name) +
                    " in the place where the report has it.");
  }
  is_used_ = true;
  fasta_.read_residues();
  const auto length = static_cast<std::int64_t>(residues().size());
  if (sequence.length && *sequence.length != length) {
    throw DataError("The sequence " + quoted_name(sequence.name) + " has " +
                    std::to_string(*sequence.length) + " bases in the report, but " +
                    std::to_string(length) + " in " + fasta_.name() + ".");
  }
}

std::string_view MatchingRecords::bases_of(const Repeat& repeat) const {
  const bool is_inside = repeat.start >= 1 && repeat.end >= repeat.start &&
                         repeat.end <= static_cast<std::int64_t>(residues().size());
  const std::string_view bases =
      is_inside ? std::string_view(residues())
                      .substr(static_cast<std::size_t>(repeat.start - 1),
                              static_cast<std::size_t>(repeat.end - repeat.start + 1))
                : std::string_view();
  const bool fits = is_inside && (!repeat.has_alignment() || shows(repeat.sequence_line, bases)) &&
                    (repeat.residues.empty() || shows(repeat.residues, bases));
  if (!fits) {
    throw DataError("The repeat " + std::to_string(repeat.start) + "-" +
                    std::to_string(repeat.end) + " of the sequence " +
                    quoted_name(fasta_.sequence_name()) + " is not what " + fasta_.name() +
                    " has there: the report was made from another file.");
  }
  return bases;
}

}  // namespace vorlan_tools
