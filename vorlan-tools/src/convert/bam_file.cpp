// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include <htslib/hfile.h>
#include <htslib/sam.h>

#include <array>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "convert/alignment_strings.h"
#include "convert/alignment_target.h"
#include "convert/index_order.h"
#include "convert/motif.h"
#include "convert/text_append.h"
#include "errors.h"
#include "io/compression_threads.h"
#include "io/pending_file.h"

namespace vorlan_tools {

namespace {

struct HeaderCloser {
  void operator()(sam_hdr_t* header) const { sam_hdr_destroy(header); }
};
struct FileCloser {
  CompressionThreads* threads;
  void operator()(htsFile* file) const {
    if (hts_close(file) != 0) threads->abandon();
  }
};
struct RecordCloser {
  void operator()(bam1_t* record) const { bam_destroy1(record); }
};

/// A BAM file that appears when it is whole, with its index if asked.
class AlignmentFile {
 public:
  AlignmentFile(const Conversion& conversion, std::int64_t longest, const std::string& header)
      : pending_(conversion.output), threads_(conversion.threads), record_(bam_init1()) {
    open(conversion);
    header_.reset(sam_hdr_parse(header.size(), header.c_str()));
    if (!header_ || !record_ || sam_hdr_write(file_.get(), header_.get()) != 0) fail();
    if (conversion.write_index) begin_index(conversion, longest);
  }

  bam1_t* record() { return record_.get(); }

  void write() {
    if (sam_write1(file_.get(), header_.get(), record_.get()) < 0) fail();
  }

  void finish() {
    if (index_ && sam_idx_save(file_.get()) != 0) fail();
    // On a full disk htslib 1.16 frees nothing here; see OutputFile::close().
    if (hts_close(file_.release()) != 0) {
      threads_.abandon();
      fail();
    }
    pending_.commit();
    if (index_) index_->commit();
  }

 private:
  [[noreturn]] void fail() const {
    throw DataError("Cannot write " + pending_.name() + ": the disk may be full.");
  }

  void open(const Conversion& conversion) {
    // Level 1 takes a quarter of the time of the usual 6, and about a third more room. Level 0 only
    // stores, still in blocks of bgzip, without which many programs do not read BAM.
    const char* const mode = conversion.compression == Compression::kPlain ? "wb0" : "wb1";
    hFILE* const stream = hdopen(pending_.descriptor(), "w");
    if (stream == nullptr) fail();
    pending_.release_descriptor();
    file_.reset(hts_hopen(stream, pending_.name().c_str(), mode));
    if (!file_) {
      hclose_abruptly(stream);
      fail();
    }
    if (!threads_.serve(file_.get())) fail();
  }

  void begin_index(const Conversion& conversion, std::int64_t longest) {
    const bool is_csi = longest > IndexOrder::kPlainIndexLimit;
    index_.emplace(conversion.output + (is_csi ? ".csi" : ".bai"));
    const int shift = is_csi ? kCsiShift : kPlainIndexShift;
    if (sam_idx_init(file_.get(), header_.get(), shift, index_->path().c_str()) != 0) fail();
  }

  PendingFile pending_;
  CompressionThreads threads_;
  std::unique_ptr<sam_hdr_t, HeaderCloser> header_;
  std::unique_ptr<bam1_t, RecordCloser> record_;
  std::optional<PendingFile> index_;
  // Closed first: until then it needs the others.
  std::unique_ptr<htsFile, FileCloser> file_{nullptr, FileCloser{&threads_}};
};

std::uint32_t code_of(Operation operation) {
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

/// Turns repeats into records of one file. Its buffers keep their memory.
class RecordWriter {
 public:
  explicit RecordWriter(AlignmentFile& file) : file_(file) {}

  void write(const Repeat& repeat, std::int32_t sequence, std::int64_t number) {
    name_.clear();
    append_number(name_ += 'r', number);
    set_cigar(repeat);
    query_.clear();
    append_query(query_, repeat);
    set_tags(repeat);
    bam1_t* const record = file_.record();
    const int result = bam_set1(record, name_.size(), name_.view().data(), 0, sequence,
                                repeat.start - 1, kNoQuality, cigar_.size(), cigar_.data(), -1, -1,
                                0, query_.size(), query_.view().data(), nullptr, tags_.size());
    if (result < 0) throw DataError("A repeat is too long for this target.");
    // bam_set1() has made room for them.
    std::memcpy(record->data + record->l_data, tags_.view().data(), tags_.size());
    record->l_data += static_cast<int>(tags_.size());
    file_.write();
  }

 private:
  static constexpr std::uint8_t kNoQuality = 255;

  void set_cigar(const Repeat& repeat) {
    cigar_.clear();
    edits_ = 0;
    for_each_run(repeat, [&](Operation operation, std::size_t begin, std::size_t end) {
      cigar_.push_back(bam_cigar_gen(static_cast<std::uint32_t>(end - begin), code_of(operation)));
      if (operation != Operation::kEqual) edits_ += static_cast<std::int64_t>(end - begin);
    });
  }

  /// Tags lie in a record as in the file: two letters, one for the type, the value. Put together
  /// here, they take half the time of bam_aux_append().
  template <typename Value>
  void add(std::string_view tag, char type, Value value) {
    std::array<char, sizeof value> bytes;
    std::memcpy(bytes.data(), &value, sizeof value);
    ((tags_ += tag) += type) += {bytes.data(), bytes.size()};
  }

  /// In the smallest type that holds the number, as samtools writes them.
  void add_number(std::string_view tag, std::int64_t number) {
    if (number >= 0 && number <= UINT8_MAX) return add(tag, 'C', static_cast<std::uint8_t>(number));
    if (number >= 0 && number <= UINT16_MAX)
      return add(tag, 'S', static_cast<std::uint16_t>(number));
    add(tag, 'i', static_cast<std::int32_t>(number));
  }

  void add_text(std::string_view tag, const std::string& text) {
    if (!text.empty()) (((tags_ += tag) += 'Z') += text) += '\0';
  }

  void add_thousandths(std::string_view tag, Thousandths thousandths) {
    add(tag, 'f', static_cast<float>(static_cast<double>(thousandths) / 1000.0));
  }

  void set_tags(const Repeat& repeat) {
    tags_.clear();
    add_number("NM", edits_);
    append_md(tags_ += "MDZ", repeat);
    tags_ += '\0';
    add_number("AS", repeat.score.value_or(0));
    add_number("ul", repeat.unit_length);
    add_text("un", repeat.unit);
    find_motif(repeat, motif_);
    add_text("mo", motif_);
    add_thousandths("cn", repeat.copies);
    add_thousandths("pf", repeat.perfection);
  }

  AlignmentFile& file_;
  RowText name_;
  RowText query_;
  RowText tags_;
  std::string motif_;
  std::vector<std::uint32_t> cigar_;
  std::int64_t edits_ = 0;
};

class BamFile : public AlignmentTarget {
 public:
  BamFile(const Conversion& conversion, const AlignmentSequences& sequences,
          const std::string& header)
      : file_(conversion, sequences.longest, header), writer_(file_) {}

  void write(const Repeat& repeat, std::int32_t sequence, std::int64_t number) override {
    writer_.write(repeat, sequence, number);
  }

  void finish() override { file_.finish(); }

 private:
  AlignmentFile file_;
  RecordWriter writer_;
};

}  // namespace

std::unique_ptr<AlignmentTarget> bam_target(const Conversion& conversion,
                                            const AlignmentSequences& sequences,
                                            const std::string& header) {
  return std::make_unique<BamFile>(conversion, sequences, header);
}

}  // namespace vorlan_tools
