// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/run.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <optional>

#include "errors.h"
#include "io/line_reader.h"
#include "run/child_process.h"
#include "run/children.h"
#include "run/parts.h"
#include "run/progress.h"
#include "run/run_output.h"
#include "run/slice_queue.h"
#include "run/work_folder.h"

namespace vorlan_tools {

namespace {

/// How vorlan ends, as its manual lists it.
constexpr int kNotParsed = 1;
constexpr int kSettingsRefused = 255;
constexpr int kChoiceUnknown = 254;
constexpr int kMalformedInput = 231;
constexpr int kOutputNotWritten = 154;
constexpr int kNotEnoughMemory = 153;
constexpr int kCannotExecute = 127;

/// The progress bar moves at least this often.
constexpr int kMillisecondsOfWait = 500;

/// Ended because a signal asked for that.
struct Interrupted {
  int signal;
};

/// vorlan has failed on a slice, not by a fault of the input.
class VorlanFailed : public DataError {
 public:
  VorlanFailed(const std::string& what, int status) : DataError(what), status_(status) {}
  int status() const { return status_; }

 private:
  int status_;
};

std::string reason_of_end(int wait_status) {
  if (WIFSIGNALED(wait_status))
    return "was ended by signal " + std::to_string(WTERMSIG(wait_status));
  switch (const int status = WEXITSTATUS(wait_status)) {
    case kNotEnoughMemory:
      return "had not enough memory";
    case kOutputNotWritten:
      return "could not write its output";
    case kCannotExecute:
      return "could not be executed";
    default:
      return "ended with status " + std::to_string(status);
  }
}

std::string sequences_text(const Slice& slice) {
  const std::uint64_t first = slice.records_before + 1;
  const std::uint64_t last = slice.records_before + slice.counts.records;
  if (last <= first) return "sequence " + std::to_string(first);
  return "sequences " + std::to_string(first) + " to " + std::to_string(last);
}

/// A run with the same settings on a record without residues tells the head of every report.
class HeadRun {
 public:
  HeadRun(const WorkFolder& folder, const RunOptions& options)
      : folder_(folder), options_(options) {}

  /// Returns the status of vorlan: other than 0 if it refuses the settings, when its messages have
  /// been passed on.
  int execute() {
    write_small_file(folder_.file("head.fa"), ">");
    Command command{options_.vorlan, options_.settings, folder_.path(), folder_.file("head.report"),
                    folder_.file("head.messages")};
    command.arguments.insert(command.arguments.end(), options_.range.begin(), options_.range.end());
    command.arguments.insert(command.arguments.end(), {"--", "head.fa"});
    const int status = wait_for(start(command));
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return 0;
    if (!is_refusal(status)) throw DataError(options_.vorlan + " " + reason_of_end(status) + ".");
    const std::string messages = read_small_file(folder_.file("head.messages"));
    std::fwrite(messages.data(), 1, messages.size(), stderr);
    return WEXITSTATUS(status);
  }

  Head head() const {
    LineReader lines(folder_.file("head.report"));
    return read_head(lines);
  }

 private:
  static bool is_refusal(int wait_status) {
    if (!WIFEXITED(wait_status)) return false;
    const int status = WEXITSTATUS(wait_status);
    return status == kNotParsed || status == kSettingsRefused || status == kChoiceUnknown;
  }

  const WorkFolder& folder_;
  const RunOptions& options_;
};

/// Keeps a number of processes at work until every slice is searched, and puts their reports
/// together.
class SliceLoop {
 public:
  SliceLoop(const RunFiles& files, const RunOptions& options, Signals& signals, WorkFolder& folder,
            const Parts& parts, OutputFile& report)
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

  /// Returns whether the input was well formed to its end. Throws DataError and Interrupted.
  bool execute() {
    while (!is_done()) {
      take_ended();
      append_finished();
      start_slices();
      progress_.tell(state_);
      if (!is_done()) wait();
    }
    if (!malformed_) queue_.rethrow_failure();
    progress_.clear();
    if (!malformed_) progress_.finish(state_);
    return !malformed_;
  }

  /// The slices in order, up to a malformed one.
  const std::vector<Slice>& appended() const { return appended_; }

  Progress& progress() { return progress_; }

 private:
  struct Part {
    Slice slice;
    bool is_searched = false;
  };

  bool is_done() {
    if (malformed_) return next_ > *malformed_;
    return next_ == taken_ && queue_.is_exhausted();
  }

  void start_slices() {
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

  void start_search(const Slice& slice) {
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

  void count(const Slice& slice) {
    state_.bases += slice.counts.bases;
    state_.records += slice.counts.records;
    if (slice.input_share && state_.share) *state_.share += *slice.input_share;
  }

  void take_ended() {
    while (const auto ended = children_.take_ended()) {
      const auto [index, status] = *ended;
      Part& part = waiting_.at(index);
      part.is_searched = true;
      if (WIFEXITED(status) && WEXITSTATUS(status) == kMalformedInput) {
        stop_behind(index);
      } else if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw VorlanFailed(
            "vorlan " + reason_of_end(status) + " at " + sequences_text(part.slice) + ".",
            WIFEXITED(status) ? WEXITSTATUS(status) : 1);
      } else {
        parts_.set_done(part.slice);
        folder_.keep();
        count(part.slice);
      }
    }
  }

  // Nothing behind a malformed record counts; what lies before it is still reported.
  void stop_behind(std::size_t index) {
    malformed_ = index;
    children_.end_behind(index);
    waiting_.erase(waiting_.upper_bound(index), waiting_.end());
  }

  void append_finished() {
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

  void wait() {
    pollfd events[] = {{signals_.descriptor(), POLLIN, 0},
                       {queue_.changed().descriptor(), POLLIN, 0}};
    ::poll(events, 2, kMillisecondsOfWait);
    queue_.changed().reset();  // before the queue is asked, so that no change is lost
    if (const std::optional<int> signal = signals_.take()) {
      progress_.clear();
      throw Interrupted{*signal};
    }
  }

  const RunOptions& options_;
  Signals& signals_;
  WorkFolder& folder_;
  const Parts& parts_;
  OutputFile& report_;
  bool masks_;
  Progress progress_;
  ProgressState state_;
  std::map<std::size_t, Part> waiting_;  ///< taken, not yet appended
  std::size_t taken_ = 0;                ///< slices from the queue
  std::size_t next_ = 0;                 ///< slice to append next
  std::optional<std::size_t> malformed_;
  std::vector<Slice> appended_;
  SliceQueue queue_;
  Children children_;
};

/// A run from its settings to its outputs.
class Run {
 public:
  Run(const RunFiles& files, const RunOptions& options, Signals& signals)
      : files_(files),
        options_(options),
        signals_(signals),
        output_(files.report),
        folder_(output_.make_folder(options.resumes)) {}

  int execute() {
    check_masked_folder();
    HeadRun head_run(folder_, options_);
    if (const int status = head_run.execute(); status != 0) return status;
    const Head head = head_run.head();
    const std::string head_text =
        head.text_for(files_.input, output_.name_in_head(), head.settings.first_sequence,
                      head.settings.last_sequence);
    take_folder(head_text);
    OutputFile& report = output_.open(folder_);
    report.write(head_text);
    report.flush();
    const Parts parts(folder_, head, !files_.masked.empty());
    SliceLoop loop(files_, options_, signals_, folder_, parts, report);
    const bool is_whole = loop.execute();
    finish(parts, loop.appended(), is_whole, head.closing_line());
    return is_whole ? 0 : kMalformedInput;
  }

  bool leaves_something() const { return folder_.is_kept(); }

 private:
  // The masked file is written last: that it cannot be shall show before the search.
  void check_masked_folder() const {
    if (files_.masked.empty()) return;
    const std::filesystem::path folder = std::filesystem::absolute(files_.masked).parent_path();
    if (::access(folder.c_str(), W_OK | X_OK) == 0) return;
    throw DataError("Cannot create " + files_.masked + ": " + std::strerror(errno) + ".");
  }

  // An earlier run counts only if it was the same one.
  void take_folder(const std::string& head_text) {
    const std::string settings =
        "slices of " + std::to_string(options_.slice_size) + " bytes\n" + head_text;
    const std::string earlier = folder_.settings();
    if (!earlier.empty() && earlier != settings) {
      throw UsageError("The run in " + folder_.path() +
                       " was another one: without --resume, this one begins anew in its place.");
    }
    folder_.set_settings(settings);
  }

  void finish(const Parts& parts, const std::vector<Slice>& slices, bool is_whole,
              std::string_view closing_line) {
    std::string masked = files_.masked;
    if (!is_whole && !masked.empty() && std::filesystem::exists(masked)) masked += ".partial";
    if (!masked.empty()) {
      OutputFile file(masked, Compression::kPlain);
      for (const Slice& slice : slices) parts.append_masked(slice, file);
      file.finish();
    }
    if (is_whole && !closing_line.empty()) output_.write_line(closing_line);
    const std::string report = output_.finish(is_whole);
    if (!is_whole) tell_malformed(parts, slices.back(), report, masked);
    folder_.discard();
  }

  void tell_malformed(const Parts& parts, const Slice& slice, const std::string& report,
                      const std::string& masked) const {
    const std::string message = parts.malformed_message(slice);
    std::fwrite(message.data(), 1, message.size(), stderr);
    for (const std::string& name : {report, masked}) {
      if (name == files_.report || name == files_.masked) continue;
      std::fprintf(stderr,
                   "vorlan-tools: An earlier file stays; what comes before that line is in %s.\n",
                   name.c_str());
    }
  }

  const RunFiles& files_;
  const RunOptions& options_;
  Signals& signals_;
  RunOutput output_;
  WorkFolder folder_;
};

// The object is gone, with its processes and its thread, before anybody hears of the failure.
int execute(const RunFiles& files, const RunOptions& options, Signals& signals) {
  Run run(files, options, signals);
  const auto with_hint = [&run](const std::string& what) {
    return run.leaves_something() ? what + " --resume goes on from what is finished." : what;
  };
  try {
    return run.execute();
  } catch (const VorlanFailed& failure) {
    throw VorlanFailed(with_hint(failure.what()), failure.status());
  } catch (const DataError& error) {
    throw DataError(with_hint(error.what()));
  } catch (const Interrupted&) {
    std::fprintf(stderr, "vorlan-tools: %s\n", with_hint("Ended by a signal.").c_str());
    throw;
  }
}

}  // namespace

int run_vorlan(const RunFiles& files, const RunOptions& options, Signals& signals) try {
  return execute(files, options, signals);
} catch (const Interrupted& interrupted) {
  end_by_signal(interrupted.signal);
} catch (const VorlanFailed& failure) {
  std::fprintf(stderr, "vorlan-tools: %s\n", failure.what());
  return failure.status();
}

}  // namespace vorlan_tools
