// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "ssr/ssr_classes.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "errors.h"
#include "report/field_cursor.h"

namespace vorlan_tools {

namespace {

std::int64_t threshold_of(const ThresholdRule& rule, std::int64_t unit_length) {
  const double line = static_cast<double>(rule.intercept) +
                      static_cast<double>(rule.slope) * static_cast<double>(unit_length);
  return std::max<std::int64_t>(rule.constant, std::llround(std::ceil(line)));
}

}  // namespace

SsrClasses::SsrClasses(const std::string& text) {
  std::istringstream classes(text);
  for (std::string one; std::getline(classes, one, ',');) {
    std::int64_t unit_length = 0;
    std::int64_t copies = 0;
    FieldCursor fields(one);
    const bool fits = fields.number(unit_length).literal(":").number(copies).at_end() &&
                      unit_length >= 1 && copies >= 1;
    if (!fits || !copies_.emplace(unit_length, copies).second) {
      throw UsageError("--min takes copies for unit lengths, such as 1:10,2:6, not \"" + text +
                       "\".");
    }
  }
  if (copies_.empty()) throw UsageError("--min names no unit length.");
}

std::string SsrClasses::missing_from(const Settings& settings) const {
  for (const auto& [unit_length, copies] : copies_) {
    const std::string which = std::to_string(copies) + " copies of " + std::to_string(unit_length) +
                              (unit_length == 1 ? " base" : " bases");
    if (unit_length < settings.min_unit_length || unit_length > settings.max_unit_length) {
      return "The report holds no units of " + std::to_string(unit_length) +
             (unit_length == 1 ? " base" : " bases") + ", since the run did not look for them.";
    }
    const std::int64_t length = unit_length * copies;
    // The first copy scores nothing, each base behind it one.
    const bool is_found = length >= threshold_of(settings.min_length, unit_length) &&
                          length - unit_length >= threshold_of(settings.min_score, unit_length) &&
                          settings.max_perfection >= 100;
    if (!is_found) return "The thresholds of the run leave out repeats of " + which + ".";
  }
  if (settings.remove_overlapping) {
    return "The run left out repeats that others overlap mostly; -D of vorlan keeps them.";
  }
  return "";
}

}  // namespace vorlan_tools
