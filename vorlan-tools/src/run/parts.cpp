// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/parts.h"

#include <charconv>
#include <cstdint>
#include <filesystem>
#include <string_view>

#include "errors.h"
#include "io/line_reader.h"

namespace vorlan_tools {

namespace {

constexpr const char* kText = ".fa";
constexpr const char* kReport = ".report";
constexpr const char* kMasked = ".fa.masked";
constexpr const char* kMessages = ".messages";
constexpr const char* kDone = ".done";

std::string size_text(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  return error ? "none" : std::to_string(size);
}

void remove(const std::string& path) {
  std::error_code ignored;
  std::filesystem::remove(path, ignored);
}

std::string range_text(const RecordRange& range) {
  return std::to_string(range.first) + "-" + (range.last ? std::to_string(*range.last) : "");
}

}  // namespace

std::string Parts::path(const Slice& slice, const char* ending) const {
  return folder_.file(slice.stem + ending);
}

std::string Parts::done_text(const Slice& slice) const {
  return "slice " + slice.digest + "\nrecords " + range_text(range(slice)) + "\nreport " +
         size_text(path(slice, kReport)) + "\nmasked " +
         (masks_ ? size_text(path(slice, kMasked)) : "-") + "\n";
}

bool Parts::has(const Slice& slice) const {
  return folder_.can_resume() && read_small_file(path(slice, kDone)) == done_text(slice);
}

void Parts::set_done(const Slice& slice) const {
  remove_text(slice);
  remove(path(slice, kMessages));
  if (folder_.can_resume()) write_small_file(path(slice, kDone), done_text(slice));
}

void Parts::remove_text(const Slice& slice) const { remove(path(slice, kText)); }

void Parts::append_report(const Slice& slice, Ending ending, OutputFile& out) const {
  LineReader lines(path(slice, kReport));
  const Head head = read_head(lines);
  const RecordRange found{head.settings.first_sequence, head.settings.last_sequence};
  if (!head.has_same_settings(head_) || head.input_name != slice.stem + kText ||
      found != range(slice)) {
    throw DataError(lines.name() + " is not the report of this slice: has vorlan been replaced?");
  }
  append_body(lines, head, ending, out);
}

void Parts::append_masked(const Slice& slice, OutputFile& out) const {
  LineReader lines(path(slice, kMasked));
  for (std::string_view line; lines.next(line);) {
    out.write(line);
    out.write("\n");
  }
}

void Parts::remove_report(const Slice& slice) const { remove(path(slice, kReport)); }

// The message stands at the very end. The line before it tells, if so, that a record is too long.
std::string Parts::malformed_message(const Slice& slice) const {
  constexpr std::string_view kBeginning = "\n\nAn error occurred while reading the input file.";
  constexpr std::string_view kTooLong = "Sorry, the sequence \"";
  constexpr std::string_view kLine = "File position: line ";
  const std::string messages = read_small_file(path(slice, kMessages));
  std::size_t begin = messages.rfind(kBeginning);
  const std::size_t number_begin = messages.rfind(kLine) + kLine.size();
  std::uint32_t line = 0;
  const char* const end = messages.data() + messages.size();
  const bool is_known =
      begin != std::string::npos && number_begin > begin &&
      std::from_chars(messages.data() + number_begin, end, line).ec == std::errc();
  if (!is_known) throw DataError("vorlan calls the input malformed, but names no line.");
  const std::size_t line_before = begin < 2 ? 0 : messages.rfind('\n', begin - 2) + 1;
  if (messages.compare(line_before, kTooLong.size(), kTooLong) == 0) begin = line_before;
  // vorlan counts lines in 32 bits.
  line += static_cast<std::uint32_t>(slice.line_ends_before);
  return messages.substr(begin, number_begin - begin) + std::to_string(line) + "\n";
}

}  // namespace vorlan_tools
