// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "io/json_numbers.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "calibrate/calibration_json.h"
#include "stats/stats_json.h"

namespace vorlan_tools {
namespace {

nlohmann::json parsed(const std::string& text) { return nlohmann::json::parse(text); }

template <typename Call>
std::string reason(const Call& call) {
  try {
    call();
  } catch (const DataError& error) {
    return error.what();
  }
  return "accepted";
}

TEST(WholeNumber, IsTakenUpToBothEndsOfItsType) {
  EXPECT_EQ(whole_number<int>(parsed("-2147483648")), INT32_MIN);
  EXPECT_EQ(whole_number<int>(parsed("2147483647")), INT32_MAX);
  EXPECT_EQ(whole_number<unsigned>(parsed("4294967295")), UINT32_MAX);
  EXPECT_EQ(whole_number<std::uint64_t>(parsed("0")), 0U);
  EXPECT_EQ(whole_number<std::uint64_t>(parsed("18446744073709551615")), UINT64_MAX);
  EXPECT_EQ(whole_number<std::int64_t>(parsed("-9223372036854775808")), INT64_MIN);
}

TEST(WholeNumber, IsRefusedOutsideOfItsType) {
  EXPECT_THROW(whole_number<int>(parsed("2147483648")), DataError);
  EXPECT_THROW(whole_number<int>(parsed("-2147483649")), DataError);
  EXPECT_THROW(whole_number<unsigned>(parsed("4294967296")), DataError);
  EXPECT_THROW(whole_number<unsigned>(parsed("-1")), DataError);
  EXPECT_THROW(whole_number<std::size_t>(parsed("-1")), DataError);
  EXPECT_THROW(whole_number<std::int64_t>(parsed("9223372036854775808")), DataError);
  // More than any whole number of the JSON library: it is parsed as a floating number.
  EXPECT_THROW(whole_number<std::uint64_t>(parsed("18446744073709551616")), DataError);
}

TEST(WholeNumber, IsRefusedOutsideOfItsBounds) {
  const auto from_2_to_4 = [](const char* text) { return whole_number<int>(parsed(text), 2, 4); };
  EXPECT_EQ(from_2_to_4("2"), 2);
  EXPECT_EQ(from_2_to_4("4"), 4);
  EXPECT_THROW(from_2_to_4("1"), DataError);
  EXPECT_EQ(reason([&] { from_2_to_4("5"); }), "5 stands where a whole number from 2 to 4 belongs");
}

TEST(WholeNumber, NothingElseIsTakenForOne) {
  for (const char* text : {"1.7", "1.0", "1e2", "1e30", "-1e30", "true", "null", R"("1")", "[1]",
                           R"({"a":1})", "[]"}) {
    EXPECT_THROW(whole_number<int>(parsed(text)), DataError) << text;
    EXPECT_THROW(whole_number<std::int64_t>(parsed(text)), DataError) << text;
    EXPECT_THROW(whole_number<std::uint64_t>(parsed(text)), DataError) << text;
  }
  // What others wrote is named, not quoted.
  EXPECT_EQ(reason([] { whole_number<int>(parsed(R"("\n")"), 0, 9); }),
            "string stands where a whole number from 0 to 9 belongs");
}

TEST(StoredNumber, IsAtMostAThousandMillionMillion) {
  EXPECT_EQ(stored_number(parsed("1000000000000000")), 1'000'000'000'000'000);
  EXPECT_EQ(stored_number(parsed("-1000000000000000")), -1'000'000'000'000'000);
  EXPECT_THROW(stored_number(parsed("1000000000000001")), DataError);
  EXPECT_THROW(stored_number(parsed("-1000000000000001")), DataError);
}

/// What calibration_from_json() says of a file with this seed, k, and count of repeats by chance.
std::string said_of_calibration(const std::string& seed, const std::string& k,
                                const std::string& chance) {
  const std::string text =
      R"({"vorlan_tools_calibration":1,"genome":"g","version":"1","settings":[],)"
      R"("k":)" +
      k + R"(,"window":0,"copies":1,"seed":)" + seed +
      R"(,"mask_length":0,"bases":9,"copied_bases":9,"by_unit_length":)"
      R"([{"unit_length":1,"scores":[[7,3,)" +
      chance + "]]}]}";
  return reason([&] {
    const Calibration calibration = calibration_from_json(text, "c.json");
    EXPECT_EQ(std::to_string(calibration.seed), seed);
    EXPECT_EQ(std::to_string(calibration.k), k);
    EXPECT_EQ(std::to_string(calibration.by_unit_length.at(1).scores.at(0).count.chance), chance);
  });
}

TEST(CalibrationFromJson, RefusesNumbersThatAreNotWholeOrTooLarge) {
  EXPECT_EQ(said_of_calibration("18446744073709551615", "4294967295", "1000000000000000"),
            "accepted");
  const std::string begin = "c.json is no file of vorlan-tools calibrate --json: ";
  const std::string wanted = " stands where a whole number from ";
  EXPECT_EQ(said_of_calibration("1", "3", "1.7"),
            begin + "1.7" + wanted + "-1000000000000000 to 1000000000000000 belongs.");
  EXPECT_EQ(said_of_calibration("1", "3", "8e124"),
            begin + "8e+124" + wanted + "-1000000000000000 to 1000000000000000 belongs.");
  EXPECT_EQ(said_of_calibration("-1", "3", "1"),
            begin + "-1" + wanted + "0 to 18446744073709551615 belongs.");
  EXPECT_EQ(said_of_calibration("1", "4294967296", "1"),
            begin + "4294967296" + wanted + "0 to 4294967295 belongs.");
}

/// A genome of one sequence of 40 bases with one repeat, as `stats --json` writes it; with `value`
/// instead of what the pointer leads to.
std::vector<GenomeStats> genomes_with(const std::string& pointer, const std::string& value) {
  GenomeStats genome;
  genome.sequences.resize(1);
  genome.sequences[0].length = 40;
  genome.sequences[0].by_copies = {{4, {1, 10}}};
  genome.by_unit_length[2].by_copies[4] = {1, 10};
  genome.units.add("AC", Tally{1, 1, 10, 10, 5000, 0, 0, 0, 10});
  genome.windows.assign(100, {{0, 40, std::vector<Window>(1)}});
  genome.longest.assign({ShownRepeat{"s", 1, 10, 2, "AC", 10, 5000, 100000, 10, 10, {}}});
  nlohmann::json json = parsed(to_json({genome}, Detail::kAll).dump());
  json.at(nlohmann::json::json_pointer(pointer)) = parsed(value);
  return genomes_from_json(json.dump(), "s.json");
}

TEST(StatsFromJson, RefusesNumbersThatAreNotWholeOrTooLarge) {
  const std::string genome = "/genomes/0/";
  for (const char* key : {"sequences",
                          "repeats",
                          "longest",
                          "mismatches",
                          "covered",
                          "by_unit_length/0/unit_length",
                          "by_unit_length/0/by_copies/0/0",
                          "by_unit_length/0/by_copies/0/1",
                          "by_unit_length/0/by_copies/0/2",
                          "units/0/repeats",
                          "other_units/repeats",
                          "by_sequence/0/bases",
                          "by_sequence/0/by_copies/0/0",
                          "by_sequence/0/by_copies/0/1",
                          "by_sequence/0/by_copies/0/2",
                          "windows/size",
                          "windows/sequences/0/index",
                          "windows/sequences/0/length",
                          "windows/sequences/0/repeats/0",
                          "windows/sequences/0/covered/0",
                          "longest_repeats/0/start",
                          "longest_repeats/0/score"}) {
    for (const char* value : {"0.5", "1e30", "18446744073709551615", "true"}) {
      EXPECT_THROW(genomes_with(genome + key, value), DataError) << key << ' ' << value;
    }
  }
  EXPECT_THROW(genomes_with(genome + "sequences", "-1"), DataError);
  EXPECT_THROW(genomes_with(genome + "windows/sequences/0/index", "-1"), DataError);
  // A class without repeats is not stored: it would be lost when the file is written again.
  EXPECT_THROW(genomes_with(genome + "by_unit_length/0/by_copies/0/1", "0"), DataError);
  EXPECT_THROW(genomes_with(genome + "by_sequence/0/by_copies/0/1", "-1"), DataError);
  EXPECT_EQ(reason([] { genomes_with("/vorlan_tools_stats", "1.5"); }),
            "s.json is no file of vorlan-tools stats --json: 1.5 stands where a whole number from "
            "-2147483648 to 2147483647 belongs.");
}

TEST(StatsFromJson, TakesWholeNumbersUpToTheMost) {
  EXPECT_EQ(genomes_with("/genomes/0/covered", "1000000000000000").at(0).covered,
            1'000'000'000'000'000);
  const auto shown = [](const char* key, const char* value) {
    const std::string pointer = std::string("/genomes/0/longest_repeats/0/") + key;
    return genomes_with(pointer, value).at(0).longest.list().at(0);
  };
  EXPECT_EQ(shown("score", "-3").score, -3);
  EXPECT_FALSE(shown("score", "null").score.has_value());
}

TEST(StatsFromJson, ThousandthsMayBeFloatingNumbers) {
  const auto copies = [](const char* value) {
    return genomes_with("/genomes/0/copies", value).at(0).tally.copies;
  };
  EXPECT_EQ(copies("5"), 5000);
  EXPECT_EQ(copies("2.667"), 2667);
  EXPECT_EQ(copies("-0.001"), -1);
  EXPECT_EQ(copies("1e12"), 1'000'000'000'000'000);
  EXPECT_EQ(copies("999999999999.999"), 999'999'999'999'999);
  EXPECT_THROW(copies("1000000000000.001"), DataError);
  EXPECT_THROW(copies("1e308"), DataError);
  EXPECT_THROW(copies("true"), DataError);
  EXPECT_EQ(reason([&] { copies("-1e16"); }),
            "s.json is no file of vorlan-tools stats --json: -1e+16 stands where a number up to "
            "1000000000000 belongs.");
}

}  // namespace
}  // namespace vorlan_tools
