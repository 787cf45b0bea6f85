// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

#include "run/child_process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>

#include "errors.h"

namespace vorlan_tools {

namespace {

/// A file for a child to write to, closed when the child has it.
class ChildFile {
 public:
  explicit ChildFile(const std::string& path)
      : descriptor_(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {
    if (descriptor_ < 0)
      throw DataError("Cannot create " + path + ": " + std::strerror(errno) + ".");
  }
  ~ChildFile() { ::close(descriptor_); }
  ChildFile(const ChildFile&) = delete;
  ChildFile& operator=(const ChildFile&) = delete;

  int descriptor() const { return descriptor_; }

 private:
  int descriptor_;
};

std::vector<char*> argument_pointers(const Command& command) {
  std::vector<char*> pointers{const_cast<char*>(command.program.c_str())};
  for (const std::string& argument : command.arguments) {
    pointers.push_back(const_cast<char*>(argument.c_str()));
  }
  pointers.push_back(nullptr);
  return pointers;
}

// Between fork and exec of a process with threads: system calls only.
[[noreturn]] void become(const Command& command, char* const* arguments, int output, int messages,
                         pid_t parent) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(kCannotExecute);
  ::signal(SIGINT, SIG_IGN);
  ::signal(SIGPIPE, SIG_DFL);
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  const bool is_ready = ::dup2(nothing, STDIN_FILENO) >= 0 && ::dup2(output, STDOUT_FILENO) >= 0 &&
                        ::dup2(messages, STDERR_FILENO) >= 0 &&
                        ::chdir(command.folder.c_str()) == 0;
  if (is_ready) ::execv(command.program.c_str(), arguments);
  ::_exit(kCannotExecute);
}

bool is_program(const std::filesystem::path& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error) && ::access(path.c_str(), X_OK) == 0;
}

}  // namespace

pid_t start(const Command& command) {
  const ChildFile output(command.output);
  const ChildFile messages(command.messages);
  std::vector<char*> arguments = argument_pointers(command);
  const pid_t parent = ::getpid();
  const pid_t child = ::fork();
  if (child == 0) {
    become(command, arguments.data(), output.descriptor(), messages.descriptor(), parent);
  }
  if (child < 0) throw DataError(std::string("Cannot start vorlan: ") + std::strerror(errno) + ".");
  return child;
}

std::string find_vorlan(const std::string& wanted) {
  namespace fs = std::filesystem;
  if (wanted.find('/') != std::string::npos) {
    if (!is_program(wanted)) throw UsageError(wanted + " is no program.");
    return fs::absolute(wanted).string();
  }
  const std::string name = wanted.empty() ? "vorlan" : wanted;
  std::error_code error;
  const fs::path beside = fs::read_symlink("/proc/self/exe", error).parent_path() / name;
  if (wanted.empty() && is_program(beside)) return beside.string();
  const char* const path = std::getenv("PATH");
  std::istringstream folders(path != nullptr ? path : "");
  for (std::string folder; std::getline(folders, folder, ':');) {
    const fs::path candidate =
        fs::absolute(folder.empty() ? fs::path(name) : fs::path(folder) / name);
    if (is_program(candidate)) return candidate.string();
  }
  throw UsageError("The program " + name +
                   " is neither beside vorlan-tools nor in PATH: name it with --vorlan.");
}

}  // namespace vorlan_tools
