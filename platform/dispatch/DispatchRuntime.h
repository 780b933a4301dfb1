#pragma once

#include <array>
#include <memory>

#include <unistd.h>

#include "platform/dispatch/DispatchQueue.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/dispatch/TimerThread.h"
#include "platform/dispatch/WorkerPool.h"

namespace kestrova::platform {

// The process's queues and their threads. Its memory is never freed, so that calls during process
// end find it; its threads end with the process's static objects, or with the unloaded library.
class DispatchRuntime {
 public:
  static DispatchRuntime& shared();

  const std::shared_ptr<MainQueue>& mainQueue() { return mainQueue_; }
  WorkerPool& pool(DispatchQoS qos) { return pools_.at(static_cast<std::size_t>(qos)); }
  TimerThread& timer() { return timer_; }

  void stop();

 private:
  const pid_t process_ = getpid();
  std::shared_ptr<MainQueue> mainQueue_ = std::make_shared<MainQueue>();
  // Niceness by quality of service.
  std::array<WorkerPool, 4> pools_{WorkerPool(0), WorkerPool(0), WorkerPool(4), WorkerPool(10)};
  TimerThread timer_;
};

}  // namespace kestrova::platform
