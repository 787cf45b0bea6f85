// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "calibrate/calibration_json.h"

#include <charconv>
#include <cmath>
#include <iterator>

#include "errors.h"
#include "io/json_numbers.h"
#include "io/line_reader.h"

namespace vorlan_tools {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kCalibrationKey = "vorlan_tools_calibration";
constexpr int kCalibrationVersion = 1;

double rounded(double value) { return std::round(value * 1e6) / 1e6; }

std::string text_of(double value) {
  char digits[64];
  return {digits, std::to_chars(digits, digits + sizeof digits, rounded(value)).ptr};
}

double chance_per_mb(const UnitLengthShares& shares, std::int64_t score,
                     const Calibration& calibration) {
  if (calibration.copied_bases == 0) return 0;
  return expected_by_chance(shares, score, calibration.copies) * 1e6 /
         static_cast<double>(calibration.copied_bases);
}

Json thresholds_json(const UnitLengthShares& shares) {
  Json list = Json::array();
  for (std::size_t level = 0; level < std::size(kLevels); ++level) {
    list.push_back({{"level", kLevels[level]},
                    {"score", shares.thresholds[level].score},
                    {"is_sure", shares.thresholds[level].is_sure}});
  }
  return list;
}

Json unit_length_json(std::int64_t length, const UnitLengthShares& shares,
                      const Calibration& calibration) {
  Json json;
  const std::int64_t lowest = shares.scores.front().score;
  std::int64_t found = 0;
  Json scores = Json::array();
  for (const ScoreShare& entry : shares.scores) {
    found += entry.count.found;
    scores.push_back({entry.score, entry.count.found, entry.count.chance, rounded(entry.share),
                      rounded(entry.share_from)});
  }
  json["unit_length"] = length;
  json["found"] = found;
  json["chance_per_mb"] = rounded(chance_per_mb(shares, lowest, calibration));
  json["false_share"] = rounded(shares.scores.front().share_from);
  json["thresholds"] = thresholds_json(shares);
  json["scores"] = std::move(scores);
  return json;
}

Json advice_json(const Calibration& calibration) {
  Json list = Json::array();
  for (std::size_t level = 0; level < std::size(kLevels); ++level) {
    const ThresholdLine& line = calibration.lines[level];
    list.push_back({{"level", kLevels[level]},
                    {"min_score", line.constant},
                    {"min_score_a", line.intercept},
                    {"min_score_b", line.slope},
                    {"options", options_of(line)},
                    {"kept", line.kept},
                    {"expected_false", rounded(line.expected_false)}});
  }
  return list;
}

Calibration calibration_of(const Json& json) {
  if (whole_number<int>(json.at(kCalibrationKey)) != kCalibrationVersion) {
    throw DataError("its version is unknown");
  }
  Calibration calibration;
  json.at("genome").get_to(calibration.genome);
  json.at("version").get_to(calibration.version);
  for (const Json& entry : json.at("settings")) {
    calibration.settings.emplace_back(entry.at(0).get<std::string>(),
                                      entry.at(1).get<std::string>());
  }
  calibration.k = whole_number<unsigned>(json.at("k"));
  calibration.window = stored_number(json.at("window"));
  calibration.copies = stored_number(json.at("copies"));
  calibration.seed = whole_number<std::uint64_t>(json.at("seed"));
  calibration.mask_length = stored_number(json.at("mask_length"));
  calibration.bases = stored_number(json.at("bases"));
  calibration.copied_bases = stored_number(json.at("copied_bases"));
  if (calibration.copies < 1) throw DataError("it has no copies");
  ScoreCounts counts;
  for (const Json& entry : json.at("by_unit_length")) {
    auto& scores = counts[stored_number(entry.at("unit_length"))];
    for (const Json& score : entry.at("scores")) {
      scores[stored_number(score.at(0))] = {stored_number(score.at(1)), stored_number(score.at(2))};
    }
    if (scores.empty()) throw DataError("a unit length has no scores");
  }
  evaluate(counts, calibration);
  return calibration;
}

}  // namespace

std::string options_of(const ThresholdLine& line) {
  std::string text = "--minScore ";
  text += std::to_string(line.constant);
  text += " --minScore_a ";
  text += std::to_string(line.intercept);
  text += " --minScore_b ";
  return text += text_of(line.slope);
}

Json to_json(const Calibration& calibration) {
  Json json;
  json[kCalibrationKey] = kCalibrationVersion;
  json["genome"] = calibration.genome;
  json["version"] = calibration.version;
  Json settings = Json::array();
  for (const auto& [label, value] : calibration.settings) settings.push_back({label, value});
  json["settings"] = std::move(settings);
  json["k"] = calibration.k;
  json["window"] = calibration.window;
  json["copies"] = calibration.copies;
  json["seed"] = calibration.seed;
  json["mask_length"] = calibration.mask_length;
  json["bases"] = calibration.bases;
  json["copied_bases"] = calibration.copied_bases;
  json["advice"] = advice_json(calibration);
  Json list = Json::array();
  for (const auto& [length, shares] : calibration.by_unit_length) {
    list.push_back(unit_length_json(length, shares, calibration));
  }
  json["by_unit_length"] = std::move(list);
  return json;
}

Calibration read_calibration(const std::string& name) {
  LineReader lines(name);
  std::string text;
  for (std::string_view line; lines.next(line);) (text += line) += '\n';
  return calibration_from_json(text, lines.name());
}

Calibration calibration_from_json(const std::string& text, const std::string& source) {
  const auto refuse = [&source](const std::string& why) {
    return DataError(source + " is no file of vorlan-tools calibrate --json: " + why + ".");
  };
  try {
    return calibration_of(Json::parse(text));
  } catch (const Json::exception& error) {
    throw refuse("fault " + std::to_string(error.id) + " of its JSON");
  } catch (const DataError& error) {
    throw refuse(error.what());
  }
}

std::string calibration_table(const Calibration& calibration) {
  std::string text;
  for (std::size_t level = 0; level < std::size(kLevels); ++level) {
    const ThresholdLine& line = calibration.lines[level];
    (text += "# at most ") += text_of(100 * kLevels[level]);
    (text += " % false: ") += options_of(line);
    (text += " (keeps ") += std::to_string(line.kept);
    (text += " repeats, of which ") += text_of(std::round(line.expected_false * 10) / 10);
    text += " expected by chance)\n";
  }
  text += "unit_length\tscore\tfound\tchance\tchance_per_mb_from\tfalse_share\tfalse_share_from\n";
  for (const auto& [length, shares] : calibration.by_unit_length) {
    for (const ScoreShare& entry : shares.scores) {
      for (const std::int64_t number :
           {length, entry.score, entry.count.found, entry.count.chance}) {
        (text += std::to_string(number)) += '\t';
      }
      (text += text_of(chance_per_mb(shares, entry.score, calibration))) += '\t';
      (text += text_of(entry.share)) += '\t';
      (text += text_of(entry.share_from)) += '\n';
    }
  }
  return text;
}

}  // namespace vorlan_tools
