#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "platform/dispatch/DispatchQueue.h"

namespace kestrova::platform {

// Blocks of one queue, handed to a worker pool either one at a time (serial) or freely.
class PoolQueue final : public DispatchQueue::Target,
                        public std::enable_shared_from_this<PoolQueue> {
 public:
  enum class Order { serial, concurrent };
  PoolQueue(DispatchQoS qos, Order order) : qos_(qos), order_(order) {}

  void async(DispatchBlock block) override { enqueue(std::move(block)); }
  void asyncAfter(DispatchClock::time_point due, DispatchBlock block) override;
  bool sync(const DispatchBlock& block) override;

 private:
  class Turn;

  void enqueue(DispatchBlock block);
  void scheduleTurn();
  void runNext();
  void dropWaiting();

  const DispatchQoS qos_;
  const Order order_;
  std::mutex mutex_;
  std::deque<DispatchBlock> waiting_;
  bool running_ = false;
};

}  // namespace kestrova::platform
