// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "check/alignment_check.h"
#include "check/findings.h"
#include "check/unit_check.h"
#include "convert/row_text.h"
#include "report/repeat.h"
#include "report/settings.h"

namespace vorlan_tools {

/// Recomputes all that a report states about one repeat, from its alignment, or its events, or what
/// else is there, and from the residues of its sequence if they are known. Knows nothing of how
/// repeats are found, only what is true of one.
class RepeatCheck {
 public:
  RepeatCheck(const Settings& settings, Findings& findings)
      : settings_(settings), findings_(findings), unit_check_(settings, findings) {}

  /// `residues` are those of the whole sequence, absent if they are not known.
  void run(const Sequence& sequence, const Repeat& repeat,
           const std::optional<std::string_view>& residues);

  /// Whether the bases that the repeat shows lie at its place. True if it shows none.
  bool fits_residues(const Repeat& repeat, std::string_view residues);

 private:
  bool check_place(const Sequence& sequence, const Repeat& repeat,
                   const std::optional<std::string_view>& residues);
  void check_flanks(const Sequence& sequence, const Repeat& repeat);
  void check_residues(const Repeat& repeat, std::string_view residues);
  std::string_view bases_of(const Repeat& repeat, const std::optional<std::string_view>& residues);
  std::optional<AlignmentFacts> facts_of(const Repeat& repeat, std::string_view bases);
  void check_facts(const Repeat& repeat, const AlignmentFacts& facts);
  void check_counts(const Repeat& repeat, const EditCounts& counts, std::int64_t length);
  void check_stated(const Repeat& repeat, std::string_view bases);
  void check_shares(const Repeat& repeat);
  void check_unit_by_distance(const Repeat& repeat, std::string_view bases);
  void check_ns(const Repeat& repeat, std::string_view bases);
  void check_selection(const Repeat& repeat);
  void check_layout(const Sequence& sequence, const Repeat& repeat);

  void add(const Repeat& repeat, const std::string& fact) { findings_.add(repeat.line, fact); }

  const Settings& settings_;
  Findings& findings_;
  std::string ungapped_;
  RowText layout_;
  UnitCheck unit_check_;
};

}  // namespace vorlan_tools
