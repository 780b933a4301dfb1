#include <array>
#include <charconv>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "sandbox/Descriptor.h"
#include "tests/sandbox/SandboxTest.h"

namespace kestrova::sandbox {
namespace {

// The program in a process of its own, its output in a pipe.
class Program {
 public:
  explicit Program(std::vector<std::string> arguments) {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    output_ = Descriptor(ends[0]);
    const Descriptor input(ends[1]);
    arguments.insert(arguments.begin(), SANDBOX_PROGRAM);
    std::vector<char*> values;
    for (auto& argument : arguments) values.push_back(argument.data());
    values.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input.number(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, input.number(), STDERR_FILENO);
    EXPECT_EQ(posix_spawn(&process_, SANDBOX_PROGRAM, &actions, nullptr, values.data(), environ),
              0);
    posix_spawn_file_actions_destroy(&actions);
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  Program(Program&&) = delete;
  Program& operator=(Program&&) = delete;
  ~Program() {
    if (process_ > 0) end(SIGKILL);
  }

  // The number that follows the text in the output; 0 where the output ends without it.
  std::uint16_t portAfter(std::string_view text) {
    while (true) {
      const auto at = printed.find(text);
      if (at != printed.npos && printed.find('\n', at) != printed.npos) {
        std::uint16_t port = 0;
        std::from_chars(printed.data() + at + text.size(), printed.data() + printed.size(), port);
        return port;
      }
      if (!readSome()) return 0;
    }
  }

  // Sends the signal; the exit status, or minus the signal that ended it.
  int end(int signal) {
    kill(process_, signal);
    return wait();
  }
  int wait() {
    while (readSome()) {
    }
    int status = 0;
    waitpid(std::exchange(process_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

  std::string printed;

 private:
  bool readSome() {
    pollfd watched{output_.number(), POLLIN, 0};
    if (poll(&watched, 1, 20000) <= 0) return false;
    std::array<char, 4096> chunk{};
    const auto count = read(output_.number(), chunk.data(), chunk.size());
    if (count <= 0) return false;
    printed.append(chunk.data(), static_cast<std::size_t>(count));
    return true;
  }

  Descriptor output_;
  pid_t process_ = -1;
};

class ProgramTest : public testing::Test {
 protected:
  std::vector<std::string> arguments(std::vector<std::string> more = {}) const {
    std::vector<std::string> all{"--port", "0", "--listing-port=0", "--store", store.string()};
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }
  TestClient client(Program& program) const {
    const auto port = program.portAfter("Sandbox listening on https://localhost:");
    return TestClient::tls(port, store / "authority.pem");
  }
  static constexpr std::string_view initialize = "api_key=k1&step=initialize";

  TemporaryDirectory directory;
  std::filesystem::path store = directory.path() / "store";
};

TEST_F(ProgramTest, ServesUntilItIsToldToStopAndPrintsEachRequest) {
  for (const int signal : {SIGINT, SIGTERM}) {
    Program program(arguments({"--scenario", "status-418-text@signup:once"}));
    auto connection = client(program);
    connection.send(postBytes("/api/v1/authentications", initialize));
    EXPECT_EQ(connection.receive()->status, 200);
    connection.send(postBytes("/api/v1/authentications/steps", "step=signup"));
    EXPECT_EQ(connection.receive()->status, 418);
    EXPECT_EQ(program.end(signal), 0);
    EXPECT_NE(program.printed.find("Z POST /api/v1/authentications initialize 200\n"),
              std::string::npos)
        << program.printed;
  }
}

TEST_F(ProgramTest, WhatWasAnsweredOutlivesAKilledProcess) {
  std::string key;
  {
    Program program(arguments());
    auto connection = client(program);
    connection.send(postBytes("/api/v1/authentications", initialize));
    key = jsonValue(connection.receive()->body, "key");
    EXPECT_EQ(program.end(SIGKILL), -SIGKILL);
  }
  Program program(arguments());
  const auto port = program.portAfter("Console on http://localhost:");
  auto listing = TestClient::plain(port);
  listing.send("GET / HTTP/1.1\r\nHost: localhost:" + std::to_string(port) + "\r\n\r\n");
  EXPECT_NE(listing.receive()->body.find("authentication " + key + '\n'), std::string::npos);
}

TEST_F(ProgramTest, AKillInTheMiddleOfAnUploadLosesAndInventsNothing) {
  const auto uploadOf = [](const std::string& key, const std::string& file) {
    return postBytes("/api/v1/authentications/document_files",
                     uploadBody({{"api_key", "k1"}, {"key", key}, {"step", "record_face_video"}},
                                videoHead(), file),
                     uploadType);
  };
  std::string key;
  {
    Program program(arguments());
    auto connection = client(program);
    connection.send(postBytes("/api/v1/authentications", initialize));
    key = jsonValue(connection.receive()->body, "key");
    connection.send(uploadOf(key, videoBytes));
    EXPECT_EQ(connection.receive()->status, 200);
    // More than the sockets between hold, so that the program has much of it and never all.
    const auto large = uploadOf(key, videoBytes + std::string(std::size_t{32} << 20U, 'v'));
    EXPECT_TRUE(connection.send(std::string_view(large).substr(0, large.size() - 1)));
    EXPECT_EQ(program.end(SIGKILL), -SIGKILL);
  }
  Program program(arguments());
  const auto port = program.portAfter("Console on http://localhost:");
  auto pages = TestClient::plain(port);
  const auto get = [&](const std::string& target) {
    pages.send("GET " + target + " HTTP/1.1\r\nHost: localhost:" + std::to_string(port) +
               "\r\nAccept: text/html\r\n\r\n");
    return pages.receive().value_or(TestAnswer{});
  };
  const auto timeline = get("/authentications/" + key).body;
  EXPECT_NE(timeline.find("<li id=\"request-1\""), std::string::npos);
  EXPECT_NE(timeline.find("<li id=\"request-2\""), std::string::npos);
  EXPECT_EQ(timeline.find("<li id=\"request-3\""), std::string::npos);
  EXPECT_EQ(get("/files/2").body, videoBytes);
  EXPECT_EQ(get("/files/3").status, 404);
  const std::filesystem::directory_iterator files(store / "files");
  EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

TEST_F(ProgramTest, WrongUsageAndFailedStartsAreOneLineWithAStatus) {
  const std::vector<std::vector<std::string>> wrong{{"--unknown"},
                                                    {"port"},
                                                    {"--port"},
                                                    {"--port", "65536"},
                                                    {"--port=-1"},
                                                    {"--port", "80x"},
                                                    {"--store", ""},
                                                    {"--scenario", "sleep"},
                                                    {"--scenario=stall@nowhere"},
                                                    {"--help=1"}};
  for (const auto& arguments : wrong) {
    Program program(arguments);
    EXPECT_EQ(program.wait(), 2) << arguments[0];
    EXPECT_TRUE(program.printed.starts_with("kestrova-sandbox: ")) << program.printed;
    EXPECT_EQ(program.printed.find('\n'), program.printed.size() - 1) << program.printed;
  }
  Program running(arguments());
  ASSERT_NE(running.portAfter("Sandbox listening on https://localhost:"), 0);
  Program second(arguments());
  EXPECT_EQ(second.wait(), 1);
  EXPECT_NE(second.printed.find("in use by another sandbox"), std::string::npos) << second.printed;
}

TEST_F(ProgramTest, HelpAndVersionAreTexts) {
  Program help({"--help"});
  EXPECT_EQ(help.wait(), 0);
  EXPECT_NE(help.printed.find("--scenario FAULT[@STEP][:once]"), std::string::npos);
  EXPECT_NE(help.printed.find("expired-certificate"), std::string::npos);
  Program version({"--version"});
  EXPECT_EQ(version.wait(), 0);
  EXPECT_TRUE(version.printed.starts_with("kestrova-sandbox 0.")) << version.printed;
}

}  // namespace
}  // namespace kestrova::sandbox
