#include "platform/dispatch/DispatchRuntime.h"

#include <unistd.h>

#include "platform/dispatch/Lasting.h"

namespace kestrova::platform {

DispatchRuntime& DispatchRuntime::shared() {
  static const Lasting<DispatchRuntime> runtime;
  return *runtime;
}

void DispatchRuntime::stop() {
  // A forked child has none of the threads, and its copies of their locks may be held for ever.
  if (getpid() != process_) return;
  // Running blocks may wait for the main thread, which is here, or for blocks that are dropped.
  // Those are released before anything is joined, and only once no further block can begin.
  for (auto& pool : pools_) pool.close();
  timer_.stop();
  mainQueue_->detach();
  for (auto& pool : pools_) pool.join();
}

}  // namespace kestrova::platform
