// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

namespace vorlan {

/// What main returns; the system shows it modulo 256. The command line adds -1 (255) for settings
/// that cannot be used and -2 (254) for an unknown choice; the library that parses it ends the
/// process itself with 1 for a parse failure and 0 for help and version.
enum ExitStatus : int {
  kSuccess = 0,
  kMalformedInput = -25,     // 231
  kInputNotOpened = -101,    // 155
  kOutputNotWritten = -102,  // 154
  kNotEnoughMemory = -103,   // 153
};

}  // namespace vorlan
