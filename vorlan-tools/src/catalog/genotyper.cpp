// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "catalog/genotyper.h"

// From the sources of the programs, at the versions named, and from runs of them where they could
// be run:
//
// TRGT 3.0.0 (docs/repeat_files.md, src/trgt/locus.rs, src/utils/region.rs): a region is text split
// at ':' and '-', so that names hold neither; `genotype` wants 250 bases (--flank-len) on each
// side. A record is split at blanks, its last column at ';' and '='.
//
// HipSTR 0.7 (src/region.cpp, bam_processor.cpp): ends at a period above 9, at start < 1, at
// stop <= start, and at a header line; skips loci above 100 bases (--max-str-len) and within
// 50 bases of an end.
//
// GangSTR 2.5 (src/region_reader.cpp, genotyper.cpp): copies of the reference are length / period,
// rounded down; its own panel goes up to units of 20; about 150 bases of flank are needed.
//
// ExpansionHunter 5 (io/CatalogLoading.cpp, LocusSpecDecoding.cpp): ends at a locus with less than
// 1,000 bases on a side (--region-extension-length) or with more than 5 N there, and at names with
// ':' or '-'.
//
// LongTR 1 (src/region.cpp): skips loci above 1,000 bases and within 50 bases of an end.
//
// ATaRVa (README, baseline.py): a sorted, bgzipped BED with a tabix index.
//
// Straglr: leaves homopolymers out by custom.

namespace vorlan_tools {

namespace {

constexpr GenotyperRules kTrgt = {.title = "TRGT", .flank = 250, .not_in_names = "\t\r\v\f:-;=,"};
constexpr GenotyperRules kHipStr = {.title = "HipSTR",
                                    .counts_from_one = true,
                                    .max_period = 9,
                                    .min_length = 2,
                                    .max_length = 100,
                                    .flank = 50};
constexpr GenotyperRules kGangStr = {.title = "GangSTR",
                                     .counts_from_one = true,
                                     .max_period = 20,
                                     .flank = 150,
                                     .needs_whole_units = true};
constexpr GenotyperRules kExpansionHunter = {.title = "ExpansionHunter",
                                             .flank = 1000,
                                             .max_ns_in_flanks = 5,
                                             .not_in_names = "\t\r\v\f:-",
                                             .not_ahead_of_names = ""};
constexpr GenotyperRules kLongTr = {
    .title = "LongTR", .counts_from_one = true, .max_length = 1000, .flank = 50};
constexpr GenotyperRules kAtarva = {.title = "ATaRVa"};
constexpr GenotyperRules kStraglr = {.title = "Straglr", .min_period = 2};

}  // namespace

const GenotyperRules& rules_of(Genotyper genotyper) {
  switch (genotyper) {
    case Genotyper::kHipStr:
      return kHipStr;
    case Genotyper::kGangStr:
      return kGangStr;
    case Genotyper::kExpansionHunter:
      return kExpansionHunter;
    case Genotyper::kLongTr:
      return kLongTr;
    case Genotyper::kAtarva:
      return kAtarva;
    case Genotyper::kStraglr:
      return kStraglr;
    default:
      return kTrgt;
  }
}

}  // namespace vorlan_tools
