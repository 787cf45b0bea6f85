// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

/// Everything that the program tells the user while it works. Progress and closing words go to
/// standard error, so that standard output can carry the report.

#pragma once

#include <concepts>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <initializer_list>
#include <string_view>

#include "search/search_console.h"

namespace vorlan {

/// Start of the run; origin of the elapsed time in progress lines.
extern std::time_t time_analysis_started;

/// The time after which the next timed progress line is due.
extern std::int64_t time_next_status_report;

/// Writes pieces of fixed text to `stream`, in order, nothing between or behind them. In a piece
/// "%%" stands for one '%'. Texts of the user go through `general_PrintText` instead.
void PrintMessage(std::FILE* stream, std::initializer_list<const char*> pieces);

/// The same for one to five pieces, but with a path of its own for standard error: the place where
/// a console that is not a plain stream is hooked in.
void general_PrintPieces(std::FILE* stream, std::initializer_list<const char*> pieces);
template <std::convertible_to<const char*>... Pieces>
requires(sizeof...(Pieces) >= 1 &&
         sizeof...(Pieces) <= 5) void general_PrintMessage(std::FILE* stream, Pieces... pieces) {
  general_PrintPieces(stream, {pieces...});
}

/// Writes a text byte for byte: file names and the like, whatever they hold.
void general_PrintText(std::FILE* stream, std::string_view text);

void vorlan_welcome(std::FILE* stream);
void creator_message(std::FILE* stream, const char* prefix);

/// Writes the settings of this run, each line behind `prefix`. See config/parameter_report.h.
void print_search_parameters(std::FILE* stream, const char* prefix);

/// Puts the next timed progress line off until more than 59 seconds from now.
void update_report_time();

/// Whether a timed progress line is due; if so, puts off the next one like `update_report_time`.
bool check_report_status();

/// Writes one progress line to standard error and flushes it. `name` is 0-terminated and cut after
/// 70 bytes; `mode` is ignored.
void report_status(unsigned sequence_number, const char* name, unsigned unit_length, char mode);

/// The console as searches see it.
SearchConsole search_console();

/// Closing line of the report and closing words of a successful run.
void good_bye(std::FILE* out);

/// Closing words of a run that ends early: below -1 the number of the error; -1 an empty line, the
/// reason has been written already; above 0 that the user stopped it.
void good_bye_on_error(int code);

}  // namespace vorlan
