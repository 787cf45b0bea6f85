// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <string_view>

namespace vorlan_tools {

/// The fewest edits (mismatches, inserted and deleted bases) that turn a stretch of `unit` written
/// out again and again, from any phase on, into `bases`. An N fits everywhere if `ns_fit`. Time:
/// product of both lengths; memory: the unit's. Requires a unit.
std::int64_t distance_from_unit(std::string_view bases, std::string_view unit, bool ns_fit);

}  // namespace vorlan_tools
