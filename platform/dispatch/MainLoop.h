#pragma once

#include <optional>

#include "platform/dispatch/DispatchBlock.h"

namespace kestrova::platform {

// The hook by which a main loop (an interface toolkit's, or RunLoop) drains the main queue.
struct MainLoop {
  // The calling thread becomes the main thread. `wake` is called from any thread each time there is
  // something to drain; it must make the loop call drain() on the main thread soon. A call may
  // still be under way on another thread when detach() or another attach() returns, so `wake` owns
  // what it touches.
  static void attach(DispatchBlock wake);
  // The loop has ended: sync calls to the main queue return without running their block, until a
  // loop is attached again. Other blocks stay for that loop.
  static void detach();
  // Main thread. Runs the blocks that are ready and returns when to call again without a wake-up: a
  // time in the past (at once, after the loop's own events), a time, or none.
  static std::optional<DispatchClock::time_point> drain();
};

// True on the main thread: the one that attached a main loop last, before that the process's
// initial thread.
bool isMainThread();

}  // namespace kestrova::platform
