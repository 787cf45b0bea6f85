// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include "cli/subcommands.h"

namespace vorlan_tools {

/// Adds the subcommand `consensus`.
void add_consensus(CLI::App& app, Action& action);

}  // namespace vorlan_tools
