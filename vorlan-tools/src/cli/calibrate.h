// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>
#include <vector>

#include "cli/subcommands.h"

namespace vorlan_tools {

/// Adds the subcommand `calibrate`; `vorlan_arguments` is what stands behind "--".
void add_calibrate(CLI::App& app, Action& action, const std::vector<std::string>& vorlan_arguments);

}  // namespace vorlan_tools
