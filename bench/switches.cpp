// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// vorlan_switches ENGINES [ARGUMENT]...: Vorlan with the engines that its first argument asks for.
// All other arguments are those of Vorlan, and so is every byte that comes out.
//
//   none            the searches as they are defined: the plain program
//   all             as Vorlan itself
//   without=NAME    all but one
//   only=NAME       none but one
//
// vorlan_switches --names lists the engines, one per line.

#include <cstdio>
#include <optional>
#include <string_view>
#include <vector>

#include "driver/run.h"
#include "search/accelerations.h"

namespace {

using vorlan::Accelerations;

constexpr int kUsageError = 2;

int usage() {
  std::fputs(
      "Usage: vorlan_switches none|all|without=NAME|only=NAME [ARGUMENT OF VORLAN]...\n"
      "       vorlan_switches --names\n",
      stderr);
  return kUsageError;
}

void print_names() {
  for (const vorlan::NamedAcceleration& engine : vorlan::kAccelerations) std::puts(engine.name);
}

/// `engines` with the named one switched; nothing when there is no such engine.
std::optional<Accelerations> switched(Accelerations engines, std::string_view name, bool on) {
  for (const vorlan::NamedAcceleration& engine : vorlan::kAccelerations) {
    if (name != engine.name) continue;
    engines.*engine.is_on = on;
    return engines;
  }
  return std::nullopt;
}

/// What the first argument asks for; nothing when it is not understood.
std::optional<Accelerations> engines_of(std::string_view wanted) {
  constexpr std::string_view kWithout = "without=";
  constexpr std::string_view kOnly = "only=";
  if (wanted == "none") return Accelerations::none();
  if (wanted == "all") return Accelerations{};
  if (wanted.starts_with(kWithout)) {
    return switched({}, wanted.substr(kWithout.size()), false);
  }
  if (wanted.starts_with(kOnly)) {
    return switched(Accelerations::none(), wanted.substr(kOnly.size()), true);
  }
  return std::nullopt;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return usage();
  if (std::string_view(argv[1]) == "--names") {
    print_names();
    return 0;
  }
  const std::optional<Accelerations> engines = engines_of(argv[1]);
  if (!engines) return usage();
  std::vector<const char*> arguments(argv, argv + argc);
  arguments.erase(arguments.begin() + 1);
  return vorlan::run(argc - 1, arguments.data(), *engines);
}
