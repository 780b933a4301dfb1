// A random end user: walks through the flow by seeds, and prints for each walk that breaks an
// invariant a short list of steps that breaks it again.
//   walk WALKS [SEED [STEPS]]   walks with the seeds from SEED (1) on, of STEPS (60) steps each
//   walk --replay FILE          one walk of the steps in a file, a line each
//   walk --table [FILE]         the tables of docs/flow.md that follow from the model, where the
//   file
//                               does not hold them
//   --display                   before these: shows windows on the display, and takes the real
//   clock
// WALK_WITHOUT, an environment variable, names invariants that are not looked at.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <QtWidgets/QApplication>
#include <malloc.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/uikit/UIApplication.h"
#include "tests/walk/Walk.h"

namespace kestrova::walk {
namespace {

using Steps = std::vector<std::string>;

// A walk without one progress in this time hangs.
constexpr std::chrono::seconds kHang{60};

Steps linesOf(const std::filesystem::path& file) {
  Steps lines;
  std::ifstream stream(file);
  for (std::string line; std::getline(stream, line);) {
    if (!line.empty()) lines.push_back(line);
  }
  return lines;
}

// ---- In a process of its own -----------------------------------------------------------------

// Walks, and writes each step to `record` before it is taken. A walk ends the record with "found"
// or "fine". 0 where nothing was found.
int walkHere(bool isDisplayed, const std::filesystem::path& record, unsigned seed, unsigned walks,
             std::size_t length, const Steps* replay) {
  if (!isDisplayed) ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
  ::mallopt(M_ARENA_MAX, 1);
  int count = 1;
  char name[] = "walk";
  char* arguments[] = {name, nullptr};
  QApplication application(count, arguments);
  QApplication::setQuitOnLastWindowClosed(false);
  UIApplication::exists();
  Surroundings surroundings;
  std::ofstream out(record, std::ios::app);
  std::map<std::string, std::size_t> before;
  for (unsigned number = 0; number <= walks; ++number) {
    // The first one fills the caches of libraries.
    const bool isWarmUp = number == 0;
    std::mt19937_64 random(seed + number - 1);
    out << "seed " << (isWarmUp ? 0 : seed + number - 1) << std::endl;
    std::optional<Finding> found;
    {
      Walk walk(surroundings, isDisplayed);
      const std::size_t steps = isWarmUp ? 1 : replay ? replay->size() : length;
      for (std::size_t at = 0; at < steps && !found; ++at) {
        const auto step = isWarmUp ? "reach Congratulations"
                          : replay ? (*replay)[at]
                                   : walk.choose(random);
        out << "step " << step << std::endl;
        found = walk.perform(step);
      }
      if (!found) out << "step finish" << std::endl;
      if (!found) found = walk.finish(before);
    }
    if (isWarmUp) before = Walk::held(surroundings);
    if (found && !isWarmUp) {
      std::ranges::replace(found->text, '\n', ' ');
      out << "found " << found->invariant << ": " << found->text << std::endl;
      std::_Exit(1);
    }
    out << "fine" << std::endl;
  }
  std::_Exit(0);
}

// ---- The process that watches ----------------------------------------------------------------

struct Outcome {
  unsigned walks = 0;
  unsigned seed = 0;
  Steps steps;
  std::string found;
};

class Watcher {
 public:
  Watcher(std::string program, bool isDisplayed)
      : program_(std::move(program)), isDisplayed_(isDisplayed) {
    std::string name = (std::filesystem::temp_directory_path() / "kestrova-walk.XXXXXX").string();
    folder_ = ::mkdtemp(name.data());
  }
  ~Watcher() { std::filesystem::remove_all(folder_); }
  Watcher(const Watcher&) = delete;
  Watcher& operator=(const Watcher&) = delete;

  Outcome walk(unsigned seed, unsigned walks, std::size_t steps) const {
    return run({std::to_string(seed), std::to_string(walks), std::to_string(steps)});
  }

  Outcome replay(const Steps& steps) const {
    std::ofstream file(folder_ / "steps");
    for (const auto& step : steps) file << step << "\n";
    file.close();
    return run({(folder_ / "steps").string()});
  }

  // The steps without those that the finding does not need.
  Steps shrink(Steps steps, const std::string& found) const {
    const auto kind = found.substr(0, found.find(' '));
    for (std::size_t size = std::max<std::size_t>(1, steps.size() / 2);;) {
      bool isShorter = false;
      for (std::size_t from = 0; from < steps.size();) {
        Steps fewer = steps;
        const auto first = fewer.begin() + std::ptrdiff_t(from);
        fewer.erase(first, first + std::ptrdiff_t(std::min(size, steps.size() - from)));
        const auto outcome = replay(fewer);
        if (outcome.found.starts_with(kind)) {
          steps = outcome.steps;
          isShorter = true;
        } else {
          from += size;
        }
      }
      if (size == 1 && !isShorter) return steps;
      size = std::max<std::size_t>(1, size / 2);
    }
  }

 private:
  Outcome run(std::vector<std::string> words) const {
    const auto record = folder_ / "record";
    std::filesystem::remove(record);
    words.insert(words.begin(), {program_, isDisplayed_ ? "--shown" : "--here", record.string()});
    std::vector<char*> arguments;
    for (auto& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
      ::setenv("TMPDIR", folder_.c_str(), 1);
      ::setenv("XDG_RUNTIME_DIR", folder_.c_str(), 1);
      ::execv("/proc/self/exe", arguments.data());
      ::_exit(127);
    }
    int status = 0;
    bool hangs = false;
    std::uintmax_t size = 0;
    auto last = std::chrono::steady_clock::now();
    while (::waitpid(child, &status, WNOHANG) == 0) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
      std::error_code none;
      const auto now = std::filesystem::file_size(record, none);
      if (now != size) last = std::chrono::steady_clock::now();
      size = now;
      if (std::chrono::steady_clock::now() - last < kHang) continue;
      hangs = true;
      ::kill(child, SIGKILL);
    }
    Outcome outcome;
    bool isOpen = true;
    for (const auto& line : linesOf(record)) {
      const auto text = line.substr(line.find(' ') + 1);
      if (line.starts_with("seed ")) {
        outcome = {outcome.walks, unsigned(std::stoul(text)), {}, {}};
        isOpen = true;
      } else if (line.starts_with("step ")) {
        if (text != "finish") outcome.steps.push_back(text);
      } else {
        isOpen = false;
        if (line == "fine") outcome.walks += outcome.seed != 0;
        if (line != "fine") outcome.found = text;
      }
    }
    if (isOpen)
      outcome.found = hangs ? "hang: nothing happens"
                            : "crash: the process ended, status " + std::to_string(status);
    return outcome;
  }

  const std::string program_;
  const bool isDisplayed_;
  std::filesystem::path folder_;
};

void print(const char* kind, const Steps& steps) {
  std::printf("%s\n", kind);
  for (const auto& step : steps) std::printf("  %s\n", step.c_str());
  std::fflush(stdout);
}

int watch(const Watcher& watcher, unsigned seed, unsigned walks, std::size_t length) {
  // So that a process holds little.
  constexpr unsigned kWalksOfAProcess = 50;
  unsigned done = 0;
  unsigned findings = 0;
  // Shrunk once.
  std::set<std::string> kinds;
  while (done < walks) {
    const auto outcome =
        watcher.walk(seed + done, std::min(kWalksOfAProcess, walks - done), length);
    done += outcome.walks;
    if (outcome.found.empty()) continue;
    ++done;
    ++findings;
    std::printf("seed %u: %s\n", outcome.seed, outcome.found.c_str());
    std::fflush(stdout);
    if (!kinds.insert(outcome.found).second) continue;
    const auto again = watcher.replay(outcome.steps);
    const bool isSame = again.found.starts_with(outcome.found.substr(0, outcome.found.find(' ')));
    if (isSame) {
      const auto few = watcher.shrink(again.steps, again.found);
      std::printf("%s\n", watcher.replay(few).found.c_str());
      print("the steps that replay it:", few);
    } else {
      print("all steps; a replay finds something else or nothing:", outcome.steps);
    }
  }
  std::printf("%u walks, %u findings\n", done, findings);
  return findings == 0 ? 0 : 1;
}

int run(std::vector<std::string> words) {
  const auto number = [](const std::string& word) {
    return unsigned(std::strtoul(word.c_str(), nullptr, 10));
  };
  const std::string program = words[0];
  words.erase(words.begin());
  if (!words.empty() && (words[0] == "--here" || words[0] == "--shown")) {
    const bool isDisplayed = words[0] == "--shown";
    if (words.size() == 3) {
      const auto steps = linesOf(words[2]);
      return walkHere(isDisplayed, words[1], 1, 1, 0, &steps);
    }
    return walkHere(isDisplayed, words[1], number(words[2]), number(words[3]), number(words[4]),
                    nullptr);
  }
  if (!words.empty() && words[0] == "--table") {
    std::ifstream file(words.back());
    const std::string text(std::istreambuf_iterator<char>(file), {});
    if (text.find(flowTable()) != std::string::npos) return 0;
    std::fputs(flowTable().c_str(), stdout);
    return words.size() == 1 ? 0 : 1;
  }
  const bool isDisplayed = !words.empty() && words[0] == "--display";
  if (isDisplayed) words.erase(words.begin());
  const Watcher watcher(program, isDisplayed);
  if (words.size() == 2 && words[0] == "--replay") {
    const auto outcome = watcher.replay(linesOf(words[1]));
    print("the steps taken:", outcome.steps);
    std::printf("%s\n", outcome.found.empty() ? "nothing found" : outcome.found.c_str());
    return outcome.found.empty() ? 0 : 1;
  }
  if (words.empty() || words.size() > 3 || number(words[0]) == 0) {
    std::fputs(
        "usage: walk [--display] WALKS [SEED [STEPS]] | [--display] --replay FILE | --table\n",
        stderr);
    return 2;
  }
  return watch(watcher, words.size() > 1 ? number(words[1]) : 1, number(words[0]),
               words.size() > 2 ? number(words[2]) : 60);
}

}  // namespace
}  // namespace kestrova::walk

int main(int count, char** arguments) {
  return kestrova::walk::run({arguments, arguments + count});
}
