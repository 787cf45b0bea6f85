// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "catalog/catalog.h"

#include <algorithm>
#include <iostream>
#include <set>
#include <string_view>
#include <tuple>
#include <unordered_set>
#include <vector>

#include "catalog/locus.h"
#include "catalog/locus_file.h"
#include "catalog/rejections.h"
#include "convert/motif.h"
#include "convert/sequence_names.h"
#include "errors.h"
#include "fasta/matching_records.h"
#include "io/file_identity.h"
#include "overlaps/best_spans.h"
#include "report/report_reader.h"

namespace vorlan_tools {

namespace {

constexpr Thousandths kPerfect = 100000;

/// A repeat on its way: a locus, unless a reason speaks against it.
struct Candidate {
  Judged repeat;
  Locus locus;
  std::int64_t score = 0;
  std::optional<Reason> reason;

  ScoredSpan span() const {
    return {locus.start, locus.end, score, static_cast<std::int64_t>(locus.motif.size())};
  }
};

/// The motif that the report tells; where it shows no bases, a perfect repeat has it in the genome.
void find_locus_motif(const Repeat& repeat, std::string_view bases, std::string& motif) {
  find_motif(repeat, motif);
  const auto unit_length = static_cast<std::size_t>(repeat.unit_length);
  if (!motif.empty() || repeat.perfection != kPerfect || bases.size() < unit_length) return;
  motif = bases.substr(0, unit_length);
  if (motif.find('N') != std::string::npos) motif.clear();
}

class CatalogMaker {
 public:
  explicit CatalogMaker(const CatalogRequest& request)
      : request_(request),
        rules_(rules_for(request)),
        report_(request.report),
        records_(request.fasta, report_.settings()),
        output_(request),
        rejections_(request.rejected, request, rules_) {}

  void run() {
    for (auto item = report_.next(); item != ReportReader::Item::kEnd; item = report_.next()) {
      if (item == ReportReader::Item::kSequence) {
        settle();
        begin_sequence();
      } else {
        take_repeat();
      }
    }
    settle();
    finish();
  }

 private:
  void begin_sequence() {
    name_ = report_.sequence().name;
    written_name_ = request_.cut_names ? until_white_space(name_) : std::string_view(name_);
    records_.find(report_.sequence());
    last_start_ = 0;
    const bool fits = !written_name_.empty() &&
                      written_name_.find_first_of(rules_.not_in_names) == std::string::npos &&
                      rules_.not_ahead_of_names.find(written_name_[0]) == std::string_view::npos;
    bool is_text = true;
    json_string(written_name_, is_text);
    name_fits_ = fits && (is_text || request_.genotyper != Genotyper::kExpansionHunter);
    if (!used_names_.insert(written_name_).second) {
      throw DataError("Two sequences are named " + quoted_name(written_name_) +
                      "; a catalogue cannot tell them apart.");
    }
  }

  void take_repeat() {
    const Repeat& repeat = report_.repeat();
    const std::string_view bases = records_.bases_of(repeat);
    if (repeat.start < last_start_) {
      throw LineError(
          report_.name(), repeat.line,
          "the repeats of a sequence are not in order, or two sequences have its name.");
    }
    last_start_ = repeat.start;
    if (repeat.start - 1 >= reach_) settle();
    Candidate candidate;
    candidate.repeat = {repeat.start, repeat.end, repeat.unit_length, repeat.unit, {}};
    find_locus_motif(repeat, bases, candidate.repeat.motif);
    candidate.locus = {repeat.start - 1, repeat.end, candidate.repeat.motif};
    candidate.score = repeat.score.value_or(0);
    candidate.reason = judge(repeat, candidate.locus);
    if (!candidate.reason) reach_ = std::max(reach_, candidate.locus.end + request_.min_gap);
    candidates_.push_back(std::move(candidate));
  }

  /// What speaks against a locus as such. Trims its end where asked.
  std::optional<Reason> judge(const Repeat& repeat, Locus& locus) const {
    if (!request_.filter.keeps(repeat)) return Reason::kFilter;
    if (!name_fits_) return Reason::kName;
    if (locus.motif.empty()) return Reason::kMotif;
    const std::int64_t period = repeat.unit_length;
    if (period < rules_.min_period || period > rules_.max_period) return Reason::kPeriod;
    if (request_.trims_to_units || rules_.needs_whole_units) locus.end -= locus.length() % period;
    if (locus.length() < std::max(rules_.min_length, period)) return Reason::kShort;
    if (locus.length() > rules_.max_length) return Reason::kLong;
    const auto size = static_cast<std::int64_t>(records_.residues().size());
    const std::int64_t least_start = rules_.flank + rules_.in_front_of_flank;
    if (locus.start < least_start || size - locus.end < rules_.flank) return Reason::kFlank;
    if (count_ns_in_flanks(locus) > rules_.max_ns_in_flanks) return Reason::kNs;
    return std::nullopt;
  }

  std::int64_t count_ns_in_flanks(const Locus& locus) const {
    if (rules_.max_ns_in_flanks == kNoBound) return 0;
    const auto start = records_.residues().begin() + locus.start;
    const auto end = records_.residues().begin() + locus.end;
    return std::count(start - rules_.flank, start, 'N') + std::count(end, end + rules_.flank, 'N');
  }

  /// Decides between the candidates so far, none of which is near to a later one, and writes them.
  void settle() {
    if (request_.overlaps == OverlapPolicy::kBest) keep_best();
    if (request_.overlaps == OverlapPolicy::kDrop) drop_neighbours();
    if (request_.overlaps == OverlapPolicy::kAll) drop_twins();
    for (const Candidate& candidate : candidates_) {
      if (candidate.reason) {
        rejections_.add(name_, candidate.repeat, *candidate.reason);
      } else {
        output_.write(written_name_, candidate.locus);
      }
    }
    candidates_.clear();
    reach_ = 0;
  }

  std::vector<Candidate*> loci() {
    std::vector<Candidate*> found;
    for (Candidate& candidate : candidates_) {
      if (!candidate.reason) found.push_back(&candidate);
    }
    return found;
  }

  void keep_best() {
    const std::vector<Candidate*> found = loci();
    if (found.size() < 2) return;
    std::vector<ScoredSpan> spans;
    spans.reserve(found.size());
    for (const Candidate* candidate : found) spans.push_back(candidate->span());
    const std::vector<bool> is_chosen = choose_best(spans, request_.min_gap);
    for (std::size_t i = 0; i < found.size(); ++i) {
      if (!is_chosen[i]) found[i]->reason = Reason::kOverlap;
    }
  }

  /// Candidates that were gathered form one chain: each but the first is near to one before.
  void drop_neighbours() {
    const std::vector<Candidate*> found = loci();
    if (found.size() < 2) return;
    for (Candidate* candidate : found) candidate->reason = Reason::kOverlap;
  }

  /// Alignments may differ where place and motif do not: to a genotyper that is one locus.
  void drop_twins() {
    std::set<std::tuple<std::int64_t, std::int64_t, std::string_view>> places;
    for (Candidate* candidate : loci()) {
      const Locus& locus = candidate->locus;
      if (!places.emplace(locus.start, locus.end, locus.motif).second)
        candidate->reason = Reason::kTwin;
    }
  }

  void finish() {
    rejections_.close();
    const std::uint64_t all = output_.count() + rejections_.count();
    std::string sentence = "vorlan-tools: " + std::to_string(output_.count()) + " of " +
                           std::to_string(all) + " repeats are loci for " +
                           std::string(rules_.title);
    if (rejections_.count() > 0) sentence += "; dropped: " + rejections_.summary();
    if (output_.count() == 0) {
      rejections_.commit();
      throw DataError("No locus is left of " + std::to_string(all) + " repeats" +
                      (all > 0 ? "; dropped: " + rejections_.summary() : "") + ".");
    }
    output_.finish();
    rejections_.commit();
    std::cerr << sentence << ".\n";
  }

  const CatalogRequest& request_;
  GenotyperRules rules_;
  ReportReader report_;
  MatchingRecords records_;
  LocusFile output_;
  Rejections rejections_;
  std::string name_;
  std::string written_name_;
  std::unordered_set<std::string> used_names_;
  bool name_fits_ = false;
  std::int64_t last_start_ = 0;
  std::int64_t reach_ = 0;  ///< a candidate that begins here or behind is near to none before
  std::vector<Candidate> candidates_;
};

void require_sense(const CatalogRequest& request) {
  if (request.report == "-" && request.fasta == "-") {
    throw UsageError("Only one of report and FASTA file can be standard input.");
  }
  for (const std::string& output : {request.output, request.rejected}) {
    if (!output.empty()) refuse_input_as_output({request.report, request.fasta}, output);
  }
  if (request.output == request.rejected) {
    throw UsageError("The catalogue and the rejected repeats need two files.");
  }
  if (request.overlaps == OverlapPolicy::kAll && request.min_gap > 0) {
    throw UsageError("--min-gap and --overlaps all exclude each other.");
  }
}

}  // namespace

GenotyperRules rules_for(const CatalogRequest& request) {
  GenotyperRules rules = rules_of(request.genotyper);
  if (request.max_period && *request.max_period > rules.max_period) {
    throw UsageError(std::string(rules.title) + " takes units of up to " +
                     std::to_string(rules.max_period) + " bases.");
  }
  rules.max_period = request.max_period.value_or(rules.max_period);
  rules.max_length = request.max_length.value_or(rules.max_length);
  rules.flank = request.flank.value_or(rules.flank);
  return rules;
}

void make_catalog(const CatalogRequest& request) {
  require_sense(request);
  CatalogMaker(request).run();
}

}  // namespace vorlan_tools
