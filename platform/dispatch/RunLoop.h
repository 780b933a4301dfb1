#pragma once

#include <functional>
#include <optional>

#include "platform/dispatch/DispatchBlock.h"

namespace kestrova::platform {

// The main loop of a process that has no other: drains the main queue and sleeps until something is
// due.
class RunLoop {
 public:
  // Makes the calling thread the main thread and runs until stop(), at once if that was called
  // before. Afterwards sync calls to the main queue return without running their block.
  static void run();
  // Main thread, also nested in a block of the main queue. Runs until `condition`, which is tested
  // between blocks and every 10 ms, holds (true) or `deadline` has passed (false). Whether sync
  // calls are taken stays as it was.
  [[nodiscard]] static bool runUntil(const std::function<bool()>& condition,
                                     DispatchClock::time_point deadline);
  // Ends run(). Any thread.
  static void stop();
};

}  // namespace kestrova::platform
