// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "catalog/locus_file.h"

#include <algorithm>

#include "convert/tabix_index.h"
#include "errors.h"

namespace vorlan_tools {

namespace {

/// Checked before the file is made.
const CatalogRequest& checked(const CatalogRequest& request) {
  if (!request.write_index) return request;
  if (request.genotyper == Genotyper::kExpansionHunter ||
      request.compression == Compression::kPlain) {
    throw UsageError("Only tables that are compressed with bgzip (-O z) can have an index.");
  }
  if (request.output == "-") throw UsageError("An index needs a named output (-o).");
  return request;
}

tbx_conf_t layout_of(const GenotyperRules& rules) {
  tbx_conf_t layout = tbx_conf_bed;
  if (rules.counts_from_one) layout.preset = TBX_GENERIC;
  return layout;
}

}  // namespace

LocusFile::LocusFile(const CatalogRequest& request)
    : request_(checked(request)), file_(request.output, request.compression) {
  file_.write(catalog_opening(request.genotyper));
}

void LocusFile::write(std::string_view name, const Locus& locus) {
  text_ = count_ == 0 ? "" : catalog_separator(request_.genotyper);
  append_locus(text_, request_.genotyper, name, locus);
  file_.write(text_);
  ++count_;
  longest_end_ = std::max(longest_end_, locus.end);
}

void LocusFile::finish() {
  file_.write(catalog_ending(request_.genotyper));
  if (!request_.write_index) {
    file_.finish();
    return;
  }
  const tbx_conf_t layout = layout_of(rules_of(request_.genotyper));
  finish_with_index(file_, request_.output, longest_end_, layout, 1);
}

}  // namespace vorlan_tools
