#pragma once

#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/dispatch/DispatchQueue.h"

namespace kestrova::platform {

// The main queue. Blocks are taken one at a time under the lock, so that a block may open a nested
// loop which drains on, and a worker's sync is answered by whichever drain comes next.
class MainQueue final : public DispatchQueue::Target {
 public:
  void async(DispatchBlock block) override;
  void asyncAfter(DispatchClock::time_point due, DispatchBlock block) override;
  bool sync(const DispatchBlock& block) override;

  // The calling thread becomes main; `wake` (may be empty) is called from any thread when there is
  // something to drain. Opens the queue.
  void attach(DispatchBlock wake);
  // No loop runs any more: those who wait in sync return, and sync refuses until the next attach.
  // Other blocks stay.
  void detach();
  bool isMainThread() const;

  // Runs what is ready at the time of the call. Main thread. Returns when the next block is due:
  // a time in the past where more is ready already, none where nothing waits.
  std::optional<DispatchClock::time_point> drain();
  // Sleeps until something is ready, `until` has come, or interrupt() is called.
  void wait(std::optional<DispatchClock::time_point> until);
  void interrupt();

 private:
  struct Waiter {
    bool ended = false;
    bool ran = false;
  };
  struct Item {
    DispatchBlock block;
    std::shared_ptr<Waiter> waiter;
  };

  // False where the item has a waiter and no loop will run it.
  bool push(Item item);

  mutable std::mutex mutex_;
  std::condition_variable arrived_;
  std::condition_variable waiterEnded_;
  std::deque<Item> ready_;
  std::multimap<DispatchClock::time_point, DispatchBlock> timers_;
  std::shared_ptr<const DispatchBlock> wake_;
  std::optional<pid_t> mainThread_;
  bool open_ = true;
  bool interrupted_ = false;
};

}  // namespace kestrova::platform
