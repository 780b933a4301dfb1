#include "platform/dispatch/DispatchQueue.h"

#include <algorithm>
#include <atomic>
#include <latch>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/dispatch/MainLoop.h"
#include "platform/dispatch/Once.h"
#include "platform/dispatch/RunLoop.h"

namespace kestrova::platform {
namespace {

using namespace std::chrono_literals;

DispatchClock::time_point soon() {
  return DispatchClock::now() + 20s;
}

TEST(SerialQueue, RunsBlocksOneAtATimeInTheOrderOfTheirArrival) {
  const DispatchQueue queue("test");
  std::vector<int> order;  // unguarded on purpose: the thread sanitizer is the witness
  for (int i = 0; i < 500; ++i) queue.async([&order, i] { order.push_back(i); });
  EXPECT_TRUE(queue.sync([] {}));
  ASSERT_EQ(order.size(), 500U);
  EXPECT_TRUE(std::ranges::is_sorted(order));
}

TEST(SerialQueue, RunsItsBlocksAfterTheLastHandleIsGone) {
  std::latch ran(3);
  {
    const DispatchQueue queue("test");
    for (int i = 0; i < 3; ++i) queue.async([&ran] { ran.count_down(); });
  }
  ran.wait();
}

TEST(SerialQueue, SyncFromItsOwnBlockRunsInPlace) {
  const DispatchQueue queue("test");
  bool inner = false;
  EXPECT_TRUE(queue.sync([&] { EXPECT_TRUE(queue.sync([&] { inner = true; })); }));
  EXPECT_TRUE(inner);
}

TEST(GlobalQueue, RunsBlocksConcurrentlyEvenWhenTheyWaitForEachOther) {
  std::latch together(8);
  std::latch done(8);
  for (int i = 0; i < 8; ++i) {
    DispatchQueue::global(DispatchQoS::background).async([&] {
      together.arrive_and_wait();
      done.count_down();
    });
  }
  done.wait();
}

TEST(MainQueue, RunsBlocksOnTheMainThreadOnly) {
  bool ran = false;
  DispatchQueue::global(DispatchQoS::utility).async([&ran] {
    EXPECT_FALSE(isMainThread());
    DispatchQueue::main().async([&ran] {
      EXPECT_TRUE(isMainThread());
      ran = true;
    });
  });
  EXPECT_TRUE(RunLoop::runUntil([&ran] { return ran; }, soon()));
}

TEST(MainQueue, SyncFromTheMainThreadRunsInPlace) {
  bool ran = false;
  EXPECT_TRUE(DispatchQueue::main().sync([&ran] { ran = true; }));
  EXPECT_TRUE(ran);
}

TEST(MainQueue, AnswersAWorkersSyncWhileABlockRunsANestedLoop) {
  std::atomic<bool> workerDone = false;
  bool outerDone = false;
  DispatchQueue::main().async([&] {
    DispatchQueue("worker").async([&] {
      EXPECT_TRUE(DispatchQueue::main().sync([] { EXPECT_TRUE(isMainThread()); }));
      workerDone = true;
    });
    EXPECT_TRUE(RunLoop::runUntil([&] { return workerDone.load(); }, soon()));
    outerDone = true;
  });
  EXPECT_TRUE(RunLoop::runUntil([&] { return outerDone; }, soon()));
}

TEST(MainQueue, ReleasesAWaitingSyncUnrunWhenTheLoopEnds) {
  bool ran = false;
  std::atomic<int> refused = 0;
  std::latch started(1);
  std::thread worker([&] {
    started.count_down();
    if (!DispatchQueue::main().sync([&ran] { ran = true; })) ++refused;
    if (!DispatchQueue::main().sync([&ran] { ran = true; })) ++refused;
  });
  started.wait();
  MainLoop::detach();
  worker.join();
  EXPECT_EQ(refused, 2);
  EXPECT_FALSE(ran);
  MainLoop::attach({});
}

TEST(MainQueue, WakesAnAttachedLoopForEveryBlock) {
  std::atomic<int> woken = 0;
  MainLoop::attach([&woken] { ++woken; });
  std::thread([] { DispatchQueue::main().async([] {}); }).join();
  DispatchQueue::main().asyncAfter(1h, [] {});
  EXPECT_EQ(woken, 2);
  const auto next = MainLoop::drain();
  MainLoop::attach({});
  ASSERT_TRUE(next);
  EXPECT_GT(*next, DispatchClock::now() + 59min);
}

TEST(MainQueue, LeavesBlocksThatABlockPostsToTheNextDrain) {
  int runs = 0;
  std::function<void()> again = [&] {
    if (++runs < 3) DispatchQueue::main().async(again);
  };
  DispatchQueue::main().async(again);
  const auto next = MainLoop::drain();
  EXPECT_EQ(runs, 1);
  ASSERT_TRUE(next);
  EXPECT_LT(*next, DispatchClock::now());
  EXPECT_TRUE(RunLoop::runUntil([&] { return runs == 3; }, soon()));
}

TEST(AsyncAfter, RunsBlocksNoEarlierThanTheirTimeAndInItsOrder) {
  const auto begin = DispatchClock::now();
  std::vector<int> order;
  const DispatchQueue main = DispatchQueue::main();
  main.asyncAfter(40ms, [&] { order.push_back(2); });
  main.asyncAfter(10ms, [&] { order.push_back(1); });
  DispatchQueue("worker").asyncAfter(60ms, [&, main] { main.async([&] { order.push_back(3); }); });
  EXPECT_TRUE(RunLoop::runUntil([&] { return order.size() == 3; }, soon()));
  EXPECT_GE(DispatchClock::now() - begin, 60ms);
  EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST(Once, RunsItsBlockOnceForConcurrentCallers) {
  Once once;
  std::atomic<int> runs = 0;
  std::vector<std::thread> callers;
  for (int i = 0; i < 8; ++i) callers.emplace_back([&] { once([&] { ++runs; }); });
  for (auto& caller : callers) caller.join();
  EXPECT_EQ(runs, 1);
}

// What a process does at its end, in a child of its own.

const pid_t kTestProcess = getpid();

}  // namespace
}  // namespace kestrova::platform

// In the child the stacks of the parent's threads are gone, and with them what holds their memory.
// Exported, as the sanitizer looks for it from its own library.
extern "C" __attribute__((visibility("default"))) int __lsan_is_turned_off() {
  return getpid() != kestrova::platform::kTestProcess;
}

namespace kestrova::platform {
namespace {

template <typename Body>
int exitStatusOf(Body body) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    body();
    std::exit(0);  // NOLINT(concurrency-mt-unsafe)
  }
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return status;
}

TEST(ProcessEnd, DropsPendingBlocksAndReleasesThoseWhoWaitForTheMainThread) {
  const int status = exitStatusOf([] {
    const DispatchQueue queue("test");
    std::latch running(1);
    queue.async([&running] {
      running.count_down();
      // Answered with false by the end of the process, else this test would hang.
      if (DispatchQueue::main().sync([] {})) std::abort();
    });
    for (int i = 0; i < 100; ++i) queue.async([] { std::this_thread::sleep_for(1h); });
    DispatchQueue::global(DispatchQoS::utility).asyncAfter(1h, [] { std::abort(); });
    running.wait();
  });
  EXPECT_EQ(status, 0);
}

TEST(ProcessEnd, IsPossibleFromABlockAndInAForkedChild) {
  EXPECT_EQ(exitStatusOf([] {
              DispatchQueue("test").async([] { std::exit(0); });  // NOLINT(concurrency-mt-unsafe)
              pause();
            }),
            0);
  EXPECT_TRUE(DispatchQueue("parent").sync([] {}));
  EXPECT_EQ(exitStatusOf([] {}), 0);
}

}  // namespace
}  // namespace kestrova::platform
