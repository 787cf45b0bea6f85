// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/slice_cutter.h"

#include <array>
#include <cstdio>
#include <utility>

#include "io/output_file.h"

namespace vorlan_tools {

namespace {

std::string stem_of(std::size_t index) {
  std::array<char, 24> stem{};
  std::snprintf(stem.data(), stem.size(), "%06zu", index + 1);
  return stem.data();
}

}  // namespace

// Returns false at the end of the input.
bool SliceCutter::copy_until_cut(OutputFile& file) {
  for (std::uint64_t size = 0;;) {
    if (rest_.empty()) rest_ = input_.next();
    if (rest_.empty()) return false;
    const std::size_t read = scanner_.read(rest_);
    const std::string_view piece = rest_.substr(0, read);
    file.write(piece);
    digest_.add(piece);
    size += read;
    rest_.remove_prefix(read);
    // A '>' that is the last byte of a block is the last byte of all: it is no place to cut.
    if (rest_.size() > 1 && size >= slice_size_) return true;
  }
}

std::optional<Slice> SliceCutter::next() {
  if (at_end_) return std::nullopt;
  slice_.stem = stem_of(slice_.index);
  OutputFile file(folder_ + "/" + slice_.stem + ".fa", Compression::kPlain);
  at_end_ = !copy_until_cut(file);
  file.finish();
  slice_.counts = scanner_.take_counts();
  slice_.digest = digest_.take();
  slice_.input_share = input_.share_used(rest_.size());
  if (slice_.input_share) {
    const double before = std::exchange(share_before_, *slice_.input_share);
    *slice_.input_share -= before;
  }
  Slice finished = slice_;
  ++slice_.index;
  slice_.records_before += slice_.counts.records;
  slice_.line_ends_before += slice_.counts.line_ends;
  return finished;
}

}  // namespace vorlan_tools
