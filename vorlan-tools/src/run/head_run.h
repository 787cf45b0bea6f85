// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include "report/head.h"
#include "run/run.h"
#include "run/work_folder.h"

namespace vorlan_tools {

/// A run with the same settings on a record without residues: tells the head of every report, and
/// whether vorlan takes the settings at all.
class HeadRun {
 public:
  HeadRun(const WorkFolder& folder, const RunOptions& options)
      : folder_(folder), options_(options) {}

  /// Returns the status of vorlan: other than 0 if it refuses the settings, when its messages have
  /// been passed on. Throws DataError if it fails otherwise.
  int execute();

  /// Requires a successful run.
  Head head() const;

 private:
  const WorkFolder& folder_;
  const RunOptions& options_;
};

}  // namespace vorlan_tools
