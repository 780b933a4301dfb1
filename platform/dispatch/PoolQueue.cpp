#include "platform/dispatch/PoolQueue.h"

#include <condition_variable>
#include <utility>

#include "platform/dispatch/DispatchRuntime.h"

namespace kestrova::platform {

namespace {

// The serial queue whose block the calling thread runs.
thread_local const PoolQueue* currentSerialQueue = nullptr;

// Tells a waiting sync the end of its block, also when the block is dropped without being run.
class Completion {
 public:
  Completion() = default;
  Completion(const Completion&) = delete;
  Completion& operator=(const Completion&) = delete;
  ~Completion() { end(false); }
  void end(bool ran) {
    const std::lock_guard lock(state_->mutex);
    if (state_->ended) return;
    state_->ended = true;
    state_->ran = ran;
    state_->changed.notify_one();
  }
  struct State {
    std::mutex mutex;
    std::condition_variable changed;
    bool ended = false;
    bool ran = false;
  };
  std::shared_ptr<State> state() const { return state_; }

 private:
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace

// A serial queue's right to run one block. Dropped unused when the process ends, it takes the
// waiting blocks along, so that nobody waits for them.
class PoolQueue::Turn {
 public:
  explicit Turn(std::shared_ptr<PoolQueue> queue) : queue_(std::move(queue)) {}
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  ~Turn() {
    if (queue_) queue_->dropWaiting();
  }
  void use() { std::exchange(queue_, nullptr)->runNext(); }

 private:
  std::shared_ptr<PoolQueue> queue_;
};

void PoolQueue::enqueue(DispatchBlock block) {
  if (order_ == Order::concurrent) {
    DispatchRuntime::shared().pool(qos_).submit(std::move(block));
    return;
  }
  {
    const std::lock_guard lock(mutex_);
    waiting_.push_back(std::move(block));
    if (running_) return;
    running_ = true;
  }
  scheduleTurn();
}

void PoolQueue::scheduleTurn() {
  const auto turn = std::make_shared<Turn>(shared_from_this());
  DispatchRuntime::shared().pool(qos_).submit([turn] { turn->use(); });
}

void PoolQueue::runNext() {
  DispatchBlock block;
  {
    const std::lock_guard lock(mutex_);
    block = std::move(waiting_.front());
    waiting_.pop_front();
  }
  const auto* const outer = std::exchange(currentSerialQueue, this);
  block();
  block = nullptr;
  currentSerialQueue = outer;
  {
    const std::lock_guard lock(mutex_);
    running_ = !waiting_.empty();
    if (!running_) return;
  }
  // Through the pool again, so that one busy queue leaves its thread to others in between.
  scheduleTurn();
}

void PoolQueue::dropWaiting() {
  std::deque<DispatchBlock> dropped;
  const std::lock_guard lock(mutex_);
  dropped.swap(waiting_);
  running_ = false;
}

void PoolQueue::asyncAfter(DispatchClock::time_point due, DispatchBlock block) {
  DispatchRuntime::shared().timer().schedule(
      due, [self = shared_from_this(), block = std::move(block)]() mutable {
        self->enqueue(std::move(block));
      });
}

bool PoolQueue::sync(const DispatchBlock& block) {
  if (currentSerialQueue == this) {
    block();
    return true;
  }
  const auto state = [&] {
    const auto completion = std::make_shared<Completion>();
    enqueue([&block, completion] {
      block();
      completion->end(true);
    });
    return completion->state();
  }();
  std::unique_lock lock(state->mutex);
  state->changed.wait(lock, [&] { return state->ended; });
  return state->ran;
}

}  // namespace kestrova::platform
