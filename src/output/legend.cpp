// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include <vector>

#include "config/settings.h"
#include "output/report.h"

namespace vorlan {
namespace {

std::vector<const char*> column_texts() {
  // The first column shows the type of the repeat, but is called its unit length, by contract.
  std::vector<const char*> texts = {
      "Repeat unit length",
      "Position at which repeat starts in current sequence",
      "Position at which repeat ends in current sequence",
      "Length of repeat in original sequence, i.e. (end-start+1)",
      "Normalized repeat length, i.e. (end-start+1-insertions+deletions)",
      "Repeat score",
      "Repeat perfection"};
  if (global_print_sat_mode == kFormatExtended) {
    texts.insert(texts.end(),
                 {"Number of mismatches", "Number of insertions", "Number of deletions"});
    if (!global_treat_Ns_as_missense) texts.push_back("Number of N's");
  }
  texts.push_back("Repeat unit");
  return texts;
}

void print_legend(std::FILE* stream, const char* prefix) {
  std::fprintf(stream, "%s\n%sColumns in lines of output providing repeat information:\n", prefix,
               prefix);
  int number = 0;
  for (const char* text : column_texts()) {
    std::fprintf(stream, "%sColumn %2d: %s\n", prefix, ++number, text);
  }
  std::fprintf(stream, "%s\n", prefix);
}

void print_column_names(std::FILE* stream) {
  std::fputs(
      "seq-name\tunit-length\tperfection\tstart\tend\tlength\trepeat-number\tscore\tmismatches\t"
      "insertions\tdeletions\tNs\tunit\trepeat-seq",
      stream);
  if (global_flanking != 0) std::fputs("\tleft-flanking-seq\tright-flanking-seq", stream);
  std::fputs("\n", stream);
}

}  // namespace

void print_output_format(std::FILE* stream, const char* prefix) {
  switch (global_print_sat_mode) {
    case kFormatVorlan:
    case kFormatExtended:
    case kFormatOld:
      print_legend(stream, prefix);
      break;
    case kFormatOnePerLine:
      print_column_names(stream);
      break;
    default:
      break;
  }
}

}  // namespace vorlan
