// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/alignment_strings.h"
#include "convert/motif.h"
#include "convert/row_format.h"
#include "convert/sequence_names.h"
#include "convert/text_append.h"

namespace vorlan_tools {

namespace {

void append_hex_bytes(std::string& text, std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  for (const char c : bytes) {
    text += kDigits[static_cast<unsigned char>(c) / 16U];
    text += kDigits[static_cast<unsigned char>(c) % 16U];
  }
}

/// Only texts of a sequence can need escapes; they are made once for each sequence. What a report
/// says of bases, counts and events is taken over as it stands, once it is known to need none.
class JsonRows : public RowFormat {
 public:
  void append_head(RowText& /*text*/, const Head& /*head*/,
                   const std::vector<ListedSequence>& /*sequences*/) override {}

  void begin_sequence(const Sequence& sequence, std::string_view name) override {
    bool is_exact = true;
    opening_ = "{\"sequence\":" + json_string(name, is_exact);
    append_bytes_if_lost("sequence_bytes", name, is_exact);
    if (sequence.header) {
      opening_ += ",\"header\":" + json_string(*sequence.header, is_exact);
      append_bytes_if_lost("header_bytes", *sequence.header, is_exact);
    }
    if (sequence.length) append_number(opening_ += ",\"sequence_length\":", *sequence.length);
  }

  void append_repeat(RowText& text, const Repeat& repeat) override {
    find_motif(repeat, motif_);
    text += opening_;
    append_number(text += ",\"start\":", repeat.start);
    append_number(text += ",\"end\":", repeat.end);
    append_number(text += ",\"unit_length\":", repeat.unit_length);
    append_text(text, ",\"unit\":", repeat.unit);
    append_text(text, ",\"motif\":", motif_);
    append_number(text += ",\"bases\":", repeat.bases);
    append_count(text, ",\"length\":", repeat.length);
    append_thousandths(text += ",\"copies\":", repeat.copies);
    append_count(text, ",\"score\":", repeat.score);
    append_thousandths(text += ",\"perfection\":", repeat.perfection);
    append_count(text, ",\"mismatches\":", repeat.mismatches);
    append_count(text, ",\"insertions\":", repeat.insertions);
    append_count(text, ",\"deletions\":", repeat.deletions);
    append_count(text, ",\"ns\":", repeat.ns);
    append_text(text, ",\"events\":", repeat.events);
    append_text(text, ",\"left_flank\":", repeat.left_flank);
    append_text(text, ",\"residues\":", repeat.residues);
    append_text(text, ",\"right_flank\":", repeat.right_flank);
    append_alignment(text, repeat);
    text += "}\n";
  }

 private:
  void append_bytes_if_lost(std::string_view key, std::string_view bytes, bool is_exact) {
    if (is_exact) return;
    ((opening_ += ",\"") += key) += "\":\"";
    append_hex_bytes(opening_, bytes);
    opening_ += '"';
  }

  /// A key whose value is not known is left out.
  static void append_count(RowText& text, std::string_view key,
                           const std::optional<std::int64_t>& count) {
    if (count) append_number(text += key, *count);
  }

  static void append_text(RowText& text, std::string_view key, std::string_view value) {
    if (value.empty()) return;
    append_json_string(text += key, value);
  }

  static void append_alignment(RowText& text, const Repeat& repeat) {
    if (!repeat.has_alignment()) return;
    append_cigar(text += ",\"cigar\":\"", repeat);
    append_json_string(text += "\",\"alignment\":[", repeat.sequence_line);
    append_json_string(text += ',', repeat.match_line);
    append_json_string(text += ',', repeat.unit_line);
    text += ']';
  }

  std::string opening_;
  std::string motif_;
};

}  // namespace

std::unique_ptr<RowFormat> json_rows() { return std::make_unique<JsonRows>(); }

}  // namespace vorlan_tools
