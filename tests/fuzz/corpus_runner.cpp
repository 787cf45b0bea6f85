// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors
//
// Calls a fuzz target once for each file that is named, and for each file of a folder:
//
//   TARGET FILE_OR_FOLDER...
//
// Stands in for libFuzzer, so that the corpora are run with every compiler. The name of a file is
// printed before it is run: of a run that ends early the last name is that of the file at fault.
// Exit status: 0 when all files passed, 2 when a folder has no files or a file cannot be opened, 3
// when the target ended the process; a fault aborts.

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz_target.h"

namespace {

constexpr int kNoFiles = 2;
constexpr int kTargetExited = 3;

bool all_passed = false;

// Code under test that calls exit(0) must not look like success.
void end_loudly_when_exited_early() {
  if (!all_passed) _exit(kTargetExited);
}

// In the order of their names, which does not depend on the file system.
std::vector<std::filesystem::path> files_of(const std::filesystem::path& file_or_folder) {
  if (!std::filesystem::is_directory(file_or_folder)) return {file_or_folder};
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(file_or_folder)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

void run(const std::filesystem::path& file) {
  std::printf("%s\n", file.c_str());
  std::fflush(stdout);
  std::ifstream stream(file, std::ios::binary);
  if (!stream) {
    std::fprintf(stderr, "cannot be opened\n");
    _exit(kNoFiles);
  }
  const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
  // Exactly this many bytes, so that a sanitizer sees a read behind the last one.
  const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
  LLVMFuzzerTestOneInput(input.data(), input.size());
}

}  // namespace

int main(int argc, char** argv) {
  std::atexit(end_loudly_when_exited_early);
  for (int i = 1; i < argc; ++i) {
    const std::vector<std::filesystem::path> files = files_of(argv[i]);
    if (files.empty()) {
      std::fprintf(stderr, "%s: no files\n", argv[i]);
      _exit(kNoFiles);
    }
    for (const std::filesystem::path& file : files) run(file);
    std::printf("%zu files passed\n", files.size());
  }
  all_passed = argc > 1;
  return 0;
}
