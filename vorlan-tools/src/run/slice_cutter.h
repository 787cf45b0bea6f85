// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "io/output_file.h"
#include "run/digest.h"
#include "run/input_text.h"
#include "run/record_scanner.h"
#include "run/slice.h"

namespace vorlan_tools {

/// Cuts an input into slices and writes each to a file. The cuts depend on the text and the slice
/// size only, so that a later run finds the same slices.
class SliceCutter {
 public:
  /// A slice ends at the first place behind `slice_size` bytes where the text may be cut: a longer
  /// record is a slice of its own. Files are made in `folder`.
  SliceCutter(InputText& input, std::string folder, std::uint64_t slice_size)
      : input_(input), folder_(std::move(folder)), slice_size_(slice_size) {}

  /// Writes the next slice; absent behind the last one. An empty input is one empty slice. Throws
  /// DataError. Memory: one block of the input.
  std::optional<Slice> next();

 private:
  bool copy_until_cut(OutputFile& file);

  InputText& input_;
  std::string folder_;
  std::uint64_t slice_size_;
  RecordScanner scanner_;
  Digest digest_;
  std::string_view rest_;  ///< of the last block
  Slice slice_;            ///< counts what lies before the next one
  double share_before_ = 0;
  bool at_end_ = false;
};

}  // namespace vorlan_tools
