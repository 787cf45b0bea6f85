// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/alignment_strings.h"
#include "convert/motif.h"
#include "convert/row_format.h"
#include "convert/sequence_names.h"
#include "convert/text_append.h"

namespace vorlan_tools {

namespace {

class PafRows : public RowFormat {
 public:
  void append_head(RowText& /*text*/, const Head& /*head*/,
                   const std::vector<ListedSequence>& /*sequences*/) override {}

  void begin_sequence(const Sequence& sequence, std::string_view name) override {
    require_tabless_name(name, "PAF");
    name_ = name;
    length_ = sequence.length.value_or(0);
  }

  void append_repeat(RowText& text, const Repeat& repeat) override {
    find_motif(repeat, motif_);
    const AlignmentCounts counts = count_operations(repeat);
    ((text += '(') += motif_) += ")n\t";
    append_number(text, counts.query_length());
    append_number(text += "\t0\t", counts.query_length());
    (text += "\t+\t") += name_;
    append_number(text += '\t', length_);
    append_number(text += '\t', repeat.start - 1);
    append_number(text += '\t', repeat.end);
    append_number(text += '\t', counts.equal);
    append_number(text += '\t', counts.columns());
    append_number(text += "\t255\tNM:i:", counts.edit_distance());
    append_number(text += "\tAS:i:", repeat.score.value_or(0));
    append_cigar(text += "\tcg:Z:", repeat);
    text += '\n';
  }

 private:
  std::string name_;
  std::int64_t length_ = 0;
  std::string motif_;
};

}  // namespace

std::unique_ptr<RowFormat> paf_rows() { return std::make_unique<PafRows>(); }

}  // namespace vorlan_tools
