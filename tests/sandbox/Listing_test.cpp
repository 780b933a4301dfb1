#include <string>

#include "tests/sandbox/SandboxTest.h"

namespace kestrova::sandbox {
namespace {

class Listing : public SandboxTest {
 protected:
  std::string host(std::string_view name = "localhost") const {
    return std::string(name) + ':' + std::to_string(sandbox->listingPort());
  }

  TestAnswer get(const std::string& hostHeader) const {
    auto connection = TestClient::plain(sandbox->listingPort());
    connection.send("GET / HTTP/1.1\r\nHost: " + hostHeader + "\r\n\r\n");
    return connection.receive().value_or(TestAnswer{});
  }

  TestAnswer control(std::string_view path, std::string_view body,
                     const std::string& headers = {}) const {
    auto connection = TestClient::plain(sandbox->listingPort());
    connection.send("POST " + std::string(path) + " HTTP/1.1\r\nHost: " + host() + "\r\n" +
                    headers + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
                    std::string(body));
    return connection.receive().value_or(TestAnswer{});
  }
};

TEST_F(Listing, ShowsEveryRequestWithParametersFilesAndDeviations) {
  const auto key = runUpTo("record_face_video");
  assess(key);
  postStep("api_key=k1&key=" + key + "&step=" + "%1B%5B2J%22");
  sandbox->setScenario({.fault = Fault::noNextStep});
  perform("check_face_video", key);
  const auto answer = get(host());
  EXPECT_EQ(answer.status, 200);
  EXPECT_NE(answer.head.find("Content-Type: text/plain; charset=utf-8"), std::string::npos);
  EXPECT_EQ(answer.body, sandbox->listing());
  const auto requests = sandbox->requests();
  for (const auto& expected :
       {"authentication " + key, std::string("faults that play: no-next-step\n"),
        std::string("\"identifier\" = \"a+b@example.org\""),
        std::string("\"authentication_assessments[][value]\" = \"0.99\""),
        "file: field \"video\", name \"video.mov\", type \"video/quicktime\", " +
            std::to_string(videoBytes.size()) + " bytes, sha256 " + requests[3].upload->sha256,
        std::string(R"(deviation: no step is called "\x1b[2J\"")"),
        std::string("check_face_video  200  fault no-next-step")}) {
    EXPECT_NE(answer.body.find(expected), std::string::npos) << expected << "\n" << answer.body;
  }
  EXPECT_EQ(answer.body.find('\x1b'), std::string::npos);
  EXPECT_EQ(log().find('\x1b'), std::string::npos);
}

TEST_F(Listing, AnswersOnlyUnderNamesOfThisMachine) {
  for (const auto& own : {host(), host("127.0.0.1"), host("[::1]"), host("LOCALHOST")}) {
    EXPECT_EQ(get(own).status, 200) << own;
  }
  for (const auto& foreign :
       {host("example.org"), std::string("localhost"), std::string("localhost:1"),
        host("localhost.example.org"), host("[::2]")}) {
    EXPECT_EQ(get(foreign).status, 403) << foreign;
  }
}

TEST_F(Listing, ScenariosAreSetAndClearedByForm) {
  const auto key = initialize();
  EXPECT_EQ(control("/control/scenarios", "fault=status-418-text&step=set%5Fnationality&times=once")
                .status,
            200);
  EXPECT_EQ(perform("set_nationality", key).status, 418);
  EXPECT_EQ(perform("set_nationality", key).status, 200);
  EXPECT_EQ(control("/control/scenarios", "fault=refuse").status, 200);
  EXPECT_FALSE(TestClient::plain(sandbox->port()).connected());
  EXPECT_EQ(control("/control/scenarios/clear", "").status, 200);
  EXPECT_TRUE(client().connected());
  for (const char* const wrong :
       {"", "fault=", "fault=nothing", "fault=stall&step=nowhere", "fault=stall&times=3",
        "fault=stall%40signup", "fault=stall%3Aonce", "fault=stall&step=signup%3Aonce"}) {
    const auto answer = control("/control/scenarios", wrong);
    EXPECT_EQ(answer.status, 400) << wrong;
    EXPECT_TRUE(answer.body.starts_with(R"({"error":)"));
  }
  EXPECT_EQ(control("/control/scenarios/none", "").status, 404);
  EXPECT_EQ(control("/", "").status, 404);
}

TEST_F(Listing, PagesOfOtherSitesHaveNoSay) {
  EXPECT_EQ(control("/control/scenarios", "fault=stall", "Origin: https://example.org\r\n").status,
            403);
  EXPECT_EQ(control("/control/scenarios", "fault=stall", "Origin: null\r\n").status, 403);
  EXPECT_EQ(
      control("/control/scenarios", "fault=stall", "Origin: https://" + host() + "\r\n").status,
      403);
  EXPECT_NE(sandbox->listing().find("faults that play: none"), std::string::npos);
  EXPECT_EQ(
      control("/control/scenarios", "fault=stall", "Origin: http://" + host() + "\r\n").status,
      200);
}

TEST_F(Listing, ControlIsNotReachableOverTheBackendsListener) {
  EXPECT_EQ(post("/control/scenarios", "fault=stall").status, 404);
}

}  // namespace
}  // namespace kestrova::sandbox
