// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include <cmath>
#include <stdexcept>

#include "errors.h"
#include "io/json_numbers.h"
#include "stats/json_keys.h"
#include "stats/stats_json.h"

namespace vorlan_tools {

namespace {

using Json = nlohmann::json;
using Number = std::optional<std::int64_t>;

/// Reads what a file holds; whatever does not fit is thrown, as an exception of the JSON library or
/// as a DataError.
std::int64_t count_of(const Json& json, const char* key) {
  const Json& value = json.at(key);
  return value.is_null() ? 0 : stored_number(value);
}

Number number_of(const Json& json, const char* key) {
  const Json& value = json.at(key);
  return value.is_null() ? Number() : stored_number(value);
}

Thousandths thousandths_of(const Json& json, const char* key) {
  const Json& number = json.at(key);
  const double thousandths = number.get<double>() * 1000.0;
  // Up to here a double tells all thousandths apart, so that they are written again as they were.
  if (std::abs(thousandths) > static_cast<double>(kMostStored)) {
    refuse_number(number, "a number up to " + std::to_string(kMostStored / 1000));
  }
  return std::llround(thousandths);
}

Tally tally_of(const Json& json) {
  Tally tally;
  tally.repeats = count_of(json, "repeats");
  tally.perfect = count_of(json, "perfect");
  tally.bases = count_of(json, "bases_in_repeats");
  tally.perfect_bases = count_of(json, "bases_in_perfect");
  tally.copies = thousandths_of(json, "copies");
  tally.longest = count_of(json, "longest");
  tally.mismatches = count_of(json, "mismatches");
  tally.insertions = count_of(json, "insertions");
  tally.deletions = count_of(json, "deletions");
  return tally;
}

/// Of a class that is stored as [class, repeats, bases]; those without repeats are not.
Count class_count_of(const Json& entry) {
  return {whole_number<std::int64_t>(entry.at(1), 1, kMostStored), stored_number(entry.at(2))};
}

template <typename Counts>
void read_classes(const Json& json, Counts& counts) {
  for (const Json& entry : json) {
    counts.at(whole_number<std::size_t>(entry.at(0))) = class_count_of(entry);
  }
}

ByUnitLength unit_lengths_of(const Json& json) {
  ByUnitLength result;
  for (const Json& entry : json) {
    UnitLengthStats& stats = result[stored_number(entry.at("unit_length"))];
    stats.tally = tally_of(entry);
    read_classes(entry.at("by_copies"), stats.by_copies);
    read_classes(entry.at("by_divergence"), stats.by_divergence);
  }
  return result;
}

std::vector<ShownRepeat> shown_list_of(const Json& json) {
  std::vector<ShownRepeat> list;
  for (const Json& entry : json) {
    ShownRepeat repeat;
    repeat.sequence = entry.value("sequence", std::string());
    repeat.start = count_of(entry, "start");
    repeat.end = count_of(entry, "end");
    repeat.unit_length = count_of(entry, "unit_length");
    repeat.unit = entry.at("unit").get<std::string>();
    repeat.bases = count_of(entry, "bases");
    repeat.copies = thousandths_of(entry, "copies");
    repeat.perfection = thousandths_of(entry, "perfection");
    repeat.score = number_of(entry, "score");
    repeat.columns = count_of(entry, "columns");
    repeat.rows = entry.at("alignment").get<std::vector<std::string>>();
    list.push_back(std::move(repeat));
  }
  return list;
}

std::vector<WindowedSequence> windows_of(const Json& json, std::size_t sequences) {
  std::vector<WindowedSequence> list;
  for (const Json& entry : json) {
    WindowedSequence sequence;
    sequence.index = whole_number<std::size_t>(entry.at("index"));
    sequence.length = count_of(entry, "length");
    const Json& repeats = entry.at("repeats");
    if (sequence.index >= sequences) throw DataError("a window has no sequence");
    for (std::size_t i = 0; i < repeats.size(); ++i) {
      Window window;
      window.repeats = stored_number(repeats.at(i));
      window.covered = stored_number(entry.at("covered").at(i));
      window.longest.assign(shown_list_of(entry.at("longest").at(i)));
      sequence.windows.push_back(std::move(window));
    }
    list.push_back(std::move(sequence));
  }
  return list;
}

ClassCounts class_counts_of(const Json& json) {
  ClassCounts counts;
  for (const Json& entry : json) {
    counts.emplace_back(stored_number(entry.at(0)), class_count_of(entry));
  }
  return counts;
}

SequenceStats sequence_of(const Json& json) {
  SequenceStats sequence;
  sequence.name = json.at("name").get<std::string>();
  sequence.length = number_of(json, "bases");
  sequence.ns = number_of(json, "ns");
  sequence.covered = count_of(json, "covered");
  sequence.tally = tally_of(json);
  sequence.by_unit_length = class_counts_of(json.at("by_unit_length"));
  sequence.by_copies = class_counts_of(json.at("by_copies"));
  sequence.by_divergence = class_counts_of(json.at("by_divergence"));
  return sequence;
}

GenomeStats genome_of(const Json& json) {
  GenomeStats genome;
  genome.name = json.at("name").get<std::string>();
  genome.version = json.at("version").get<std::string>();
  for (const Json& entry : json.at("settings")) {
    genome.settings.emplace_back(entry.at(0).get<std::string>(), entry.at(1).get<std::string>());
  }
  genome.knows_edits = json.at("knows_edits").get<bool>();
  for (const Json& entry : json.at("by_sequence")) genome.sequences.push_back(sequence_of(entry));
  if (genome.sequences.size() != whole_number<std::size_t>(json.at("sequences"))) {
    throw DataError("sequences are missing");
  }
  genome.tally = tally_of(json);
  genome.covered = count_of(json, "covered");
  genome.by_unit_length = unit_lengths_of(json.at("by_unit_length"));
  for (const Json& entry : json.at("units")) {
    genome.units.add(entry.at("unit").get<std::string>(), tally_of(entry));
  }
  genome.units.set_others(tally_of(json.at("other_units")));
  const Json& windows = json.at("windows");
  genome.windows.assign(count_of(windows, "size"),
                        windows_of(windows.at("sequences"), genome.sequences.size()));
  genome.longest.assign(shown_list_of(json.at("longest_repeats")));
  genome.most_diverged.assign(shown_list_of(json.at("most_diverged_repeats")));
  return genome;
}

}  // namespace

std::vector<GenomeStats> genomes_from_json(const std::string& text, const std::string& source) {
  const auto refuse = [&source](const std::string& why) {
    return DataError(source + " is no file of vorlan-tools stats --json: " + why + ".");
  };
  try {
    const Json json = Json::parse(text);
    if (whole_number<int>(json.at(kStatsKey)) != kStatsVersion) {
      throw DataError("its version is not " + std::to_string(kStatsVersion));
    }
    std::vector<GenomeStats> genomes;
    for (const Json& entry : json.at("genomes")) genomes.push_back(genome_of(entry));
    return genomes;
  } catch (const Json::exception& error) {
    // Its own message may hold any bytes of the file.
    throw refuse("fault " + std::to_string(error.id) + " of its JSON");
  } catch (const std::out_of_range&) {
    throw refuse("a class is unknown");
  } catch (const DataError& error) {
    throw refuse(error.what());
  }
}

}  // namespace vorlan_tools
