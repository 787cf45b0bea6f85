// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Texts for messages; see the header.

#include "description.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <sstream>

namespace differential {
namespace {

using reference::Repeat;

// Enough digits to read the same float again.
std::ostringstream exact_stream() {
  std::ostringstream text;
  text.precision(std::numeric_limits<float>::max_digits10);
  return text;
}

std::string record_or_none(const std::vector<Repeat>& repeats, std::size_t index) {
  return index < repeats.size() ? describe(repeats[index]) : "no record";
}

}  // namespace

std::string describe(const reference::Settings& settings) {
  std::ostringstream text = exact_stream();
  text << "-u " << settings.min_unit_length << " -U " << settings.max_unit_length << " -m "
       << settings.mismatch_score << " -g " << settings.indel_score << " -r "
       << settings.maximum_recursion_depth << " -R " << settings.maximum_scorereduction << " -N "
       << settings.Ns_allowed_in_a_row << " -s " << settings.min_score << " --minScore_a "
       << settings.min_score_a << " --minScore_b " << settings.min_score_bx << " -l "
       << settings.min_length << " --minLength_a " << settings.min_length_a << " --minLength_b "
       << settings.min_length_bx << " --NPerfectionMode " << settings.N_and_perfection_mode
       << " --minPerfection " << settings.min_perfection << " --maxPerfection "
       << settings.max_perfection;
  if (settings.treat_Ns_as_missense) text << " --NsAsMissense";
  if (settings.prefer_longer_repeat == 0) text << " --preferShorterRepeats";
  if (!settings.remove_mostly_hidden) text << " -D";
  return text.str();
}

std::string describe(const Repeat& repeat) {
  // Differences of counts can wrap; signed numbers show that better.
  const auto count = [](unsigned number) { return static_cast<std::int32_t>(number); };
  std::ostringstream text;
  text << "[" << repeat.begin << ", " << repeat.end << ") unit [" << repeat.unit_begin << ", "
       << repeat.unit_end << ") cursors " << repeat.cursor_forward << ", " << repeat.cursor_backward
       << " score " << repeat.score << " mismatches " << count(repeat.mismatches) << " insertions "
       << count(repeat.insertions) << " deletions " << count(repeat.deletions) << " Ns "
       << count(repeat.num_Ns) << " events";
  for (const reference::Event& event : repeat.events) {
    text << " " << event.position << event.kind;
  }
  return text.str();
}

std::string describe_first_difference(const std::vector<Repeat>& expected,
                                      const std::vector<Repeat>& found) {
  std::size_t index = 0;
  while (index < expected.size() && index < found.size() && expected[index] == found[index]) {
    ++index;
  }
  std::ostringstream text;
  text << expected.size() << " records expected, " << found.size() << " found; record " << index
       << " (counted from 0) is the first that differs:\n  expected "
       << record_or_none(expected, index) << "\n  found    " << record_or_none(found, index);
  return text.str();
}

std::string quoted(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string result = "\"";
  for (const char letter : text) {
    const auto byte = static_cast<unsigned char>(letter);
    if (letter == '"' || letter == '\\') {
      result += {'\\', letter};
    } else if (byte >= ' ' && byte <= '~') {
      result += letter;
    } else {
      // Closed and opened again: a digit behind it would count as one of its own.
      result += {'\\', 'x', kDigits[byte / 16U], kDigits[byte % 16U], '"', '"'};
    }
  }
  return result + '"';
}

std::string describe(const reference::FastaFile& file) {
  std::string text;
  for (const reference::FastaRecord& record : file.records) {
    text += "header " + quoted(record.header) + " name " + quoted(record.name) + " description " +
            quoted(record.description) + " residues " + quoted(record.residues) + "\n";
  }
  return text + (file.malformed ? "malformed at line " + std::to_string(file.malformed_line)
                                : std::string("well formed"));
}

}  // namespace differential
