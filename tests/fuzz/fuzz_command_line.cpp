// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The command line: the bytes are the arguments behind the name of the program, each ended by a 0
// byte. At the begin of an argument a byte of 128 or more stands for a whole one, the name of an
// option or a likely value: those are hardly ever met by changing letters. Nothing is opened; file
// names are only texts here.
//
// Idea: a parse failure, help and version end the process in the library that does the parsing. So
// the same table of options parses the arguments first, with an exception in place of the end: that
// is status 1 or 0, and the product is not asked. Otherwise the product must not end the process,
// and its result must be the one that the values of the options call for, in the order of its
// checks: no file name (-1), unknown choices (-2), values that do not fit together (-1). What it
// lets pass must keep what its checks promise to the searches.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "config/command_line.h"
#include "config/command_line_options.h"
#include "config/parameter_report.h"
#include "config/settings.h"
#include "description.h"
#include "fuzz_target.h"
#include "support/captured_output.h"

namespace {

using vorlan::CommandLineOptions;

// ---- The library's state ----------------------------------------------------

// The library notes "--" for the rest of the process, which usually parses once, and keeps the note
// to itself. Arguments of explicit instantiations are not subject to access rules.
bool& rest_is_ignored();
template <bool& (*note)()>
struct NoteOfIgnoredRest {
  friend bool& rest_is_ignored() { return note(); }
};
template struct NoteOfIgnoredRest<&TCLAP::Arg::ignoreRestRef>;

// ---- Standard streams -------------------------------------------------------

// Takes what is written to the C stream of standard error, a variable that may be set, and what the
// library writes to the C++ streams.
class CapturedConsole {
 public:
  CapturedConsole()
      : kept_errors_(std::exchange(stderr, errors_.stream())),
        kept_cerr_(std::cerr.rdbuf(library_.rdbuf())),
        kept_cout_(std::cout.rdbuf(library_.rdbuf())) {}
  ~CapturedConsole() {
    stderr = kept_errors_;
    std::cerr.rdbuf(kept_cerr_);
    std::cout.rdbuf(kept_cout_);
  }
  CapturedConsole(const CapturedConsole&) = delete;
  CapturedConsole& operator=(const CapturedConsole&) = delete;

  std::string errors() { return errors_.text(); }

 private:
  vorlan::CapturedStream errors_;
  std::ostringstream library_;
  std::FILE* kept_errors_;
  std::streambuf* kept_cerr_;
  std::streambuf* kept_cout_;
};

// ---- Arguments --------------------------------------------------------------

// All names of options as the library knows them, with help, version and "--", and likely values.
std::vector<std::string> likely_words() {
  // 11 is one more than the default of the largest unit length.
  std::vector<std::string> words = {
      "in.fa", "out", "",    "-",    "exact", "extendExact", "imperfect",   "0",
      "1",     "2",   "3",   "4",    "5",     "10",          "11",          "-1",
      "-2",    "-3",  "1.5", "-0.5", "1e9",   "2147483647",  "-2147483648", "4294967295"};
  CommandLineOptions options;
  for (const TCLAP::Arg* option : options.cmd.getArgList()) {
    words.push_back("--" + option->getName());
    if (!option->getFlag().empty()) words.push_back("-" + option->getFlag());
  }
  return words;
}

constexpr unsigned char kFirstWord = 128;

std::vector<std::string> arguments_from(std::string_view bytes) {
  static const std::vector<std::string> words = likely_words();
  std::vector<std::string> arguments = {"vorlan"};
  while (!bytes.empty()) {
    const auto first = static_cast<unsigned char>(bytes.front());
    if (first >= kFirstWord) {
      arguments.push_back(words[(first - kFirstWord) % words.size()]);
      bytes.remove_prefix(1);
    } else {
      const std::string_view argument = bytes.substr(0, bytes.find('\0'));
      arguments.emplace_back(argument);
      bytes.remove_prefix(std::min(argument.size() + 1, bytes.size()));
    }
  }
  return arguments;
}

// ---- Expected results -------------------------------------------------------

constexpr int kNothingWrong = 0;
constexpr int kDoesNotFit = -1;
constexpr int kUnknownChoice = -2;

bool is_choice(TCLAP::ValueArg<int>& option, int largest) {
  return option.getValue() >= 0 && option.getValue() <= largest;
}

// At unit length 1 both thresholds lie below 2, so that every residue would be a repeat.
bool keep_everything(CommandLineOptions& options) {
  const float score_line =
      static_cast<float>(options.minScore_a.getValue()) + options.minScore_b.getValue();
  const float length_line =
      static_cast<float>(options.minLength_a.getValue()) + options.minLength_b.getValue();
  return options.minScore.getValue() < 2 && score_line < 2.0F && options.minLength.getValue() < 2 &&
         length_line < 2.0F;
}

int expected_result(CommandLineOptions& options) {
  if (options.iofiles.getValue().empty()) return kDoesNotFit;
  if (!is_choice(options.outputFormat, 4) || !is_choice(options.printRepeatSeqMode, 2) ||
      !is_choice(options.NPerfectionMode, 2) || !is_choice(options.reportUnit, 2)) {
    return kUnknownChoice;
  }
  if (keep_everything(options) || options.mismatchScore.getValue() > -2 ||
      options.indelScore.getValue() > -2 || options.recursion.getValue() < 1 ||
      options.minUnitLen.getValue() == 0 ||
      options.maxUnitLen.getValue() < options.minUnitLen.getValue()) {
    return kDoesNotFit;
  }
  return kNothingWrong;
}

// One counter for each option and result, which libFuzzer takes for code that is reached: options
// share their code, so that without these it would keep no input because of the option it gives.
constexpr std::size_t kMostOptions = 64;
constexpr std::size_t kResults = 3;
__attribute__((section("__libfuzzer_extra_counters"))) std::uint8_t given[kMostOptions * kResults];

void count_options(CommandLineOptions& options, int result) {
  auto place = static_cast<std::size_t>(-result);
  for (const TCLAP::Arg* option : options.cmd.getArgList()) {
    if (option->isSet() && place < std::size(given)) ++given[place];
    place += kResults;
  }
}

// What the library makes of the arguments: the exit status with which it would end the process, or
// nothing when parsing succeeds; then the result that the values call for is in `result`.
std::optional<int> exit_status_of_library(const std::vector<const char*>& arguments, int& result) {
  rest_is_ignored() = false;
  vorlan::init_param();
  CommandLineOptions options;
  options.cmd.setExceptionHandling(false);
  try {
    options.cmd.parse(static_cast<int>(arguments.size()), arguments.data());
  } catch (const TCLAP::ArgException&) {
    return EXIT_FAILURE;
  } catch (const TCLAP::ExitException& end) {
    return end.getExitStatus();
  }
  result = expected_result(options);
  count_options(options, result);
  return std::nullopt;
}

// ---- Promises ---------------------------------------------------------------

bool is_between(int low, int value, int high) { return low <= value && value <= high; }

// What searches and reports rely on.
bool promises_are_kept() {
  return is_between(vorlan::kExact, vorlan::global_search_mode, vorlan::kImperfect) &&
         is_between(0, vorlan::global_N_and_perfection_mode, 2) &&
         is_between(0, vorlan::global_report_unit_mode, 2) &&
         is_between(0, vorlan::global_print_sat_seq_mode, 2) &&
         is_between(vorlan::kFormatVorlan, vorlan::global_print_sat_mode, vorlan::kFormatFasta) &&
         is_between(0, vorlan::global_prefer_longer_repeat, 1) && vorlan::global_flanking >= 0 &&
         vorlan::global_Ns_allowed_in_a_row >= 0 && vorlan::global_maximum_recursion_depth >= 1 &&
         vorlan::global_mismatch_score <= -2 && vorlan::global_indel_score <= -2 &&
         vorlan::global_min_unit_length >= 1 &&
         vorlan::global_min_unit_length <= vorlan::global_max_unit_length;
}

// Has one line more for an output file, four for the settings of alignments and one for a setting
// of tab-separated formats; every value ends its line.
bool parameter_report_is_whole() {
  constexpr std::size_t kLinesOfAllRuns = 19;
  const bool aligns = vorlan::global_search_mode != vorlan::kExact;
  const bool is_tab_separated = vorlan::global_print_sat_mode == vorlan::kFormatGff ||
                                vorlan::global_print_sat_mode == vorlan::kFormatOnePerLine;
  const std::vector<vorlan::ParameterLine> lines = vorlan::search_parameters();
  for (const vorlan::ParameterLine& line : lines) {
    if (line.value.empty() || line.value.back() != '\n') return false;
  }
  return lines.size() == kLinesOfAllRuns + (vorlan::global_output_filename.empty() ? 0U : 1U) +
                             (aligns ? 4U : 0U) + (is_tab_separated ? 1U : 0U);
}

// A refused command line is explained in whole lines; one that passes leads to no word.
bool is_explanation(const std::string& text, int result) {
  return result == kNothingWrong ? text.empty() : !text.empty() && text.back() == '\n';
}

// Returns what is wrong.
std::optional<std::string> fault(const std::vector<const char*>& arguments) {
  CapturedConsole console;
  int expected = 0;
  if (const auto status = exit_status_of_library(arguments, expected)) {
    if (*status == EXIT_SUCCESS || *status == EXIT_FAILURE) return std::nullopt;
    return "the library would end with status " + std::to_string(*status);
  }
  rest_is_ignored() = false;
  vorlan::global_input_filename.clear();
  vorlan::global_output_filename.clear();
  const int result =
      vorlan::read_and_init_parameters(static_cast<int>(arguments.size()), arguments.data());
  if (result != expected) {
    return "result " + std::to_string(result) + ", expected " + std::to_string(expected);
  }
  if (!is_explanation(console.errors(), result)) {
    return "result " + std::to_string(result) + " with the message '" + console.errors() + "'";
  }
  if (result == kNothingWrong && !promises_are_kept()) return "settings that must not pass";
  if (result == kNothingWrong && !parameter_report_is_whole()) return "parameter report not whole";
  return std::nullopt;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::string> arguments =
      arguments_from({reinterpret_cast<const char*>(data), size});
  std::vector<const char*> pointers;
  for (const std::string& argument : arguments) pointers.push_back(argument.c_str());
  if (const auto found = fault(pointers)) {
    std::string line;
    for (const std::string& argument : arguments) line += differential::quoted(argument) + " ";
    fuzz::report_fault(line + "\n" + *found);
  }
  return 0;
}
