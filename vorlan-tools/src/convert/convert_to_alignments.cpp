// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include <htslib/hfile.h>
#include <htslib/sam.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <unordered_set>
#include <vector>

#include "convert/alignment_strings.h"
#include "convert/conversion.h"
#include "convert/index_order.h"
#include "convert/motif.h"
#include "convert/sequence_names.h"
#include "convert/text_append.h"
#include "errors.h"
#include "io/line_reader.h"
#include "io/pending_file.h"
#include "io/rereadable_input.h"
#include "report/report_reader.h"
#include "report/sequence_list.h"

// The perfect repeat is the read, the sequence the reference that it is mapped to. SAM wants all
// sequences with their lengths before the first alignment, so the report is read twice: first only
// for its headers.
//
// A repeat is written as
//     QNAME  r1, r2, ... by the order in the report, also when repeats are filtered out
//     FLAG 0, MAPQ 255 (not available), CIGAR with = X I D, SEQ the perfect repeat, QUAL *
//     NM, MD, AS (the score); ul unit length, un unit, mo motif, cn copies, pf perfection

namespace vorlan_tools {

namespace {

/// Sequences of the report in their order; those without bases cannot be named in SAM.
struct SequenceList {
  std::string header_lines;
  std::vector<std::int32_t> index_of_number;  ///< by number in the report; -1: left out
  std::int32_t count = 0;
  std::int64_t longest = 0;
  std::unordered_set<std::string> names;

  void add(std::string_view name, std::int64_t length) {
    if (length == 0) {
      index_of_number.push_back(-1);
      return;
    }
    require_sam_name(name);
    if (!names.emplace(name).second) {
      throw DataError("SAM needs names that differ, and two sequences are named " +
                      quoted_name(name) + ".");
    }
    (header_lines += "@SQ\tSN:") += name;
    append_number(header_lines += "\tLN:", length);
    header_lines += '\n';
    index_of_number.push_back(count++);
    longest = std::max(longest, length);
  }
};

SequenceList sam_sequences(const RereadableInput& input, const Conversion& conversion) {
  SequenceList list;
  for (const ListedSequence& sequence : list_sequences(input)) {
    list.add(written_name(sequence.name, conversion), sequence.length);
  }
  return list;
}

Head head_with_alignments(const RereadableInput& input) {
  LineReader lines(input.open_again(), input.name());
  Head head = read_head(lines);
  require_alignments(head, input.name());
  return head;
}

std::string header_text(const SequenceList& sequences, const Head& head) {
  std::string text = "@HD\tVN:1.6\tSO:coordinate\n" + sequences.header_lines;
  text += "@PG\tID:vorlan\tPN:vorlan";
  const bool is_plain = head.version.find_first_not_of("0123456789.") == std::string::npos;
  if (is_plain && !head.version.empty()) (text += "\tVN:") += head.version;
  return text += '\n';
}

struct HeaderCloser {
  void operator()(sam_hdr_t* header) const { sam_hdr_destroy(header); }
};
struct FileCloser {
  void operator()(htsFile* file) const { hts_close(file); }
};
struct RecordCloser {
  void operator()(bam1_t* record) const { bam_destroy1(record); }
};

/// A SAM or BAM file that appears when it is whole, with its index if asked.
class AlignmentFile {
 public:
  AlignmentFile(const Conversion& conversion, const SequenceList& sequences, const Head& head)
      : pending_(conversion.output), record_(bam_init1()) {
    open(conversion);
    const std::string text = header_text(sequences, head);
    header_.reset(sam_hdr_parse(text.size(), text.c_str()));
    if (!header_ || !record_ || sam_hdr_write(file_.get(), header_.get()) != 0) fail();
    if (conversion.write_index) begin_index(conversion, sequences.longest);
  }

  bam1_t* record() { return record_.get(); }

  void write() {
    if (sam_write1(file_.get(), header_.get(), record_.get()) < 0) fail();
  }

  void finish() {
    if (index_ && sam_idx_save(file_.get()) != 0) fail();
    // On a full disk htslib 1.16 frees nothing here; see OutputFile::close().
    if (hts_close(file_.release()) != 0) fail();
    pending_.commit();
    if (index_) index_->commit();
  }

 private:
  [[noreturn]] void fail() const {
    throw DataError("Cannot write " + pending_.name() + ": the disk may be full.");
  }

  void open(const Conversion& conversion) {
    // Level 1 takes a quarter of the time of the usual 6, and about a third more room.
    const char* mode = conversion.target == Target::kBam ? "wb1" : "w";
    if (conversion.target == Target::kSam && conversion.compression == Compression::kBgzip) {
      mode = "wz1";
    }
    hFILE* const stream = hdopen(pending_.descriptor(), "w");
    if (stream == nullptr) fail();
    pending_.release_descriptor();
    file_.reset(hts_hopen(stream, pending_.name().c_str(), mode));
    if (!file_) {
      hclose_abruptly(stream);
      fail();
    }
    if (conversion.threads > 1 && hts_set_threads(file_.get(), conversion.threads) != 0) fail();
  }

  void begin_index(const Conversion& conversion, std::int64_t longest) {
    const bool is_csi = longest > IndexOrder::kPlainIndexLimit;
    index_.emplace(conversion.output + (is_csi ? ".csi" : ".bai"));
    const int shift = is_csi ? kCsiShift : kPlainIndexShift;
    if (sam_idx_init(file_.get(), header_.get(), shift, index_->path().c_str()) != 0) fail();
  }

  PendingFile pending_;
  std::unique_ptr<sam_hdr_t, HeaderCloser> header_;
  std::unique_ptr<bam1_t, RecordCloser> record_;
  std::optional<PendingFile> index_;
  // Closed first: until then it needs the others.
  std::unique_ptr<htsFile, FileCloser> file_;
};

/// Turns repeats into records of one file. Its buffers keep their memory.
class RecordWriter {
 public:
  explicit RecordWriter(AlignmentFile& file) : file_(file) {}

  void write(const Repeat& repeat, std::int32_t sequence, std::int64_t number) {
    name_.assign(1, 'r');
    append_number(name_, number);
    set_cigar(repeat);
    query_.clear();
    append_query(query_, repeat);
    bam1_t* const record = file_.record();
    const int result = bam_set1(record, name_.size(), name_.c_str(), 0, sequence, repeat.start - 1,
                                kNoQuality, cigar_.size(), cigar_.data(), -1, -1, 0, query_.size(),
                                query_.c_str(), nullptr, kTagSpace);
    if (result < 0) throw DataError("A repeat is too long for this target.");
    add_tags(repeat);
    file_.write();
  }

 private:
  static constexpr std::uint8_t kNoQuality = 255;
  static constexpr std::size_t kTagSpace = 128;

  static std::uint32_t code_of(Operation operation) {
    switch (operation) {
      case Operation::kEqual:
        return BAM_CEQUAL;
      case Operation::kDifferent:
        return BAM_CDIFF;
      case Operation::kInsertion:
        return BAM_CINS;
      default:
        return BAM_CDEL;
    }
  }

  void set_cigar(const Repeat& repeat) {
    cigar_.clear();
    edits_ = 0;
    for (std::size_t i = 0; i < repeat.sequence_line.size(); ++i) {
      const std::uint32_t code =
          code_of(operation_of(repeat.sequence_line[i], repeat.unit_line[i]));
      if (code != BAM_CEQUAL) ++edits_;
      if (!cigar_.empty() && bam_cigar_op(cigar_.back()) == code) {
        cigar_.back() += std::uint32_t{1} << BAM_CIGAR_SHIFT;
      } else {
        cigar_.push_back(bam_cigar_gen(1U, code));
      }
    }
  }

  void add(const char* tag, char type, const void* data, std::size_t size) {
    if (bam_aux_append(file_.record(), tag, type, static_cast<int>(size),
                       static_cast<const std::uint8_t*>(data)) != 0) {
      throw DataError("A repeat is too long for this target.");
    }
  }

  void add_number(const char* tag, std::int64_t number) {
    const auto value = static_cast<std::int32_t>(number);
    add(tag, 'i', &value, sizeof value);
  }

  void add_text(const char* tag, const std::string& text) {
    if (!text.empty()) add(tag, 'Z', text.c_str(), text.size() + 1);
  }

  void add_thousandths(const char* tag, Thousandths thousandths) {
    const auto value = static_cast<float>(static_cast<double>(thousandths) / 1000.0);
    add(tag, 'f', &value, sizeof value);
  }

  void add_tags(const Repeat& repeat) {
    add_number("NM", edits_);
    text_.clear();
    append_md(text_, repeat);
    add_text("MD", text_);
    add_number("AS", repeat.score.value_or(0));
    add_number("ul", repeat.unit_length);
    add_text("un", repeat.unit);
    find_motif(repeat, text_);
    add_text("mo", text_);
    add_thousandths("cn", repeat.copies);
    add_thousandths("pf", repeat.perfection);
  }

  AlignmentFile& file_;
  std::string name_;
  std::string query_;
  std::string text_;
  std::vector<std::uint32_t> cigar_;
  std::int64_t edits_ = 0;
};

void require_order(const ReportReader& report, std::int64_t last_start) {
  if (report.repeat().start < last_start) {
    throw LineError(report.name(), report.repeat().line,
                    "the repeats of a sequence are not in order.");
  }
}

}  // namespace

void convert_to_alignments(const Conversion& conversion) {
  const RereadableInput input(conversion.report);
  const Head head = head_with_alignments(input);
  const SequenceList sequences = sam_sequences(input, conversion);
  ReportReader report(input.open_again(), input.name());
  AlignmentFile file(conversion, sequences, head);
  RecordWriter writer(file);
  std::int64_t number = 0;
  std::int64_t last_start = 0;
  for (auto item = report.next(); item != ReportReader::Item::kEnd; item = report.next()) {
    if (item == ReportReader::Item::kSequence) {
      last_start = 0;
      continue;
    }
    ++number;
    require_order(report, last_start);
    last_start = report.repeat().start;
    const std::int32_t index = sequences.index_of_number.at(report.sequence().number - 1);
    if (index < 0)
      throw LineError(report.name(), report.repeat().line,
                      "a sequence without bases has a repeat.");
    if (conversion.filter.keeps(report.repeat())) writer.write(report.repeat(), index, number);
  }
  file.finish();
}

}  // namespace vorlan_tools
