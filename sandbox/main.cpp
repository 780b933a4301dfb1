#include <csignal>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "sandbox/CommandLine.h"
#include "sandbox/Sandbox.h"

namespace {

using kestrova::sandbox::Options;
using kestrova::sandbox::Sandbox;

// Written at once also into a pipe or file; a reader that left is no reason to stop.
void printLine(std::string_view line) {
  std::printf("%.*s\n", static_cast<int>(line.size()), line.data());
  std::fflush(stdout);
}

int fail(const std::string& what, int status) {
  std::fprintf(stderr, "kestrova-sandbox: %s\n", what.c_str());
  return status;
}

int run(Options options) {
  // Held back before any thread starts, so that only the wait below takes them.
  sigset_t ending;
  sigemptyset(&ending);
  sigaddset(&ending, SIGINT);
  sigaddset(&ending, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &ending, nullptr);
  std::signal(SIGPIPE, SIG_IGN);

  options.log = printLine;
  auto sandbox = Sandbox::start(std::move(options));
  if (!sandbox) return fail(sandbox.error(), 1);
  const auto& running = *sandbox.value();
  printLine("Sandbox listening on https://localhost:" + std::to_string(running.port()));
  printLine("Console on http://localhost:" + std::to_string(running.listingPort()) + "/");
  printLine("Clients trust " + running.authorityFile().string());

  int signal = 0;
  sigwait(&ending, &signal);
  sandbox.value()->stop();
  return 0;
}

}  // namespace

int main(int count, char** values) {
  auto command =
      kestrova::sandbox::readCommandLine(std::vector<std::string>(values + 1, values + count));
  if (!command) return fail(command.error(), 2);
  if (const auto* const text = std::get_if<std::string>(&command.value())) {
    std::fputs(text->c_str(), stdout);
    return 0;
  }
  return run(std::get<Options>(std::move(command).value()));
}
