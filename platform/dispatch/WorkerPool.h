#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

#include "platform/dispatch/DispatchBlock.h"
#include "platform/dispatch/WorkerThread.h"

namespace kestrova::platform {

// Threads that run blocks concurrently. One is added when a block finds none idle, up to a limit,
// so that blocks which wait for others do not starve them.
class WorkerPool {
 public:
  // `niceness` lowers the priority of the pool's threads (0 leaves it).
  explicit WorkerPool(int niceness) : niceness_(niceness) {}
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;
  ~WorkerPool() {
    close();
    join();
  }

  // Drops the block once closed, and where the system has not even one thread to give.
  void submit(DispatchBlock block);
  // Drops the blocks that have not begun, and all that come later.
  void close();
  // Once closed: waits for the blocks that run.
  void join();

 private:
  void work();

  static constexpr std::size_t kMaximumThreads = 64;
  const int niceness_;
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::deque<DispatchBlock> blocks_;
  std::vector<WorkerThread> threads_;
  std::size_t idle_ = 0;
  bool closed_ = false;
};

}  // namespace kestrova::platform
