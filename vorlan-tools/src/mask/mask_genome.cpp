// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "mask/mask_genome.h"

#include <htslib/bgzf.h>
#include <htslib/faidx.h>

#include <memory>
#include <vector>

#include "errors.h"
#include "io/file_identity.h"
#include "io/open_input.h"
#include "io/pending_file.h"
#include "mask/masked_stretches.h"

namespace vorlan_tools {

namespace {

constexpr std::size_t kBlockSize = std::size_t{256} * 1024;

struct CloseInput {
  void operator()(BGZF* file) const { bgzf_close(file); }
};

void check(const Masking& masking) {
  if (masking.report == "-" && masking.fasta == "-") {
    throw UsageError("Only one of report and FASTA file can be standard input.");
  }
  if (masking.write_index && masking.output == "-") {
    throw UsageError("An index needs an output with a name.");
  }
  refuse_input_as_output({masking.report, masking.fasta}, masking.output);
}

void copy_masked(const Masking& masking, OutputFile& output) {
  const std::unique_ptr<BGZF, CloseInput> input(open_input(masking.fasta));
  MaskedStretches stretches(masking.report);
  TextMasker masker(stretches, masking.style);
  std::vector<char> block(kBlockSize);
  ssize_t count = 0;
  while ((count = read_input(input.get(), block.data(), block.size())) > 0) {
    const auto size = static_cast<std::size_t>(count);
    masker.mask(block.data(), block.data() + size);
    output.write({block.data(), size});
  }
  if (count < 0) {
    throw DataError("Cannot read " + shown_input_name(masking.fasta) +
                    ": the file is damaged or cut short.");
  }
  masker.finish();
}

// The index is made from the file as it lies beside its final name; all get their names together.
void commit_with_index(const Masking& masking, OutputFile& output) {
  PendingFile fai(masking.output + ".fai");
  std::unique_ptr<PendingFile> gzi;
  if (masking.compression == Compression::kBgzip) {
    gzi = std::make_unique<PendingFile>(masking.output + ".gzi");
  }
  if (fai_build3(output.path().c_str(), fai.path().c_str(), gzi ? gzi->path().c_str() : nullptr) !=
      0) {
    throw DataError(
        "The masked file cannot be indexed: within a sequence all lines but the last "
        "must have one length, and names must differ.");
  }
  output.commit();
  fai.commit();
  if (gzi) gzi->commit();
}

}  // namespace

void mask_genome(const Masking& masking) {
  check(masking);
  OutputFile output(masking.output, masking.compression, masking.threads);
  copy_masked(masking, output);
  output.close();
  if (masking.write_index) {
    commit_with_index(masking, output);
  } else {
    output.commit();
  }
}

}  // namespace vorlan_tools
