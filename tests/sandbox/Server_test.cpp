#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "tests/sandbox/SandboxTest.h"

namespace kestrova::sandbox {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr std::string_view goodBody = "api_key=k1&step=initialize";

class Server : public SandboxTest {
 protected:
  // The status that these bytes are answered with; -1 where the connection ends without one.
  int statusOf(const std::string& bytes) const {
    auto connection = client();
    connection.send(bytes);
    const auto answer = connection.receive();
    if (!answer) return -1;
    if (answer->status >= 400) {
      EXPECT_TRUE(answer->body.starts_with(R"({"error":)")) << answer->body;
    }
    return answer->status;
  }

  static std::string postHead(const std::string& headers) {
    return "POST /api/v1/authentications HTTP/1.1\r\nHost: localhost\r\nContent-Type: " +
           std::string(formType) + "\r\n" + headers + "\r\n";
  }
};

TEST_F(Server, AConnectionServesOneRequestAfterAnotherAlsoPipelined) {
  auto connection = client();
  const auto one = postBytes("/api/v1/authentications", goodBody);
  connection.send(one + one);
  EXPECT_EQ(connection.receive()->status, 200);
  EXPECT_EQ(connection.receive()->status, 200);
  connection.send(one);
  EXPECT_EQ(connection.receive()->status, 200);
  EXPECT_EQ(sandbox->connectionsAccepted(), 1U);
  EXPECT_EQ(sandbox->requests().size(), 3U);
}

TEST_F(Server, BytesMayArriveOneByOne) {
  auto connection = client();
  for (const char c : postBytes("/api/v1/authentications", goodBody)) {
    ASSERT_TRUE(connection.send({&c, 1}));
  }
  EXPECT_EQ(connection.receive()->status, 200);
  EXPECT_TRUE(last().deviations.empty());
}

TEST_F(Server, AChunkedBodyIsPutTogether) {
  EXPECT_EQ(statusOf(postHead("Transfer-Encoding: chunked\r\n") +
                     "0b\r\napi_key=k1&\r\nf;x=y\r\nstep=initialize\r\n0\r\nT: 1\r\n\r\n"),
            200);
  EXPECT_EQ(last().body, goodBody);
}

TEST_F(Server, AClientThatWaitsForContinueGetsIt) {
  auto connection = client();
  connection.send(postHead("Expect: 100-continue\r\nContent-Length: 26\r\n"));
  EXPECT_EQ(connection.receive()->status, 100);
  connection.send(goodBody);
  EXPECT_EQ(connection.receive()->status, 200);
}

TEST_F(Server, PagesAreServedOverTls) {
  auto connection = client();
  for (const char* const page : {"/terms/", "/privacy/"}) {
    connection.send("GET " + std::string(page) + " HTTP/1.1\r\nHost: localhost\r\n\r\n");
    const auto answer = connection.receive();
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 200);
    EXPECT_NE(answer->head.find("Content-Type: text/html; charset=utf-8"), std::string::npos);
    EXPECT_NE(answer->body.find("<h1>"), std::string::npos);
  }
}

TEST_F(Server, HostileFramingIsRefusedAndTheServerGoesOn) {
  const std::vector<std::string> hostile{
      "\r\n\r\n\x16\x03garbage\r\n\r\n",
      "POST\r\n\r\n",
      "POST / HTTP/9.9\r\nHost: localhost\r\n\r\n",
      postHead("Content-Length: 26\r\nContent-Length: 27\r\n") + std::string(goodBody),
      postHead("Content-Length: -1\r\n"),
      postHead("Content-Length: 99999999999999999999999\r\n"),
      postHead("Content-Length: 26\r\nTransfer-Encoding: chunked\r\n") + std::string(goodBody),
      postHead("Content-Length : 26\r\n") + std::string(goodBody),
      postHead("Transfer-Encoding: chunked\r\n") + "zz\r\n",
      postHead("Transfer-Encoding: chunked\r\n") + "ffffffffffffffff1\r\n",
      postHead("Transfer-Encoding: chunked\r\n") + "5;" + std::string(40000, 'x'),
      postHead("Host: other\r\nContent-Length: 26\r\n") + std::string(goodBody),
      "POST /api/v1/authentications HTTP/1.1\r\nContent-Length: 26\r\n\r\n" +
          std::string(goodBody)};
  for (const auto& bytes : hostile) {
    const auto status = statusOf(bytes);
    EXPECT_TRUE(status == 400 || status == 413)
        << status << ' ' << testing::PrintToString(bytes.substr(0, 200));
    EXPECT_EQ(last().status, status);
    EXPECT_FALSE(last().deviations.empty());
  }
  EXPECT_EQ(initialize().size(), 32U);
}

TEST_F(Server, LimitsAreAnsweredWithTheirStatus) {
  Options options;
  options.limits.bodyBytes = 1000;
  options.limits.headBytes = 2000;
  start(options);
  const std::string large(1001, 'x');
  EXPECT_EQ(statusOf(postBytes("/api/v1/authentications", large)), 413);
  EXPECT_EQ(statusOf(postBytes("/api/v1/authentications", large.substr(1))), 400);
  EXPECT_EQ(statusOf(postHead("Transfer-Encoding: chunked\r\n") + "1f4\r\n" + large.substr(0, 500) +
                     "\r\n1f5\r\n" + large.substr(0, 501) + "\r\n0\r\n\r\n"),
            413);
  EXPECT_EQ(statusOf(postHead("X-Large: " + std::string(2000, 'x') + "\r\n")), 431);
}

TEST_F(Server, FurtherConnectionsAreClosedAtTheLimit) {
  Options options;
  options.limits.connections = 2;
  start(options);
  const auto one = client();
  {
    const auto two = client();
    EXPECT_TRUE(one.connected() && two.connected());
    EXPECT_FALSE(client().connected());
  }
  // The place is free again as soon as the server has noticed.
  const auto deadline = steady_clock::now() + seconds(20);
  bool free = false;
  while (!free && steady_clock::now() < deadline) free = client().connected();
  EXPECT_TRUE(free);
}

TEST_F(Server, AnIdleConnectionEnds) {
  Options options;
  options.limits.idle = milliseconds(50);
  start(options);
  auto silent = TestClient::plain(sandbox->port());  // not even a handshake
  EXPECT_TRUE(silent.endsWithin(seconds(20)));
  auto halfway = client();
  halfway.send(postHead("Content-Length: 26\r\n") + "api_key");
  EXPECT_TRUE(halfway.endsWithin(seconds(20)));
  EXPECT_TRUE(sandbox->requests().empty());
}

TEST_F(Server, ARequestThatBreaksOffIsNotRecorded) {
  client().send(postHead("Content-Length: 26\r\n") + "api_key");
  initialize();
  const auto requests = sandbox->requests();
  ASSERT_EQ(requests.size(), 1U);
  EXPECT_EQ(requests[0].step, "initialize");
}

TEST_F(Server, StoppingEndsIdleStalledAndHalfSentConnectionsAtOnce) {
  sandbox->setScenario({.fault = Fault::neverAnswers, .step = "signup"});
  sandbox->setScenario({.fault = Fault::stall, .step = "check_face_video"});
  auto idle = client();
  auto noHandshake = TestClient::plain(sandbox->port());
  auto noRequest = TestClient::plain(sandbox->listingPort());
  auto unanswered = client();
  unanswered.send(postBytes("/api/v1/authentications/steps", "step=signup"));
  auto stalled = client();
  stalled.send(postBytes("/api/v1/authentications/steps", "step=check_face_video"));
  auto halfSent = client();
  halfSent.send(postHead("Content-Length: 26\r\n") + "api_key");
  ASSERT_TRUE(sandbox->waitForRequests(2, seconds(20)));

  const auto before = steady_clock::now();
  sandbox->stop();
  EXPECT_LT(steady_clock::now() - before, seconds(5));
  for (auto* const connection :
       {&idle, &noHandshake, &noRequest, &unanswered, &stalled, &halfSent}) {
    EXPECT_TRUE(connection->endsWithin(seconds(20)));
  }
  EXPECT_FALSE(TestClient::plain(sandbox->port()).connected());
  sandbox->stop();
}

TEST_F(Server, ManyClientsAtOnceAreAllAnsweredAndRecorded) {
  constexpr int clients = 8;
  constexpr int each = 10;
  std::vector<std::thread> threads;
  threads.reserve(clients);
  for (int i = 0; i < clients; ++i) {
    threads.emplace_back([this] {
      auto connection = client();
      for (int request = 0; request < each; ++request) {
        connection.send(postBytes("/api/v1/authentications", goodBody));
        const auto answer = connection.receive();
        EXPECT_TRUE(answer && answer->status == 200);
      }
    });
  }
  const bool all = sandbox->waitForRequests(clients * each, seconds(60));
  for (auto& thread : threads) thread.join();
  EXPECT_TRUE(all);
  EXPECT_EQ(sandbox->requests().size(), std::size_t{clients * each});
}

}  // namespace
}  // namespace kestrova::sandbox
