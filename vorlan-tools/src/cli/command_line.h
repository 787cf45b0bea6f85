// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

namespace vorlan_tools {

/// The whole program: reads the command line, runs the subcommand that it names and returns the
/// exit status (see cli/exit_status.h). Every failure is told in one sentence on standard error.
int run_command_line(int argc, char** argv);

}  // namespace vorlan_tools
