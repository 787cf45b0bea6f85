// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>

#include "io/output_file.h"
#include "merge/part_body.h"
#include "report/head.h"
#include "run/slice.h"
#include "run/work_folder.h"

namespace vorlan_tools {

/// The reports of single slices, as files of the work folder:
///
///     STEM.fa          the slice, until it is searched
///     STEM.report      its report, which the process writes
///     STEM.fa.masked   its masked copy, if one is asked for
///     STEM.messages    what the process says on standard error, until it ends well
///     STEM.done        states that the two are whole, of which slice they are and how long
class Parts {
 public:
  /// `head` is that of the whole run, `range` the records that it searches.
  Parts(const WorkFolder& folder, const Head& head, bool masks)
      : folder_(folder),
        head_(head),
        range_{head.settings.first_sequence, head.settings.last_sequence},
        masks_(masks) {}

  /// Whether an earlier run has left a whole report of this very slice.
  bool has(const Slice& slice) const;

  /// The records of the slice that are to be searched.
  RecordRange range(const Slice& slice) const { return range_within(range_, slice); }

  /// States that the report of the slice is whole, and removes what it was made from.
  void set_done(const Slice& slice) const;

  /// Removes the text of the slice, which has not to be searched.
  void remove_text(const Slice& slice) const;

  /// Appends the body of the report. Throws DataError if the report is not that of the slice.
  void append_report(const Slice& slice, Ending ending, OutputFile& out) const;

  /// Appends the masked copy.
  void append_masked(const Slice& slice, OutputFile& out) const;

  /// Removes the report, which nobody will resume.
  void remove_report(const Slice& slice) const;

  /// What vorlan said about a malformed record, with the line counted in the whole input.
  std::string malformed_message(const Slice& slice) const;

 private:
  std::string path(const Slice& slice, const char* ending) const;
  std::string done_text(const Slice& slice) const;

  const WorkFolder& folder_;
  const Head& head_;
  RecordRange range_;
  bool masks_;
};

}  // namespace vorlan_tools
