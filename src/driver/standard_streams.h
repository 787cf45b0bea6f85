// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

namespace vorlan {

/// Makes sure that no file opened later gets the descriptor of standard output or standard error
/// when the caller has closed them: console texts would end up in the report, or the input would be
/// overwritten as "/dev/stdout". Writing to a closed stream still fails, and standard input is left
/// as it is. Call before any file is opened.
void keep_output_descriptors();

}  // namespace vorlan
