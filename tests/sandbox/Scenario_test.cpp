#include "sandbox/Scenario.h"

#include <chrono>
#include <string>
#include <vector>

#include "tests/sandbox/SandboxTest.h"

namespace kestrova::sandbox {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class ScenarioTest : public SandboxTest {
 protected:
  // Plays the fault on the steps endpoint.
  TestAnswer answerUnder(std::string_view fault) {
    sandbox->clearScenarios();
    EXPECT_TRUE(sandbox->setScenario(parseScenario(fault).value())) << fault;
    return perform("set_nationality", key);
  }

  std::string key = initialize();
  const std::string ordinary = R"({"status":"ok","next_step":"signup"})";
};

TEST_F(ScenarioTest, AnswersAreReplacedAndTheFaultIsRecorded) {
  struct Case {
    std::string fault;
    int status;
    std::string body;
  };
  const std::vector<Case> cases{
      {"status-413-object", 413, R"({"error":"the sandbox plays status-413-object"})"},
      {"status-503-text", 503, "The sandbox plays status-503-text.\n"},
      {"malformed-json", 200, ordinary.substr(0, ordinary.size() - 1)},
      {"top-level-array", 200, '[' + ordinary + ']'},
      {"empty-body", 200, ""},
      {"no-content", 204, ""},
      {"no-next-step", 200, R"({"status":"ok"})"},
      {"slow-bytes", 200, ordinary}};
  for (const auto& [fault, status, body] : cases) {
    const auto answer = answerUnder(fault);
    EXPECT_EQ(answer.status, status) << fault;
    EXPECT_EQ(answer.body, body) << fault;
    EXPECT_EQ(last().fault, fault);
    EXPECT_EQ(last().status, status);
    EXPECT_TRUE(last().deviations.empty());
    EXPECT_NE(log().find("fault=" + fault), std::string::npos);
  }
  EXPECT_EQ(answerUnder("no-content").head.find("Content-Length"), std::string::npos);
}

TEST_F(ScenarioTest, ASlowAnswerComesByteByByte) {
  sandbox->setScenario({.fault = Fault::slowBytes});
  auto connection = client();
  connection.send(postBytes("/api/v1/authentications", "api_key=k1&step=initialize"));
  // With 1 ms between two bytes the whole answer cannot be there after the first.
  std::string first;
  while (first.empty()) first = connection.receiveUntil(milliseconds(5));
  EXPECT_EQ(first.find("\r\n\r\n"), std::string::npos);
  EXPECT_FALSE(connection.endsWithin(milliseconds(1)));
}

TEST_F(ScenarioTest, AStalledAnswerBreaksOffInItsBodyAndStaysOpen) {
  sandbox->setScenario({.fault = Fault::stall});
  auto connection = client();
  connection.send(postBytes("/api/v1/authentications", "api_key=k1&step=initialize"));
  std::string came;
  while (came.find("\r\n\r\n{") == came.npos) came += connection.receiveUntil(milliseconds(20));
  EXPECT_NE(came.back(), '}');
  EXPECT_EQ(connection.receiveUntil(milliseconds(50)), "");
  EXPECT_FALSE(connection.endsWithin(milliseconds(1)));
  EXPECT_EQ(last().status, 0);
  // A key that nobody could read opened nothing.
  EXPECT_EQ(last().authentication, "");
}

TEST_F(ScenarioTest, AnAnswerThatNeverComesIsMarked) {
  sandbox->setScenario({.fault = Fault::neverAnswers, .step = "signup", .once = true});
  auto connection = client();
  connection.send(
      postBytes("/api/v1/authentications/steps",
                "api_key=k1&identifier=a&identifier_type=email&key=" + key + "&step=signup"));
  ASSERT_TRUE(sandbox->waitForRequests(2, seconds(20)));
  EXPECT_EQ(connection.receiveUntil(milliseconds(50)), "");
  EXPECT_FALSE(connection.endsWithin(milliseconds(1)));
  EXPECT_EQ(last().fault, "never-answers");
  EXPECT_EQ(last().status, 0);
  EXPECT_EQ(last().parameters[1].second, "a");
}

TEST_F(ScenarioTest, AnUploadIsCutInTheMiddleOfItsBody) {
  sandbox->setScenario({.fault = Fault::cut, .step = "record_face_video", .once = true});
  const auto body = uploadBody({{"api_key", "k1"}, {"key", key}, {"step", "record_face_video"}},
                               videoHead(), std::string(1000000, 'x'));
  const auto bytes = postBytes("/api/v1/authentications/document_files", body, uploadType);
  auto connection = client();
  // The second half is never sent: the server does not wait for it.
  connection.send(std::string_view(bytes).substr(0, bytes.size() * 6 / 10));
  EXPECT_FALSE(connection.receive());
  EXPECT_EQ(last().fault, "cut");
  EXPECT_EQ(last().step, "record_face_video");
  EXPECT_EQ(last().status, 0);
  EXPECT_FALSE(last().upload);
  EXPECT_EQ(upload("record_face_video", key).status, 200);
}

TEST_F(ScenarioTest, AFormIsCutToo) {
  sandbox->setScenario({.fault = Fault::cut, .step = "set_nationality"});
  EXPECT_EQ(perform("signup", key).status, 200);
  for (int round = 0; round < 2; ++round) {
    auto connection = client();
    connection.send(postBytes("/api/v1/authentications/steps", "step=set_nationality"));
    EXPECT_FALSE(connection.receive());
    EXPECT_TRUE(connection.reset());
    EXPECT_EQ(last().step, "set_nationality");
  }
}

TEST_F(ScenarioTest, OfSeveralFaultsTheFirstThatFitsPlaysAndOnceMeansOnce) {
  sandbox->setScenario(
      {.fault = Fault::statusText, .status = 418, .step = "set_nationality", .once = true});
  sandbox->setScenario({.fault = Fault::emptyBody, .step = "signup"});
  sandbox->setScenario({.fault = Fault::noNextStep});
  EXPECT_EQ(perform("set_nationality", key).status, 418);
  EXPECT_EQ(perform("set_nationality", key).body, R"({"status":"ok"})");
  EXPECT_EQ(perform("signup", key).body, "");
  EXPECT_EQ(perform("signup", key).body, "");
  EXPECT_EQ(
      jsonValue(post("/api/v1/authentications", "api_key=k1&step=initialize").body, "key").size(),
      32U);
  sandbox->setScenario({.fault = Fault::statusObject, .step = "authentication_assessments"});
  sandbox->clearScenarios();
  EXPECT_EQ(assess(key).status, 200);
}

TEST_F(ScenarioTest, CertificateFaultsMeetNewConnections) {
  auto before = client();
  ASSERT_TRUE(before.connected());
  const std::vector<std::pair<std::string, std::string>> cases{
      {"unknown-authority", "unable to get local issuer certificate"},
      {"expired-certificate", "certificate has expired"},
      {"wrong-host", "hostname mismatch"}};
  for (const auto& [fault, reason] : cases) {
    sandbox->setScenario(parseScenario(fault).value());
    EXPECT_EQ(client().failure(), reason);
  }
  before.send(postBytes("/api/v1/authentications", "api_key=k1&step=initialize"));
  EXPECT_EQ(before.receive()->status, 200);
  sandbox->clearScenarios();
  EXPECT_TRUE(client().connected());
}

TEST_F(ScenarioTest, RefusedConnectionsAreRefusedAndOpenOnesEnd) {
  auto before = client();
  const auto port = sandbox->port();
  for (int round = 0; round < 3; ++round) {
    ASSERT_TRUE(sandbox->setScenario({.fault = Fault::refuse}));
    EXPECT_FALSE(TestClient::plain(port).connected());
    EXPECT_TRUE(before.endsWithin(seconds(20)));
    sandbox->clearScenarios();
    EXPECT_TRUE(client().connected());
  }
  EXPECT_EQ(sandbox->port(), port);
}

TEST_F(ScenarioTest, ScenariosOfTheStartPlayFromTheFirstConnection) {
  Options options;
  options.scenarios = {{.fault = Fault::wrongHost}};
  start(options);
  EXPECT_EQ(client().failure(), "hostname mismatch");
  EXPECT_FALSE(sandbox->setScenario({.fault = Fault::stall, .step = "no such step"}));
  EXPECT_FALSE(sandbox->setScenario({.fault = Fault::statusText, .status = 99}));
}

TEST(ScenarioGrammar, NamesAreReadAndWrittenAlike) {
  for (const auto& name : faultNames()) {
    if (name.find("NUMBER") != name.npos) continue;
    const auto scenario = parseScenario(name);
    ASSERT_TRUE(scenario) << name;
    EXPECT_EQ(faultName(scenario.value()), name);
  }
  const auto scenario = parseScenario("status-404-text@check_face_video:once");
  ASSERT_TRUE(scenario);
  EXPECT_EQ(scenario.value().fault, Fault::statusText);
  EXPECT_EQ(scenario.value().status, 404);
  EXPECT_EQ(scenario.value().step, "check_face_video");
  EXPECT_TRUE(scenario.value().once);
}

TEST(ScenarioGrammar, WhatCannotBePlayedIsRefused) {
  for (const char* const text :
       {"", "stal", "stall@", "stall@nowhere", "stall:twice", "status-500", "status--5-text",
        "status-99-object", "status-600-text", "status-204-object", "status-x-text",
        "refuse@signup", "wrong-host:once", "status-500-object-"}) {
    const auto scenario = parseScenario(text);
    EXPECT_FALSE(scenario) << text;
  }
}

}  // namespace
}  // namespace kestrova::sandbox
