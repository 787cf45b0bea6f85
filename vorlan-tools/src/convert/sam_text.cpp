// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/alignment_strings.h"
#include "convert/alignment_target.h"
#include "convert/motif.h"
#include "convert/text_append.h"
#include "io/output_file.h"

namespace vorlan_tools {

namespace {

class SamText : public AlignmentTarget {
 public:
  SamText(const Conversion& conversion, const AlignmentSequences& sequences,
          const std::string& header)
      : output_(conversion.output, conversion.compression, conversion.threads),
        sequences_(sequences) {
    output_.write(header);
  }

  void write(const Repeat& repeat, std::int32_t sequence, std::int64_t number) override {
    append_number(rows_ += 'r', number);
    (rows_ += "\t0\t") += sequences_.written[static_cast<std::size_t>(sequence)];
    append_number(rows_ += '\t', repeat.start);
    append_cigar(rows_ += "\t255\t", repeat);
    append_query(rows_ += "\t*\t0\t0\t", repeat);
    append_number(rows_ += "\t*\tNM:i:", count_operations(repeat).edit_distance());
    append_md(rows_ += "\tMD:Z:", repeat);
    append_number(rows_ += "\tAS:i:", repeat.score.value_or(0));
    append_number(rows_ += "\tul:i:", repeat.unit_length);
    append_text("\tun:Z:", repeat.unit);
    find_motif(repeat, motif_);
    append_text("\tmo:Z:", motif_);
    append_short(rows_ += "\tcn:f:", repeat.copies);
    append_short(rows_ += "\tpf:f:", repeat.perfection);
    rows_ += '\n';
    if (rows_.size() >= OutputFile::kBufferSize) write_rows();
  }

  void finish() override {
    write_rows();
    output_.finish();
  }

 private:
  void write_rows() {
    output_.write(rows_.view());
    rows_.clear();
  }

  void append_text(std::string_view label, std::string_view value) {
    if (!value.empty()) (rows_ += label) += value;
  }

  OutputFile output_;
  const AlignmentSequences& sequences_;
  RowText rows_;
  std::string motif_;
};

}  // namespace

std::unique_ptr<AlignmentTarget> sam_target(const Conversion& conversion,
                                            const AlignmentSequences& sequences,
                                            const std::string& header) {
  return std::make_unique<SamText>(conversion, sequences, header);
}

}  // namespace vorlan_tools
