#include "platform/dispatch/RunLoop.h"

#include <thread>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "platform/dispatch/DispatchQueue.h"

namespace kestrova::platform {
namespace {

using namespace std::chrono_literals;

long switchesAndMicroseconds() {
  rusage usage{};
  getrusage(RUSAGE_THREAD, &usage);
  return usage.ru_nvcsw + usage.ru_utime.tv_usec + usage.ru_stime.tv_usec;
}

TEST(RunLoop, RunsUntilStopped) {
  int runs = 0;
  std::thread worker([&runs] {
    for (int i = 0; i < 10; ++i) DispatchQueue::main().async([&runs] { ++runs; });
    DispatchQueue::main().async([] { RunLoop::stop(); });
  });
  RunLoop::run();
  worker.join();
  EXPECT_EQ(runs, 10);
}

TEST(RunLoop, ReturnsAtOnceWhenItWasStoppedBefore) {
  RunLoop::stop();
  RunLoop::run();
}

TEST(RunLoop, GivesUpAtTheDeadlineWithoutSpinning) {
  const auto before = switchesAndMicroseconds();
  const auto begin = DispatchClock::now();
  EXPECT_FALSE(RunLoop::runUntil([] { return false; }, begin + 300ms));
  EXPECT_GE(DispatchClock::now(), begin + 300ms);
  // A loop that polls would spend the whole time, or switch hundreds of times.
  EXPECT_LT(switchesAndMicroseconds() - before, 100'000);
}

}  // namespace
}  // namespace kestrova::platform
