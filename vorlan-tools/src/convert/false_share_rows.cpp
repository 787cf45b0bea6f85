// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/false_share_rows.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "errors.h"
#include "stats/collect.h"

namespace vorlan_tools {

namespace {

using SettingList = std::vector<std::pair<std::string, std::string>>;

/// What says how a report looks, and does not change which repeats there are or their scores.
constexpr std::array<std::string_view, 7> kLooks = {"Sequence range to process",
                                                    "Number of flanking nucletides",
                                                    "Write file with masked seq.",
                                                    "Report units as",
                                                    "Output format",
                                                    "Print sequence mode",
                                                    "Print seq. info as comment"};

SettingList of_search(const SettingList& settings) {
  SettingList result;
  for (const auto& setting : settings) {
    if (std::find(kLooks.begin(), kLooks.end(), setting.first) == kLooks.end()) {
      result.push_back(setting);
    }
  }
  return result;
}

/// How a target writes one more value in front of the end of its row.
struct Place {
  std::string_view label;
  std::string_view end;
  bool says_unknown;  ///< a full stop; others leave the value out
};

Place place_of(Target target) {
  switch (target) {
    case Target::kGff3:
      return {";false_share=", "\n", false};
    case Target::kJsonLines:
      return {",\"false_share\":", "}\n", false};
    default:
      return {"\t", "\n", true};
  }
}

class FalseShareRows : public RowFormat {
 public:
  FalseShareRows(std::unique_ptr<RowFormat> format, Target target, Calibration calibration)
      : format_(std::move(format)),
        target_(target),
        place_(place_of(target)),
        calibration_(std::move(calibration)) {}

  bool needs_sequences() const override { return format_->needs_sequences(); }

  void append_head(RowText& text, const Head& head,
                   const std::vector<ListedSequence>& sequences) override {
    if (of_search(settings_of(head)) != of_search(calibration_.settings)) {
      throw DataError("The calibration was made with other settings than the report.");
    }
    format_->append_head(text, head, sequences);
    if (target_ != Target::kTsv) return;
    text.drop(1);
    text += "\tfalse_share\n";
  }

  void begin_sequence(const Sequence& sequence, std::string_view name) override {
    format_->begin_sequence(sequence, name);
  }

  void append_repeat(RowText& text, const Repeat& repeat) override {
    format_->append_repeat(text, repeat);
    std::optional<double> share;
    if (repeat.score) share = calibration_.share(repeat.unit_length, *repeat.score);
    if (!share && !place_.says_unknown) return;
    text.drop(place_.end.size());
    text += place_.label;
    append_share(text, share);
    text += place_.end;
  }

 private:
  static void append_share(RowText& text, const std::optional<double>& share) {
    if (!share) {
      text += '.';
      return;
    }
    char digits[64];
    const double rounded = std::round(*share * 1e6) / 1e6;
    const char* const end = std::to_chars(digits, digits + sizeof digits, rounded).ptr;
    text += {digits, static_cast<std::size_t>(end - digits)};
  }

  std::unique_ptr<RowFormat> format_;
  Target target_;
  Place place_;
  Calibration calibration_;
};

}  // namespace

bool can_hold_false_shares(Target target) {
  return target == Target::kBed || target == Target::kGff3 || target == Target::kJsonLines ||
         target == Target::kTsv;
}

std::unique_ptr<RowFormat> with_false_shares(std::unique_ptr<RowFormat> format, Target target,
                                             Calibration calibration) {
  return std::make_unique<FalseShareRows>(std::move(format), target, std::move(calibration));
}

}  // namespace vorlan_tools
