// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/run.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "errors.h"
#include "run/head_run.h"
#include "run/parts.h"
#include "run/run_output.h"
#include "run/slice_loop.h"
#include "run/vorlan_end.h"
#include "run/work_folder.h"

namespace vorlan_tools {

namespace {

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
