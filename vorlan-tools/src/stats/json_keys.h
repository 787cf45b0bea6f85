// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

namespace vorlan_tools {

/// What the first key of a file of `stats --json` is, and the version of its keys.
inline constexpr const char* kStatsKey = "vorlan_tools_stats";
inline constexpr int kStatsVersion = 1;

}  // namespace vorlan_tools
