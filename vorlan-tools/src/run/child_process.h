// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace vorlan_tools {

/// The status of a process whose program could not be executed.
inline constexpr int kCannotExecute = 127;

/// How to start a program.
struct Command {
  std::string program;                 ///< path of the executable file
  std::vector<std::string> arguments;  ///< without the program itself
  std::string folder;                  ///< where it runs
  std::string output;                  ///< file for its standard output, replaced
  std::string messages;                ///< file for its standard error, replaced
};

/// Starts `command` with an empty standard input and returns its process id. The child ends when
/// this process ends, however that happens, and takes no notice of Ctrl-C: this process tells it
/// when to stop. Must be called from the main thread. Throws DataError if the files or the process
/// cannot be made.
pid_t start(const Command& command);

/// Where the program vorlan is: `wanted` if it is not empty, else the one beside this program, else
/// the first one in PATH. An absolute path. Throws UsageError if there is none.
std::string find_vorlan(const std::string& wanted);

}  // namespace vorlan_tools
