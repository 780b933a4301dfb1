#pragma once

#include <atomic>
#include <cstddef>
#include <memory>

#include "platform/network/HTTPTransport.h"
#include "sdk/Platform.h"

namespace kestrova {

// A transport that counts the requests that have ended, so that a demo knows when its process may
// end too.
class CountingTransport : public HTTPTransport {
 public:
  explicit CountingTransport(HTTPTransportConfiguration configuration);

  void send(HTTPRequest request, Completion completion) override;
  // Any thread.
  std::size_t ended() const { return *ended_; }

 private:
  std::shared_ptr<std::atomic<std::size_t>> ended_ = std::make_shared<std::atomic<std::size_t>>(0);
  std::shared_ptr<HTTPTransport> inner_;
};

}  // namespace kestrova
