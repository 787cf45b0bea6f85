// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "stats/genome_records.h"

#include <algorithm>
#include <charconv>

#include "errors.h"
#include "io/open_input.h"

namespace vorlan_tools {

namespace {

/// A line of an index has five columns, the second a number: no line that FASTA can begin with.
bool is_index_line(std::string_view line) {
  return !line.empty() && line[0] != '>' && std::count(line.begin(), line.end(), '\t') == 4;
}

}  // namespace

GenomeRecords::GenomeRecords(const std::string& name) : name_(shown_input_name(name)) {
  if (name != "-") {
    LineReader lines(name);
    std::string_view line;
    if (lines.peek(line) && is_index_line(line)) {
      index_ = std::make_unique<LineReader>(name);
      return;
    }
  }
  fasta_ = std::make_unique<FastaReader>(name);
}

bool GenomeRecords::next() {
  if (index_) return next_in_index();
  if (!fasta_->next_header()) return false;
  fasta_->read_residues();
  const std::string& residues = fasta_->residues();
  record_.number = fasta_->number();
  record_.name = fasta_->sequence_name();
  record_.length = static_cast<std::int64_t>(residues.size());
  record_.ns = std::count(residues.begin(), residues.end(), 'N');
  return true;
}

bool GenomeRecords::next_in_index() {
  std::string_view line;
  if (!index_->next(line)) return false;
  const std::size_t tab = line.find('\t');
  const std::string_view rest = line.substr(std::min(line.size(), tab + 1));
  const auto result = std::from_chars(rest.data(), rest.data() + rest.size(), record_.length);
  const bool fits = is_index_line(line) && result.ec == std::errc() && *result.ptr == '\t';
  if (!fits || record_.length < 0) {
    throw LineError(name_, index_->line_number(), "this is no line of a FASTA index.");
  }
  ++record_.number;
  record_.name = line.substr(0, tab);
  return true;
}

}  // namespace vorlan_tools
