#include "doctor/Apart.h"

#include <array>
#include <csignal>
#include <iostream>
#include <string>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "doctor/Report.h"
#include "platform/foundation/FileDescriptor.h"

namespace kestrova::doctor {

namespace {

using platform::FileDescriptor;
using Clock = std::chrono::steady_clock;

struct Pipe {
  FileDescriptor out;
  FileDescriptor in;
};

Pipe makePipe() {
  std::array<int, 2> ends{-1, -1};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return {};
  return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

// Appends what has come; false at the end.
bool readSome(const FileDescriptor& from, std::string& text) {
  std::array<char, 4096> block{};
  const auto count = ::read(from.get(), block.data(), block.size());
  if (count > 0) text.append(block.data(), static_cast<std::size_t>(count));
  return count > 0;
}

// A process whose output and errors are read; killed, where it still runs, with this object.
class Process {
 public:
  Process(const std::filesystem::path& program, const char* check) {
    std::string path = program;
    std::string option = "--probe";
    std::string name = check;
    std::array<char*, 4> arguments{path.data(), option.data(), name.data(), nullptr};
    auto output = makePipe();
    auto errors = makePipe();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output.in.get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors.in.get(), STDERR_FILENO);
    if (::posix_spawn(&id_, path.c_str(), &actions, nullptr, arguments.data(), environ) != 0) {
      id_ = -1;
    }
    posix_spawn_file_actions_destroy(&actions);
    output_ = std::move(output.out);
    errors_ = std::move(errors.out);
  }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  ~Process() {
    if (id_ > 0) {
      ::kill(id_, SIGKILL);
      ::waitpid(id_, nullptr, 0);
    }
  }

  // Reads until both ends are closed; false where that took longer.
  bool read(std::string& output, std::string& errors, std::chrono::milliseconds patience) {
    const auto deadline = Clock::now() + patience;
    std::array<pollfd, 2> ends{{{output_.get(), POLLIN, 0}, {errors_.get(), POLLIN, 0}}};
    while (ends[0].fd >= 0 || ends[1].fd >= 0) {
      const auto left =
          std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
      if (left.count() <= 0) return false;
      if (::poll(ends.data(), ends.size(), static_cast<int>(left.count())) < 0) continue;
      if (ends[0].revents != 0 && !readSome(output_, output)) ends[0].fd = -1;
      if (ends[1].revents != 0 && !readSome(errors_, errors)) ends[1].fd = -1;
    }
    return true;
  }

 private:
  pid_t id_ = -1;
  FileDescriptor output_;
  FileDescriptor errors_;
};

std::string adviceFor(std::string_view check) {
  return check == "display"
             ? "Start this in the session that has the display (DISPLAY or WAYLAND_DISPLAY), or "
               "name another platform: QT_QPA_PLATFORM=wayland, linuxfb or eglfs."
             : "Install the packages of this check's libraries again.";
}

// The line that says most: the toolkit's last words come behind it.
std::string firstLine(const std::string& text) {
  return text.substr(0, text.find('\n'));
}

}  // namespace

Findings runApart(const Check& check, const Machine& machine) {
  Process process(machine.program, check.name);
  std::string output;
  std::string errors;
  if (!process.read(output, errors, machine.patience)) {
    return {{check.name, Severity::failure, "the check hangs", adviceFor(check.name)}};
  }
  if (auto findings = parsedReport(output)) return std::move(*findings);
  const auto words = firstLine(errors);
  return {{check.name, Severity::failure,
           words.empty() ? "the check's process ended without a word" : words,
           adviceFor(check.name)}};
}

int serve(const Check& check, const Machine& machine) {
  const rlimit none{0, 0};
  ::setrlimit(RLIMIT_CORE, &none);
  std::cout << jsonReport(check.run(machine)) << std::flush;
  return 0;
}

}  // namespace kestrova::doctor
