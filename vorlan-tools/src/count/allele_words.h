// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vorlan_tools {

/// A stretch of an allele: a word that stands there `copies` times.
struct AlleleWord {
  std::string word;
  std::int64_t copies;
  enum class Kind {
    kMotif,  ///< one that was asked for
    kOther,  ///< as long as the first motif
    kRest,   ///< of any length; stands once
  } kind;
};

/// Divides an allele into words so that motifs explain as much as they can, in as few stretches as
/// they can. The words, repeated, give the allele back. Time: allele times the square of the number
/// of lengths of motifs, times their length.
std::vector<AlleleWord> divide_allele(std::string_view allele,
                                      const std::vector<std::string>& motifs);

/// "[AGAT]11[ACAT]2": each word with its copies, a rest as it is: "[AATG]6ATG[AATG]3".
std::string words_text(const std::vector<AlleleWord>& words);

/// Copies of motifs, and bases that stand in other words or rests.
std::int64_t motif_copies(const std::vector<AlleleWord>& words);
std::int64_t other_bases(const std::vector<AlleleWord>& words);

/// A number of copies as forensic laboratories write it: whole copies, and, behind a point, the
/// bases that are left: 39 bases of a period of 4 are "9.3". Nothing if `bases` is negative.
std::string count_text(std::int64_t bases, std::int64_t period);

}  // namespace vorlan_tools
