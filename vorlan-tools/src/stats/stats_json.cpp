// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "stats/stats_json.h"

#include <algorithm>
#include <cmath>

#include "stats/json_keys.h"

namespace vorlan_tools {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kUnitsOnPage = 300;
constexpr std::size_t kNameOnPage = 100;

template <typename Number>
Json optional_json(const std::optional<Number>& number) {
  return number ? Json(*number) : Json(nullptr);
}

Json thousandths_json(Thousandths value) { return static_cast<double>(value) / 1000.0; }

/// A name that is too long for a page ends in three dots. Cut between characters.
std::string shown_name(const std::string& name, Detail detail) {
  if (detail == Detail::kAll || name.size() <= kNameOnPage) return name;
  std::size_t end = kNameOnPage;
  while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0U) == 0x80U) --end;
  return name.substr(0, end) + "...";
}

void put_tally(Json& json, const Tally& tally, bool knows_edits) {
  json["repeats"] = tally.repeats;
  json["perfect"] = tally.perfect;
  json["bases_in_repeats"] = tally.bases;
  json["bases_in_perfect"] = tally.perfect_bases;
  json["copies"] = thousandths_json(tally.copies);
  json["longest"] = tally.longest;
  json["mismatches"] = knows_edits ? Json(tally.mismatches) : Json(nullptr);
  json["insertions"] = knows_edits ? Json(tally.insertions) : Json(nullptr);
  json["deletions"] = knows_edits ? Json(tally.deletions) : Json(nullptr);
  json["edits_per_100_bases"] = optional_json(edits_per_100_bases(tally, knows_edits));
}

/// Coverage and what follows from it.
void put_density(Json& json, const Tally& tally, std::int64_t covered,
                 const std::optional<std::int64_t>& bases, const std::optional<std::int64_t>& ns) {
  json["bases"] = optional_json(bases);
  json["ns"] = optional_json(ns);
  json["covered"] = covered;
  json["covered_percent"] = optional_json(percent(covered, bases));
  json["loci_per_mb"] = optional_json(per_million(tally.repeats, bases));
  json["bases_per_mb"] = optional_json(per_million(covered, bases));
  if (!bases || !ns) return;
  json["loci_per_mb_without_n"] = optional_json(per_million(tally.repeats, *bases - *ns));
  json["bases_per_mb_without_n"] = optional_json(per_million(covered, *bases - *ns));
}

/// Only classes that hold something: [class, repeats, bases].
template <typename Counts>
Json classes_json(const Counts& counts) {
  Json list = Json::array();
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (counts[i].repeats > 0) list.push_back({i, counts[i].repeats, counts[i].bases});
  }
  return list;
}

Json unit_lengths_json(const ByUnitLength& by_unit_length, bool knows_edits) {
  Json list = Json::array();
  for (const auto& [length, stats] : by_unit_length) {
    Json entry;
    entry["unit_length"] = length;
    put_tally(entry, stats.tally, knows_edits);
    entry["by_copies"] = classes_json(stats.by_copies);
    entry["by_divergence"] = classes_json(stats.by_divergence);
    list.push_back(std::move(entry));
  }
  return list;
}

void put_units(Json& json, const UnitTable& units, bool knows_edits, Detail detail) {
  json["different_units"] = units.size();
  Json list = Json::array();
  const std::size_t most = detail == Detail::kPage ? kUnitsOnPage : units.size();
  for (const auto& [unit, tally] : units.commonest(most)) {
    Json entry;
    entry["unit"] = unit;
    put_tally(entry, tally, knows_edits);
    list.push_back(std::move(entry));
  }
  json["units"] = std::move(list);
  put_tally(json["other_units"], units.others(), knows_edits);
}

Json shown_json(const ShownRepeat& repeat, Detail detail) {
  Json json;
  if (!repeat.sequence.empty()) json["sequence"] = shown_name(repeat.sequence, detail);
  json["start"] = repeat.start;
  json["end"] = repeat.end;
  json["unit_length"] = repeat.unit_length;
  json["unit"] = repeat.unit;
  json["bases"] = repeat.bases;
  json["copies"] = thousandths_json(repeat.copies);
  json["perfection"] = thousandths_json(repeat.perfection);
  json["score"] = optional_json(repeat.score);
  json["columns"] = repeat.columns;
  json["alignment"] = repeat.rows;
  return json;
}

Json shown_list_json(const ShownRepeats& repeats, Detail detail) {
  Json list = Json::array();
  for (const ShownRepeat& repeat : repeats.list()) list.push_back(shown_json(repeat, detail));
  return list;
}

Json windows_json(const Windows& windows, Detail detail) {
  Json json;
  json["size"] = windows.size();
  Json list = Json::array();
  for (const WindowedSequence& sequence : windows.sequences()) {
    Json repeats = Json::array();
    Json covered = Json::array();
    Json longest = Json::array();
    for (const Window& window : sequence.windows) {
      repeats.push_back(window.repeats);
      covered.push_back(window.covered);
      longest.push_back(shown_list_json(window.longest, detail));
    }
    list.push_back({{"index", sequence.index},
                    {"length", sequence.length},
                    {"repeats", std::move(repeats)},
                    {"covered", std::move(covered)},
                    {"longest", std::move(longest)}});
  }
  json["sequences"] = std::move(list);
  return json;
}

Json sequence_json(const SequenceStats& sequence, std::size_t index, bool knows_edits,
                   Detail detail) {
  Json json;
  json["index"] = index;
  json["name"] = shown_name(sequence.name, detail);
  put_density(json, sequence.tally, sequence.covered, sequence.length, sequence.ns);
  put_tally(json, sequence.tally, knows_edits);
  Json list = Json::array();
  for (const auto& [length, count] : sequence.by_unit_length) {
    list.push_back({length, count.repeats, count.bases});
  }
  json["by_unit_length"] = std::move(list);
  return json;
}

/// The sequences that have no windows, summed up.
Json other_sequences_json(const GenomeStats& genome, const std::vector<bool>& has_windows) {
  GenomeStats others;
  others.knows_edits = genome.knows_edits;
  for (std::size_t i = 0; i < genome.sequences.size(); ++i) {
    if (has_windows[i]) continue;
    others.tally.add(genome.sequences[i].tally);
    others.covered += genome.sequences[i].covered;
    SequenceStats sequence;
    sequence.length = genome.sequences[i].length;
    sequence.ns = genome.sequences[i].ns;
    others.sequences.push_back(std::move(sequence));
  }
  Json json;
  json["sequences"] = others.sequences.size();
  put_density(json, others.tally, others.covered, others.bases(), others.ns());
  put_tally(json, others.tally, others.knows_edits);
  return json;
}

void put_sequences(Json& json, const GenomeStats& genome, Detail detail) {
  std::vector<bool> has_windows(genome.sequences.size(), false);
  for (const WindowedSequence& sequence : genome.windows.sequences()) {
    has_windows[sequence.index] = true;
  }
  Json list = Json::array();
  for (std::size_t i = 0; i < genome.sequences.size(); ++i) {
    if (detail == Detail::kPage && !has_windows[i]) continue;
    list.push_back(sequence_json(genome.sequences[i], i, genome.knows_edits, detail));
  }
  json["by_sequence"] = std::move(list);
  json["other_sequences"] = other_sequences_json(genome, has_windows);
}

Json genome_json(const GenomeStats& genome, Detail detail) {
  Json json;
  json["name"] = shown_name(genome.name, detail);
  json["version"] = genome.version;
  Json settings = Json::array();
  for (const auto& [label, value] : genome.settings) settings.push_back({label, value});
  json["settings"] = std::move(settings);
  json["knows_edits"] = genome.knows_edits;
  json["sequences"] = genome.sequences.size();
  put_density(json, genome.tally, genome.covered, genome.bases(), genome.ns());
  put_tally(json, genome.tally, genome.knows_edits);
  json["by_unit_length"] = unit_lengths_json(genome.by_unit_length, genome.knows_edits);
  put_units(json, genome.units, genome.knows_edits, detail);
  put_sequences(json, genome, detail);
  json["windows"] = windows_json(genome.windows, detail);
  json["longest_repeats"] = shown_list_json(genome.longest, detail);
  json["most_diverged_repeats"] = shown_list_json(genome.most_diverged, detail);
  return json;
}

Json total_json(const std::vector<GenomeStats>& genomes, Detail detail) {
  TotalStats total;
  for (const GenomeStats& genome : genomes) total.add(genome);
  Json json;
  json["genomes"] = total.genomes;
  json["sequences"] = total.sequences;
  put_density(json, total.tally, total.covered, total.bases, total.ns);
  put_tally(json, total.tally, total.knows_edits);
  json["by_unit_length"] = unit_lengths_json(total.by_unit_length, total.knows_edits);
  put_units(json, total.units, total.knows_edits, detail);
  return json;
}

}  // namespace

std::optional<double> per_million(std::int64_t count, const std::optional<std::int64_t>& bases) {
  if (!bases || *bases <= 0) return std::nullopt;
  return std::round(static_cast<double>(count) * 1e9 / static_cast<double>(*bases)) / 1000.0;
}

std::optional<double> percent(std::int64_t part, const std::optional<std::int64_t>& whole) {
  if (!whole || *whole <= 0) return std::nullopt;
  return std::round(static_cast<double>(part) * 1e6 / static_cast<double>(*whole)) / 1e4;
}

std::optional<double> edits_per_100_bases(const Tally& tally, bool knows_edits) {
  if (!knows_edits) return std::nullopt;
  return percent(tally.mismatches + tally.insertions + tally.deletions, tally.bases);
}

Json to_json(const std::vector<GenomeStats>& genomes, Detail detail) {
  Json json;
  json[kStatsKey] = kStatsVersion;
  json["copy_classes"] = kCopyClasses;
  json["divergence_classes"] = kDivergenceClasses;
  Json list = Json::array();
  for (const GenomeStats& genome : genomes) list.push_back(genome_json(genome, detail));
  json["genomes"] = std::move(list);
  json["total"] = total_json(genomes, detail);
  return json;
}

}  // namespace vorlan_tools
