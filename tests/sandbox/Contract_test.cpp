#include <algorithm>
#include <string>
#include <vector>

#include "tests/sandbox/SandboxTest.h"

namespace kestrova::sandbox {
namespace {

using Strings = std::vector<std::string>;

class Contract : public SandboxTest {
 protected:
  // The deviations of all requests, each after its step.
  Strings allDeviations() const {
    Strings all;
    for (const auto& request : sandbox->requests()) {
      for (const auto& deviation : request.deviations)
        all.push_back(request.step + ": " + deviation);
    }
    return all;
  }
};

TEST_F(Contract, ARightRunIsAnsweredStepByStepWithoutADeviation) {
  const auto key = initialize();
  EXPECT_EQ(key.size(), 32U);
  EXPECT_NE(key, initialize());
  Strings nextSteps;
  for (const auto& step : stepsOfRun) {
    const auto answer = perform(step, key);
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(jsonValue(answer.body, "status"), "ok");
    EXPECT_NE(answer.head.find("\r\nContent-Type: application/json\r\n"), std::string::npos);
    nextSteps.push_back(jsonValue(answer.body, "next_step"));
  }
  Strings expected(stepsOfRun.begin() + 1, stepsOfRun.end());
  expected.emplace_back("finished");
  EXPECT_EQ(nextSteps, expected);
  EXPECT_EQ(assess(key).body, R"({"status":"ok"})");
  EXPECT_EQ(allDeviations(), Strings{});
}

TEST_F(Contract, APassportHasNoBack) {
  const auto key = runUpTo("record_authentication_document_video", "PASSPORT");
  const auto answer = perform("check_authentication_document_video", key);
  EXPECT_EQ(jsonValue(answer.body, "next_step"), "check_authentication_document_video_success");
  perform("check_authentication_document_video_success", key);
  EXPECT_EQ(allDeviations(), Strings{});
  perform("record_authentication_document_video_back", key);
  EXPECT_EQ(
      last().deviations,
      Strings{"record_authentication_document_video_back came though a passport has no back"});
}

TEST_F(Contract, RequestsThatMayOvertakeEachOtherAndRepeatedStepsAreNoDeviation) {
  const auto key = runUpTo("signup");
  assess(key);  // before the upload
  for (const char* const step :
       {"set_nationality", "record_face_video", "choose_authentication_document",
        "check_face_video", "record_authentication_document_video",
        "record_authentication_document_video", "record_authentication_document_video_back",
        "check_authentication_document_video", "check_authentication_document_video_success",
        "check_authentication_document_video_back", "choose_authentication_document"}) {
    perform(step, key);
  }
  assess(key);
  EXPECT_EQ(allDeviations(), Strings{});
}

TEST_F(Contract, StepsThatComeTooEarlyAreDeviations) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"signup", "set_nationality"},
      {"record_face_video", "signup"},
      {"check_face_video", "record_face_video"},
      {"choose_authentication_document", "record_face_video"},
      {"record_authentication_document_video", "choose_authentication_document"},
      {"check_authentication_document_video", "record_authentication_document_video"},
      {"record_authentication_document_video_back", "record_authentication_document_video"},
      {"check_authentication_document_video_back", "record_authentication_document_video_back"},
      {"check_authentication_document_video_success", "record_authentication_document_video_back"}};
  for (const auto& [step, after] : cases) {
    const auto answer = perform(step, initialize());
    EXPECT_EQ(answer.status, 200) << step;
    EXPECT_EQ(last().deviations, Strings{step + " came before " + after});
  }
  assess(initialize());
  EXPECT_EQ(last().deviations, Strings{"authentication_assessments came before signup"});
}

TEST_F(Contract, EachDeviationOfAFormIsFoundAndTheFormAnsweredAllTheSame) {
  struct Case {
    std::string body;
    std::string deviation;
  };
  const std::vector<Case> cases{
      {"key=$&api_key=k1&country_code=de&step=set_nationality",
       R"(form: expected keys in ascending order, came "key" before "api_key")"},
      {"api_key=k1&country_code=de&key=$&step=set_nationalit%79",
       R"(form: "%79" must not be escaped)"},
      {"api_key=k1&identifier=a%2bb&identifier_type=email&key=$&step=signup",
       R"(form: expected upper-case hexadecimal digits, came "%2b")"},
      {"api_key=k1&identifier=a+b&identifier_type=email&key=$&step=signup",
       R"(form: byte "+" must be percent-escaped)"},
      {"api_key=k1&identifier=a@b&identifier_type=email&key=$&step=signup",
       R"(form: byte "@" must be percent-escaped)"},
      {"api_key=k1&identifier=a%2Fb&identifier_type=email&key=$&step=signup",
       R"(form: "%2F" must not be escaped)"},
      {"api_key=k1&identifier=a%4&identifier_type=email&key=$&step=signup",
       R"(form: expected % and two hexadecimal digits, came "%4")"},
      {"api_key=k1&identifier=%C0%80&identifier_type=email&key=$&step=signup",
       R"(form: expected well-formed UTF-8, came "\xc0\x80")"},
      {"api_key=k1&identifier=&identifier_type=email&key=$&step=signup",
       R"("identifier": expected an e-mail address, came "")"},
      {"api_key=k1&identifier=a&identifier_type=phone&key=$&step=signup",
       R"("identifier_type": expected "email", came "phone")"},
      {"api_key=k1&country_code=d1&key=$&step=set_nationality",
       R"("country_code": expected two ASCII letters, came "d1")"},
      {"api_key=k1&authentication_method=VISA&key=$&step=choose_authentication_document",
       R"("authentication_method": expected PASSPORT, DRIVERS_LICENSE or NATIONAL_ID_CARD, came "VISA")"},
      {"country_code=de&key=$&step=set_nationality", R"(field "api_key" is missing)"},
      {"api_key=k1&country_code=de&step=set_nationality", R"(field "key" is missing)"},
      {"api_key=k1&country_code=de&country_code=de&key=$&step=set_nationality",
       R"(field "country_code" came 2 times)"},
      {"api_key=k1&country_code=de&extra=1&key=$&step=set_nationality",
       R"(field "extra" is none of this request's)"},
      {"api_key=k1&country_code=de&key=$&step=set_nationality&",
       "form: an & without a pair beside it"},
      {"api_key=k1&country_code=de&key=0&step=set_nationality",
       R"(no authentication has the key "0")"},
      {"api_key=k2&country_code=de&key=$&step=set_nationality",
       R"(expected the api_key "k1" of this authentication, came "k2")"}};
  const auto key = runUpTo("record_face_video");
  for (const auto& [pattern, deviation] : cases) {
    auto body = pattern;
    if (const auto at = body.find('$'); at != body.npos) body.replace(at, 1, key);
    EXPECT_EQ(postStep(body).status, 200) << pattern;
    EXPECT_EQ(last().deviations, Strings{deviation}) << pattern;
    EXPECT_EQ(last().body, body);
    EXPECT_NE(log().find(deviation), std::string::npos) << pattern;
  }
}

TEST_F(Contract, EveryByteIsEscapedExactlyWhenItMustBe) {
  const std::string kept = "ABCXYZabcxyz0189-._~/?";
  std::string escaped;
  for (int byte = 1; byte < 0x80; ++byte) {
    const char c = static_cast<char>(byte);
    if (std::isalnum(byte) != 0 || kept.find(c) != kept.npos) continue;
    constexpr std::string_view digits = "0123456789ABCDEF";
    escaped += {'%', digits[static_cast<unsigned>(byte) >> 4U], digits[byte & 0xf]};
  }
  const auto key = runUpTo("set_nationality");
  postStep("api_key=k1&identifier=" + kept + escaped + "%C3%A4&identifier_type=email&key=" + key +
           "&step=signup");
  EXPECT_EQ(last().deviations, Strings{});
  EXPECT_EQ(last().parameters[1].second.size(), kept.size() + escaped.size() / 3 + 2);
}

TEST_F(Contract, AssessmentsAreTokensWithTheirDecimalValues) {
  const auto key = runUpTo("signup");
  const std::string token = "authentication_assessments%5B%5D%5Btoken%5D=LIVENESS_FACTOR&";
  const std::string value = "authentication_assessments%5B%5D%5Bvalue%5D=";
  const auto deviationsOf = [&](const std::string& middle) {
    post("/api/v1/authentication_assessments",
         "api_key=k1&" + middle + "authentication_key=" + key);
    return last().deviations;
  };
  EXPECT_EQ(deviationsOf(token + value + "0.0&" + token + value + "2.0&"), Strings{});
  for (const char* const wrong : {"1", "0%2C99", ".5", "1e-3"}) {
    ASSERT_EQ(deviationsOf(token + value + wrong + "&").size(), 1U) << wrong;
    EXPECT_NE(last().deviations[0].find("expected a decimal number"), std::string::npos);
  }
  EXPECT_EQ(deviationsOf(value + "0.0&" + token).size(), 1U);  // the other way round
  EXPECT_EQ(deviationsOf("").size(), 2U);                      // both missing
}

TEST_F(Contract, MethodPathQueryAndContentTypeAreChecked) {
  EXPECT_EQ(post("/api/v1/authentications", "api_key=k1&step=initialize",
                 "application/x-www-form-urlencoded")
                .status,
            200);
  ASSERT_EQ(last().deviations.size(), 1U);
  EXPECT_NE(last().deviations[0].find("Content-Type: expected"), std::string::npos);

  EXPECT_EQ(post("/api/v1/authentications?a=1", "api_key=k1&step=initialize").status, 200);
  EXPECT_EQ(last().deviations, Strings{R"(expected no query, came "/api/v1/authentications?a=1")"});

  EXPECT_EQ(post("/api/v1/authentications/steps", "api_key=k1&step=initialize").status, 200);
  EXPECT_EQ(last().deviations, Strings{"initialize belongs to /api/v1/authentications, came to "
                                       "/api/v1/authentications/steps"});

  EXPECT_EQ(post("/api/v1/authentication", "api_key=k1&step=initialize").status, 404);
  EXPECT_EQ(last().deviations, Strings{R"(nothing answers to "POST" "/api/v1/authentication")"});
  auto connection = client();
  connection.send("GET /api/v1/authentications HTTP/1.1\r\nHost: localhost\r\n\r\n");
  EXPECT_EQ(connection.receive()->body, R"({"error":"no such resource"})");
}

TEST_F(Contract, WhatCannotBeUnderstoodIsRefusedWithAnObjectAndRecorded) {
  const auto unknown = postStep("api_key=k1&key=" + initialize() + "&step=fly%22");
  EXPECT_EQ(unknown.status, 400);
  EXPECT_EQ(unknown.body, R"({"error":"no step is called \"fly\\\"\""})");
  EXPECT_EQ(last().deviations, Strings{R"(no step is called "fly\"")"});
  EXPECT_EQ(postStep("").status, 400);
  EXPECT_EQ(last().deviations, Strings{R"(field "step" is missing)"});
  // Elsewhere the assessments are no step.
  EXPECT_EQ(postStep("api_key=k1&step=authentication_assessments").status, 400);
}

TEST_F(Contract, ARequestIsKeptByteByByte) {
  const auto key = initialize();
  const std::string body = "api_key=k1&country_code=de&key=" + key + "&step=set_nationality";
  const auto bytes =
      "POST /api/v1/authentications/steps HTTP/1.1\r\nHOST: localhost\r\nX-b:  1 \r\n"
      "Content-Type: " +
      std::string(formType) + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n";
  auto connection = client();
  connection.send(bytes + body);
  ASSERT_TRUE(connection.receive());
  const auto request = last();
  EXPECT_EQ(request.head, bytes);
  EXPECT_EQ(request.body, body);
  EXPECT_EQ(request.headers[1], (std::pair<std::string, std::string>("X-b", "1")));
  EXPECT_EQ(request.parameters[1], (std::pair<std::string, std::string>("country_code", "de")));
  EXPECT_EQ(request.authentication, key);
  EXPECT_EQ(request.status, 200);
}

}  // namespace
}  // namespace kestrova::sandbox
