// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "io/line_reader.h"

namespace vorlan_tools {

/// The next line of a BED file that tells of an interval, without a carriage return at its end:
/// comments, "track" and "browser" lines and empty ones are passed over. False behind the last one.
bool next_interval_line(LineReader& lines, std::string_view& line);

/// The parts of `text` between separators; at most `most`, of which the last one may be followed by
/// others.
std::vector<std::string_view> split(std::string_view text, char separator,
                                    std::size_t most = SIZE_MAX);

/// Whether all of `text` is a number from 0, which `number` becomes.
bool is_number(std::string_view text, std::int64_t& number);

}  // namespace vorlan_tools
