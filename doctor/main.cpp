#include <algorithm>
#include <iostream>

#include <unistd.h>

#include "doctor/Apart.h"
#include "doctor/CommandLine.h"
#include "doctor/Report.h"

namespace {

using namespace kestrova::doctor;

constexpr int kFailure = 2;
constexpr int kWrongCall = 64;

int run(const Command& command) {
  const bool hasColours = ::isatty(STDOUT_FILENO) != 0;
  Findings all;
  for (const auto& check : checks()) {
    if (!command.only.empty() &&
        std::find(command.only.begin(), command.only.end(), check.name) == command.only.end()) {
      continue;
    }
    for (auto& finding :
         check.isRisky ? runApart(check, command.machine) : check.run(command.machine)) {
      if (!command.isJSON) std::cout << textReport(finding, hasColours) << std::flush;
      all.push_back(std::move(finding));
    }
  }
  if (!command.isJSON) std::cout << '\n';
  std::cout << (command.isJSON ? jsonReport(all) : summary(all, command.only.empty()));
  if (!std::cout.flush()) {
    std::cerr << "the report cannot be written\n";
    return kFailure;
  }
  return std::max(static_cast<int>(worst(all)) - 1, 0);
}

}  // namespace

int main(int argc, char** argv) {
  const auto read = readCommandLine({argv + 1, argv + argc});
  if (const auto* const message = std::get_if<Message>(&read)) {
    (message->isError ? std::cerr : std::cout) << message->text;
    return message->isError ? kWrongCall : 0;
  }
  return run(std::get<Command>(read));
}
