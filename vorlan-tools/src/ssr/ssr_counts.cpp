// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "ssr/ssr_counts.h"

#include <cmath>

#include "convert/text_append.h"

namespace vorlan_tools {

void append_per_megabase(std::string& text, std::int64_t count, std::int64_t bases) {
  text += '\t';
  if (bases <= 0) {
    text += '.';
  } else {
    append_thousandths(text,
                       std::llround(static_cast<double>(count) * 1e9 / static_cast<double>(bases)));
  }
}

void append_count(std::string& text, const SsrCount& count, std::int64_t of_bases) {
  append_number(text += '\t', count.loci());
  append_number(text += '\t', count.bases());
  append_per_megabase(text, count.loci(), of_bases);
  append_per_megabase(text, count.bases(), of_bases);
  append_number(text += '\t', count.longest());
}

}  // namespace vorlan_tools
