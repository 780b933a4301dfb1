#include "platform/dispatch/MainQueue.h"

#include <utility>

#include <unistd.h>

namespace kestrova::platform {

bool MainQueue::isMainThread() const {
  const std::lock_guard lock(mutex_);
  return gettid() == mainThread_.value_or(getpid());
}

void MainQueue::attach(DispatchBlock wake) {
  const std::lock_guard lock(mutex_);
  mainThread_ = gettid();
  wake_ = wake ? std::make_shared<const DispatchBlock>(std::move(wake)) : nullptr;
  open_ = true;
}

void MainQueue::detach() {
  const std::lock_guard lock(mutex_);
  open_ = false;
  wake_ = nullptr;
  std::erase_if(ready_, [](const Item& item) {
    if (item.waiter) item.waiter->ended = true;
    return item.waiter != nullptr;
  });
  waiterEnded_.notify_all();
}

bool MainQueue::push(Item item) {
  std::shared_ptr<const DispatchBlock> wake;
  {
    const std::lock_guard lock(mutex_);
    if (item.waiter && !open_) return false;
    ready_.push_back(std::move(item));
    wake = wake_;
    arrived_.notify_one();
  }
  if (wake) (*wake)();
  return true;
}

void MainQueue::async(DispatchBlock block) {
  push({std::move(block), nullptr});
}

void MainQueue::asyncAfter(DispatchClock::time_point due, DispatchBlock block) {
  std::shared_ptr<const DispatchBlock> wake;
  {
    const std::lock_guard lock(mutex_);
    timers_.emplace(due, std::move(block));
    wake = wake_;
    arrived_.notify_one();
  }
  if (wake) (*wake)();
}

bool MainQueue::sync(const DispatchBlock& block) {
  if (isMainThread()) {
    block();
    return true;
  }
  const auto waiter = std::make_shared<Waiter>();
  if (!push({[&block] { block(); }, waiter})) return false;
  std::unique_lock lock(mutex_);
  waiterEnded_.wait(lock, [&] { return waiter->ended; });
  return waiter->ran;
}

std::optional<DispatchClock::time_point> MainQueue::drain() {
  std::unique_lock lock(mutex_);
  const auto now = DispatchClock::now();
  while (!timers_.empty() && timers_.begin()->first <= now) {
    ready_.push_back({std::move(timers_.begin()->second), nullptr});
    timers_.erase(timers_.begin());
  }
  // No more than what is ready now: blocks that post blocks must not keep the loop from its events.
  for (auto count = ready_.size(); count > 0 && !ready_.empty(); --count) {
    Item item = std::move(ready_.front());
    ready_.pop_front();
    lock.unlock();
    item.block();
    item.block = nullptr;
    lock.lock();
    if (item.waiter) {
      item.waiter->ended = item.waiter->ran = true;
      waiterEnded_.notify_all();
    }
  }
  if (!ready_.empty()) return DispatchClock::time_point::min();
  if (!timers_.empty()) return timers_.begin()->first;
  return std::nullopt;
}

void MainQueue::wait(std::optional<DispatchClock::time_point> until) {
  std::unique_lock lock(mutex_);
  while (ready_.empty() && !interrupted_) {
    auto next = until;
    if (!timers_.empty() && (!next || timers_.begin()->first < *next)) {
      next = timers_.begin()->first;
    }
    if (!next) {
      arrived_.wait(lock);
    } else if (arrived_.wait_until(lock, *next) == std::cv_status::timeout) {
      break;
    }
  }
  interrupted_ = false;
}

void MainQueue::interrupt() {
  const std::lock_guard lock(mutex_);
  interrupted_ = true;
  arrived_.notify_one();
}

}  // namespace kestrova::platform
