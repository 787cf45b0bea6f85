// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// The product's searches behind the types of the slow twins, so that both answers compare with ==.
//
// Everything goes the way of a run: settings into the globals, one controller per record, one
// search, overlap removal, and only then a look at the list. The alignment events of a record are
// promised for the list that overlap removal leaves, not before.
#ifndef VORLAN_TESTS_DIFFERENTIAL_SEARCH_ADAPTER_H_
#define VORLAN_TESTS_DIFFERENTIAL_SEARCH_ADAPTER_H_

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "input/csequence_mol.h"
#include "plain_search.h"
#include "search/accelerations.h"
#include "search/csearchcontroller.h"

namespace differential {

enum class Mode { kExact, kExtendExact, kImperfect };
inline constexpr std::array kAllModes = {Mode::kExact, Mode::kExtendExact, Mode::kImperfect};

const char* name_of(Mode mode);

// Where the product finds the residues.
enum class Buffer {
  kExact,   // a buffer of exactly this size: a read behind the last residue is one too far
  kReused,  // the buffer of the records before: behind the last residue stand theirs
  kSeries,  // the same, and imperfect repeats are searched as in a record between others
};

// How often to search with engines left out, beside the search with all of them.
enum class Engines {
  kTogether,  // not at all
  kApart,     // with none, and with each alone that has anything to do in the mode
};

// Receives the controller of a record that has been searched, and the list that a report would be
// made from.
using Visit = std::function<void(vorlan::CSearchController&, vorlan::CsatContainer&)>;

// The list with offsets in place of pointers.
// REQUIRES: the repeats lie in the residues of the sequence.
std::vector<reference::Repeat> converted(const vorlan::CsatContainer& sats,
                                         const vorlan::CSequence_Mol& sequence);

// Searches the sequence, removes hidden repeats and calls visit. Sets all search settings of the
// process, and the others to their defaults.
void search_record(Mode mode, vorlan::CSequence_Mol& sequence, const reference::Settings& settings,
                   const Visit& visit, const vorlan::Accelerations& engines = {});

// The searches of the product. One object is like one run: it keeps a residue buffer, and the pool
// of repeat records is that of the process.
class ProductSearch {
 public:
  ProductSearch();

  // The list that a report would be made from. Sets all search settings of the process.
  std::vector<reference::Repeat> find(Mode mode, std::string_view residues,
                                      const reference::Settings& settings, Buffer buffer,
                                      const vorlan::Accelerations& engines = {});

 private:
  vorlan::CSequence_Mol reused_;
};

// What the slow twin finds, before overlap removal.
std::vector<reference::Repeat> find_plainly(Mode mode, std::string_view residues,
                                            const reference::Settings& settings);

// Searches the residues in one mode, or in all, in each kind of buffer: without overlap removal in
// that of exact size, and with it in the others, whatever the settings say about overlap removal.
// Returns what is different from the slow twin: mode, engines, settings, residues and the first
// record that differs; nothing when all is equal.
std::optional<std::string> difference(ProductSearch& product, Mode mode, std::string_view residues,
                                      const reference::Settings& settings,
                                      Engines engines = Engines::kTogether);
std::optional<std::string> difference(ProductSearch& product, std::string_view residues,
                                      const reference::Settings& settings,
                                      Engines engines = Engines::kTogether);

}  // namespace differential

#endif  // VORLAN_TESTS_DIFFERENTIAL_SEARCH_ADAPTER_H_
