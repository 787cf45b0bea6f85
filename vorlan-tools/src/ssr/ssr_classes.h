// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "report/head.h"
#include "report/repeat.h"

namespace vorlan_tools {

/// Unit lengths, and how many copies make a locus of each.
class SsrClasses {
 public:
  /// "1:10,2:6" asks for 10 copies of one base and 6 of two. Throws UsageError for other texts, and
  /// if a length stands there twice.
  explicit SsrClasses(const std::string& text);

  /// Whether the repeat has as many copies as its class asks for. Its length without insertions and
  /// with deletions counts where the report tells it, otherwise its bases.
  bool holds(const Repeat& repeat) const {
    const auto found = copies_.find(repeat.unit_length);
    return found != copies_.end() &&
           repeat.length.value_or(repeat.bases) >= found->first * found->second;
  }

  /// Copies by unit length.
  const std::map<std::int64_t, std::int64_t>& copies() const { return copies_; }

  /// Why a report with these settings may lack loci of the classes, as a sentence; empty if it has
  /// all that are perfect.
  std::string missing_from(const Settings& settings) const;

 private:
  std::map<std::int64_t, std::int64_t> copies_;
};

}  // namespace vorlan_tools
