#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "platform/network/HTTPTransport.h"
#include "sandbox/Certificates.h"
#include "sandbox/Listener.h"
#include "tests/support/TemporaryDirectory.h"

namespace kestrova::test {

// A real TLS server on a free port of the loopback address that answers as the test says.
class CannedServer : private sandbox::HttpHandler {
 public:
  using Answer = std::function<sandbox::HttpAnswer(const sandbox::HttpRequest&)>;

  explicit CannedServer(Answer answer, sandbox::Limits limits = {}) : answer_(std::move(answer)) {
    auto certificates = sandbox::loadCertificates(store_.path());
    tls_ = std::make_unique<sandbox::TlsContext>(
        sandbox::TlsContext::make(certificates.value().server).value());
    sandbox::Listener::Settings settings;
    settings.limits = limits;
    settings.tls = [this]() -> const sandbox::TlsContext& { return *tls_; };
    listener_ = sandbox::Listener::open(std::move(settings)).value();
    listener_->run(*this);
  }
  CannedServer(const CannedServer&) = delete;
  CannedServer& operator=(const CannedServer&) = delete;
  ~CannedServer() override { listener_->stop(); }

  std::size_t requests() const { return requests_; }
  std::size_t connectionsAccepted() const { return listener_->connectionsAccepted(); }
  std::size_t connectionsOpen() const { return listener_->connectionsOpen(); }
  std::uint16_t port() const { return listener_->port(); }

  // Settings that reach this server under the name "localhost".
  platform::HTTPTransportConfiguration configuration() const {
    platform::HTTPTransportConfiguration configuration;
    configuration.userAgent = "test";
    configuration.trustedAuthorities = store_.path() / sandbox::authorityFileName;
    configuration.connectTo = "localhost:443:127.0.0.1:" + std::to_string(listener_->port());
    configuration.honoursProxy = false;
    return configuration;
  }

 private:
  sandbox::HttpAnswer answer(const sandbox::HttpRequest& request) override {
    ++requests_;
    return answer_(request);
  }

  const Answer answer_;
  const TemporaryDirectory store_;
  std::unique_ptr<sandbox::TlsContext> tls_;
  std::unique_ptr<sandbox::Listener> listener_;
  std::atomic<std::size_t> requests_ = 0;
};

}  // namespace kestrova::test
