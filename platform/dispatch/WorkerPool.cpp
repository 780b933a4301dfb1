#include "platform/dispatch/WorkerPool.h"

#include <utility>

#include <sys/resource.h>
#include <unistd.h>

namespace kestrova::platform {

void WorkerPool::submit(DispatchBlock block) {
  const std::lock_guard lock(mutex_);
  if (closed_) return;
  if (blocks_.size() >= idle_ && threads_.size() < kMaximumThreads) {
    if (auto thread = WorkerThread::start("kestrova-worker", [this] { work(); })) {
      threads_.push_back(std::move(thread));
    } else if (threads_.empty()) {
      return;
    }
  }
  blocks_.push_back(std::move(block));
  arrived_.notify_one();
}

void WorkerPool::work() {
  if (niceness_ != 0) setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), niceness_);
  std::unique_lock lock(mutex_);
  while (true) {
    ++idle_;
    arrived_.wait(lock, [this] { return closed_ || !blocks_.empty(); });
    --idle_;
    if (closed_) return;
    {
      const DispatchBlock block = std::move(blocks_.front());
      blocks_.pop_front();
      lock.unlock();
      block();
    }
    lock.lock();
  }
}

void WorkerPool::close() {
  std::deque<DispatchBlock> dropped;
  const std::lock_guard lock(mutex_);
  closed_ = true;
  dropped.swap(blocks_);
  arrived_.notify_all();
}

void WorkerPool::join() {
  std::vector<WorkerThread> threads;
  {
    const std::lock_guard lock(mutex_);
    threads.swap(threads_);
  }
  for (auto& thread : threads) thread.join();
}

}  // namespace kestrova::platform
