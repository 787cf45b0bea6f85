// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "driver/masked_file.h"

#include <algorithm>
#include <string_view>

namespace vorlan {
namespace {

constexpr std::size_t kResiduesPerLine = 80;

}  // namespace

void mask_repeats(const std::list<Csat*>& sats, CSequence_Mol& sequence) {
  char* residues = sequence.residues.buf;
  for (const Csat* sat : sats) {
    std::fill(residues + (sat->pos_left - residues), residues + (sat->pos_right - residues), 'X');
  }
}

void write_masked_record(std::FILE* stream, CSequence_Mol& sequence) {
  std::fprintf(stream, ">%s\n", sequence.header.terminate());
  for (std::string_view rest = sequence.residues.view(); !rest.empty();) {
    const std::string_view line = rest.substr(0, kResiduesPerLine);
    std::fwrite(line.data(), 1, line.size(), stream);
    std::fputc('\n', stream);
    rest.remove_prefix(line.size());
  }
}

}  // namespace vorlan
