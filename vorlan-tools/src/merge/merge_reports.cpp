// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "merge/merge_reports.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string_view>

#include "errors.h"
#include "io/compression_by_name.h"
#include "io/file_identity.h"
#include "io/line_reader.h"
#include "io/output_file.h"
#include "merge/part_body.h"
#include "report/head.h"

namespace vorlan_tools {

namespace {

/// A part whose head has been read.
struct Part {
  explicit Part(const std::string& name) : lines(name), head(read_head(lines)) {}

  LineReader lines;
  Head head;
};

std::string range_text(const Settings& settings) {
  return std::to_string(settings.first_sequence) + " to " +
         (settings.last_sequence ? std::to_string(*settings.last_sequence) : "the last");
}

/// Whether a part fits those before it.
class PartChecker {
 public:
  PartChecker(const Head& first, const MergeOptions& options) : first_(first), options_(options) {}

  void check(const Part& part, bool is_last) {
    if (!part.head.has_same_settings(first_)) {
      fail(part, "was made with other settings, or by another version, than the first part");
    }
    if (!options_.input_name && part.head.input_name != first_.input_name) {
      fail(part, "was made from \"" + part.head.input_name + "\", the first part from \"" +
                     first_.input_name + "\": --input names the input of the whole");
    }
    if (options_.are_slices) {
      check_slice(part);
    } else {
      check_range(part, is_last);
    }
  }

 private:
  [[noreturn]] static void fail(const Part& part, const std::string& what) {
    throw DataError(part.lines.name() + " " + what + ".");
  }

  static void check_slice(const Part& part) {
    const Settings& settings = part.head.settings;
    if (settings.first_sequence != 1 || settings.last_sequence) {
      fail(part,
           "holds sequences " + range_text(settings) + ": a slice must be searched as a whole");
    }
  }

  // A range whose end lies just in front of its beginning selects nothing and fits all the same.
  void check_range(const Part& part, bool is_last) {
    const Settings& settings = part.head.settings;
    if (!is_first_ && settings.first_sequence != next_) {
      fail(part, "holds sequences " + range_text(settings) + ", but sequence " +
                     std::to_string(next_) +
                     " comes next (parts that were cut from the input need --slices)");
    }
    if (is_last) return;
    if (!settings.last_sequence) {
      fail(part, "holds sequences " + range_text(settings) +
                     ", so no part can follow (parts that were cut from the input need --slices)");
    }
    is_first_ = false;
    next_ = std::uint64_t{*settings.last_sequence} + 1;
    if (next_ < settings.first_sequence) {
      fail(part, "holds sequences " + range_text(settings) + ", so no part can follow");
    }
  }

  const Head& first_;
  const MergeOptions& options_;
  bool is_first_ = true;
  std::uint64_t next_ = 0;  ///< record that the part must begin with, unless it is the first
};

std::string merged_head(const Head& first, const Head& last, const MergeOptions& options) {
  const std::optional<std::string> report =
      options.output == "-" ? std::nullopt : std::optional(options.output);
  return first.text_for(options.input_name.value_or(first.input_name), report,
                        first.settings.first_sequence, last.settings.last_sequence);
}

void refuse_output_among_parts(const MergeOptions& options) {
  if (std::count(options.parts.begin(), options.parts.end(), "-") > 1) {
    throw UsageError("Standard input can be only one of the parts.");
  }
  for (const std::string& part : options.parts) {
    if (is_same_file(part, options.output)) {
      throw UsageError("The output " + options.output + " is the same file as the part " + part +
                       ".");
    }
  }
}

/// A line of a masked file is a header, or residues in lines of 80 of which only the last of a
/// record may be shorter.
class MaskedLines {
 public:
  bool fits(std::string_view line) {
    if (!line.empty() && line.front() == '>') {
      room_ = kResiduesPerLine;
      return true;
    }
    if (line.empty() || line.size() > room_) return false;
    if (line.size() < kResiduesPerLine) room_ = 0;
    return line.find_first_not_of("ACGTNX") == std::string_view::npos;
  }

 private:
  static constexpr std::size_t kResiduesPerLine = 80;
  std::size_t room_ = 0;
};

}  // namespace

void merge_reports(const MergeOptions& options) {
  refuse_output_among_parts(options);
  // The head names the end of the range, which stands in the last part: two parts are open at once.
  const auto last = std::make_unique<Part>(options.parts.back());
  std::optional<Head> first;
  std::optional<PartChecker> checker;
  OutputFile out(options.output, compression_by_name(options.output));
  for (std::size_t i = 0; i < options.parts.size(); ++i) {
    const bool is_last = i + 1 == options.parts.size();
    std::unique_ptr<Part> earlier;
    if (!is_last) earlier = std::make_unique<Part>(options.parts[i]);
    Part& part = is_last ? *last : *earlier;
    if (!first) {
      first = part.head;
      checker.emplace(*first, options);
      out.write(merged_head(*first, last->head, options));
    }
    checker->check(part, is_last);
    append_body(part.lines, part.head, Ending::kWhole, out);
  }
  const std::string closing(first->closing_line());
  if (!closing.empty()) out.write(closing + "\n");
  out.finish();
}

void merge_masked(const MergeOptions& options) {
  refuse_output_among_parts(options);
  OutputFile out(options.output, compression_by_name(options.output));
  for (const std::string& name : options.parts) {
    LineReader part(name);
    MaskedLines form;
    for (std::string_view line; part.next(line);) {
      if (!form.fits(line)) {
        throw LineError(part.name(), part.line_number(), "this is no line of a masked file.");
      }
      if (!part.line_was_ended()) {
        throw LineError(part.name(), part.line_number(), "the last line is cut short.");
      }
      out.write(line);
      out.write("\n");
    }
  }
  out.finish();
}

}  // namespace vorlan_tools
