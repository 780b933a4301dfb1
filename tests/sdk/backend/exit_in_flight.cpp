// A process that ends while requests wait for their answers: it must end by itself, in order.
// usage: exit_in_flight CONNECT_TO AUTHORITY

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "platform/dispatch/RunLoop.h"
#include "sdk/backend/API.h"
#include "sdk/backend/BackendTransport.h"

int main(int argc, char** argv) {
  using namespace kestrova;
  if (argc != 3) return 2;
  auto configuration = BackendTransport::defaultConfiguration();
  configuration.connectTo = argv[1];
  configuration.trustedAuthorities = argv[2];
  configuration.honoursProxy = false;
  BackendTransport::replace(HTTPTransport::make(configuration));
  for (int i = 0; i < 8; ++i) {
    API::createAuthentication("K", [](const JSONDictionary&) { std::abort(); });
    API::recordFaceVideo("/proc/self/exe", "K", "A", [](const JSONDictionary&) { std::abort(); });
  }
  // Long enough for some to be under way.
  const auto soon = DispatchClock::now() + std::chrono::milliseconds(300);
  return RunLoop::runUntil([] { return false; }, soon) ? 1 : 0;
}
