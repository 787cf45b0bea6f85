// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/tabix_index.h"

#include "convert/index_order.h"
#include "errors.h"
#include "io/pending_file.h"

namespace vorlan_tools {

void finish_with_index(OutputFile& table, const std::string& name, std::int64_t longest_end,
                       const tbx_conf_t& layout, int threads) {
  table.close();
  const bool is_csi = longest_end > IndexOrder::kPlainIndexLimit;
  PendingFile index(name + (is_csi ? ".csi" : ".tbi"));
  if (tbx_index_build3(table.path().c_str(), index.path().c_str(),
                       is_csi ? kCsiShift : kPlainIndexShift, threads, &layout) != 0) {
    throw DataError("Cannot write the index of " + name + ".");
  }
  table.commit();
  index.commit();
}

}  // namespace vorlan_tools
