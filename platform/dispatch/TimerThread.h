#pragma once

#include <condition_variable>
#include <map>
#include <mutex>

#include "platform/dispatch/DispatchBlock.h"
#include "platform/dispatch/WorkerThread.h"

namespace kestrova::platform {

// Calls short blocks at their time, for queues without a loop of their own. Its thread starts with
// the first block and sleeps until the next is due.
class TimerThread {
 public:
  TimerThread() = default;
  TimerThread(const TimerThread&) = delete;
  TimerThread& operator=(const TimerThread&) = delete;
  ~TimerThread() { stop(); }

  void schedule(DispatchClock::time_point due, DispatchBlock block);
  // Drops what is not due yet.
  void stop();

 private:
  void work();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::multimap<DispatchClock::time_point, DispatchBlock> blocks_;
  WorkerThread thread_;
  bool stopped_ = false;
};

}  // namespace kestrova::platform
