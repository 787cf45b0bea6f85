// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/ways/unit_phases.h"

namespace vorlan {

UnitPhases::Unit UnitPhases::of(std::string_view unit) {
  const std::string twice = std::string(unit) + std::string(unit);
  const std::string_view rotations = twice;
  const std::size_t length = unit.size();
  std::size_t smallest = 0;
  for (std::size_t i = 1; i < length; ++i) {
    if (rotations.compare(i, length, rotations, smallest, length) < 0) smallest = i;
  }
  // The next place where the unit written twice holds it again is one period on.
  const std::size_t period = rotations.find(unit, 1);
  const auto [found, is_new] =
      bases_.emplace(std::string(rotations.substr(smallest, period)), next_base_);
  if (is_new) next_base_ += static_cast<std::uint32_t>(period);
  Unit result;
  result.base_ = found->second;
  result.length_ = static_cast<std::uint32_t>(length);
  result.period_ = static_cast<std::uint32_t>(period);
  result.rotation_ = static_cast<std::uint32_t>(smallest);
  return result;
}

}  // namespace vorlan
