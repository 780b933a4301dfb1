#pragma once

#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/dispatch/MainLoop.h"
#include "platform/dispatch/RunLoop.h"
#include "sandbox/Sandbox.h"
#include "sdk/backend/API.h"
#include "sdk/backend/BackendTransport.h"
#include "tests/support/StandardOutput.h"
#include "tests/support/TemporaryDirectory.h"

namespace kestrova::test {

// A test with the sandbox in its own process: API's requests travel over TLS to a free port.
class BackendTest : public ::testing::Test {
 protected:
  BackendTest() {
    sandbox::Options options;
    options.port = 0;
    options.listingPort = 0;
    options.store = directory.path() / "store";
    options.limits.connections = 256;
    auto started = sandbox::Sandbox::start(std::move(options));
    EXPECT_TRUE(started) << started.error();
    server = std::move(started.value());
    configuration = BackendTransport::defaultConfiguration();
    configuration.trustedAuthorities = server->authorityFile();
    configuration.connectTo =
        std::string(KESTROVA_BACKEND_HOST) + ":127.0.0.1:" + std::to_string(server->port());
    configuration.honoursProxy = false;
    std::filesystem::create_directory(directory.path() / "uploads");
    configuration.temporaryDirectory = directory.path() / "uploads";
    useTransport();
  }
  ~BackendTest() override { BackendTransport::replace(nullptr); }

  // Sends later requests with the settings in `configuration`.
  void useTransport() { BackendTransport::replace(HTTPTransport::make(configuration)); }

  void play(std::string_view scenario) {
    const auto parsed = sandbox::parseScenario(scenario);
    ASSERT_TRUE(parsed) << parsed.error();
    ASSERT_TRUE(server->setScenario(parsed.value()));
  }

  static bool waitUntil(const std::function<bool()>& condition) {
    return RunLoop::runUntil(condition, DispatchClock::now() + std::chrono::seconds(30));
  }
  // Runs the main loop until `line` was printed.
  bool waitForLine(const std::string& line) const {
    return waitUntil([&] {
      const auto lines = output.lines();
      return std::find(lines.begin(), lines.end(), line) != lines.end();
    });
  }
  bool waitForAnswers(std::size_t count) {
    return waitUntil([&] { return answers.size() >= count; });
  }

  // A handler that collects.
  API::StepCompletionHandler collect() {
    return [this](const JSONDictionary& answer) {
      EXPECT_TRUE(isMainThread());
      answers.push_back(answer);
    };
  }

  // The request that arrived last.
  sandbox::Request lastRequest() const {
    const auto requests = server->requests();
    return requests.empty() ? sandbox::Request{} : requests.back();
  }

  std::filesystem::path makeFile(const std::string& name, std::string_view contents) const {
    std::ofstream(directory.path() / name, std::ios::binary) << contents;
    return directory.path() / name;
  }

  // The smallest contents that the sandbox takes for a picture and for a movie.
  static constexpr std::string_view kPicture{"\x89PNG\r\n\x1a\n\0\0\0\0", 12};
  static constexpr std::string_view kMovie{
      "\0\0\0\x14"
      "ftypqt  \0\0\0\0qt  ",
      20};

  const TemporaryDirectory directory;
  const StandardOutput output;
  std::unique_ptr<sandbox::Sandbox> server;
  HTTPTransportConfiguration configuration;
  std::vector<JSONDictionary> answers;
};

}  // namespace kestrova::test
