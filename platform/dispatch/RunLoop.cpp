#include "platform/dispatch/RunLoop.h"

#include <algorithm>
#include <atomic>

#include "platform/dispatch/DispatchRuntime.h"
#include "platform/dispatch/MainLoop.h"

namespace kestrova::platform {

namespace {

std::atomic<bool> stopRequested = false;

constexpr std::chrono::milliseconds kConditionInterval{10};

}  // namespace

void MainLoop::attach(DispatchBlock wake) {
  DispatchRuntime::shared().mainQueue()->attach(std::move(wake));
}

void MainLoop::detach() {
  DispatchRuntime::shared().mainQueue()->detach();
}

std::optional<DispatchClock::time_point> MainLoop::drain() {
  return DispatchRuntime::shared().mainQueue()->drain();
}

bool isMainThread() {
  return DispatchRuntime::shared().mainQueue()->isMainThread();
}

void RunLoop::run() {
  auto& queue = *DispatchRuntime::shared().mainQueue();
  queue.attach({});
  while (!stopRequested.exchange(false)) {
    queue.wait(std::nullopt);
    queue.drain();
  }
  queue.detach();
}

bool RunLoop::runUntil(const std::function<bool()>& condition, DispatchClock::time_point deadline) {
  auto& queue = *DispatchRuntime::shared().mainQueue();
  while (!condition()) {
    const auto now = DispatchClock::now();
    if (now >= deadline) return false;
    queue.wait(std::min(deadline, now + kConditionInterval));
    queue.drain();
  }
  return true;
}

void RunLoop::stop() {
  stopRequested = true;
  DispatchRuntime::shared().mainQueue()->interrupt();
}

}  // namespace kestrova::platform
