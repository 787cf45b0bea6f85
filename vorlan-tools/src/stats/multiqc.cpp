// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "stats/multiqc.h"

#include <nlohmann/json.hpp>

#include "stats/stats_json.h"
#include "stats/stats_table.h"

namespace vorlan_tools {

namespace {

using Json = nlohmann::ordered_json;

/// MultiQC puts names into its page as they are: only what is harmless there stays.
std::string sample_name(const std::string& name) {
  std::string result;
  for (const char c : name) {
    const bool is_plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                          (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '_';
    result += is_plain ? c : '_';
  }
  return result;
}

Json column(const char* title, const char* description, const char* format) {
  return {{"title", title}, {"description", description}, {"format", format}, {"min", 0}};
}

Json general(const std::vector<GenomeStats>& genomes) {
  Json json;
  json["id"] = "vorlan";
  json["plot_type"] = "generalstats";
  json["pconfig"] = Json::array(
      {{{"repeats", column("Repeats", "Tandem repeats found by Vorlan", "{:,.0f}")}},
       {{"covered_percent", column("% in repeats", "Bases in tandem repeats", "{:,.2f}")}},
       {{"loci_per_mb", column("Loci/Mb", "Tandem repeats per million bases", "{:,.1f}")}},
       {{"edits_per_100_bases", column("Edits/100", "Edits per 100 bases", "{:,.2f}")}}});
  Json data = Json::object();
  for (const GenomeStats& genome : genomes) {
    Json& sample = data[sample_name(genome.name)];
    sample["repeats"] = genome.tally.repeats;
    const auto put = [&sample](const char* key, const std::optional<double>& value) {
      if (value) sample[key] = *value;
    };
    put("covered_percent", percent(genome.covered, genome.bases()));
    put("loci_per_mb", per_million(genome.tally.repeats, genome.bases()));
    put("edits_per_100_bases", edits_per_100_bases(genome.tally, genome.knows_edits));
  }
  json["data"] = std::move(data);
  return json;
}

Json unit_lengths(const std::vector<GenomeStats>& genomes) {
  Json json;
  json["id"] = "vorlan_unit_lengths";
  json["section_name"] = "Tandem repeats by unit length";
  json["description"] = "Bases in the tandem repeats that Vorlan found, by length of the unit.";
  json["plot_type"] = "bargraph";
  json["pconfig"] = {{"id", "vorlan_unit_lengths_plot"},
                     {"title", "Vorlan: bases in repeats by unit length"},
                     {"ylab", "Bases"}};
  Json data = Json::object();
  for (const GenomeStats& genome : genomes) {
    Json& sample = data[sample_name(genome.name)] = Json::object();
    for (const auto& [length, stats] : genome.by_unit_length) {
      sample[std::to_string(length)] = stats.tally.bases;
    }
  }
  json["data"] = std::move(data);
  return json;
}

Json divergence(const std::vector<GenomeStats>& genomes) {
  Json json;
  json["id"] = "vorlan_divergence";
  json["section_name"] = "Divergence of tandem repeats";
  json["description"] = "Bases in repeats, by 100 % less their perfection, rounded up.";
  json["plot_type"] = "linegraph";
  json["pconfig"] = {{"id", "vorlan_divergence_plot"},
                     {"title", "Vorlan: divergence of repeats"},
                     {"xlab", "Divergence in %"},
                     {"ylab", "Bases"}};
  Json data = Json::object();
  for (const GenomeStats& genome : genomes) {
    UnitLengthStats all;
    for (const auto& [length, stats] : genome.by_unit_length) all.add(stats);
    Json& sample = data[sample_name(genome.name)] = Json::object();
    for (std::size_t i = 0; i < kDivergenceClasses; ++i) {
      sample[std::to_string(i)] = all.by_divergence[i].bases;
    }
  }
  json["data"] = std::move(data);
  return json;
}

}  // namespace

std::vector<std::pair<std::string, std::string>> multiqc_files(
    const std::vector<GenomeStats>& genomes) {
  return {{".vorlan_general_mqc.json", general(genomes).dump(1) + "\n"},
          {".vorlan_unit_lengths_mqc.json", unit_lengths(genomes).dump(1) + "\n"},
          {".vorlan_divergence_mqc.json", divergence(genomes).dump(1) + "\n"}};
}

}  // namespace vorlan_tools
