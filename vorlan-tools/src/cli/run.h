// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>
#include <vector>

#include "cli/subcommands.h"

namespace vorlan_tools {

/// Adds the subcommand `run`; `vorlan_arguments` is what stands behind "--".
void add_run(CLI::App& app, Action& action, const std::vector<std::string>& vorlan_arguments);

}  // namespace vorlan_tools
