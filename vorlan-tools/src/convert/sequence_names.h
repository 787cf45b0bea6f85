// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#pragma once

#include <string>
#include <string_view>

#include "convert/row_text.h"

namespace vorlan_tools {

/// Names of sequences are any bytes but blanks and line feeds, and may be empty. What each target
/// makes of them; where it cannot hold a name, DataError says so.

/// Targets with tab-separated lines and no escapes: a name must not be empty or hold a tab or
/// carriage return. BED readers also take lines for comments or settings that begin with '#',
/// "track" or "browser".
void require_bed_name(std::string_view name);
void require_tabless_name(std::string_view name, std::string_view target);

/// SAM allows printable ASCII without \ , " ` ' ( ) [ ] { } < >, and no '*' or '=' in front.
void require_sam_name(std::string_view name);

/// GFF3: all but letters, digits and .:^*$@!+_?-| becomes %XX. The name must not be empty.
std::string gff3_name(std::string_view name);

/// The value of an attribute of GFF3: control characters and %;=&, become %XX.
void append_gff3_value(RowText& text, std::string_view value);

/// A JSON string with its quotes. Bytes that are no UTF-8 become U+FFFD; `is_exact` tells whether
/// none did.
std::string json_string(std::string_view text, bool& is_exact);

/// Appends json_string(text), at once if no byte of it needs an escape.
void append_json_string(std::string& to, std::string_view text);
void append_json_string(RowText& to, std::string_view text);

/// A tab becomes \t, a carriage return \r and a backslash \\.
std::string tsv_name(std::string_view name);

/// The name up to its first tab or other white space, which is what samtools faidx takes for the
/// name.
std::string_view until_white_space(std::string_view name);

/// A name for messages: quoted, bytes that are not printable as \xHH, cut after 60 bytes.
std::string quoted_name(std::string_view name);

}  // namespace vorlan_tools
