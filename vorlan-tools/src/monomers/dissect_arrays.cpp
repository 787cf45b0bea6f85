// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "monomers/dissect_arrays.h"

#include "convert/sequence_names.h"
#include "errors.h"
#include "fasta/fasta_reader.h"
#include "io/compression_by_name.h"
#include "io/file_identity.h"
#include "io/output_file.h"
#include "monomers/array_text.h"

namespace vorlan_tools {

namespace {

void check(const ArrayRequest& request) {
  if (request.arrays == "-" && request.genome == "-") {
    throw UsageError("Only one of report and FASTA file can be standard input.");
  }
  refuse_input_as_output({request.arrays, request.genome}, request.output);
}

/// The residues of the sequences of a FASTA file, asked for in its order.
class Genome {
 public:
  explicit Genome(const std::string& name) : reader_(name) {}

  const std::string& residues_of(const Array& array, const std::string& source) {
    while (!is_begun_ || reader_.sequence_name() != array.sequence) {
      if (!reader_.next_header()) {
        throw LineError(source, array.line,
                        reader_.name() + " has no sequence " + quoted_name(array.sequence) +
                            " behind those asked for before; arrays must be in its order.");
      }
      is_begun_ = true;
      is_read_ = false;
    }
    if (!is_read_) reader_.read_residues();
    is_read_ = true;
    return reader_.residues();
  }

 private:
  FastaReader reader_;
  bool is_begun_ = false;
  bool is_read_ = false;
};

void append(RowText& text, const DissectedArray& array, ArrayRequest::Form form) {
  switch (form) {
    case ArrayRequest::Form::kMonomerBed:
      return append_monomer_rows(text, array);
    case ArrayRequest::Form::kMonomerFasta:
      return append_monomer_records(text, array);
    case ArrayRequest::Form::kConsensusFasta:
      return append_consensus_record(text, array);
    case ArrayRequest::Form::kConsensusTable:
      return append_consensus_row(text, array);
  }
}

}  // namespace

void dissect_arrays(const ArrayRequest& request) {
  check(request);
  ArraySource source(request.arrays, request.filter);
  Genome genome(request.genome);
  OutputFile output(request.output, compression_by_name(request.output));
  RowText text;
  if (request.form == ArrayRequest::Form::kConsensusTable) append_consensus_head(text);
  Array array;
  for (std::int64_t number = 1; source.next(array); ++number) {
    const std::string& residues = genome.residues_of(array, source.name());
    if (array.end > static_cast<std::int64_t>(residues.size())) {
      throw LineError(source.name(), array.line,
                      "the array ends behind the end of its sequence in the FASTA file.");
    }
    const std::string_view bases = std::string_view(residues).substr(
        static_cast<std::size_t>(array.start), static_cast<std::size_t>(array.end - array.start));
    const Dissection dissection = dissect_array(bases, array.unit, request.begin);
    append(text, {number, array, bases, dissection}, request.form);
    if (text.size() < OutputFile::kBufferSize) continue;
    output.write(text.view());
    text.clear();
  }
  output.write(text.view());
  output.finish();
}

}  // namespace vorlan_tools
