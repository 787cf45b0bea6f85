// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The product's FASTA reader behind the types of the slow twin, so that both answers compare with
// ==.
#ifndef VORLAN_TESTS_DIFFERENTIAL_FASTA_ADAPTER_H_
#define VORLAN_TESTS_DIFFERENTIAL_FASTA_ADAPTER_H_

#include <optional>
#include <string>
#include <string_view>

#include "fasta_by_rules.h"
#include "input/cfile.h"

namespace differential {

// Reads files of given bytes. They stand in a file in memory, which exists as long as the object.
class ProductFastaReader {
 public:
  // Throws std::runtime_error when there is no file in memory to be had.
  ProductFastaReader();
  ~ProductFastaReader();
  ProductFastaReader(const ProductFastaReader&) = delete;
  ProductFastaReader& operator=(const ProductFastaReader&) = delete;

  // What the product reads from a file of these bytes.
  reference::FastaFile read(std::string_view bytes);

 private:
  void write(std::string_view bytes);
  reference::FastaFile read_records();

  int descriptor_;
  std::string name_;
  vorlan::CFile file_;
};

// Reads the bytes with the product and by the rules. Returns what is different: the end of the
// bytes and both answers; nothing when they are equal.
std::optional<std::string> difference(ProductFastaReader& product, std::string_view bytes);

}  // namespace differential

#endif  // VORLAN_TESTS_DIFFERENTIAL_FASTA_ADAPTER_H_
