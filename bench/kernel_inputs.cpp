// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "kernel_inputs.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <random>
#include <stdexcept>

#include "input/cfile.h"

namespace kernel_inputs {
namespace {

constexpr std::size_t kLineWidth = 80;
constexpr unsigned kPerThousand = 1000;

}  // namespace

std::string background(std::size_t length, unsigned gc_of_256) {
  std::mt19937_64 random(1);
  std::string residues(length, 'A');
  for (char& base : residues) {
    const std::uint64_t number = random();
    const bool second = (number >> 8 & 1) != 0;
    base = number % 256 < gc_of_256 ? (second ? 'G' : 'C') : (second ? 'A' : 'T');
  }
  return residues;
}

std::string diverged_array(std::size_t length) {
  std::mt19937_64 random(2);
  const auto any_base = [&random] { return "ACGT"[random() % 4]; };
  std::string residues;
  for (std::size_t i = 0; residues.size() < length; ++i) {
    const char base = "AT"[i % 2];
    const std::uint64_t number = random() % kPerThousand;
    if (number < 60) {
      char other = any_base();
      while (other == base) other = any_base();
      residues += other;
    } else if (number < 80) {
      residues += any_base();
      residues += base;
    } else if (number >= 100) {
      residues += base;
    }
  }
  residues.resize(length);
  return residues;
}

std::string fasta(std::string_view residues, std::size_t record_length) {
  std::string text;
  for (std::size_t begin = 0; begin < residues.size(); begin += record_length) {
    const std::string_view record = residues.substr(begin, record_length);
    text += ">record\n";
    for (std::size_t line = 0; line < record.size(); line += kLineWidth) {
      text += record.substr(line, kLineWidth);
      text += '\n';
    }
  }
  return text;
}

TemporaryFile::TemporaryFile(std::string_view text)
    : name_(std::filesystem::temp_directory_path() / "vorlan_kernels_XXXXXX") {
  const int descriptor = mkstemp(name_.data());
  if (descriptor < 0) throw std::runtime_error("no temporary file");
  std::FILE* file = fdopen(descriptor, "wb");
  const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  if (std::fclose(file) != 0 || !written) throw std::runtime_error("temporary file not written");
}

TemporaryFile::~TemporaryFile() { unlink(name_.c_str()); }

std::unique_ptr<vorlan::CSequence_Mol> sequence_of(std::string_view residues) {
  const TemporaryFile text(fasta(residues, residues.size()));
  vorlan::CFile file;
  file.open(text.name());
  auto sequence = std::make_unique<vorlan::CSequence_Mol>(vorlan::CSequence_Mol::kDna, 0);
  sequence->readFastaSequence(file);
  if (sequence->residues.view() != residues) throw std::runtime_error("residues not read back");
  return sequence;
}

}  // namespace kernel_inputs
