#include "platform/foundation/Print.h"

#include <csignal>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/foundation/NSLog.h"

namespace kestrova::platform {
namespace {

TEST(Print, WritesLinesWholeFromAnyThread) {
  testing::internal::CaptureStdout();
  std::vector<std::thread> threads;
  for (char letter = 'a'; letter < 'i'; ++letter) {
    threads.emplace_back([letter] {
      for (int i = 0; i < 50; ++i) print(std::string(3000, letter));
    });
  }
  for (auto& thread : threads) thread.join();
  std::istringstream lines(testing::internal::GetCapturedStdout());
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    ASSERT_EQ(line, std::string(3000, line.front()));
  }
  EXPECT_EQ(count, 400);
}

// Ends the process with status 7 where the host's own way with the signal is as before.
void printToNobody() {
  int ends[2] = {};
  static_cast<void>(!::pipe(ends));
  ::dup2(ends[1], STDOUT_FILENO);
  ::close(ends[0]);
  print("a line");
  std::signal(SIGPIPE, [](int) { ::_exit(7); });
  static_cast<void>(!::write(STDOUT_FILENO, "x", 1));
}

TEST(Print, LosesALineThatNobodyReadsAndNothingElse) {
  EXPECT_EXIT(printToNobody(), testing::ExitedWithCode(7), "");
}

TEST(NSLog, GoesToTheSystemLogAndNotToStandardOutput) {
  testing::internal::CaptureStdout();
  std::string logged;
  redirectNSLog([&logged](const std::string& line) { logged = line; });
  NSLog("100% of it");
  redirectNSLog({});
  EXPECT_EQ(logged, "100% of it");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
}  // namespace kestrova::platform
