#include "sdk/backend/BackendTransport.h"

#include <mutex>
#include <utility>

#include "platform/dispatch/DispatchQueue.h"
#include "platform/dispatch/Lasting.h"
#include "platform/foundation/FileManager.h"

namespace kestrova {

namespace {

// The transport in use. Its memory is never freed, as background blocks may still ask for it while
// the process ends; then there is none any more.
class Slot {
 public:
  static Slot& shared() {
    // The queues first, so that they end last.
    static const auto queues = DispatchQueue::main();
    static const Lasting<Slot> slot;
    return *slot;
  }

  std::shared_ptr<HTTPTransport> current() {
    const std::lock_guard lock(mutex_);
    if (!transport_ && !closed_) {
      transport_ = HTTPTransport::make(BackendTransport::defaultConfiguration());
    }
    return transport_;
  }

  void replace(std::shared_ptr<HTTPTransport> transport) {
    // Swapped out, the old one ends outside the lock: its end waits for its thread.
    const std::lock_guard lock(mutex_);
    if (!closed_) transport_.swap(transport);
  }

  // No transport any more.
  void stop() {
    std::shared_ptr<HTTPTransport> ended;
    const std::lock_guard lock(mutex_);
    closed_ = true;
    ended.swap(transport_);
  }

 private:
  std::mutex mutex_;
  std::shared_ptr<HTTPTransport> transport_;
  bool closed_ = false;
};

}  // namespace

HTTPTransportConfiguration BackendTransport::defaultConfiguration() {
  HTTPTransportConfiguration configuration;
  configuration.userAgent = "Kestrova/" KESTROVA_VERSION;
  configuration.trustedAuthorities = FileManager::expandingTilde(KESTROVA_BACKEND_CA);
  return configuration;
}

std::shared_ptr<HTTPTransport> BackendTransport::current() {
  return Slot::shared().current();
}

void BackendTransport::replace(std::shared_ptr<HTTPTransport> transport) {
  Slot::shared().replace(std::move(transport));
}

}  // namespace kestrova
