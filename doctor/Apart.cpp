#include "doctor/Apart.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "doctor/Report.h"
#include "platform/foundation/FileDescriptor.h"

namespace kestrova::doctor {

namespace {

using platform::FileDescriptor;
using Clock = std::chrono::steady_clock;

// Milliseconds that a killed process has to end.
constexpr int kDying = 100;

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

// The other process's whole life. What libraries print goes to the errors; an exception ends it as
// any other fault of the check does.
[[noreturn]] void answer(const Check& check, const Machine& machine, const FileDescriptor& report,
                         const FileDescriptor& errors) noexcept {
  const rlimit none{0, 0};
  ::setrlimit(RLIMIT_CORE, &none);
  ::dup2(errors.get(), STDOUT_FILENO);
  ::dup2(errors.get(), STDERR_FILENO);
  const auto text = jsonReport(check.run(machine));
  for (std::string_view left = text; !left.empty();) {
    const auto count = ::write(report.get(), left.data(), left.size());
    if (count < 0) break;
    left.remove_prefix(static_cast<std::size_t>(count));
  }
  ::_exit(0);
}

// A process whose report and errors are read; killed, where it still runs, with this object.
class Process {
 public:
  Process(const Check& check, const Machine& machine) {
    auto report = makePipe();
    auto errors = makePipe();
    id_ = ::fork();
    if (id_ == 0) answer(check, machine, report.in, errors.in);
    report_ = std::move(report.out);
    errors_ = std::move(errors.out);
  }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  // One that waits for a device in the kernel cannot be killed, and is not waited for long.
  ~Process() {
    if (id_ <= 0) return;
    ::kill(id_, SIGKILL);
    const FileDescriptor end(static_cast<int>(::syscall(SYS_pidfd_open, id_, 0)));
    pollfd ended{end.get(), POLLIN, 0};
    ::poll(&ended, 1, kDying);
    ::waitpid(id_, nullptr, WNOHANG);
  }

  // Reads until the report ends; false where that took longer. Whoever the check has started may
  // keep the errors open.
  bool read(std::string& report, std::string& errors, std::chrono::milliseconds patience) {
    const auto deadline = Clock::now() + patience;
    std::array<pollfd, 2> ends{{{report_.get(), POLLIN, 0}, {errors_.get(), POLLIN, 0}}};
    for (bool isOver = false;;) {
      const auto left =
          std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
      if (!isOver && left.count() <= 0) return false;
      const int ready =
          ::poll(ends.data(), ends.size(), isOver ? 0 : static_cast<int>(left.count()));
      if (ready < 0) continue;
      if (isOver && ready == 0) return true;
      if (ends[0].revents != 0 && !readSome(report_, report)) {
        ends[0].fd = -1;
        isOver = true;
      }
      if (ends[1].revents != 0 && !readSome(errors_, errors)) ends[1].fd = -1;
    }
  }

 private:
  pid_t id_ = -1;
  FileDescriptor report_;
  FileDescriptor errors_;
};

std::string adviceFor(std::string_view check) {
  if (check == "display") {
    return "Start this in the session that has the display (DISPLAY or WAYLAND_DISPLAY), or name "
           "another platform: QT_QPA_PLATFORM=wayland (package qt6-wayland), linuxfb or eglfs.";
  }
  if (check == "camera") return "Unplug the cameras, plug them in again, and look again.";
  if (check == "bundle" || check == "documents") {
    return "Look whether the file system of its folder answers (a network drive?).";
  }
  return "Install the packages of this check's libraries again.";
}

std::string adviceForSlow(std::string_view check) {
  if (check == "media") {
    return "The media framework is still looking through its plugins. Let the host open a camera "
           "once, which keeps the list of them, and look again.";
  }
  return adviceFor(check);
}

// The line that says most: the toolkit's last words come behind it, and what it says of its folder
// for sockets, harmlessly, before.
std::string tellingLine(std::string_view text) {
  constexpr std::string_view kHarmless = "QStandardPaths:";
  while (text.starts_with(kHarmless)) {
    text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
  }
  return std::string(text.substr(0, text.find('\n')));
}

}  // namespace

Findings runApart(const Check& check, const Machine& machine) {
  Process process(check, machine);
  std::string report;
  std::string errors;
  const auto patience = machine.*check.patience;
  if (!process.read(report, errors, patience)) {
    return {{check.name, Severity::failure,
             "no end after " + std::to_string(patience.count() / 1000) + " s",
             adviceForSlow(check.name)}};
  }
  if (auto findings = parsedReport(report)) return std::move(*findings);
  const auto words = tellingLine(errors);
  return {{check.name, Severity::failure,
           words.empty() ? "the check's process ended without a word" : words,
           adviceFor(check.name)}};
}

}  // namespace kestrova::doctor
