// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

namespace vorlan {

/// Sets all settings from the arguments of the process, as handed to main.
///
/// Returns 0 when the run may go on, -1 or -2 when it must end; the reason has then been written to
/// standard error, and the settings copied so far keep their new values. Help and version end the
/// process with status 0 and a parse failure with status 1, in the library that does the parsing.
int read_and_init_parameters(int argc, const char* const* argv);

}  // namespace vorlan
