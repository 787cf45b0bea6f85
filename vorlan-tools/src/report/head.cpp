// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "report/head.h"

#include <array>
#include <charconv>
#include <cstdlib>
#include <initializer_list>

#include "errors.h"

namespace vorlan_tools {

namespace {

constexpr std::string_view kOpening = "# Results computed with:";
constexpr std::string_view kVersion = "#    Vorlan, version ";
constexpr std::string_view kTitle = "# Parameter settings used in this search:";
constexpr std::string_view kInput = "# Input file name:                        ";
constexpr std::string_view kOutput = "# Output file name:                       ";
constexpr std::string_view kRange = "#    Sequence range to process:           ";
constexpr std::string_view kLastSequence = "last sequence";
constexpr std::string_view kLegendEdge = "# ";
constexpr std::string_view kFinished = "## Finished successfully. ##";
constexpr std::string_view kGffEnd = "# End tandem repeats";

template <typename Number>
bool to_number(std::string_view text, Number& number) {
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

bool to_float(std::string_view text, float& number) {
  const std::string copy(text);
  char* end = nullptr;
  number = std::strtof(copy.c_str(), &end);
  return !copy.empty() && end == copy.c_str() + copy.size();
}

/// Takes the lines of a head one by one; each must be what its place demands.
class HeadReader {
 public:
  explicit HeadReader(LineReader& lines) : lines_(lines) {}

  Head read() {
    read_opening();
    read_names();
    read_range();
    read_search();
    read_thresholds();
    read_scores();
    read_output();
    read_columns();
    return std::move(head_);
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw LineError(lines_.name(), lines_.line_number(), what);
  }

  std::string_view take(std::string_view expected) {
    std::string_view line;
    if (!lines_.next(line)) {
      throw DataError(lines_.name() + " is no complete report: it ends within the head.");
    }
    if (line.substr(0, expected.size()) != expected) {
      fail("this is not the head of a report: \"" + std::string(expected) + "\" is missing.");
    }
    if (!lines_.line_was_ended()) fail("the line is cut short.");
    head_.lines.emplace_back(line);
    return std::string_view(head_.lines.back()).substr(expected.size());
  }

  bool next_begins_with(std::string_view text) {
    std::string_view line;
    return lines_.peek(line) && line.substr(0, text.size()) == text;
  }

  /// The value of a setting, behind its label and the separator that all lines share.
  std::string_view value(std::string_view label) {
    std::string_view rest = take(label);
    if (rest.empty() || rest[0] != separator_) fail("the value of a setting is missing.");
    return rest.substr(1);
  }

  template <typename Number>
  void number(std::string_view label, Number& result) {
    if (!to_number(value(label), result)) fail("the value of a setting is no number.");
  }

  /// Which of the words the setting has.
  int choice(std::string_view label, std::initializer_list<std::string_view> words) {
    const std::string_view word = value(label);
    int index = 0;
    for (const std::string_view candidate : words) {
      if (word == candidate) return index;
      ++index;
    }
    fail("the value of a setting is unknown.");
  }

  void read_opening() {
    if (!take(kOpening).empty()) fail("this is not the head of a report.");
    head_.version = take(kVersion);
    const std::string_view separator = take(kTitle);
    if (separator != " " && separator != "\t") fail("this is not the head of a report.");
    separator_ = separator[0];
  }

  /// A name may hold line feeds: it goes on until the label that follows.
  std::string read_name(std::string_view label, std::initializer_list<std::string_view> followers) {
    std::string name(value(label));
    for (;;) {
      for (const std::string_view follower : followers) {
        if (next_begins_with(follower)) return name;
      }
      name += '\n';
      name += take("");
    }
  }

  void read_names() {
    head_.input_line = head_.lines.size();
    head_.input_name = read_name(kInput, {kOutput, kRange});
    head_.output_line = head_.lines.size();
    if (next_begins_with(kOutput)) head_.output_name = read_name(kOutput, {kRange});
    head_.range_line = head_.lines.size();
  }

  void read_range() {
    const std::string_view range = value(kRange);
    const std::size_t dash = range.find(" - ");
    if (dash == std::string_view::npos ||
        !to_number(range.substr(0, dash), settings().first_sequence)) {
      fail("the range of sequences cannot be read.");
    }
    const std::string_view last = range.substr(dash + 3);
    if (last == kLastSequence) return;
    settings().last_sequence.emplace();
    if (!to_number(last, *settings().last_sequence)) fail("the range of sequences cannot be read.");
  }

  void read_search() {
    settings().search_mode = static_cast<SearchMode>(
        choice("#    Satellites searched for:             ",
               {"exact repeats", "exact repeats which are extended to imperfect repeats",
                "imperfect repeats"}));
    if (settings().search_mode != SearchMode::kExact) {
      number("#    Recursion depth:                     ", settings().recursion_depth.emplace());
      const std::string_view reduction = value("#    Maximum score reduction:             ");
      if (reduction != "-" && !to_number(reduction, settings().max_score_reduction.emplace())) {
        fail("the value of a setting is no number.");
      }
    }
    number("#    Minimum unit length:                 ", settings().min_unit_length);
    number("#    Maximum unit length:                 ", settings().max_unit_length);
  }

  /// "maximum (CONSTANT, INTERCEPT+SLOPE*unitlength )"
  ThresholdRule rule(std::string_view label) {
    constexpr std::string_view kBefore = "maximum (";
    constexpr std::string_view kAfter = "*unitlength )";
    const std::string_view text = value(label);
    ThresholdRule result;
    const std::size_t comma = text.find(", ");
    const std::size_t plus = text.find('+', comma == std::string_view::npos ? 0 : comma);
    const bool fits =
        text.substr(0, kBefore.size()) == kBefore && text.size() > kAfter.size() &&
        text.substr(text.size() - kAfter.size()) == kAfter && comma != std::string_view::npos &&
        comma >= kBefore.size() && plus != std::string_view::npos &&
        plus + 1 <= text.size() - kAfter.size() &&
        to_number(text.substr(kBefore.size(), comma - kBefore.size()), result.constant) &&
        to_number(text.substr(comma + 2, plus - comma - 2), result.intercept) &&
        to_float(text.substr(plus + 1, text.size() - kAfter.size() - plus - 1), result.slope);
    if (!fits) fail("the rule of a threshold cannot be read.");
    return result;
  }

  void read_thresholds() {
    settings().min_score = rule("#    Minimum score:                       ");
    settings().min_length = rule("#    Minimum length:                      ");
    const std::string_view range = value("#    Min. to max. perfection range:       ");
    constexpr std::string_view kBetween = " % - ";
    constexpr std::string_view kEnd = " %";
    const std::size_t between = range.find(kBetween);
    const bool fits = between != std::string_view::npos &&
                      range.size() >= between + kBetween.size() + kEnd.size() &&
                      range.substr(range.size() - kEnd.size()) == kEnd &&
                      to_float(range.substr(0, between), settings().min_perfection) &&
                      to_float(range.substr(between + kBetween.size(),
                                            range.size() - between - kBetween.size() - kEnd.size()),
                               settings().max_perfection);
    if (!fits) fail("the range of perfections cannot be read.");
  }

  void read_scores() {
    settings().ns_as_missense =
        choice("#    Treat N's as:                        ", {"neutral", "missense"}) == 1;
    number("#    Max. succesive N's allowed:          ", settings().ns_in_a_row);
    if (settings().search_mode != SearchMode::kExact) {
      number("#    Mismatch score:                      ", settings().mismatch_score.emplace());
      number("#    Indel score:                         ", settings().indel_score.emplace());
    }
    settings().prefer_shorter =
        choice("#    Show shorter (not longer) of two repeat variants with equal score: ",
               {"no", "yes"}) == 1;
  }

  void read_output() {
    number("#    Number of flanking nucletides:       ", settings().flanking);
    if (settings().flanking < 0) fail("the number of flanking bases is negative.");
    settings().remove_overlapping =
        choice("#    Remove mostly overlapping satellites:", {"no", "yes"}) == 1;
    settings().masked_file =
        choice("#    Write file with masked seq.:         ", {"no", "yes"}) == 1;
    settings().n_perfection_mode = static_cast<NPerfectionMode>(choice(
        "#    Computing perfections treat N's:     ", {"asMismatch", "asNeutral", "asMatch"}));
    settings().unit_mode =
        static_cast<UnitMode>(choice("#    Report units as:                     ",
                                     {"as they are", "alphabetical normal form",
                                      "alphabetical normal form using reverse complement"}));
    settings().format = static_cast<Format>(choice(
        "#    Output format:                       ",
        {"vorlan format", "extended vorlan format", "gff", "one-per-line format", "fasta format"}));
    settings().sequence_mode = static_cast<SequenceMode>(
        choice("#    Print sequence mode:                 ",
               {"don't print sequence", "print sequence", "print alignment"}));
    const bool is_tabbed = settings().format == Format::kGff || settings().format == Format::kTable;
    if (is_tabbed != (separator_ == '\t'))
      fail("the lines of the head do not fit its output format.");
    if (is_tabbed) {
      settings().sequence_info_as_comment =
          choice("#    Print seq. info as comment:          ", {"no", "yes"}) == 1;
    }
  }

  void read_columns() {
    if (settings().format == Format::kTable) {
      take("seq-name\t");
    } else if (settings().format == Format::kPlain || settings().format == Format::kExtended) {
      read_legend();
    }
  }

  void read_legend() {
    if (!take(kLegendEdge).empty()) fail("the legend does not begin.");
    take("# Columns in lines of output providing repeat information:");
    while (next_begins_with("# Column ")) take("# Column ");
    if (!take(kLegendEdge).empty()) fail("the legend does not end.");
  }

  Settings& settings() { return head_.settings; }

  LineReader& lines_;
  Head head_;
  char separator_ = ' ';
};

void append_line(std::string& text, std::string_view label, char separator,
                 std::string_view value) {
  text += label;
  text += separator;
  text += value;
  text += '\n';
}

}  // namespace

std::string_view Head::closing_line() const {
  switch (settings.format) {
    case Format::kGff:
      return kGffEnd;
    case Format::kFasta:
      return {};
    default:
      return kFinished;
  }
}

std::string Head::text_for(std::string_view input, const std::optional<std::string>& output,
                           std::uint32_t first, const std::optional<std::uint32_t>& last) const {
  const char separator = lines[input_line][kInput.size()];
  std::string text;
  for (std::size_t i = 0; i < input_line; ++i) (text += lines[i]) += '\n';
  append_line(text, kInput, separator, input);
  if (output) append_line(text, kOutput, separator, *output);
  append_line(
      text, kRange, separator,
      std::to_string(first) + " - " + (last ? std::to_string(*last) : std::string(kLastSequence)));
  for (std::size_t i = range_line + 1; i < lines.size(); ++i) (text += lines[i]) += '\n';
  return text;
}

bool Head::has_same_settings(const Head& other) const {
  const auto settings_text = [](const Head& head) {
    return head.text_for("", std::nullopt, 1, std::nullopt);
  };
  return settings_text(*this) == settings_text(other);
}

Head read_head(LineReader& lines) { return HeadReader(lines).read(); }

}  // namespace vorlan_tools
