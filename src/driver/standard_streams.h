// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

namespace vorlan {

/// Makes sure that no file opened later gets the descriptor of standard output or standard error
/// when the caller has closed them: console texts would end up in the report, or the input would be
/// overwritten as "/dev/stdout". Writing to a closed stream still fails, and standard input is left
/// as it is. Call before any file is opened.
void keep_output_descriptors();

/// From here on a limit on the size of files makes a write fail, as a full disk does. Otherwise it
/// ends the process by SIGXFSZ, without a message and with a status that a shell shows as 153, the
/// status for a lack of memory.
void let_writes_fail_at_a_size_limit();

}  // namespace vorlan
