// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

namespace vorlan {

/// What a search needs of the console, handed in by the driver, so that searches do not depend on
/// where their progress is shown. The default says nothing.
struct SearchConsole {
  /// True when a progress line is due. Cheap, but it reads the clock: ask once in a while.
  bool (*check_report_status)() = [] { return false; };

  /// Shows one progress line. `name` is 0-terminated; `mode` is reserved, 'r'.
  void (*report_status)(unsigned sequence_number, const char* name, unsigned unit_length,
                        char mode) = [](unsigned, const char*, unsigned, char) {};

  /// Shows a text at once, as it is.
  void (*announce)(const char* text) = [](const char*) {};
};

}  // namespace vorlan
