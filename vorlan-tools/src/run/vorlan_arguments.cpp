// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/vorlan_arguments.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "errors.h"

namespace vorlan_tools {

namespace {

enum class Kind { kSwitch, kValue, kRange, kMask, kText };

struct Option {
  std::string_view short_name;  ///< empty: only the long name exists
  std::string_view long_name;
  Kind kind;
};

/// All options of vorlan. A test compares them with its help text.
constexpr std::array kOptions{
    Option{"", "--sequenceInfoAsComment", Kind::kSwitch},
    Option{"-N", "--succN", Kind::kValue},
    Option{"", "--NsAsMissense", Kind::kSwitch},
    Option{"", "--preferShorterRepeats", Kind::kSwitch},
    Option{"", "--reportUnit", Kind::kValue},
    Option{"", "--NPerfectionMode", Kind::kValue},
    Option{"", "--printRepeatSeqMode", Kind::kValue},
    Option{"", "--outputFormat", Kind::kValue},
    Option{"", "--maskX", Kind::kMask},
    Option{"-f", "--flanking", Kind::kValue},
    Option{"", "--minPerfection", Kind::kValue},
    Option{"", "--maxPerfection", Kind::kValue},
    Option{"-D", "--dontRemoveMostlyOverlapping", Kind::kSwitch},
    Option{"", "--firstSeq", Kind::kRange},
    Option{"", "--lastSeq", Kind::kRange},
    Option{"-R", "--maximum_score_reduction", Kind::kValue},
    Option{"-r", "--recursion", Kind::kValue},
    Option{"-u", "--minUnitLen", Kind::kValue},
    Option{"-U", "--maxUnitLen", Kind::kValue},
    Option{"", "--minLength_b", Kind::kValue},
    Option{"", "--minLength_a", Kind::kValue},
    Option{"-l", "--minLength", Kind::kValue},
    Option{"", "--minScore_b", Kind::kValue},
    Option{"", "--minScore_a", Kind::kValue},
    Option{"-s", "--minScore", Kind::kValue},
    Option{"-m", "--mismatchScore", Kind::kValue},
    Option{"-g", "--indelScore", Kind::kValue},
    Option{"-M", "--searchMode", Kind::kValue},
    Option{"-h", "--help", Kind::kText},
    Option{"", "--version", Kind::kText},
};

const Option& option_named(const std::string& argument) {
  const auto* const found = std::find_if(kOptions.begin(), kOptions.end(), [&](const Option& o) {
    return argument == o.long_name || (!o.short_name.empty() && argument == o.short_name);
  });
  if (found == kOptions.end()) throw UsageError("vorlan has no option " + argument + ".");
  return *found;
}

/// Moves the option at `at`, with its value if it has one, to where it belongs. Leaves `at` at the
/// last argument that was taken.
void take_option(const std::vector<std::string>& arguments, std::size_t& at,
                 VorlanArguments& result) {
  const Option& option = option_named(arguments[at]);
  std::vector<std::string>& place = option.kind == Kind::kRange ? result.range : result.settings;
  place.push_back(arguments[at]);
  if (option.kind == Kind::kMask) result.masks = true;
  if (option.kind == Kind::kText) result.asks_for_text = true;
  if (option.kind != Kind::kValue && option.kind != Kind::kRange) return;
  if (++at == arguments.size()) throw UsageError("The option " + place.back() + " needs a value.");
  place.push_back(arguments[at]);
}

}  // namespace

VorlanArguments take_apart(const std::vector<std::string>& arguments) {
  VorlanArguments result;
  bool only_names = false;
  for (std::size_t at = 0; at < arguments.size(); ++at) {
    const std::string& argument = arguments[at];
    const bool looks_like_option = argument.size() > 1 && argument.front() == '-';
    if (only_names || !looks_like_option) {
      result.names.push_back(argument);
    } else if (argument == "--" || argument == "--ignore_rest") {
      only_names = true;
    } else {
      take_option(arguments, at, result);
    }
  }
  return result;
}

}  // namespace vorlan_tools
