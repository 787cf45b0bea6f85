// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/sorted_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <sstream>
#include <tuple>
#include <vector>

#include "temporary_file.h"

namespace vorlan_tools {
namespace {

using Row = std::tuple<std::string, std::int64_t, std::int64_t, std::string>;

std::string sorted_text(const std::vector<Row>& rows, std::size_t memory) {
  SortedRows sorted(memory);
  for (const auto& [name, start, end, text] : rows) sorted.add(name, start, end, text);
  const TemporaryFile file("");
  OutputFile output(file.path(), Compression::kPlain);
  sorted.write_to(output);
  output.finish();
  std::stringstream text;
  text << std::ifstream(file.path()).rdbuf();
  return text.str();
}

/// Every row is a name of its own, so that the order of equal keys shows.
std::vector<Row> random_rows(int count) {
  std::mt19937 random(11);
  const std::vector<std::string> names{"", "a", "a\t", "b", "\xff", "chr10", "chr2"};
  std::vector<Row> rows;
  for (int i = 0; i < count; ++i) {
    const auto start = static_cast<std::int64_t>(random() % 20);
    rows.emplace_back(names[random() % names.size()], start,
                      start + static_cast<std::int64_t>(random() % 3), std::to_string(i) + "\n");
  }
  return rows;
}

TEST(SortedRows, OrderDoesNotDependOnTheMemory) {
  const std::vector<Row> rows = random_rows(2000);
  std::vector<Row> expected = rows;
  std::stable_sort(expected.begin(), expected.end(), [](const Row& a, const Row& b) {
    return std::tie(std::get<0>(a), std::get<1>(a), std::get<2>(a)) <
           std::tie(std::get<0>(b), std::get<1>(b), std::get<2>(b));
  });
  std::string text;
  for (const Row& row : expected) text += std::get<3>(row);
  for (const std::size_t memory :
       {std::size_t{500}, std::size_t{20000}, SortedRows::kDefaultMemory}) {
    EXPECT_EQ(sorted_text(rows, memory), text) << memory;
  }
}

TEST(SortedRows, ARunForEachRow) {
  EXPECT_EQ(
      sorted_text({{"b", 1, 2, "x"}, {"a", 3, 4, "y"}, {"a", 3, 4, "z"}, {"a", 1, 9, "w"}}, 1),
      "wyzx");
}

TEST(SortedRows, NothingGivesNothing) { EXPECT_EQ(sorted_text({}, 100), ""); }

}  // namespace
}  // namespace vorlan_tools
