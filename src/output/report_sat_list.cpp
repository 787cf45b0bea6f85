// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "config/settings.h"
#include "output/report.h"
#include "search/csearchcontroller.h"

namespace vorlan {
namespace {

/// What frames the entries of a sequence.
enum class Frame { kNone, kFull, kComments };

Frame frame_of_format() {
  switch (global_print_sat_mode) {
    case kFormatVorlan:
    case kFormatExtended:
    case kFormatOld:
      return Frame::kFull;
    case kFormatGff:
    case kFormatOnePerLine:
      return global_sequenceInfoAsComment ? Frame::kComments : Frame::kNone;
    default:
      return Frame::kNone;
  }
}

}  // namespace

void CSearchController::report_SATList(std::FILE* stream, const std::list<Csat*>& sats) {
  const char* header = sequence.header.terminate();
  const char* name = sequence.name.terminate();
  const int length = static_cast<int>(seq_length());
  const Frame frame = frame_of_format();
  if (frame == Frame::kFull) {
    std::fprintf(stream, ">%s\nsequence length: %d\n", header, length);
  } else if (frame == Frame::kComments) {
    std::fprintf(stream, "# Full sequence name:\n#>%s\n##sequence-region %s 1 %d\n", header, name,
                 length);
  }
  for (const Csat* sat : sats) sat->report_sat(stream, sequence);
  if (frame != Frame::kNone) {
    std::fprintf(stream, "# Analysis of sequence \"%s\" completed.\n",
                 frame == Frame::kFull ? header : name);
  }
  std::fflush(stream);
}

}  // namespace vorlan
