// A process that ends while its queues are busy, in one of several ways; each must end by itself
// with status 0.
// usage: process_end pending|waiting-for-a-queue|from-a-block|forked-child

#include <cstdlib>
#include <latch>
#include <string_view>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

#include "platform/dispatch/DispatchQueue.h"

namespace {

using namespace kestrova::platform;
using namespace std::chrono_literals;

const pid_t firstProcess = getpid();

// What the blocks refer to while main is over.
std::latch started(2);
const DispatchQueue queue("test");

// The first block waits for the main thread; the others have not begun when the process ends.
void endWithPendingBlocks() {
  queue.async([] {
    started.count_down();
    if (DispatchQueue::main().sync([] {})) std::abort();
  });
  for (int i = 0; i < 100; ++i) queue.async([] { std::this_thread::sleep_for(1h); });
  DispatchQueue::global(DispatchQoS::utility).asyncAfter(1h, [] { std::abort(); });
  started.arrive_and_wait();
}

// The first block ends only with the process, and the queue's turn for the second is dropped then.
void endWhileABlockWaitsForAQueue() {
  queue.async([] {
    started.count_down();
    static_cast<void>(DispatchQueue::main().sync([] {}));
  });
  DispatchQueue::global(DispatchQoS::utility).async([] {
    started.count_down();
    if (queue.sync([] {})) std::abort();
  });
  started.wait();
}

void endInABlock() {
  queue.async([] { std::exit(0); });  // NOLINT(concurrency-mt-unsafe)
  pause();
}

int endInAForkedChild() {
  if (!queue.sync([] {})) return 1;
  const pid_t child = fork();
  if (child == 0) return 0;
  int status = -1;
  waitpid(child, &status, 0);
  return status;
}

}  // namespace

// In the child the stacks of the parent's threads are gone, and with them what holds their memory.
// Exported, as the leak checker looks for it from its own library.
extern "C" __attribute__((visibility("default"))) int __lsan_is_turned_off() {
  return getpid() != firstProcess;
}

int main(int argc, char** argv) {
  const std::string_view way = argc == 2 ? argv[1] : "";
  if (way == "pending") {
    endWithPendingBlocks();
  } else if (way == "waiting-for-a-queue") {
    endWhileABlockWaitsForAQueue();
  } else if (way == "from-a-block") {
    endInABlock();
  } else if (way == "forked-child") {
    return endInAForkedChild();
  } else {
    return 2;
  }
}
