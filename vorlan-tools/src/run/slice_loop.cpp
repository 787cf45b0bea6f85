// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/slice_loop.h"

#include <poll.h>

#include "run/vorlan_end.h"

namespace vorlan_tools {

namespace {

/// The progress bar moves at least this often.
constexpr int kMillisecondsOfWait = 500;

std::string sequences_text(const Slice& slice) {
  const std::uint64_t first = slice.records_before + 1;
  const std::uint64_t last = slice.records_before + slice.counts.records;
  if (last <= first) return "sequence " + std::to_string(first);
  return "sequences " + std::to_string(first) + " to " + std::to_string(last);
}

}  // namespace

SliceLoop::SliceLoop(const RunFiles& files, const RunOptions& options, Signals& signals,
                     WorkFolder& folder, const Parts& parts, OutputFile& report)
    : options_(options),
      signals_(signals),
      folder_(folder),
      parts_(parts),
      report_(report),
      masks_(!files.masked.empty()),
      progress_(files.input, options.is_quiet),
      queue_(files.input, folder.path(), options.slice_size, options.jobs) {
  if (queue_.knows_size()) state_.share = 0;
}

bool SliceLoop::execute() {
  while (!is_done()) {
    take_ended();
    append_finished();
    start_slices();
    progress_.tell(state_);
    if (!is_done()) wait();
  }
  progress_.clear();
  if (malformed_) return false;
  queue_.rethrow_failure();
  progress_.finish(state_);
  return true;
}

bool SliceLoop::is_done() {
  if (malformed_) return next_ > *malformed_;
  return next_ == taken_ && queue_.is_exhausted();
}

void SliceLoop::start_slices() {
  while (!malformed_ && children_.size() < options_.jobs) {
    std::optional<Slice> slice = queue_.take();
    if (!slice) return;
    ++taken_;
    Part& part = waiting_[slice->index];
    part.slice = std::move(*slice);
    part.is_searched = parts_.has(part.slice);
    if (part.is_searched) {
      parts_.remove_text(part.slice);
      folder_.keep();
      count(part.slice);
      state_.resumed_bases += part.slice.counts.bases;
      append_finished();
    } else {
      start_search(part.slice);
    }
  }
}

void SliceLoop::start_search(const Slice& slice) {
  Command command{options_.vorlan, options_.settings, folder_.path(),
                  folder_.file(slice.stem + ".report"), folder_.file(slice.stem + ".messages")};
  const RecordRange range = parts_.range(slice);
  // As vorlan reads numbers: the largest one is -1.
  const auto add = [&command](const char* option, std::uint32_t number) {
    command.arguments.insert(command.arguments.end(),
                             {option, std::to_string(static_cast<std::int32_t>(number))});
  };
  if (range.first != 1) add("--firstSeq", range.first);
  if (range.last) add("--lastSeq", *range.last);
  command.arguments.insert(command.arguments.end(), {"--", slice.stem + ".fa"});
  children_.start(slice.index, command);
}

void SliceLoop::count(const Slice& slice) {
  state_.bases += slice.counts.bases;
  state_.records += slice.counts.records;
  if (slice.input_share && state_.share) *state_.share += *slice.input_share;
}

void SliceLoop::take_ended() {
  while (const auto ended = children_.take_ended()) {
    const auto [index, status] = *ended;
    Part& part = waiting_.at(index);
    part.is_searched = true;
    const VorlanEnd end(status);
    if (end.is_malformed_input()) {
      stop_behind(index);
    } else if (!end.is_success()) {
      throw VorlanFailed("vorlan " + end.text() + " at " + sequences_text(part.slice) + ".",
                         end.status());
    } else {
      parts_.set_done(part.slice);
      folder_.keep();
      count(part.slice);
    }
  }
}

// Nothing behind a malformed record counts; what lies before it is still reported.
void SliceLoop::stop_behind(std::size_t index) {
  malformed_ = index;
  children_.end_behind(index);
  waiting_.erase(waiting_.upper_bound(index), waiting_.end());
}

void SliceLoop::append_finished() {
  for (auto at = waiting_.begin();
       at != waiting_.end() && at->first == next_ && at->second.is_searched;
       at = waiting_.erase(at)) {
    const Slice& slice = at->second.slice;
    const bool is_malformed = malformed_ == slice.index;
    parts_.append_report(slice, is_malformed ? Ending::kMalformed : Ending::kWhole, report_);
    report_.flush();
    if (!folder_.can_resume()) parts_.remove_report(slice);
    if (masks_ || is_malformed) appended_.push_back(slice);
    ++next_;
  }
}

void SliceLoop::wait() {
  pollfd events[] = {{signals_.descriptor(), POLLIN, 0},
                     {queue_.changed().descriptor(), POLLIN, 0}};
  ::poll(events, 2, kMillisecondsOfWait);
  queue_.changed().reset();  // before the queue is asked, so that no change is lost
  if (const std::optional<int> signal = signals_.take()) throw Interrupted{*signal};
}

}  // namespace vorlan_tools
