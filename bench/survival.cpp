// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// vorlan_survival FASTA SHORTEST LONGEST: how many starts each stage of the imperfect search
// leaves, summed over records and unit lengths, with default settings otherwise. Prints a line for
// each stage, its name and a count, as soon as the count is there.
//
// Every start that has a base is shown to every filter, whatever the marks. In a search the marks
// of repeats close many of them before, so what it extends is less than what survives here.

#include <array>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "config/command_line.h"
#include "config/settings.h"
#include "imperfect/filter/start_filter.h"
#include "input/cfile.h"
#include "input/csequence_mol.h"
#include "search/accelerations.h"
#include "search/bit_planes.h"
#include "search/csearchcontroller.h"

namespace {

using Records = std::vector<std::unique_ptr<vorlan::CSequence_Mol>>;

/// Reads all records; false at a malformed one.
bool read_records(vorlan::CFile& file, Records& records) {
  while (!file.eof()) {
    auto sequence = std::make_unique<vorlan::CSequence_Mol>(vorlan::CSequence_Mol::kDna, 0);
    sequence->readFastaSequence(file);
    if (file.fail() && !file.eof()) return false;
    records.push_back(std::move(sequence));
  }
  return true;
}

/// The starts of one unit length, as blocks for the filter.
class Starts {
 public:
  Starts(const vorlan::BitPlanes& planes, std::ptrdiff_t starts)
      : no_base_(planes.words().no_base), starts_(starts) {}

  /// The bases among the starts of the block from `first_word` on.
  std::array<std::uint64_t, vorlan::kFilterWords> block(std::ptrdiff_t first_word) const {
    std::array<std::uint64_t, vorlan::kFilterWords> words{};
    for (std::size_t i = 0; i < words.size(); ++i) {
      const std::ptrdiff_t word = first_word + static_cast<std::ptrdiff_t>(i);
      const std::ptrdiff_t left = starts_ - word * vorlan::kBitsPerWord;
      if (left <= 0) break;
      const std::uint64_t behind = left >= vorlan::kBitsPerWord ? 0 : ~std::uint64_t{0} << left;
      words[i] = ~no_base_[word] & ~behind;
    }
    return words;
  }

 private:
  const std::uint64_t* no_base_;
  std::ptrdiff_t starts_;
};

std::uint64_t count_bits(const std::array<std::uint64_t, vorlan::kFilterWords>& words) {
  std::uint64_t count = 0;
  for (const std::uint64_t word : words) count += static_cast<std::uint64_t>(std::popcount(word));
  return count;
}

/// How many starts of one unit length these engines leave.
std::uint64_t survivors(std::string_view residues, const vorlan::BitPlanes& planes,
                        unsigned unit_length, const vorlan::Accelerations& engines) {
  const std::ptrdiff_t starts = std::ssize(residues) - static_cast<std::ptrdiff_t>(unit_length) + 1;
  if (starts <= 0) return 0;
  const int min_score = vorlan::CSearchController::user_min_scores()[unit_length];
  vorlan::StartFilter filter(residues, planes, unit_length, min_score, starts, engines);
  const Starts all(planes, starts);
  constexpr auto kWords = static_cast<std::ptrdiff_t>(vorlan::kFilterWords);
  std::uint64_t count = 0;
  for (std::ptrdiff_t word = 0; word * vorlan::kBitsPerWord < starts; word += kWords) {
    auto block = all.block(word);
    filter.glance(word, block.data());
    count += count_bits(block);
    while (filter.doubts() >= filter.enough_doubts()) count += filter.look_closely().size();
  }
  while (filter.doubts() != 0) count += filter.look_closely().size();
  return count;
}

/// Summed over the unit lengths of the run.
std::uint64_t survivors(const vorlan::CSequence_Mol& sequence,
                        const vorlan::Accelerations& engines) {
  const std::string_view residues = sequence.residues.view();
  const vorlan::BitPlanes planes(residues.data(), residues.size(),
                                 vorlan::CandidateFilter::margin(vorlan::global_max_unit_length));
  std::uint64_t count = 0;
  for (unsigned unit = vorlan::global_min_unit_length; unit <= vorlan::global_max_unit_length;
       ++unit) {
    count += survivors(residues, planes, unit, engines);
  }
  return count;
}

std::uint64_t survivors(const Records& records, const vorlan::Accelerations& engines) {
  std::uint64_t count = 0;
  for (const auto& record : records) count += survivors(*record, engines);
  return count;
}

std::uint64_t accepted_in(vorlan::CSequence_Mol& sequence) {
  vorlan::CSearchController controller(1, sequence);
  controller.complete_imperfect_search(nullptr);
  return controller.imperfect_sats.size();
}

void print(const char* stage, std::uint64_t count) {
  std::printf("%s %llu\n", stage, static_cast<unsigned long long>(count));
  std::fflush(stdout);
}

int fail(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (const int status = vorlan::read_and_init_parameters(argc, argv); status != 0) return status;
  vorlan::CFile file;
  file.open(vorlan::global_input_filename.c_str());
  Records records;
  if (file.fail() || !read_records(file, records)) return fail("vorlan_survival: cannot read it");

  vorlan::Accelerations engines = vorlan::Accelerations::none();
  print("starts", survivors(records, engines));
  engines.candidate_filter = true;
  print("filter", survivors(records, engines));
  engines.wraparound = true;
  print("wraparound", survivors(records, engines));
  std::uint64_t accepted = 0;
  for (const auto& record : records) accepted += accepted_in(*record);
  print("accepted", accepted);
  return 0;
}
