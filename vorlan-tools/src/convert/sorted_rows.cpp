// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "convert/sorted_rows.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <queue>
#include <tuple>

#include "errors.h"
#include "io/rereadable_input.h"

namespace vorlan_tools {

namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// What stands before name and row in a file.
struct RowHead {
  std::uint64_t name_size;
  std::uint64_t row_size;
  std::int64_t start;
  std::int64_t end;
};

File open_stream(int descriptor, const char* mode) {
  File file(::fdopen(descriptor, mode));
  if (!file) throw DataError("Cannot use a temporary file.");
  return file;
}

/// One sorted run, read from its beginning.
class Run {
 public:
  Run(int descriptor, std::size_t number) : number_(number) {
    ::lseek(descriptor, 0, SEEK_SET);
    file_ = open_stream(descriptor, "rb");
  }

  bool next() {
    RowHead head{};
    if (std::fread(&head, sizeof head, 1, file_.get()) != 1) {
      if (std::ferror(file_.get()) != 0) fail();
      return false;
    }
    start_ = head.start;
    end_ = head.end;
    read(name_, head.name_size);
    read(row_, head.row_size);
    return true;
  }

  /// Runs are numbered in the order of arrival, which decides between equal keys.
  bool is_before(const Run& other) const {
    return std::tie(name_, start_, end_, number_) <
           std::tie(other.name_, other.start_, other.end_, other.number_);
  }

  const std::string& row() const { return row_; }

 private:
  [[noreturn]] static void fail() { throw DataError("Cannot read a temporary file."); }

  void read(std::string& text, std::uint64_t size) {
    text.resize(size);
    if (size > 0 && std::fread(text.data(), 1, size, file_.get()) != size) fail();
  }

  std::size_t number_;
  File file_;
  std::string name_;
  std::int64_t start_ = 0;
  std::int64_t end_ = 0;
  std::string row_;
};

void merge(std::vector<std::unique_ptr<Run>>& runs, OutputFile& output) {
  const auto is_later = [](const Run* a, const Run* b) { return b->is_before(*a); };
  std::priority_queue<Run*, std::vector<Run*>, decltype(is_later)> heads(is_later);
  for (const auto& run : runs) {
    if (run->next()) heads.push(run.get());
  }
  while (!heads.empty()) {
    Run* const first = heads.top();
    heads.pop();
    output.write(first->row());
    if (first->next()) heads.push(first);
  }
}

}  // namespace

SortedRows::SortedRows(std::size_t memory) : memory_(memory) {}

SortedRows::~SortedRows() {
  for (const int run : runs_) ::close(run);
}

void SortedRows::add(std::string_view name, std::int64_t start, std::int64_t end,
                     std::string_view row) {
  entries_.push_back({text_.size(), name.size(), row.size(), start, end});
  (text_ += name) += row;
  if (text_.size() + entries_.size() * sizeof(Entry) >= memory_) spill();
}

void SortedRows::sort() {
  std::stable_sort(entries_.begin(), entries_.end(), [this](const Entry& a, const Entry& b) {
    return std::make_tuple(name_of(a), a.start, a.end) <
           std::make_tuple(name_of(b), b.start, b.end);
  });
}

void SortedRows::spill() {
  sort();
  runs_.push_back(open_nameless_file());
  const File file = open_stream(::dup(runs_.back()), "wb");
  bool is_good = true;
  for (const Entry& entry : entries_) {
    const RowHead head{entry.name_size, entry.row_size, entry.start, entry.end};
    const std::size_t size = entry.name_size + entry.row_size;
    is_good = is_good && std::fwrite(&head, sizeof head, 1, file.get()) == 1 &&
              std::fwrite(text_.data() + entry.offset, 1, size, file.get()) == size;
  }
  if (!is_good || std::fflush(file.get()) != 0)
    throw DataError("Cannot write a temporary file: the disk may be full.");
  entries_.clear();
  text_.clear();
}

void SortedRows::write_to(OutputFile& output) {
  if (runs_.empty()) {
    sort();
    for (const Entry& entry : entries_) output.write(row_of(entry));
    return;
  }
  if (!entries_.empty()) spill();
  std::vector<std::unique_ptr<Run>> runs;
  for (const int descriptor : runs_)
    runs.push_back(std::make_unique<Run>(::dup(descriptor), runs.size()));
  merge(runs, output);
}

}  // namespace vorlan_tools
