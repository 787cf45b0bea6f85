// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <CLI/App.hpp>
#include <map>
#include <string>

#include "cli/subcommands.h"
#include "monomers/dissect_arrays.h"

namespace vorlan_tools {

/// The targets of a subcommand, by the name that the command line gives them.
using ArrayForms = std::map<std::string, ArrayRequest::Form>;

/// Adds a subcommand that takes arrays apart: with the arrays, the genome, the output, the phase
/// and which repeats, and `forms` as targets, of which `standard` is the one when none is named.
/// Sets `action` when it is called.
void add_array_subcommand(CLI::App& command, const ArrayForms& forms, const std::string& standard,
                          Action& action);

}  // namespace vorlan_tools
