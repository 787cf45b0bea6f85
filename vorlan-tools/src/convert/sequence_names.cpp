// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/sequence_names.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "errors.h"

namespace vorlan_tools {

namespace {

constexpr std::string_view kLettersAndDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";

bool is_among(char c, std::string_view set) { return set.find(c) != std::string_view::npos; }

template <typename Text>
void append_hex(Text& text, char c) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  const auto byte = static_cast<unsigned char>(c);
  text += kDigits[byte / 16U];
  text += kDigits[byte % 16U];
}

/// Capital letters, of which units and motifs consist.
bool holds_only_letters(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

/// Whether a JSON string holds `text` as it stands. Looks at all of it: most texts need no escape,
/// and without a way out the loop takes many bytes at once.
bool needs_no_escape(std::string_view text) {
  unsigned char escapes = 0;
  for (const char c : text) {
    escapes |= static_cast<unsigned char>((c < ' ') | (c > '~') | (c == '"') | (c == '\\'));
  }
  return escapes == 0;
}

template <typename Text>
void append_quoted(Text& to, std::string_view text) {
  if (needs_no_escape(text)) {
    ((to += '"') += text) += '"';
    return;
  }
  bool is_exact = true;
  to += json_string(text, is_exact);
}

[[noreturn]] void refuse(std::string_view name, std::string_view target, std::string_view reason) {
  throw DataError(std::string(target) + " cannot hold the sequence name " + quoted_name(name) +
                  ", " + std::string(reason) + ".");
}

}  // namespace

std::string quoted_name(std::string_view name) {
  constexpr std::size_t kLongest = 60;
  std::string text = "\"";
  for (const char c : name.substr(0, kLongest)) {
    if (c > ' ' && c <= '~' && c != '"' && c != '\\') {
      text += c;
    } else {
      append_hex(text += "\\x", c);
    }
  }
  return text + (name.size() > kLongest ? "...\"" : "\"");
}

void require_tabless_name(std::string_view name, std::string_view target) {
  if (name.empty()) refuse(name, target, "which is empty");
  if (name.find_first_of("\t\r\v\f") != std::string_view::npos) {
    refuse(name, target, "which holds a tab or another white space (see --cut-names)");
  }
}

void require_bed_name(std::string_view name) {
  require_tabless_name(name, "BED");
  if (name[0] == '#' || name.substr(0, 5) == "track" || name.substr(0, 7) == "browser") {
    refuse(name, "BED", "since its readers take such a line for no interval");
  }
}

void require_sam_name(std::string_view name) {
  require_tabless_name(name, "SAM");
  for (const char c : name) {
    if (c <= ' ' || c > '~' || is_among(c, "\\,\"`'()[]{}<>"))
      refuse(name, "SAM", "which holds a forbidden character");
  }
  if (name[0] == '*' || name[0] == '=')
    refuse(name, "SAM", "which begins with a forbidden character");
}

std::string gff3_name(std::string_view name) {
  if (name.empty()) refuse(name, "GFF3", "which is empty");
  std::string text;
  for (const char c : name) {
    if (is_among(c, kLettersAndDigits) || is_among(c, ".:^*$@!+_?-|")) {
      text += c;
    } else {
      append_hex(text += '%', c);
    }
  }
  return text;
}

void append_gff3_value(RowText& text, std::string_view value) {
  if (holds_only_letters(value)) {
    text += value;
    return;
  }
  for (const char c : value) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F || is_among(c, "%;=&,")) {
      append_hex(text += '%', c);
    } else {
      text += c;
    }
  }
}

std::string json_string(std::string_view text, bool& is_exact) {
  using nlohmann::json;
  const json value = std::string(text);
  try {
    is_exact = true;
    return value.dump();
  } catch (const json::exception&) {
    is_exact = false;
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
  }
}

void append_json_string(std::string& to, std::string_view text) { append_quoted(to, text); }
void append_json_string(RowText& to, std::string_view text) { append_quoted(to, text); }

std::string tsv_name(std::string_view name) {
  std::string text;
  for (const char c : name) {
    if (c == '\t') {
      text += "\\t";
    } else if (c == '\r') {
      text += "\\r";
    } else if (c == '\\') {
      text += "\\\\";
    } else {
      text += c;
    }
  }
  return text;
}

std::string_view until_white_space(std::string_view name) {
  return name.substr(0, name.find_first_of("\t\r\v\f"));
}

}  // namespace vorlan_tools
