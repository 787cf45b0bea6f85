// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "count/locus.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "errors.h"
#include "fasta/bases.h"
#include "io/bed_lines.h"
#include "io/line_reader.h"

namespace vorlan_tools {

namespace {

constexpr std::size_t kColumnsOfTrgt = 4;
constexpr std::size_t kColumns = 5;
constexpr std::size_t kColumnsWithUncounted = 6;

/// The value of KEY in "KEY=value;KEY=value"; empty if the key is missing.
std::string_view value_of(std::string_view fields, std::string_view key) {
  for (const std::string_view field : split(fields, ';')) {
    const std::size_t place = field.find('=');
    if (place != std::string_view::npos && field.substr(0, place) == key) {
      return field.substr(place + 1);
    }
  }
  return {};
}

bool set_motifs(std::string_view text, Locus& locus) {
  for (const std::string_view part : split(text, ',')) {
    std::string motif(part);
    std::transform(motif.begin(), motif.end(), motif.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    if (motif.empty() || !holds_only_bases(motif)) return false;
    locus.motifs.push_back(std::move(motif));
  }
  return true;
}

Locus to_locus(std::string_view line, const LineReader& lines) {
  const auto fail = [&lines](const std::string& what) {
    throw LineError(lines.name(), lines.line_number(), what);
  };
  const std::vector<std::string_view> columns = split(line, '\t');
  const std::size_t count = columns.size();
  if (count != kColumnsOfTrgt && count != kColumns && count != kColumnsWithUncounted) {
    fail("a locus has the columns sequence, start, end, name, motifs and perhaps uncounted bases.");
  }
  Locus locus;
  locus.line = lines.line_number();
  locus.sequence = columns[0];
  if (!is_number(columns[1], locus.start) || !is_number(columns[2], locus.end) ||
      locus.start >= locus.end) {
    fail("start and end of a locus must be numbers from 0, start before end.");
  }
  const bool is_trgt = count == kColumnsOfTrgt;
  locus.name = is_trgt ? value_of(columns[3], "ID") : columns[3];
  if (locus.name.empty()) fail("the locus has no name.");
  if (!set_motifs(is_trgt ? value_of(columns[3], "MOTIFS") : columns[4], locus)) {
    fail("motifs must be words of A, C, G and T, separated by commas.");
  }
  if (count == kColumnsWithUncounted && !is_number(columns[5], locus.uncounted)) {
    fail("the number of uncounted bases must be a number from 0.");
  }
  return locus;
}

}  // namespace

std::vector<Locus> read_loci(const std::string& file) {
  LineReader lines(file);
  std::vector<Locus> loci;
  for (std::string_view line; next_interval_line(lines, line);) {
    loci.push_back(to_locus(line, lines));
  }
  if (loci.empty()) throw DataError(lines.name() + " holds no locus.");
  return loci;
}

}  // namespace vorlan_tools
