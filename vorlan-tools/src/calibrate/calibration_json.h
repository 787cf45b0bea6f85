// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "calibrate/calibration.h"

namespace vorlan_tools {

nlohmann::ordered_json to_json(const Calibration& calibration);

/// Reads a file of `calibrate --json`, or its text; `source` is for messages. Throws DataError.
Calibration read_calibration(const std::string& name);
Calibration calibration_from_json(const std::string& text, const std::string& source);

/// A line for each unit length and score, and the advice as comments in front.
std::string calibration_table(const Calibration& calibration);

/// "--minScore 9 --minScore_a 12 --minScore_b -0.5"
std::string options_of(const ThresholdLine& line);

}  // namespace vorlan_tools
