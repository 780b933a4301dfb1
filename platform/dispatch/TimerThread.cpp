#include "platform/dispatch/TimerThread.h"

#include <utility>

namespace kestrova::platform {

void TimerThread::schedule(DispatchClock::time_point due, DispatchBlock block) {
  const std::lock_guard lock(mutex_);
  if (stopped_) return;
  blocks_.emplace(due, std::move(block));
  if (!thread_) thread_ = WorkerThread::start("kestrova-timer", [this] { work(); });
  changed_.notify_one();
}

void TimerThread::work() {
  std::unique_lock lock(mutex_);
  while (!stopped_) {
    if (blocks_.empty()) {
      changed_.wait(lock);
    } else if (const auto due = blocks_.begin()->first; due > DispatchClock::now()) {
      changed_.wait_until(lock, due);
    } else {
      const auto node = blocks_.extract(blocks_.begin());
      lock.unlock();
      node.mapped()();
      lock.lock();
    }
  }
}

void TimerThread::stop() {
  {
    // Declared first: dropped outside the lock, which their destructors may want.
    decltype(blocks_) dropped;
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    dropped.swap(blocks_);
  }
  changed_.notify_one();
  thread_.join();
}

}  // namespace kestrova::platform
