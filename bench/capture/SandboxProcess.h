#pragma once

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

#include "examples/enduser/CountingTransport.h"
#include "sandbox/Sandbox.h"
#include "sdk/backend/BackendTransport.h"

namespace kestrova::bench {

// The sandbox in a process of its own, so that what it needs is not counted as ours. Made before
// this process has threads.
class SandboxProcess {
 public:
  explicit SandboxProcess(const std::filesystem::path& store) {
    std::array<int, 2> settings{};
    std::array<int, 2> end{};
    if (::pipe(settings.data()) != 0 || ::pipe(end.data()) != 0) std::_Exit(1);
    child_ = ::fork();
    if (child_ == 0) {
      ::close(settings[0]);
      ::close(end[1]);
      serve(store, settings[1], end[0]);
    }
    ::close(settings[1]);
    ::close(end[0]);
    end_ = end[1];
    std::string text;
    for (char byte = 0; ::read(settings[0], &byte, 1) == 1;) text += byte;
    ::close(settings[0]);
    if (text.empty()) std::_Exit(1);
    connectTo_ = KESTROVA_BACKEND_HOST ":127.0.0.1:" + text.substr(0, text.find('\n'));
    authority_ = text.substr(text.find('\n') + 1);
  }
  ~SandboxProcess() {
    if (end_ >= 0) static_cast<void>(finish());
  }
  SandboxProcess(const SandboxProcess&) = delete;
  SandboxProcess& operator=(const SandboxProcess&) = delete;

  // Both as curl takes them.
  const std::string& connectTo() const { return connectTo_; }
  const std::string& authority() const { return authority_; }

  // Sends the SDK's requests there.
  std::shared_ptr<CountingTransport> use(const std::filesystem::path& temporary) const {
    auto configuration = BackendTransport::defaultConfiguration();
    configuration.connectTo = connectTo_;
    configuration.trustedAuthorities = authority_;
    configuration.honoursProxy = false;
    configuration.temporaryDirectory = temporary;
    auto transport = std::make_shared<CountingTransport>(std::move(configuration));
    BackendTransport::replace(transport);
    return transport;
  }

  // Ends it. Whether it took every request.
  [[nodiscard]] bool finish() {
    ::close(end_);
    end_ = -1;
    int status = 0;
    ::waitpid(child_, &status, 0);
    return status == 0;
  }

 private:
  [[noreturn]] static void serve(const std::filesystem::path& store, int settings, int end) {
    sandbox::Options options;
    options.port = 0;
    options.listingPort = 0;
    options.store = store;
    const auto started = sandbox::Sandbox::start(std::move(options));
    if (!started) {
      std::fprintf(stderr, "the sandbox does not start: %s\n", started.error().c_str());
      std::_Exit(1);
    }
    auto& server = *started.value();
    const std::string text = std::to_string(server.port()) + "\n" + server.authorityFile().string();
    static_cast<void>(::write(settings, text.data(), text.size()));
    ::close(settings);
    char byte = 0;
    static_cast<void>(::read(end, &byte, 1));
    const auto requests = server.requests();
    const bool areTaken = std::ranges::all_of(
        requests, [](const sandbox::Request& request) { return request.status == 200; });
    if (!areTaken) std::fputs("the sandbox refused a request\n", stderr);
    server.stop();
    std::_Exit(areTaken ? 0 : 1);
  }

  pid_t child_ = 0;
  int end_ = -1;
  std::string connectTo_;
  std::string authority_;
};

}  // namespace kestrova::bench
