#include "sdk/backend/BackendTransport.h"

#include <mutex>
#include <utility>

#include "platform/foundation/FileManager.h"

namespace kestrova {

namespace {

std::mutex transportMutex;

std::shared_ptr<HTTPTransport>& sharedTransport() {
  static auto transport = HTTPTransport::make(BackendTransport::defaultConfiguration());
  return transport;
}

}  // namespace

HTTPTransportConfiguration BackendTransport::defaultConfiguration() {
  HTTPTransportConfiguration configuration;
  configuration.userAgent = "Kestrova/" KESTROVA_VERSION;
  configuration.trustedAuthorities = FileManager::expandingTilde(KESTROVA_BACKEND_CA);
  return configuration;
}

std::shared_ptr<HTTPTransport> BackendTransport::current() {
  const std::lock_guard lock(transportMutex);
  return sharedTransport();
}

void BackendTransport::replace(std::shared_ptr<HTTPTransport> transport) {
  {
    const std::lock_guard lock(transportMutex);
    sharedTransport().swap(transport);
  }
  // The old transport ends here, outside the lock: its end waits for its thread.
}

}  // namespace kestrova
