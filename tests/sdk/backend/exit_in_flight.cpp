// A process that ends while requests wait for their answers, and while a background block still
// posts: it must end by itself, in order.
// usage: exit_in_flight CONNECT_TO AUTHORITY

#include <cstdlib>
#include <thread>

#include "platform/dispatch/DispatchQueue.h"
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
  // Still running when the statics are destroyed: it asks again and again until nobody answers.
  DispatchQueue::global(DispatchQoS::background).async([] {
    while (BackendTransport::current()) {
      API::checkFaceVideo("K", "A", [](const JSONDictionary&) { std::abort(); });
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  });
  // Long enough for some to be under way.
  const auto soon = DispatchClock::now() + std::chrono::milliseconds(300);
  return RunLoop::runUntil([] { return false; }, soon) ? 1 : 0;
}
