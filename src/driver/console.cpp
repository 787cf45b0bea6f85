// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "driver/console.h"

#include "config/number_text.h"
#include "config/parameter_report.h"
#include "config/settings.h"
#include "config/version.h"

namespace vorlan {
namespace {

/// Two timed lines are at least 60 seconds apart: the clock has to be later than this.
constexpr std::int64_t kSecondsBetweenReports = 59;

std::int64_t now() { return static_cast<std::int64_t>(std::time(nullptr)); }

void write_piece(std::FILE* stream, std::string_view piece) {
  for (std::size_t escape; (escape = piece.find("%%")) != std::string_view::npos;) {
    general_PrintText(stream, piece.substr(0, escape + 1));
    piece.remove_prefix(escape + 2);
  }
  general_PrintText(stream, piece);
}

}  // namespace

std::time_t time_analysis_started;
std::int64_t time_next_status_report = now();

void PrintMessage(std::FILE* stream, std::initializer_list<const char*> pieces) {
  for (const char* piece : pieces) write_piece(stream, piece);
}

void general_PrintPieces(std::FILE* stream, std::initializer_list<const char*> pieces) {
  if (stream == stderr) {
    for (const char* piece : pieces) write_piece(stderr, piece);
  } else {
    PrintMessage(stream, pieces);
  }
}

void general_PrintText(std::FILE* stream, std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stream);
}

void vorlan_welcome(std::FILE* stream) {
  general_PrintMessage(stream, "\n\n      Welcome to Vorlan, version " VORLAN_VERSION
                               ",\n"
                               "      a microsatellite and satellite search tool.\n"
                               "      Written by the Vorlan authors.\n"
                               "      Released under the MIT licence, without any warranty.\n\n");
}

void creator_message(std::FILE* stream, const char* prefix) {
  general_PrintMessage(stream, prefix, "Results computed with:\n", prefix,
                       "   Vorlan, version " VORLAN_VERSION "\n");
}

void print_search_parameters(std::FILE* stream, const char* prefix) {
  const char* separator = parameter_separator();
  for (const ParameterLine& line : search_parameters()) {
    general_PrintMessage(stream, prefix, line.label, separator);
    general_PrintText(stream, line.value);
  }
}

void update_report_time() { time_next_status_report = now() + kSecondsBetweenReports; }

bool check_report_status() {
  const std::int64_t time_now = now();
  if (time_now <= time_next_status_report) return false;
  time_next_status_report = time_now + kSecondsBetweenReports;
  return true;
}

void report_status(unsigned sequence_number, const char* name, unsigned unit_length, char) {
  const auto elapsed =
      static_cast<std::uint32_t>(now() - static_cast<std::int64_t>(time_analysis_started));
  const auto hours = static_cast<std::int16_t>(elapsed / 3600);
  const auto minutes = static_cast<std::int16_t>(elapsed % 3600 / 60);
  const auto seconds = static_cast<std::int16_t>(elapsed % 60);
  std::fprintf(stderr, "%.2d.%.2d.%.2d - # %3d - %4dbp - %.70s\n", hours, minutes, seconds,
               static_cast<int>(sequence_number), static_cast<int>(unit_length), name);
  std::fflush(stderr);
}

SearchConsole search_console() {
  return {check_report_status, report_status, [](const char* text) {
            general_PrintMessage(stderr, text);
            std::fflush(stderr);
          }};
}

void good_bye(std::FILE* out) {
  if (global_print_sat_mode == kFormatGff) {
    general_PrintMessage(out, "# End tandem repeats\n");
  } else if (global_print_sat_mode != kFormatFasta) {
    general_PrintMessage(out, "## Finished successfully. ##\n");
  }
  general_PrintMessage(stderr, "\nAnalysis finished successfully.\n\n");
  general_PrintMessage(stderr, "Vorlan says goodbye.\n\n");
  std::fflush(stderr);
}

void good_bye_on_error(int code) {
  if (code < -1) {
    general_PrintMessage(stderr, "\nAnalysis has been aborted due to errors. Error number: ",
                         number2str(code), "\n\n");
  } else if (code == -1) {
    general_PrintMessage(stderr, "\n\n");
  } else if (code > 0) {
    general_PrintMessage(stderr, "\nAnalysis has been stopped by the user.\n\n");
  }
  std::fflush(stderr);
}

}  // namespace vorlan
