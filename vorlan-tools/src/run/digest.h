// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <htslib/hts.h>

#include <memory>
#include <new>
#include <string>
#include <string_view>

namespace vorlan_tools {

/// Tells texts apart: the MD5 sum of bytes that come in pieces.
class Digest {
 public:
  Digest() : context_(hts_md5_init()) {
    if (!context_) throw std::bad_alloc();
  }

  void add(std::string_view bytes) { hts_md5_update(context_.get(), bytes.data(), bytes.size()); }

  /// The sum in 32 hexadecimal digits. Begins anew.
  std::string take() {
    unsigned char sum[16];
    char text[33];
    hts_md5_final(sum, context_.get());
    hts_md5_hex(text, sum);
    hts_md5_reset(context_.get());
    return text;
  }

 private:
  struct Destroy {
    void operator()(hts_md5_context* context) const { hts_md5_destroy(context); }
  };
  std::unique_ptr<hts_md5_context, Destroy> context_;
};

}  // namespace vorlan_tools
