#include "platform/foundation/NSLog.h"

#include <mutex>
#include <utility>

#include <syslog.h>

namespace kestrova::platform {

namespace {

std::mutex sinkMutex;
std::function<void(const std::string&)>& currentSink() {
  static std::function<void(const std::string&)> sink;
  return sink;
}

}  // namespace

void NSLog(std::string_view message) {
  const std::string text(message);
  const auto sink = [] {
    const std::lock_guard lock(sinkMutex);
    return currentSink();
  }();
  if (sink) {
    sink(text);
  } else {
    syslog(LOG_USER | LOG_ERR, "%s", text.c_str());
  }
}

void redirectNSLog(std::function<void(const std::string&)> sink) {
  const std::lock_guard lock(sinkMutex);
  currentSink() = std::move(sink);
}

}  // namespace kestrova::platform
