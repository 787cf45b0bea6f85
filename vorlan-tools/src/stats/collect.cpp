// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "stats/collect.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <unordered_set>

#include "check/unit_forms.h"
#include "errors.h"
#include "fasta/bases.h"
#include "report/report_reader.h"
#include "stats/genome_records.h"

namespace vorlan_tools {

namespace {

using Item = ReportReader::Item;

bool tells_sequences(const Settings& settings) {
  return settings.format == Format::kPlain || settings.format == Format::kExtended ||
         settings.sequence_info_as_comment;
}

/// "#    Label:    value" as a pair; the value of a line without a colon is empty.
std::pair<std::string, std::string> setting_of(std::string_view line) {
  const auto trimmed = [](std::string_view text) {
    const std::size_t begin = text.find_first_not_of("# \t");
    if (begin == std::string_view::npos) return std::string();
    return std::string(text.substr(begin, text.find_last_not_of(" \t") + 1 - begin));
  };
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos) return {trimmed(line), ""};
  return {trimmed(line.substr(0, colon)), trimmed(line.substr(colon + 1))};
}

/// Counts the repeats of one sequence after the other.
class Collector {
 public:
  Collector(ReportReader& report, GenomeStats& stats) : report_(report), stats_(stats) {}

  void begin_sequence(const std::string& name, std::optional<std::int64_t> length,
                      std::optional<std::int64_t> ns) {
    SequenceStats sequence;
    sequence.name = as_utf8(name);
    sequence.length = length;
    sequence.ns = ns;
    stats_.windows.begin_sequence(stats_.sequences.size());
    stats_.sequences.push_back(std::move(sequence));
    last_start_ = covered_end_ = 0;
  }

  /// Counts the repeat that the report stands at, and all that follow it in its sequence; returns
  /// the item behind them.
  Item take_repeats(Item item) {
    for (; item == Item::kRepeat; item = report_.next()) {
      const Repeat& repeat = report_.repeat();
      if (repeat.start < last_start_) begin_again();
      last_start_ = repeat.start;
      add(repeat);
    }
    return item;
  }

  void end_sequence() {
    SequenceStats& sequence = stats_.sequences.back();
    if (sequence.length && covered_end_ > *sequence.length) {
      throw DataError("The sequence \"" + sequence.name + "\" has a repeat behind its end.");
    }
    stats_.windows.end_sequence(sequence.length.value_or(covered_end_));
  }

 private:
  void begin_again() {
    if (tells_sequences(report_.settings())) {
      throw LineError(report_.name(), report_.line_number(),
                      "the repeats are not in the order of a report.");
    }
    const SequenceStats& sequence = stats_.sequences.back();
    if (sequence.length) {
      throw DataError("The report has several sequences named \"" + sequence.name +
                      "\", and does not tell which of them is meant.");
    }
    const std::string name = sequence.name;
    end_sequence();
    begin_sequence(name, std::nullopt, std::nullopt);
  }

  void add(const Repeat& repeat) {
    SequenceStats& sequence = stats_.sequences.back();
    sequence.tally.add(repeat);
    stats_.tally.add(repeat);
    stats_.by_unit_length[repeat.unit_length].add(repeat);
    const Count one{1, repeat.bases};
    count(sequence.by_unit_length, repeat.unit_length, one);
    count(sequence.by_copies, static_cast<std::int64_t>(copy_class(repeat.copies)), one);
    count(sequence.by_divergence, static_cast<std::int64_t>(divergence_class(repeat.perfection)),
          one);
    stats_.units.add(repeat, unit_of(repeat));
    stats_.windows.add(repeat);
    stats_.longest.offer(repeat, sequence.name);
    if (repeat.bases >= GenomeStats::kLeastDivergedBases) {
      stats_.most_diverged.offer(repeat, sequence.name);
    }
    cover(sequence, repeat);
  }

  /// Repeats come in the order of their starts, so that what is new lies behind all ends so far.
  void cover(SequenceStats& sequence, const Repeat& repeat) {
    const std::int64_t begin = std::max(repeat.start - 1, covered_end_);
    if (begin >= repeat.end) return;
    sequence.covered += repeat.end - begin;
    stats_.covered += repeat.end - begin;
    stats_.windows.cover(begin, repeat.end);
    covered_end_ = repeat.end;
  }

  static void count(ClassCounts& list, std::int64_t key, const Count& one) {
    const auto place = std::lower_bound(
        list.begin(), list.end(), key,
        [](const auto& entry, std::int64_t wanted) { return entry.first < wanted; });
    if (place != list.end() && place->first == key) {
      place->second.add(one);
    } else {
      list.insert(place, {key, one});
    }
  }

  /// The normal form over both strands; empty if the report shows no unit.
  const std::string& unit_of(const Repeat& repeat) {
    if (report_.settings().unit_mode == UnitMode::kReverseComplement) return repeat.unit;
    if (!holds_only_bases(repeat.unit)) return repeat.unit;
    unit_ = repeat.unit.empty() ? "" : shown_unit(repeat.unit, UnitMode::kReverseComplement);
    return unit_;
  }

  ReportReader& report_;
  GenomeStats& stats_;
  std::int64_t last_start_ = 0;
  std::int64_t covered_end_ = 0;
  std::string unit_;
};

void collect_alone(ReportReader& report, Collector& collector) {
  Item item = report.next();
  while (item != Item::kEnd) {
    collector.begin_sequence(report.sequence().name, report.sequence().length, std::nullopt);
    item = collector.take_repeats(report.next());
    collector.end_sequence();
  }
}

/// Goes along a report and the genome that it was made from.
class GenomeMatch {
 public:
  GenomeMatch(ReportReader& report, GenomeRecords& genome)
      : report_(report), genome_(genome), item_(report.next()) {}

  void collect(Collector& collector) {
    while (genome_.next()) {
      const GenomeRecord& record = genome_.record();
      if (!is_searched(record)) continue;
      const bool has_part = is_next(record);
      collector.begin_sequence(record.name, record.length, record.ns);
      if (has_part) item_ = collector.take_repeats(report_.next());
      collector.end_sequence();
    }
    if (item_ != Item::kEnd) {
      throw DataError(genome_.name() + " has no sequence \"" + report_.sequence().name +
                      "\" in the place where the report has it.");
    }
  }

 private:
  bool is_searched(const GenomeRecord& record) const {
    const Settings& settings = report_.settings();
    if (record.number < settings.first_sequence) return false;
    if (settings.last_sequence && record.number > *settings.last_sequence) return false;
    return true;
  }

  std::string comparable(const std::string& name) const {
    return genome_.is_index() ? name.substr(0, name.find_first_of("\t\r\v\f")) : name;
  }

  bool is_next(const GenomeRecord& record) {
    const bool fits =
        item_ == Item::kSequence && comparable(report_.sequence().name) == comparable(record.name);
    if (!tells_sequences(report_.settings())) {
      if (!names_.insert(record.name).second) {
        throw DataError(genome_.name() + " has several sequences named \"" + record.name +
                        "\", and the report does not tell which of them is meant.");
      }
      return fits;
    }
    if (!fits || report_.sequence().length != record.length) {
      throw DataError(genome_.name() + " has the sequence \"" + record.name + "\" of " +
                      std::to_string(record.length) + " bases where the report has another one.");
    }
    return true;
  }

  ReportReader& report_;
  GenomeRecords& genome_;
  Item item_;
  std::unordered_set<std::string> names_;
};

}  // namespace

std::vector<std::pair<std::string, std::string>> settings_of(const Head& head) {
  std::vector<std::pair<std::string, std::string>> settings;
  for (std::size_t i = head.range_line; i < head.lines.size(); ++i) {
    if (head.lines[i].compare(0, 5, "#    ") != 0) break;
    settings.push_back(setting_of(head.lines[i]));
  }
  return settings;
}

std::string as_utf8(const std::string& text) {
  using nlohmann::json;
  const std::string quoted = json(text).dump(-1, ' ', false, json::error_handler_t::replace);
  return json::parse(quoted).get<std::string>();
}

std::string genome_name(const std::string& input, const std::string& report) {
  const bool is_file =
      !input.empty() && input.compare(0, 5, "/dev/") != 0 && input.compare(0, 6, "/proc/") != 0;
  std::filesystem::path name = std::filesystem::path(is_file ? input : report).filename();
  for (const char* const ending : {".gz", ".bgz", ".bgzf"}) {
    if (name.extension() == ending) name = name.stem();
  }
  for (const char* const ending : {".fa", ".fasta", ".fna", ".fas", ".txt", ".tsv", ".report"}) {
    if (name.extension() == ending) name = name.stem();
  }
  const std::string text = name.string();
  return text.empty() ? "genome" : text;
}

GenomeStats collect_stats(const RereadableInput& input, const GenomeRequest& request) {
  ReportReader report(input.open_again(), input.name());
  GenomeStats stats;
  const std::string name =
      request.name.empty() ? genome_name(report.head().input_name, input.name()) : request.name;
  stats.name = as_utf8(name);
  stats.version = as_utf8(report.head().version);
  stats.settings = settings_of(report.head());
  stats.knows_edits = report.settings().format == Format::kExtended ||
                      report.settings().format == Format::kTable ||
                      report.settings().format == Format::kFasta;
  Collector collector(report, stats);
  if (request.fasta.empty()) {
    collect_alone(report, collector);
  } else {
    GenomeRecords genome(request.fasta);
    GenomeMatch(report, genome).collect(collector);
  }
  return stats;
}

}  // namespace vorlan_tools
