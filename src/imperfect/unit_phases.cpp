// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/unit_phases.h"

namespace vorlan {

UnitPhases::Unit UnitPhases::of(std::string_view unit) {
  const std::string twice = std::string(unit) + std::string(unit);
  const std::string_view rotations = twice;
  const std::size_t length = unit.size();
  std::size_t smallest = 0;
  for (std::size_t i = 1; i < length; ++i) {
    if (rotations.compare(i, length, rotations, smallest, length) < 0) smallest = i;
  }
  const std::string canonical(rotations.substr(smallest, length));
  auto found = classes_.find(canonical);
  if (found == classes_.end()) {
    // The next place where the unit written twice holds it again is one period on.
    const auto period = static_cast<std::uint32_t>(rotations.find(unit, 1));
    found = classes_.emplace(canonical, Class{next_base_, period}).first;
    next_base_ += period;
  }
  Unit result;
  result.base_ = found->second.base;
  result.length_ = static_cast<std::uint32_t>(length);
  result.period_ = found->second.period;
  result.rotation_ = static_cast<std::uint32_t>(smallest);
  return result;
}

}  // namespace vorlan
