// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/index_order.h"

#include <algorithm>

#include "convert/sequence_names.h"
#include "errors.h"

namespace vorlan_tools {

void IndexOrder::add(std::string_view name, std::int64_t start, std::int64_t end) {
  if (names_.empty() || name != name_) {
    name_ = name;
    last_start_ = 0;
    if (!names_.insert(name_).second) {
      throw DataError("An index needs all repeats of a sequence together, but " +
                      quoted_name(name) + " comes up again behind others; try --sort.");
    }
  }
  if (start < last_start_) {
    throw DataError("An index needs the repeats of a sequence in order, but those of " +
                    quoted_name(name) +
                    " are not, perhaps since two sequences have this name; try --sort.");
  }
  last_start_ = start;
  longest_end_ = std::max(longest_end_, end);
}

}  // namespace vorlan_tools
