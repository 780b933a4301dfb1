#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sandbox/Outcome.h"
#include "sandbox/Scenario.h"

namespace kestrova::sandbox {

struct Limits {
  std::size_t headBytes = std::size_t{16} << 10U;
  std::size_t bodyBytes = std::size_t{64} << 20U;
  std::size_t connections = 64;           // a listener; further ones are closed
  std::chrono::milliseconds idle{30000};  // a connection without progress ends
};

struct Options {
  std::uint16_t port = 8443;         // HTTPS; 0: a free one
  std::uint16_t listingPort = 8480;  // HTTP, listing and control; 0: a free one
  std::filesystem::path store;       // made when missing; empty: defaultStore()
  // One line a request, without line break. Called from the sandbox's threads, one call at a time.
  std::function<void(std::string_view line)> log;
  std::vector<Scenario> scenarios;
  Limits limits;
  std::chrono::milliseconds dripInterval{10};  // between two bytes of a slow answer
};

// ~/.local/share/kestrova-sandbox; empty where the user has no home.
std::filesystem::path defaultStore();

// A file that came in. Its bytes are at `path`.
struct Upload {
  std::string field;
  std::string fileName;
  std::string contentType;
  std::string sha256;  // lower-case hexadecimal
  std::uint64_t size = 0;
  std::filesystem::path path;
};

// One received request.
struct Request {
  std::string received;  // UTC, 2026-01-31T12:00:00.000Z
  std::string method;
  std::string target;
  std::string head;  // raw: request line and headers with the empty line
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;            // raw, without the uploaded file's bytes; at most the first 64 KiB
  std::string step;            // "authentication_assessments" for those; empty when unknown
  std::string authentication;  // key of the authentication it belongs to; empty when none
  std::vector<std::pair<std::string, std::string>> parameters;  // decoded
  std::optional<Upload> upload;
  std::vector<std::string> deviations;  // printable text
  int status = 0;                       // 0: no complete answer went out
  std::string fault;                    // name of the fault that met it; empty when none did
};

// The verification backend for laptops: HTTPS on the loopback address with certificates of its own,
// every request checked and kept in the store before it is answered. Any thread may call. Installs
// no signal handlers; its threads take no signals.
class Sandbox {
 public:
  // Returns once both listeners accept connections. After a failure nothing runs.
  static Outcome<std::unique_ptr<Sandbox>> start(Options options);

  std::uint16_t port() const;
  std::uint16_t listingPort() const;
  // PEM certificate that clients trust.
  std::filesystem::path authorityFile() const;

  // Everything that the store holds, in order of arrival, requests of earlier runs included. A
  // request whose answer a fault suppressed is among them.
  std::vector<Request> requests() const;
  // Whether the store held `count` requests before the deadline passed.
  bool waitForRequests(std::size_t count, std::chrono::milliseconds deadline) const;

  // Adds a fault to those that play; of those that fit a request, the first one added meets it. In
  // force on return. False, and nothing changed, where parseScenario() could not produce it.
  bool setScenario(Scenario scenario);
  void clearScenarios();

  // What GET / of the listing port shows.
  std::string listing() const;

  // HTTPS connections since the start.
  std::size_t connectionsAccepted() const;

  // Ends every connection at once, stalled ones too, and returns when all threads have ended; so
  // does destruction. Further calls do nothing.
  void stop();

 private:
  class Impl;
  struct Destroy {
    void operator()(Impl* impl) const;
  };
  explicit Sandbox(std::unique_ptr<Impl, Destroy> impl);

  std::unique_ptr<Impl, Destroy> impl_;
};

}  // namespace kestrova::sandbox
