#include "platform/network/HTTPTransport.h"

#include <future>
#include <string_view>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/dispatch/MainLoop.h"
#include "platform/dispatch/RunLoop.h"
#include "platform/network/TemporaryFile.h"
#include "tests/support/CannedServer.h"

namespace kestrova::platform {
namespace {

using sandbox::HttpAnswer;
using sandbox::HttpRequest;
using test::CannedServer;

// {"a":1}, and {} behind 100 KiB of spaces, both compressed by gzip.
constexpr std::string_view kCompressed{
    "\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\xff\xab\x56\x4a\x54\xb2\x32\xac\x05\x00\xaf"
    "\xac\x1b\x56\x07\x00\x00\x00",
    27};
constexpr std::string_view kCompressedBomb{
    "\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\xff\xed\xc1\x01\x0d\x00\x00\x0c\x02\xa0\x2a"
    "\xf6\x74\x76\x7f\x90\x03\x09\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00"
    "\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00"
    "\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00"
    "\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00"
    "\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00"
    "\x00\x00\x00\x00\x00\xc0\x0f\xdd\x01\xe9\x0b\x55\xc2\x02\x90\x01\x00",
    137};

HttpAnswer compressed(std::string_view body) {
  return {200, "application/json\r\nContent-Encoding: gzip", std::string(body)};
}

HTTPRequest request(std::string url = "https://localhost/path") {
  HTTPRequest request;
  request.url = std::move(url);
  return request;
}

Result<HTTPResponse> send(HTTPTransport& transport, HTTPRequest request) {
  std::promise<Result<HTTPResponse>> promise;
  transport.send(std::move(request), [&promise](Result<HTTPResponse> response) {
    promise.set_value(std::move(response));
  });
  return promise.get_future().get();
}

// The decoded answer as log lines show it, or "error".
std::string answerOf(HTTPTransport& transport) {
  std::string shown;
  transport.sendForJSON(request(), [&shown](const Result<JSONValue>& answer) {
    EXPECT_TRUE(isMainThread());
    shown = answer ? description(answer.value()) : "error";
  });
  EXPECT_TRUE(RunLoop::runUntil([&shown] { return !shown.empty(); },
                                DispatchClock::now() + std::chrono::seconds(30)));
  return shown;
}

TEST(HTTPTransport, OffersAndDecodesCompression) {
  CannedServer server([](const HttpRequest& request) {
    EXPECT_EQ(request.header("Accept-Encoding"), "gzip");
    return compressed(kCompressed);
  });
  EXPECT_EQ(answerOf(*HTTPTransport::make(server.configuration())), R"(["a": 1])");
}

TEST(HTTPTransport, LimitsAnAnswerByItsSizeAfterDecompression) {
  CannedServer server([](const HttpRequest&) { return compressed(kCompressedBomb); });
  auto configuration = server.configuration();
  configuration.maximumAnswer = 64 * 1024;
  const auto refused = send(*HTTPTransport::make(configuration), request());
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().localizedDescription, "The answer is too long.");
  EXPECT_EQ(answerOf(*HTTPTransport::make(server.configuration())), "[:]");
}

TEST(HTTPTransport, TakesARedirectForTheAnswerItIs) {
  CannedServer server([](const HttpRequest&) {
    return HttpAnswer{307, "application/json\r\nLocation: https://localhost/other", "{}"};
  });
  const auto response = send(*HTTPTransport::make(server.configuration()), request());
  ASSERT_TRUE(response);
  EXPECT_EQ(response.value().statusCode, 307);
  EXPECT_EQ(server.requests(), 1U);
}

TEST(HTTPTransport, SpeaksHTTPSOnly) {
  CannedServer server([](const HttpRequest&) { return HttpAnswer{}; });
  const auto transport = HTTPTransport::make(server.configuration());
  for (const char* const url :
       {"http://localhost/", "file:///etc/hostname", "ftp://localhost/", "", "https://"}) {
    EXPECT_FALSE(send(*transport, request(url))) << url;
  }
  EXPECT_EQ(server.requests(), 0U);
}

TEST(HTTPTransport, AnAnswerThatIsEmptyByItsStatusCannotBeDecoded) {
  CannedServer server([](const HttpRequest&) { return HttpAnswer{205, "application/json", "{}"}; });
  EXPECT_EQ(answerOf(*HTTPTransport::make(server.configuration())), "error");
}

TEST(HTTPTransport, SendsTheMethodItIsGiven) {
  CannedServer server([](const HttpRequest& request) {
    return HttpAnswer{200, "text/plain", request.method + " " + request.target};
  });
  const auto transport = HTTPTransport::make(server.configuration());
  for (const auto& [method, name] : {std::pair{HTTPMethod::get, "GET"},
                                     {HTTPMethod::put, "PUT"},
                                     {HTTPMethod::delete_, "DELETE"},
                                     {HTTPMethod::post, "POST"}}) {
    auto sent = request();
    sent.method = method;
    EXPECT_EQ(send(*transport, sent).value().body, std::string(name) + " /path");
  }
}

TEST(HTTPTransport, EndsPromptlyWithRequestsUnderWayAndWithoutTheirHandlers) {
  CannedServer server([](const HttpRequest&) {
    HttpAnswer answer;
    answer.delivery = sandbox::Delivery::never;
    return answer;
  });
  auto transport = HTTPTransport::make(server.configuration());
  for (int i = 0; i < 8; ++i) {
    transport->send(request(), [](const Result<HTTPResponse>&) { ADD_FAILURE(); });
  }
  EXPECT_TRUE(RunLoop::runUntil([&server] { return server.requests() == 4; },
                                DispatchClock::now() + std::chrono::seconds(30)));
  transport.reset();
  EXPECT_EQ(server.requests(), 4U);
}

// A request with the body in memory, and one with the body in a file.
std::vector<HTTPRequest> bodies() {
  auto file = TemporaryFile::make({});
  EXPECT_TRUE(file && file.value().write("body"));
  std::vector<HTTPRequest> requests{request(), request()};
  requests[0].body = "body";
  requests[1].bodyFile = std::make_shared<const TemporaryFile>(std::move(file).value());
  return requests;
}

TEST(HTTPTransport, NeverSendsARequestAgainThatTheServerReceivedOnAKeptConnection) {
  for (const auto end : {sandbox::Delivery::cut, sandbox::Delivery::closed}) {
    for (const auto& sent : bodies()) {
      CannedServer server([end](const HttpRequest& request) {
        HttpAnswer answer;
        if (!request.body.empty()) answer.delivery = end;
        return answer;
      });
      const auto transport = HTTPTransport::make(server.configuration());
      ASSERT_TRUE(send(*transport, request()));
      EXPECT_FALSE(send(*transport, sent));
      EXPECT_EQ(server.requests(), 2U);
      EXPECT_TRUE(send(*transport, request()));
    }
  }
}

TEST(HTTPTransport, SendsOnANewConnectionAfterTheServerClosedTheIdleOnes) {
  sandbox::Limits limits;
  limits.idle = std::chrono::milliseconds(100);
  CannedServer server([](const HttpRequest&) { return HttpAnswer{}; }, limits);
  const auto transport = HTTPTransport::make(server.configuration());
  ASSERT_TRUE(send(*transport, request()));
  for (const auto& sent : bodies()) {
    EXPECT_TRUE(RunLoop::runUntil([&server] { return server.connectionsOpen() == 0; },
                                  DispatchClock::now() + std::chrono::seconds(30)));
    const auto response = send(*transport, sent);
    EXPECT_TRUE(response) << response.error().localizedDescription;
  }
  EXPECT_EQ(server.requests(), 3U);
}

TEST(HTTPTransport, RefusesInAForkedChildAndLivesOnInTheParent) {
  CannedServer server([](const HttpRequest&) { return HttpAnswer{200, "text/plain", "yes"}; });
  auto transport = HTTPTransport::make(server.configuration());
  ASSERT_TRUE(send(*transport, request()));
  const pid_t child = fork();
  if (child == 0) {
    bool failed = false;
    transport->send(request(),
                    [&failed](const Result<HTTPResponse>& response) { failed = !response; });
    transport.reset();
    _exit(failed ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(send(*transport, request()));
}

}  // namespace
}  // namespace kestrova::platform
