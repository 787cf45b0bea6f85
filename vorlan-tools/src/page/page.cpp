// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "page/page.h"

#include "calibrate/calibration_json.h"
#include "page/page_parts.h"
#include "stats/stats_json.h"

namespace vorlan_tools {

namespace {

constexpr std::string_view kDataMark = "@@data@@";

/// JSON that can stand within a script element: only printable ASCII, without < > and &.
std::string embeddable(const nlohmann::ordered_json& json) {
  constexpr bool kAsciiOnly = true;
  std::string result;
  for (const char c : json.dump(-1, ' ', kAsciiOnly)) {
    switch (c) {
      case '<':
        result += "\\u003c";
        break;
      case '>':
        result += "\\u003e";
        break;
      case '&':
        result += "\\u0026";
        break;
      default:
        result += c;
    }
  }
  return result;
}

}  // namespace

std::string page_text(const std::vector<GenomeStats>& genomes,
                      const std::vector<Calibration>& calibrations) {
  const std::string_view text = page_template();
  const std::size_t mark = text.find(kDataMark);
  std::string page(text.substr(0, mark));
  nlohmann::ordered_json numbers = to_json(genomes, Detail::kPage);
  for (std::size_t i = 0; i < calibrations.size(); ++i) {
    numbers["genomes"][i]["calibration"] = to_json(calibrations[i]);
  }
  page += embeddable(numbers);
  page += text.substr(mark + kDataMark.size());
  return page;
}

}  // namespace vorlan_tools
