#pragma once

#include <algorithm>
#include <memory>
#include <string>

#include "platform/dispatch/DispatchBlock.h"

namespace kestrova::platform {

enum class DispatchQoS { userInteractive, userInitiated, utility, background };

// Where blocks wait to be run. A value: copies name the same queue. All members may be called from
// any thread; they do not throw, and drop their block where the system has no thread to give. A
// block must not throw.
class DispatchQueue {
 public:
  // What stands behind a queue.
  class Target {
   public:
    virtual ~Target() = default;
    virtual void async(DispatchBlock block) = 0;
    virtual void asyncAfter(DispatchClock::time_point due, DispatchBlock block) = 0;
    // As DispatchQueue::sync; `block` outlives the call.
    virtual bool sync(const DispatchBlock& block) = 0;
  };

  // A serial queue of its own: blocks run one at a time in the order of their arrival, on a worker.
  // They run even when the last handle is gone meanwhile.
  explicit DispatchQueue(std::string label);

  // The main queue: run on the main thread, one at a time, by whichever main loop runs (RunLoop, or
  // a loop attached through MainLoop).
  static DispatchQueue main();
  // The shared concurrent queue of that quality of service; `background` runs at a lower priority.
  static DispatchQueue global(DispatchQoS qos);

  const std::string& label() const { return label_; }

  void async(DispatchBlock block) const { target_->async(std::move(block)); }

  // Runs the block on the queue no earlier than `delay` (or a year) from now.
  void asyncAfter(std::chrono::nanoseconds delay, DispatchBlock block) const {
    const auto soon = std::min<std::chrono::nanoseconds>(delay, kLongestDelay);
    target_->asyncAfter(DispatchClock::now() + soon, std::move(block));
  }

  // Runs the block on the queue and waits for its end. From a block of the same queue, and for the
  // main queue from the main thread, it runs in place. False, with the block not run, when the
  // queue will not run it any more: the main loop has ended, or the process is ending.
  [[nodiscard]] bool sync(const DispatchBlock& block) const { return target_->sync(block); }

 private:
  DispatchQueue(std::string label, std::shared_ptr<Target> target)
      : label_(std::move(label)), target_(std::move(target)) {}

  static constexpr std::chrono::hours kLongestDelay{24 * 365};

  std::string label_;
  std::shared_ptr<Target> target_;
};

}  // namespace kestrova::platform
