// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "catalog/rejections.h"

#include <numeric>

#include "convert/sequence_names.h"
#include "convert/text_append.h"
#include "io/compression_by_name.h"

namespace vorlan_tools {

namespace {

std::string period_text(const GenotyperRules& rules) {
  const std::string least = std::to_string(rules.min_period);
  if (rules.max_period == kNoBound) return "with a unit shorter than " + least;
  return "with a unit outside of " + least + " to " + std::to_string(rules.max_period) + " bases";
}

std::string overlap_text(const CatalogRequest& request) {
  const std::string which =
      request.overlaps == OverlapPolicy::kBest ? "a better locus" : "another locus";
  if (request.min_gap == 0) return "overlapping " + which;
  return "less than " + std::to_string(request.min_gap) + " bases from " + which;
}

std::array<std::string, kReasonCount> reason_texts(const CatalogRequest& request,
                                                   const GenotyperRules& rules) {
  const std::string least =
      rules.min_length > 1 ? std::to_string(rules.min_length) + " bases" : "a unit";
  return {"left out by a filter",
          "in a sequence whose name " + std::string(rules.title) + " cannot read",
          "without a known motif",
          period_text(rules),
          "shorter than " + least,
          "longer than " + std::to_string(rules.max_length) + " bases",
          "less than " + std::to_string(rules.flank) + " bases from an end of the sequence",
          "with more than " + std::to_string(rules.max_ns_in_flanks) + " N in the flanks",
          overlap_text(request),
          "the same locus as another"};
}

}  // namespace

Rejections::Rejections(const std::string& file, const CatalogRequest& request,
                       const GenotyperRules& rules)
    : texts_(reason_texts(request, rules)) {
  if (file.empty()) return;
  table_.emplace(file, compression_by_name(file));
  table_->write("sequence\tstart\tend\tunit_length\tunit\tmotif\treason\n");
}

void Rejections::add(std::string_view name, const Judged& repeat, Reason reason) {
  ++counts_[static_cast<std::size_t>(reason)];
  if (!table_) return;
  row_ = tsv_name(name);
  append_number(row_ += '\t', repeat.start);
  append_number(row_ += '\t', repeat.end);
  append_number(row_ += '\t', repeat.unit_length);
  append_or_dot(row_ += '\t', repeat.unit);
  append_or_dot(row_ += '\t', repeat.motif);
  ((row_ += '\t') += text_of(reason)) += '\n';
  table_->write(row_);
}

void Rejections::close() {
  if (table_) table_->close();
}

void Rejections::commit() {
  if (table_) table_->commit();
}

std::uint64_t Rejections::count() const {
  return std::accumulate(counts_.begin(), counts_.end(), std::uint64_t{0});
}

std::string Rejections::summary() const {
  std::string text;
  for (std::size_t i = 0; i < kReasonCount; ++i) {
    if (counts_[i] == 0) continue;
    if (!text.empty()) text += ", ";
    text += std::to_string(counts_[i]) + " " + texts_[i];
  }
  return text;
}

}  // namespace vorlan_tools
