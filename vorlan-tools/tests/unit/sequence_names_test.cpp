// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/sequence_names.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <string>

namespace vorlan_tools {

namespace {

std::string escaped(int byte) {
  char text[4];
  std::snprintf(text, sizeof text, "%%%02X", static_cast<unsigned>(byte));
  return text;
}

std::string value_of(int byte) {
  RowText text;
  append_gff3_value(text += "before", std::string(1, static_cast<char>(byte)));
  return std::string(text.view().substr(6));
}

// The page of the GFF3 format: tab, line feed, carriage return, % and control characters (00 to 1F,
// 7F) must be escaped everywhere; ; = & and , in column 9, too; nothing else may be.
TEST(Gff3Value, EscapesTheReservedBytesAndNoOther) {
  for (int byte = 0; byte < 256; ++byte) {
    const bool is_control = byte < 0x20 || byte == 0x7F;
    const bool is_reserved =
        std::string("%;=&,").find(static_cast<char>(byte)) != std::string::npos;
    const std::string expected =
        is_control || is_reserved ? escaped(byte) : std::string(1, static_cast<char>(byte));
    EXPECT_EQ(value_of(byte), expected) << byte;
  }
}

// "IDs may contain any characters, but must escape any characters not in the set
// [a-zA-Z0-9.:^*$@!+_?-|]."
TEST(Gff3Name, EscapesAllButTheAllowedBytes) {
  for (int byte = 0; byte < 256; ++byte) {
    const bool is_allowed =
        (byte < 0x80 && std::isalnum(byte) != 0) ||
        std::string(".:^*$@!+_?-|").find(static_cast<char>(byte)) != std::string::npos;
    const std::string name(1, static_cast<char>(byte));
    EXPECT_EQ(gff3_name(name), is_allowed ? name : escaped(byte)) << byte;
  }
}

TEST(JsonString, IsTheSameWithAndWithoutTheShortWay) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string text = std::string("a") + static_cast<char>(byte) + "b";
    bool is_exact = true;
    std::string appended;
    append_json_string(appended, text);
    EXPECT_EQ(appended, json_string(text, is_exact)) << byte;
    RowText row;
    append_json_string(row, text);
    EXPECT_EQ(row.view(), appended) << byte;
    EXPECT_EQ(is_exact, byte < 0x80) << byte;
  }
}

TEST(JsonString, EscapesQuotesAndControls) {
  bool is_exact = false;
  EXPECT_EQ(json_string("a\"b\\c\n\x01", is_exact), "\"a\\\"b\\\\c\\n\\u0001\"");
  EXPECT_TRUE(is_exact);
}

}  // namespace

}  // namespace vorlan_tools
