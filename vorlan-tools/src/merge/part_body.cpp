// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "merge/part_body.h"

#include <string>
#include <string_view>

#include "errors.h"

namespace vorlan_tools {

namespace {

/// A line of a head that no body can hold, whatever the names of the records are: names stand
/// behind other characters, or in front of a tab.
constexpr std::string_view kHeadOfAnother = "# Results computed with:";

}  // namespace

void append_body(LineReader& part, const Head& head, Ending ending, OutputFile& out) {
  const auto fail = [&part](const std::string& what) {
    throw LineError(part.name(), part.line_number(), what);
  };
  const std::string_view closing = head.closing_line();
  bool is_closed = false;
  for (std::string_view line; part.next(line);) {
    if (is_closed) fail("the part goes on behind its closing line.");
    if (line == kHeadOfAnother) fail("another report begins here.");
    if (!part.line_was_ended()) fail("the part is not complete: its last line is cut short.");
    is_closed = !closing.empty() && line == closing;
    if (is_closed) continue;
    out.write(line);
    out.write("\n");
  }
  if (closing.empty()) return;
  if (ending == Ending::kWhole && !is_closed) {
    fail("the part is not complete: its closing line \"" + std::string(closing) + "\" is missing.");
  }
  if (ending == Ending::kMalformed && is_closed) fail("the part has a closing line, but no end.");
}

}  // namespace vorlan_tools
