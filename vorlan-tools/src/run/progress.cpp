// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace vorlan_tools {

namespace {

constexpr double kSecondsBetweenBars = 0.5;
constexpr double kSecondsBetweenLines = 10;
constexpr std::size_t kBarLength = 24;
constexpr std::size_t kUsualColumns = 80;

/// A shorter run says nothing of a rate.
constexpr double kShortestRun = 0.05;

template <typename... Values>
std::string format(const char* pattern, Values... values) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), pattern, values...);
  return text.data();
}

std::string duration(double seconds) {
  const auto whole = static_cast<long long>(std::llround(seconds));
  if (whole >= 3600) {
    return format("%lld:%02lld:%02lld", whole / 3600, whole % 3600 / 60, whole % 60);
  }
  return format("%lld:%02lld", whole / 60, whole % 60);
}

std::string bases_text(double bases, const char* unit) {
  if (bases >= 1e9) return format("%.2f G%s", bases / 1e9, unit);
  if (bases >= 1e6) return format("%.2f M%s", bases / 1e6, unit);
  if (bases >= 1e3) return format("%.1f k%s", bases / 1e3, unit);
  return format("%.0f %s", bases, unit);
}

std::size_t terminal_columns() {
  winsize size{};
  const bool is_known = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return is_known ? size.ws_col : kUsualColumns;
}

std::string bar(double share) {
  const auto filled =
      std::min(kBarLength, static_cast<std::size_t>(share * static_cast<double>(kBarLength)));
  std::string text(kBarLength, '.');
  text.replace(0, filled, filled, '#');
  text.insert(text.begin(), '[');
  return text + "] ";
}

}  // namespace

std::string progress_text(const ProgressState& state) {
  std::string text;
  if (state.share) text = format("%3.0f %%, ", std::floor(*state.share * 100));
  text += bases_text(static_cast<double>(state.bases), "bp") + ", " +
          std::to_string(state.records) + (state.records == 1 ? " record" : " records");
  const auto searched = static_cast<double>(state.bases - state.resumed_bases);
  if (searched <= 0 || state.seconds < kShortestRun) return text;
  text += ", " + bases_text(searched / state.seconds, "bp/s");
  if (!state.share || *state.share <= 0 || *state.share >= 1) return text;
  // The rest of the input has as many bases for its share as the part that was read.
  const double all = static_cast<double>(state.bases) / *state.share;
  const double left = (all - static_cast<double>(state.bases)) * state.seconds / searched;
  return text + ", " + duration(left) + " left";
}

Progress::Progress(std::string input, bool is_quiet)
    : input_(std::move(input)),
      is_quiet_(is_quiet),
      is_terminal_(::isatty(STDERR_FILENO) == 1),
      next_(is_terminal_ ? 0 : kSecondsBetweenLines) {}

double Progress::seconds() const {
  return std::chrono::duration<double>(Clock::now() - begin_).count();
}

void Progress::tell(ProgressState state) {
  state.seconds = seconds();
  if (is_quiet_ || state.seconds < next_) return;
  next_ = state.seconds + (is_terminal_ ? kSecondsBetweenBars : kSecondsBetweenLines);
  draw(state);
}

void Progress::draw(const ProgressState& state) {
  if (!is_terminal_) {
    std::fprintf(stderr, "vorlan-tools: %s: %s\n", input_.c_str(), progress_text(state).c_str());
    return;
  }
  std::string line = (state.share ? bar(*state.share) : "") + progress_text(state);
  line.resize(std::min(line.size(), terminal_columns() - 1));
  std::fprintf(stderr, "\r%s\x1b[K", line.c_str());
  std::fflush(stderr);
  is_drawn_ = true;
}

void Progress::clear() {
  if (is_drawn_) std::fputs("\r\x1b[K", stderr);
  is_drawn_ = false;
}

void Progress::finish(ProgressState state) {
  if (is_quiet_) return;
  clear();
  state.seconds = seconds();
  state.share.reset();
  std::fprintf(stderr, "vorlan-tools: %s: %s, %s\n", input_.c_str(), progress_text(state).c_str(),
               duration(state.seconds).c_str());
}

}  // namespace vorlan_tools
