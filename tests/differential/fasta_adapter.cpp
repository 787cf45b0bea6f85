// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Reading and comparison; see the header.

#include "fasta_adapter.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>

#include "description.h"
#include "input/csequence_mol.h"

namespace differential {

using reference::FastaFile;

ProductFastaReader::ProductFastaReader() : descriptor_(memfd_create("fasta", 0)) {
  if (descriptor_ < 0) throw std::runtime_error("no file in memory");
  name_ = "/proc/self/fd/" + std::to_string(descriptor_);
}

ProductFastaReader::~ProductFastaReader() { close(descriptor_); }

FastaFile ProductFastaReader::read(std::string_view bytes) {
  write(bytes);
  file_.open(name_.c_str());
  FastaFile result = read_records();
  file_.close();
  return result;
}

void ProductFastaReader::write(std::string_view bytes) {
  const auto size = static_cast<ssize_t>(bytes.size());
  if (ftruncate(descriptor_, size) != 0 ||
      pwrite(descriptor_, bytes.data(), bytes.size(), 0) != size) {
    throw std::runtime_error("cannot write the file in memory");
  }
}

// The loop of a run: until the end, or up to the first malformed record.
FastaFile ProductFastaReader::read_records() {
  FastaFile result;
  vorlan::CSequence_Mol sequence(vorlan::CSequence_Mol::kDna, 1);
  while (!file_.eof()) {
    sequence.readFastaSequence(file_);
    if (file_.fail() && !file_.eof()) {
      result.malformed = true;
      result.malformed_line = file_.line_number();
      break;
    }
    result.records.push_back(
        {std::string(sequence.header.view()), std::string(sequence.name.view()),
         std::string(sequence.description.view()), std::string(sequence.residues.view())});
  }
  return result;
}

std::optional<std::string> difference(ProductFastaReader& product, std::string_view bytes) {
  const FastaFile expected = reference::read_fasta_by_rules(bytes);
  const FastaFile found = product.read(bytes);
  if (found == expected) return std::nullopt;
  // Of a long text the end is enough.
  constexpr std::size_t kShown = 2000;
  const std::string_view shown = bytes.substr(bytes.size() - std::min(bytes.size(), kShown));
  return "file " + quoted(shown) + "\nexpected " + describe(expected) + "\nfound " +
         describe(found);
}

}  // namespace differential
