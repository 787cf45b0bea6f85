// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include "io/line_reader.h"
#include "io/output_file.h"
#include "report/head.h"

namespace vorlan_tools {

/// How a part of a report ends.
enum class Ending {
  kWhole,      ///< with the closing line of its format; format 4 has none
  kMalformed,  ///< without: its run ended at a malformed record
};

/// Copies the body of a part, from where `read_head` left `part`, without its closing line. Records
/// have no counters that go on from one to the next, so bodies are put together as they are.
///
/// Throws LineError if the part goes on behind its closing line, holds another head, ends within a
/// line, or does not end as `ending` says. Streams.
void append_body(LineReader& part, const Head& head, Ending ending, OutputFile& out);

}  // namespace vorlan_tools
