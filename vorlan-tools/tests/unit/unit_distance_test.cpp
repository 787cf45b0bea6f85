// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "check/unit_distance.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace vorlan_tools {
namespace {

/// Edit distance to every stretch of the unrolled unit that can matter, one by one.
std::int64_t plain_distance(const std::string& bases, const std::string& unit) {
  std::int64_t best = static_cast<std::int64_t>(bases.size());
  for (std::size_t phase = 0; phase < unit.size(); ++phase) {
    std::string unrolled;
    for (std::size_t i = 0; i < 2 * bases.size() + unit.size(); ++i)
      unrolled += unit[(phase + i) % unit.size()];
    std::vector<std::int64_t> row(unrolled.size() + 1);
    for (std::size_t j = 0; j < row.size(); ++j) row[j] = static_cast<std::int64_t>(j);
    for (const char base : bases) {
      std::vector<std::int64_t> next(row.size(), row[0] + 1);
      for (std::size_t j = 1; j < row.size(); ++j) {
        next[j] =
            std::min({row[j - 1] + (base == unrolled[j - 1] ? 0 : 1), row[j] + 1, next[j - 1] + 1});
      }
      row = next;
    }
    best = std::min(best, *std::min_element(row.begin(), row.end()));
  }
  return best;
}

TEST(UnitDistance, AgreesWithThePlainDefinition) {
  std::mt19937 random(5);
  const auto random_text = [&random](std::size_t longest) {
    std::string text;
    for (std::size_t length = 1 + random() % longest; text.size() < length;)
      text += "ACG"[random() % 3];
    return text;
  };
  for (int i = 0; i < 3000; ++i) {
    const std::string bases = random_text(14);
    const std::string unit = random_text(5);
    ASSERT_EQ(distance_from_unit(bases, unit, false), plain_distance(bases, unit))
        << bases << " " << unit;
  }
}

TEST(UnitDistance, NsFitOnlyIfAllowed) {
  EXPECT_EQ(distance_from_unit("ACANACNC", "AC", true), 0);
  EXPECT_EQ(distance_from_unit("ACANACNC", "AC", false), 2);
}

}  // namespace
}  // namespace vorlan_tools
