// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Any bytes as a report. Reading may end in a DataError and in nothing else; what has been read is
// checked and written in every row format, so that no later code relies on more than the reader
// promises. Where the reader has found a report without fault, its repeats must be whole.

#include <sys/mman.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "check/findings.h"
#include "check/repeat_check.h"
#include "convert/row_format.h"
#include "errors.h"
#include "fuzz_target.h"
#include "io/output_file.h"
#include "report/report_reader.h"

namespace {

using vorlan_tools::Repeat;
using vorlan_tools::ReportReader;
using Item = ReportReader::Item;

int open_bytes(const std::uint8_t* data, std::size_t size) {
  const int descriptor = ::memfd_create("report", 0);
  if (descriptor < 0 || ::write(descriptor, data, size) != static_cast<ssize_t>(size) ||
      ::lseek(descriptor, 0, SEEK_SET) != 0) {
    fuzz::report_fault("no memory file");
  }
  return descriptor;
}

void require(bool holds, const char* what) {
  if (!holds) fuzz::report_fault(what);
}

void require_whole(const Repeat& repeat) {
  require(repeat.unit_length > 0, "a unit without bases");
  require(repeat.start > 0 && repeat.end >= repeat.start, "a repeat without place");
  require(repeat.match_line.size() == repeat.sequence_line.size(),
          "a match line of another length");
  require(repeat.unit_line.size() == repeat.sequence_line.size(), "a unit line of another length");
}

class Consumer {
 public:
  explicit Consumer(const ReportReader& report)
      : report_(report),
        output_("/dev/null", vorlan_tools::Compression::kPlain),
        findings_(output_, "x", 0),
        check_(report.settings(), findings_) {
    formats_.push_back(vorlan_tools::bed_rows());
    formats_.push_back(vorlan_tools::gff3_rows());
    formats_.push_back(vorlan_tools::json_rows());
    formats_.push_back(vorlan_tools::tsv_rows());
    formats_.push_back(vorlan_tools::paf_rows());
    for (const auto& format : formats_) format->append_head(text_, report.head(), {});
  }

  void take(Item item) {
    if (item == Item::kSequence) return;
    require_whole(report_.repeat());
    check_.run(report_.sequence(), report_.repeat(), std::nullopt);
    for (const auto& format : formats_) write(*format);
  }

 private:
  void write(vorlan_tools::RowFormat& format) {
    text_.clear();
    try {
      format.begin_sequence(report_.sequence(), report_.sequence().name);
    } catch (const vorlan_tools::DataError&) {
      return;
    }
    format.append_repeat(text_, report_.repeat());
    require(text_.view().find('\n') == text_.size() - 1, "a row is not one line");
  }

  const ReportReader& report_;
  vorlan_tools::OutputFile output_;
  vorlan_tools::Findings findings_;
  vorlan_tools::RepeatCheck check_;
  std::vector<std::unique_ptr<vorlan_tools::RowFormat>> formats_;
  vorlan_tools::RowText text_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    ReportReader report(open_bytes(data, size), "x");
    Consumer consumer(report);
    for (auto item = report.next(); item != Item::kEnd; item = report.next()) consumer.take(item);
  } catch (const vorlan_tools::DataError&) {
    return 0;
  }
  return 0;
}
