// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/alignment_strings.h"
#include "convert/motif.h"
#include "convert/row_format.h"
#include "convert/sequence_names.h"
#include "convert/text_append.h"

namespace vorlan_tools {

namespace {

class TsvRows : public RowFormat {
 public:
  void append_head(RowText& text, const Head& /*head*/,
                   const std::vector<ListedSequence>& /*sequences*/) override {
    text +=
        "sequence\tstart\tend\tunit_"
        "length\tunit\tmotif\tbases\tlength\tcopies\tscore\tperfection\tmismatches\t"
        "insertions\tdeletions\tns\tcigar\n";
  }

  void begin_sequence(const Sequence& /*sequence*/, std::string_view name) override {
    name_ = tsv_name(name);
  }

  void append_repeat(RowText& text, const Repeat& repeat) override {
    find_motif(repeat, motif_);
    text += name_;
    append_number(text += '\t', repeat.start);
    append_number(text += '\t', repeat.end);
    append_number(text += '\t', repeat.unit_length);
    append_or_dot(text += '\t', repeat.unit);
    append_or_dot(text += '\t', motif_);
    append_number(text += '\t', repeat.bases);
    append_or_dot(text += '\t', repeat.length);
    append_thousandths(text += '\t', repeat.copies);
    append_or_dot(text += '\t', repeat.score);
    append_thousandths(text += '\t', repeat.perfection);
    append_or_dot(text += '\t', repeat.mismatches);
    append_or_dot(text += '\t', repeat.insertions);
    append_or_dot(text += '\t', repeat.deletions);
    append_or_dot(text += '\t', repeat.ns);
    text += '\t';
    if (repeat.has_alignment()) {
      append_cigar(text, repeat);
    } else {
      text += '.';
    }
    text += '\n';
  }

 private:
  std::string name_;
  std::string motif_;
};

}  // namespace

std::unique_ptr<RowFormat> tsv_rows() { return std::make_unique<TsvRows>(); }

}  // namespace vorlan_tools
