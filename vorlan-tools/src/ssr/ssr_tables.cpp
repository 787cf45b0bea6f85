// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "ssr/ssr_tables.h"

#include <iostream>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "convert/sequence_names.h"
#include "convert/text_append.h"
#include "errors.h"
#include "io/compression_by_name.h"
#include "io/file_identity.h"
#include "io/output_file.h"
#include "report/report_reader.h"
#include "ssr/compound_loci.h"
#include "ssr/ssr_classes.h"
#include "ssr/ssr_counts.h"

namespace vorlan_tools {

namespace {

constexpr std::string_view kCountColumns = "\tloci\tbases\tloci_per_mb\tbases_per_mb\tlongest";

/// A table that was asked for, or none.
class Table {
 public:
  explicit Table(const std::string& name) {
    if (!name.empty()) file_.emplace(name, compression_by_name(name));
  }
  void write(std::string_view text) {
    if (file_) file_->write(text);
  }
  void close() {
    if (file_) file_->close();
  }
  void commit() {
    if (file_) file_->commit();
  }

 private:
  std::optional<OutputFile> file_;
};

/// By unit: its normal form as the report shows it; in one order whatever the sequences are.
struct UnitOrder {
  bool operator()(const std::string& a, const std::string& b) const {
    return a.size() != b.size() ? a.size() < b.size() : a < b;
  }
};

class SsrTables {
 public:
  explicit SsrTables(const SsrRequest& request)
      : request_(request),
        classes_(request.min),
        report_(request.report),
        by_class_table_(request.output),
        by_unit_table_(request.units),
        by_sequence_table_(request.sequences),
        compound_table_(request.compounds),
        compounds_(request.compound_gap) {}

  void run() {
    begin_tables();
    for (auto item = report_.next(); item != ReportReader::Item::kEnd; item = report_.next()) {
      if (item == ReportReader::Item::kSequence) {
        end_sequence();
        begin_sequence();
      } else {
        take(report_.repeat());
      }
    }
    end_sequence();
    write_classes();
    write_units();
    for (Table* table : tables()) table->close();
    for (Table* table : tables()) table->commit();
    const std::string missing = classes_.missing_from(report_.settings());
    if (!missing.empty()) std::cerr << "vorlan-tools: " << missing << '\n';
  }

 private:
  std::vector<Table*> tables() {
    return {&by_unit_table_, &by_sequence_table_, &compound_table_, &by_class_table_};
  }

  void begin_tables() {
    text_ = "sequence\tlength";
    text_ += kCountColumns;
    for (const auto& [unit_length, copies] : classes_.copies())
      append_number(text_ += "\tunits_of_", unit_length);
    by_sequence_table_.write(text_ += '\n');
    compound_table_.write(CompoundLoci::kColumns);
  }

  void begin_sequence() {
    is_in_sequence_ = true;
    name_ = report_.sequence().name;
    length_ = report_.sequence().length.value_or(-1);
    if (length_ < 0) {
      knows_lengths_ = false;
    } else {
      total_bases_ += length_;
    }
    last_start_ = 0;
    in_sequence_ = {};
    sequence_classes_.clear();
    all_.begin_sequence();
    for (auto& [unit_length, count] : by_class_) count.begin_sequence();
    for (auto& [unit, count] : by_unit_) count.begin_sequence();
    compounds_.begin_sequence(name_);
  }

  void take(const Repeat& repeat) {
    if (repeat.start < last_start_) {
      throw LineError(
          report_.name(), repeat.line,
          "the repeats of a sequence are not in order, or two sequences have its name.");
    }
    last_start_ = repeat.start;
    if (!request_.filter.keeps(repeat) || !classes_.holds(repeat)) return;
    for (SsrCount* count : {&all_, &in_sequence_, &by_class_[repeat.unit_length],
                            &sequence_classes_[repeat.unit_length]}) {
      count->add(repeat.start, repeat.end);
    }
    if (!repeat.unit.empty()) by_unit_[repeat.unit].add(repeat.start, repeat.end);
    compounds_.add(repeat);
  }

  void end_sequence() {
    if (!is_in_sequence_) return;
    compounds_.end_sequence();
    compound_table_.write(compounds_.rows());
    compounds_.rows().clear();
    text_ = tsv_name(name_) + '\t' + (length_ < 0 ? "." : std::to_string(length_));
    append_count(text_, in_sequence_, length_);
    for (const auto& [unit_length, copies] : classes_.copies())
      append_number(text_ += '\t', sequence_classes_[unit_length].loci());
    by_sequence_table_.write(text_ += '\n');
  }

  std::int64_t known_bases() const { return knows_lengths_ ? total_bases_ : -1; }

  void write_classes() {
    text_ = "unit_length\tmin_copies";
    (text_ += kCountColumns) += '\n';
    for (const auto& [unit_length, copies] : classes_.copies()) {
      append_number(text_, unit_length);
      append_number(text_ += '\t', copies);
      append_count(text_, by_class_[unit_length], known_bases());
      text_ += '\n';
    }
    append_count(text_ += "all\t.", all_, known_bases());
    append_number(text_ += "\ncompound\t.\t", compounds_.compounds());
    append_number(text_ += "\t.\t.\t.\t.\nin_compound\t.\t", compounds_.loci());
    by_class_table_.write(text_ += "\t.\t.\t.\t.\n");
  }

  void write_units() {
    text_ = "unit\tunit_length";
    (text_ += kCountColumns) += '\n';
    for (const auto& [unit, count] : by_unit_) {
      text_ += unit;
      append_number(text_ += '\t', static_cast<std::int64_t>(unit.size()));
      append_count(text_, count, known_bases());
      text_ += '\n';
    }
    by_unit_table_.write(text_);
  }

  const SsrRequest& request_;
  SsrClasses classes_;
  ReportReader report_;
  Table by_class_table_;
  Table by_unit_table_;
  Table by_sequence_table_;
  Table compound_table_;
  CompoundLoci compounds_;
  SsrCount all_;
  std::map<std::int64_t, SsrCount> by_class_;
  std::map<std::string, SsrCount, UnitOrder> by_unit_;
  bool is_in_sequence_ = false;
  bool knows_lengths_ = true;
  std::int64_t total_bases_ = 0;
  std::string name_;
  std::int64_t length_ = -1;
  std::int64_t last_start_ = 0;
  SsrCount in_sequence_;
  std::map<std::int64_t, SsrCount> sequence_classes_;
  std::string text_;
};

/// Throws UsageError if two tables, or a table and the report, are one file.
void require_sense(const SsrRequest& request) {
  std::set<std::string> names;
  for (const std::string& name :
       {request.output, request.units, request.sequences, request.compounds}) {
    if (name.empty()) continue;
    if (!names.insert(name).second) throw UsageError("Each table needs a file of its own.");
    if (is_same_file(request.report, name))
      throw UsageError("The output " + name + " is the report itself.");
  }
}

}  // namespace

void write_ssr_tables(const SsrRequest& request) {
  require_sense(request);
  SsrTables(request).run();
}

}  // namespace vorlan_tools
