// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>
#include <vector>

namespace vorlan_tools {

/// The command line of a vorlan run, taken apart: file names, and the options in front of them.
/// What the values of options mean is left to vorlan.
struct VorlanArguments {
  /// Every option with its value, in the order given, except those that have a place of their own.
  std::vector<std::string> settings;
  /// --firstSeq and --lastSeq with their values.
  std::vector<std::string> range;
  std::vector<std::string> names;
  bool masks = false;          ///< --maskX was given
  bool asks_for_text = false;  ///< --help or --version was given: nothing is to be searched
};

/// Takes `arguments` apart as vorlan does: an argument behind an option that has a value is that
/// value, whatever it looks like; behind "--" all are names. Throws UsageError for an option that
/// vorlan does not have, and for one without its value.
VorlanArguments take_apart(const std::vector<std::string>& arguments);

}  // namespace vorlan_tools
