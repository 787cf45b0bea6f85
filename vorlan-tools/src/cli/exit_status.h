// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

namespace vorlan_tools {

/// What the program ends with; the manual repeats this table.
enum ExitStatus : int {
  kSuccess = 0,  ///< all was done
  kData = 1,     ///< an input cannot be used, a check failed, or an output cannot be written
  kUsage = 2,    ///< the command line cannot be understood
};

}  // namespace vorlan_tools
