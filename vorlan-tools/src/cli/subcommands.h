// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <CLI/App.hpp>
#include <functional>
#include <string>
#include <vector>

namespace vorlan_tools {

/// What the chosen subcommand does once the command line is known to be right; returns an exit
/// status. Failures are thrown as DataError or UsageError.
using Action = std::function<int()>;

/// Adds every subcommand to `app`. When one of them has been parsed, its work is found in `action`,
/// which must live as long as `app`.
/// `vorlan_arguments` is what stands behind "--" of `run` or `calibrate`.
void add_subcommands(CLI::App& app, Action& action,
                     const std::vector<std::string>& vorlan_arguments);

}  // namespace vorlan_tools
