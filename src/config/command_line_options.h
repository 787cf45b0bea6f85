// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

/// The table of all options. Each member bears the long name of its option; its default is the
/// setting as `init_param` left it, so an object must be built after that call.

#pragma once

#include <tclap/CmdLine.h>

#include <climits>
#include <string>
#include <vector>

#include "config/settings.h"
#include "config/version.h"

namespace vorlan {

/// The file names. The library's own argument would also take every unknown option for a file
/// name, and the run would then create a file of that name; here what begins with '-' and was not
/// taken by an option is a parse failure. A lone '-' is a name, and after "--" so is everything.
class FileNamesArg : public TCLAP::UnlabeledMultiArg<std::string> {
 public:
  FileNamesArg(TCLAP::CmdLineInterface& cmd, const std::string& description)
      : UnlabeledMultiArg("iofiles", description, false, "Input and output filenames", cmd, true) {}

  bool processArg(int* i, std::vector<std::string>& args) override {
    const std::string& arg = args[static_cast<std::size_t>(*i)];
    if (arg.size() > 1 && arg.front() == '-' && !TCLAP::Arg::ignoreRest()) {
      throw TCLAP::CmdLineParseException("Couldn't find match for argument", arg);
    }
    return UnlabeledMultiArg::processArg(i, args);
  }
};

/// All options, added to `cmd` in the order in which they stand here. Wording that looks like a
/// slip ("aborded", "a satellites") stays: messages are fixed by contract.
struct CommandLineOptions {
  TCLAP::CmdLine cmd{"This program searches for tandemly repeated patterns in DNA sequences.", ' ',
                     VORLAN_VERSION ".\nThis is a " + std::to_string(sizeof(void*) * CHAR_BIT) +
                         " bit version of Vorlan."};
  std::vector<std::string> search_mode_names{"exact", "extendExact", "imperfect"};
  TCLAP::ValuesConstraint<std::string> search_modes{search_mode_names};

  TCLAP::SwitchArg sequenceInfoAsComment{
      "", "sequenceInfoAsComment",
      "In the GFF and one-per-line output modes, show additional sequence information in the "
      "output file as a comment.",
      cmd, global_sequenceInfoAsComment};
  TCLAP::ValueArg<int> succN{
      "N",
      "succN",
      "The maximum number of successive N's allowed in a satellite. Default: 2.",
      false,
      global_Ns_allowed_in_a_row,
      "int",
      cmd};
  TCLAP::SwitchArg NsAsMissense{
      "", "NsAsMissense", "Treat N's as missense. Default: Treat N's as neutral with score 0.", cmd,
      global_treat_Ns_as_missense};
  TCLAP::SwitchArg preferShorterRepeats{
      "", "preferShorterRepeats",
      "For two alignments of the same repeat that have the same score, Vorlan reports by default "
      "(since version 3.3.9) the longer alignment. The longer alignment will have more "
      "mismatches/gaps and a lower perfection. With this option, Vorlan will choose the shorter "
      "of the two alignments instead of the longer. Vorlan will run faster with this option.",
      cmd, global_prefer_longer_repeat == 0};
  TCLAP::ValueArg<int> reportUnit{
      "",
      "reportUnit",
      "Repeat units can be reported in three different modes. 0: asIs, 1: Alphabetical normal "
      "form, 2: Alphabetical normal form also considering the reverse complement. Default: 2",
      false,
      global_report_unit_mode,
      "int",
      cmd};
  TCLAP::ValueArg<int> NPerfectionMode{
      "",
      "NPerfectionMode",
      "Vorlan provides different modes to treat N's when computing the perfection of a repeat. "
      "0: asMismatch, 1: asNeutral, 2: asMatch. Default: 0",
      false,
      global_N_and_perfection_mode,
      "int",
      cmd};
  TCLAP::ValueArg<int> printRepeatSeqMode{
      "",
      "printRepeatSeqMode",
      "Vorlan provides different modes to print the repeat sequence along with its information. "
      "0: don't print sequence, 1: print sequence, 2: print alignment.",
      false,
      global_print_sat_seq_mode,
      "int",
      cmd};
  TCLAP::ValueArg<int> outputFormat{
      "",
      "outputFormat",
      "Vorlan provides different output formats for printing the repeat information. 0: Vorlan "
      "output format, 1: extended Vorlan output format, 2: gff - general feature format, 3: "
      "one-per-line format, 4: as fasta sequence",
      false,
      global_print_sat_mode,
      "int",
      cmd};
  TCLAP::SwitchArg maskX{
      "", "maskX",
      "Writes the sequences to a file with the extension \".masked\" in which repeats are "
      "masked. Currently, this option has the sometime unwanted side effect of changing all "
      "ambiguity codes to Ns.",
      cmd, global_mask_repeats};
  TCLAP::ValueArg<int> flanking{
      "f",
      "flanking",
      "If the satellite sequence is printed, this is the number of flanking nucleotides to be "
      "printed to the left and right of it. Default: 0",
      false,
      global_flanking,
      "int",
      cmd};
  TCLAP::ValueArg<float> minPerfection{
      "",    "minPerfection",       "Minimum perfection of a satellites. Default: 0.",
      false, global_min_perfection, "float",
      cmd};
  TCLAP::ValueArg<float> maxPerfection{
      "",    "maxPerfection",       "Maximum perfection of a satellites. Default: 100.",
      false, global_max_perfection, "float",
      cmd};
  TCLAP::SwitchArg dontRemoveMostlyOverlapping{
      "D", "dontRemoveMostlyOverlapping",
      "Vorlan sometimes finds repeats that partially or completely overlap with other repeats, "
      "e.g. if alignments with alternative repeat patterns exist at the same locus in a "
      "sequence. The default is to remove one of any two mostly overlapping repeats in favour of "
      "that repeat with the highest score. With this option, Vorlan reports also repeats that "
      "mostly overlap with higher scoring repeats.",
      cmd, global_remove_mostly_hidden};
  TCLAP::ValueArg<int> firstSeq{
      "",    "firstSeq",           "Number of first sequence to be processed in this run.",
      false, global_sequence_from, "int",
      cmd};
  TCLAP::ValueArg<int> lastSeq{
      "",    "lastSeq",          "Number of last sequence to be processed in this run.",
      false, global_sequence_to, "int",
      cmd};
  TCLAP::ValueArg<int> maximum_score_reduction{
      "R",
      "maximum_score_reduction",
      "The maximum amount the score can be reduced before search is aborded. Typical: "
      "6*mismatch-penalty or infinite. Default: infinite",
      false,
      global_maximum_scorereduction,
      "int",
      cmd};
  TCLAP::ValueArg<int> recursion{
      "r",
      "recursion",
      "The recursion depth used in the search. Values in the range 3 to 7 are recommended. A "
      "value of 0 implies a search for perfect repeats only.",
      false,
      global_maximum_recursion_depth,
      "int",
      cmd};
  TCLAP::ValueArg<unsigned> minUnitLen{
      "u",   "minUnitLen", "Minimum unit length. Default: 1", false, global_min_unit_length,
      "int", cmd};
  TCLAP::ValueArg<unsigned> maxUnitLen{
      "U",   "maxUnitLen", "Maximum unit length. Default: 10", false, global_max_unit_length,
      "int", cmd};
  TCLAP::ValueArg<float> minLength_b{
      "",
      "minLength_b",
      "The minimum length of a repeat is determined with: maximum( minLength, minLength_a + "
      "minLength_b*(unit-length) ). Default value of minLength_b: 0",
      false,
      global_min_length_bx,
      "float",
      cmd};
  TCLAP::ValueArg<int> minLength_a{
      "",
      "minLength_a",
      "The minimum length of a repeat is determined with: maximum( minLength, minLength_a + "
      "minLength_b*(unit-length) ). Default value of minLength_a: 0",
      false,
      global_min_length_a,
      "int",
      cmd};
  TCLAP::ValueArg<int> minLength{
      "l",
      "minLength",
      "The minimum length of a repeat is determined with: maximum( minLength, minLength_a + "
      "minLength_b*(unit-length) ). Default value of minLength: 0",
      false,
      global_min_length,
      "int",
      cmd};
  TCLAP::ValueArg<float> minScore_b{
      "",
      "minScore_b",
      "The minimum score of a repeat is determined with: maximum( minScore, minScore_a + "
      "minScore_b*(unit-length) ). Default value of minScore_b: 1",
      false,
      global_min_score_bx,
      "float",
      cmd};
  TCLAP::ValueArg<int> minScore_a{
      "",
      "minScore_a",
      "The minimum score of a repeat is determined with: maximum( minScore, minScore_a + "
      "minScore_b*(unit-length) ). Default value of minScore_a: 0",
      false,
      global_min_score_a,
      "int",
      cmd};
  TCLAP::ValueArg<int> minScore{
      "s",
      "minScore",
      "The minimum score of a repeat is determined with: maximum( minScore, minScore_a + "
      "minScore_b*(unit-length) ). Default value of minScore: 6",
      false,
      global_min_score,
      "int",
      cmd};
  TCLAP::ValueArg<int> mismatchScore{
      "m",
      "mismatchScore",
      "Score for mismatch - must be negative. Default: -5. Match score is fixed to one.",
      false,
      global_mismatch_score,
      "int",
      cmd};
  TCLAP::ValueArg<int> indelScore{
      "g",
      "indelScore",
      "Score for indels - must be negative. Default: -5. Match score is fixed to one.",
      false,
      global_indel_score,
      "int",
      cmd};
  TCLAP::ValueArg<std::string> searchMode{
      "M",
      "searchMode",
      "Vorlan provides three different search modes. exact: Search for exact repeats, only. "
      "extendExact: Searches for exact repeats and extends them by inserting mismatches and "
      "indels. imperfect: Searches directly for imperfect repeats.",
      false,
      "imperfect",
      &search_modes,
      cmd};
  FileNamesArg iofiles{
      cmd,
      "Vorlan requires either one or two file names as parameters. The first must be the input "
      "file in FASTA format. If a second file is specified, output is written to it. If no "
      "second file is given, output is written to the console. "};
};

}  // namespace vorlan
