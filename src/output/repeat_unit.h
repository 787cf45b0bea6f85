// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vorlan {

/// The text that a report shows for `unit` (the bases of one period, at least one), in the form
/// that `global_report_unit_mode` asks for; nothing when the unit is itself a repetition of a
/// shorter one, such as ACAC: such a repeat is not reported.
std::optional<std::string> reported_unit(std::string_view unit);

}  // namespace vorlan
