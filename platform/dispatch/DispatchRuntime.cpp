#include "platform/dispatch/DispatchRuntime.h"

#include <cstddef>
#include <new>

#include <unistd.h>

namespace kestrova::platform {

DispatchRuntime& DispatchRuntime::shared() {
  struct Keeper {
    Keeper() : runtime(new (memory) DispatchRuntime) {}
    Keeper(const Keeper&) = delete;
    Keeper& operator=(const Keeper&) = delete;
    ~Keeper() { runtime->stop(); }

    alignas(DispatchRuntime) std::byte memory[sizeof(DispatchRuntime)];
    DispatchRuntime* runtime;
  };
  static Keeper keeper;
  return *keeper.runtime;
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
