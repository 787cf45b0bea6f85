// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>

#include "compare/compared_pair.h"

namespace vorlan_tools {

/// The table of a comparison. The functions append to `text`.
void append_comparison_head(std::string& text);
void append_pair_row(std::string& text, const ComparedReport& first, const ComparedReport& second,
                     const LocusPair& pair, const ComparedPair& compared);
void append_first_row(std::string& text, const ComparedReport& first, const ComparedLocus& locus,
                      LocusFate fate);
void append_second_row(std::string& text, const ComparedReport& second, const ComparedLocus& locus,
                       LocusFate fate);

/// A VCF of changed loci; places are those of the first report. Throws DataError if a name or the
/// bases of a locus are not what a VCF can hold.
void append_vcf_head(std::string& text, const ComparedReport& first);
void append_vcf_row(std::string& text, const ComparedReport& first, const ComparedReport& second,
                    const LocusPair& pair, const ComparedPair& compared);

}  // namespace vorlan_tools
