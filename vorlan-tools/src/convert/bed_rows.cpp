// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include <algorithm>

#include "convert/motif.h"
#include "convert/row_format.h"
#include "convert/sequence_names.h"
#include "convert/text_append.h"

namespace vorlan_tools {

namespace {

class BedRows : public RowFormat {
 public:
  void append_head(RowText& /*text*/, const Head& /*head*/,
                   const std::vector<ListedSequence>& /*sequences*/) override {}

  void begin_sequence(const Sequence& /*sequence*/, std::string_view name) override {
    require_bed_name(name);
    name_ = name;
  }

  void append_repeat(RowText& text, const Repeat& repeat) override {
    find_motif(repeat, motif_);
    text += name_;
    append_number(text += '\t', repeat.start - 1);
    append_number(text += '\t', repeat.end);
    append_or_dot(text += '\t', repeat.unit);
    append_number(text += '\t',
                  std::clamp<std::int64_t>(repeat.score.value_or(0), 0, kHighestScore));
    append_number(text += "\t.\t", repeat.unit_length);
    append_thousandths(text += '\t', repeat.copies);
    append_thousandths(text += '\t', repeat.perfection);
    append_or_dot(text += '\t', repeat.score);
    append_or_dot(text += '\t', motif_);
    text += '\n';
  }

 private:
  static constexpr std::int64_t kHighestScore = 1000;  // that BED knows

  std::string name_;
  std::string motif_;
};

}  // namespace

std::unique_ptr<RowFormat> bed_rows() { return std::make_unique<BedRows>(); }

}  // namespace vorlan_tools
