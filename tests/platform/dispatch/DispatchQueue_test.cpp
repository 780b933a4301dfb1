#include "platform/dispatch/DispatchQueue.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <latch>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

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
  // A delay beyond all measure is long, and not past.
  main.asyncAfter(std::chrono::nanoseconds::max(), [&] { order.push_back(4); });
  EXPECT_FALSE(RunLoop::runUntil([&] { return order.size() == 4; }, DispatchClock::now() + 20ms));
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

TEST(ProcessEnd, ComesByItselfWhateverTheQueuesDo) {
  const auto program =
      std::filesystem::read_symlink("/proc/self/exe").parent_path() / "process_end";
  for (const char* const way : {"pending", "waiting-for-a-queue", "from-a-block", "forked-child"}) {
    EXPECT_EQ(std::system((program.string() + " " + way).c_str()), 0) << way;  // NOLINT
  }
}

}  // namespace
}  // namespace kestrova::platform
