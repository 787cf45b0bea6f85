// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>
#include <vector>

namespace vorlan {

/// One line of the parameter report. The label comes first, then `parameter_separator()`, then the
/// value, which ends with the line end.
struct ParameterLine {
  const char* label;
  std::string value;
};

/// The lines that tell which settings this run uses, the title first, in the order of the report.
/// Values may hold any byte that the user gave as a file name: print them as they are.
std::vector<ParameterLine> search_parameters();

/// What stands between label and value: a tab in the tab-separated output formats, else a blank.
const char* parameter_separator();

}  // namespace vorlan
