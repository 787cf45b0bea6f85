// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "io/compression_threads.h"

#include <htslib/bgzf.h>
#include <htslib/thread_pool.h>

#include <algorithm>

namespace vorlan_tools {

namespace {

/// 8 MB with what they are compressed to. Of what is gained, a quarter as many bring about half.
constexpr int kLeastBlocksInQueue = 64;

}  // namespace

CompressionThreads::~CompressionThreads() {
  if (pool_.pool != nullptr) hts_tpool_destroy(pool_.pool);
}

bool CompressionThreads::start() {
  pool_ = {hts_tpool_init(threads_), std::max(kLeastBlocksInQueue, 2 * threads_)};
  return pool_.pool != nullptr;
}

bool CompressionThreads::serve(BGZF* file) {
  if (threads_ == 1) return true;
  return start() && bgzf_thread_pool(file, pool_.pool, pool_.qsize) == 0;
}

bool CompressionThreads::serve(htsFile* file) {
  if (threads_ == 1) return true;
  return start() && hts_set_thread_pool(file, &pool_) == 0;
}

}  // namespace vorlan_tools
