// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <memory>
#include <string>

#include "calibrate/calibration.h"
#include "convert/conversion.h"
#include "convert/row_format.h"

namespace vorlan_tools {

/// Whether a target has a place for one more value in its rows: bed and tsv have a column, gff3 an
/// attribute, jsonl a key.
bool can_hold_false_shares(Target target);

/// The rows of `format` with the share of false ones among repeats of the same unit length and
/// score. append_head() throws DataError if the report was made with other settings of the search
/// than the calibration.
std::unique_ptr<RowFormat> with_false_shares(std::unique_ptr<RowFormat> format, Target target,
                                             Calibration calibration);

}  // namespace vorlan_tools
