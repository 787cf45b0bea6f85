// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "imperfect/look_ahead/bit_look_ahead.h"

#include "imperfect/vector_level.h"

namespace vorlan {
namespace {

std::vector<PlaceSetsKernel> kernels_of_this_processor() {
  std::vector<PlaceSetsKernel> kernels{{portable::choose_first_edit, "portable"}};
#ifdef VORLAN_X86_KERNELS
  if (runs_avx2()) kernels.push_back({avx2::choose_first_edit, "avx2"});
#endif
  return kernels;
}

}  // namespace

const std::vector<PlaceSetsKernel>& runnable_place_sets_kernels() {
  static const std::vector<PlaceSetsKernel> kernels = kernels_of_this_processor();
  return kernels;
}

}  // namespace vorlan
