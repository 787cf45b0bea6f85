// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "ssr/compound_loci.h"

#include <algorithm>

#include "convert/motif.h"
#include "convert/sequence_names.h"
#include "convert/text_append.h"

namespace vorlan_tools {

void CompoundLoci::begin_sequence(std::string_view name) {
  end_sequence();
  name_ = tsv_name(name);
}

void CompoundLoci::end_sequence() {
  if (chain_ >= 2) {
    ++compounds_;
    loci_ += chain_;
    rows_ += name_;
    append_number(rows_ += '\t', start_);
    append_number(rows_ += '\t', end_);
    append_number(rows_ += '\t', chain_);
    ((rows_ += '\t') += structure_) += '\n';
  }
  chain_ = 0;
}

void CompoundLoci::add(const Repeat& repeat) {
  const std::int64_t between = repeat.start - end_ - 1;
  if (chain_ > 0 && between <= gap_) {
    append_number(structure_ += '[', between);
    structure_ += ']';
    end_ = std::max(end_, repeat.end);
    ++chain_;
  } else {
    end_sequence();
    begin_chain(repeat);
  }
  append_part(repeat);
}

void CompoundLoci::begin_chain(const Repeat& repeat) {
  start_ = repeat.start;
  end_ = repeat.end;
  chain_ = 1;
  structure_.clear();
}

void CompoundLoci::append_part(const Repeat& repeat) {
  find_motif(repeat, motif_);
  append_or_dot(structure_ += '(', motif_.empty() ? repeat.unit : motif_);
  append_number(structure_ += ')', repeat.length.value_or(repeat.bases) / repeat.unit_length);
}

}  // namespace vorlan_tools
