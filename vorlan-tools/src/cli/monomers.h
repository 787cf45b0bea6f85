// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include "cli/subcommands.h"

namespace vorlan_tools {

/// Adds the subcommand `monomers`.
void add_monomers(CLI::App& app, Action& action);

}  // namespace vorlan_tools
