// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Compares the three searches with their slow twins over as many random cases as wanted:
//
//   vorlan_differential [--cases N] [--seed S] [--first K]
//
// runs the cases K to K + N - 1 of the series S, with all engines, with none and with each alone
// (defaults: 1000 cases, seed 1, first case 0), explains each failure on standard error, and prints
// "N passed, N failed". A single case is run again with its seed and number. Exit status: 0 when
// all cases passed, 1 when one failed, 2 when the command line is wrong.

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "random_cases.h"
#include "search_adapter.h"

namespace {

struct Series {
  std::uint64_t cases = 1000;
  std::uint64_t seed = 1;
  std::uint64_t first = 0;
};

std::uint64_t number_from(std::string_view text) {
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || text.empty()) {
    throw std::invalid_argument("not a number: " + std::string(text));
  }
  return number;
}

Series series_from(int argc, char** argv) {
  Series series;
  for (int i = 1; i < argc; i += 2) {
    const std::string_view option = argv[i];
    if (i + 1 == argc) throw std::invalid_argument("no value: " + std::string(option));
    const std::uint64_t value = number_from(argv[i + 1]);
    if (option == "--cases") {
      series.cases = value;
    } else if (option == "--seed") {
      series.seed = value;
    } else if (option == "--first") {
      series.first = value;
    } else {
      throw std::invalid_argument("unknown option: " + std::string(option));
    }
  }
  if (series.cases == 0) throw std::invalid_argument("no cases wanted");
  return series;
}

// Returns the number of failed cases.
std::uint64_t run(const Series& series) {
  differential::ProductSearch product;
  std::uint64_t failed = 0;
  for (std::uint64_t number = series.first; number - series.first < series.cases; ++number) {
    const differential::SearchCase search_case = differential::random_case(series.seed, number);
    const std::optional<std::string> difference = differential::difference(
        product, search_case.residues, search_case.settings, differential::Engines::kApart);
    if (!difference) continue;
    ++failed;
    std::fprintf(stderr, "FAILED: --seed %llu --first %llu --cases 1\n%s\n\n",
                 static_cast<unsigned long long>(series.seed),
                 static_cast<unsigned long long>(number), difference->c_str());
  }
  return failed;
}

}  // namespace

int main(int argc, char** argv) {
  Series series;
  try {
    series = series_from(argc, argv);
  } catch (const std::invalid_argument& fault) {
    std::fprintf(stderr, "%s\nUsage: vorlan_differential [--cases N] [--seed S] [--first K]\n",
                 fault.what());
    return 2;
  }
  const std::uint64_t failed = run(series);
  std::printf("%llu passed, %llu failed\n", static_cast<unsigned long long>(series.cases - failed),
              static_cast<unsigned long long>(failed));
  return failed == 0 ? 0 : 1;
}
