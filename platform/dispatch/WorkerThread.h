#pragma once

#include <thread>

#include <sys/types.h>

#include "platform/dispatch/DispatchBlock.h"

namespace kestrova::platform {

// A thread of the SDK: all signals blocked, so that no handler of the host runs on it, and named
// for debuggers. Empty when default-constructed.
class WorkerThread {
 public:
  WorkerThread() = default;
  // Empty where the system has no thread to give.
  static WorkerThread start(const char* name, DispatchBlock body);
  WorkerThread(WorkerThread&&) = default;
  WorkerThread& operator=(WorkerThread&&) = default;
  WorkerThread(const WorkerThread&) = delete;
  WorkerThread& operator=(const WorkerThread&) = delete;
  ~WorkerThread() { join(); }

  explicit operator bool() const { return thread_.joinable(); }
  // Waits for the end. Lets go instead where that cannot come: on the thread itself (a block that
  // calls exit), and in a forked child, which has none of its parent's threads.
  void join();

 private:
  std::thread thread_;
  pid_t process_ = 0;
};

}  // namespace kestrova::platform
