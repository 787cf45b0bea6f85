// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>

#include "check/findings.h"
#include "report/repeat.h"
#include "report/settings.h"

namespace vorlan_tools {

/// Checks the unit that a repeat states against its unit length and its motif.
///
/// Most repeats share few pairs of unit and motif, and whether such a pair is right depends on
/// nothing else: those that were are remembered, up to a number of them.
class UnitCheck {
 public:
  UnitCheck(const Settings& settings, Findings& findings)
      : settings_(settings), findings_(findings) {}

  /// `motif` is the first unit of the perfect repeat; empty if it is not known.
  void run(const Repeat& repeat, std::string_view motif);

 private:
  void check_length(const Repeat& repeat);
  void check_pair(const Repeat& repeat, std::string_view motif);

  const Settings& settings_;
  Findings& findings_;
  std::unordered_set<std::string> right_pairs_;
  std::string pair_;
};

}  // namespace vorlan_tools
