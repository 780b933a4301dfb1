#include "sdk/backend/API.h"

#include <algorithm>

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include "platform/foundation/FileManager.h"
#include "tests/support/BackendTest.h"
#include "tests/support/FileSizeLimit.h"

namespace kestrova {
namespace {

class APITest : public test::BackendTest {
 protected:
  // The key of a new authentication.
  std::string open() {
    API::createAuthentication("K", collect());
    EXPECT_TRUE(waitForAnswers(1));
    const std::string key = *textForKey(answers.back(), "key");
    answers.clear();
    return key;
  }

  // The form body that `start` sends.
  std::string bodyOf(const std::function<void(API::StepCompletionHandler)>& start) {
    const auto count = answers.size() + 1;
    start(collect());
    EXPECT_TRUE(waitForAnswers(count));
    return lastRequest().body;
  }
};

TEST_F(APITest, CreateAuthenticationPostsTheKeyAndHandsTheAnswerOn) {
  API::createAuthentication("a b&c", collect());
  ASSERT_TRUE(waitForAnswers(1));
  const auto request = lastRequest();
  EXPECT_EQ(request.method, "POST");
  EXPECT_EQ(request.target, "/api/v1/authentications");
  EXPECT_EQ(request.body, "api_key=a%20b%26c&step=initialize");
  EXPECT_NE(
      request.head.find("\r\nContent-Type: application/x-www-form-urlencoded; charset=utf-8\r\n"),
      std::string::npos);
  EXPECT_NE(request.head.find("\r\nUser-Agent: Kestrova/"), std::string::npos);
  EXPECT_TRUE(request.deviations.empty());
  ASSERT_NE(textForKey(answers[0], "key"), nullptr);
  EXPECT_EQ(output.lines(), std::vector{"JSON: " + description(answers[0])});
}

TEST_F(APITest, EveryStepPostsExactlyItsParameters) {
  const auto key = open();
  const auto step = [&](const std::string& name, const std::string& before = "",
                        const std::string& after = "") {
    return "api_key=K&" + before + "key=" + key + "&step=" + name + after;
  };
  const JSONArray assessment{JSONDictionary{{"token", "LIVENESS_FACTOR"}, {"value", "0.99"}}};
  using Handler = API::StepCompletionHandler;
  EXPECT_EQ(bodyOf([&](Handler h) { API::setNationality("K", key, "DE", h); }),
            step("set_nationality", "country_code=DE&"));
  EXPECT_EQ(bodyOf([&](Handler h) { API::signupWithEmail("K", key, "a+b@example.com", h); }),
            step("signup", "identifier=a%2Bb%40example.com&identifier_type=email&"));
  EXPECT_EQ(bodyOf([&](Handler h) { API::checkFaceVideo("K", key, h); }), step("check_face_video"));
  EXPECT_EQ(bodyOf([&](Handler h) { API::chooseAuthenticationDocument("K", key, "PASSPORT", h); }),
            step("choose_authentication_document", "authentication_method=PASSPORT&"));
  EXPECT_EQ(bodyOf([&](Handler h) { API::checkAuthenticationDocumentPicFRONT("K", key, h); }),
            step("check_authentication_document_video"));
  EXPECT_EQ(bodyOf([&](Handler h) { API::checkAuthenticationDocumentPicBACK("K", key, h); }),
            step("check_authentication_document_video_back"));
  EXPECT_EQ(bodyOf([&](Handler h) { API::checkAuthenticationDocumentSuccess("K", key, h); }),
            step("check_authentication_document_video_success"));
  EXPECT_EQ(lastRequest().target, "/api/v1/authentications/steps");
  EXPECT_EQ(bodyOf([&](Handler h) { API::sendLivenessScore("K", key, assessment, h); }),
            "api_key=K&authentication_assessments%5B%5D%5Btoken%5D=LIVENESS_FACTOR"
            "&authentication_assessments%5B%5D%5Bvalue%5D=0.99&authentication_key=" +
                key);
  EXPECT_EQ(lastRequest().target, "/api/v1/authentication_assessments");
}

TEST_F(APITest, TheGenericPostersSendTheParametersAndNothingElse) {
  const JSONDictionary params{
      {"z", JSONArray{JSONDictionary{{"k", "é😀"}}}}, {"a", true}, {"e", ""}};
  const std::string body = "a=1&e=&z%5B%5D%5Bk%5D=%C3%A9%F0%9F%98%80";
  EXPECT_EQ(bodyOf([&](auto handler) {
              API::sendStepsAndParametersToStepsEndoint("K", "A", params, handler);
            }),
            body);
  EXPECT_EQ(bodyOf([&](auto handler) {
              API::sendStepsAndParametersToAuthenticationAssessmentsEndpoint("K", "A", params,
                                                                             handler);
            }),
            body);
}

TEST_F(APITest, UploadsAreFormsThatTheBackendTakesWithoutADeviation) {
  const auto key = open();
  struct Case {
    void (*start)(const std::filesystem::path&, std::string_view, std::string_view,
                  API::StepCompletionHandler);
    std::string step;
    std::string localName;
    std::string_view contents;
    std::string field, fileName, type;
  };
  const std::vector<Case> cases{
      {API::recordFaceVideo, "record_face_video", "exprotvideo.mp4", kMovie, "video", "video.mov",
       "video/quicktime"},
      {API::recordAuthenticationDocumentPicFRONT, "record_authentication_document_video",
       "picture.png", kPicture, "picture", "picture.png", "image/png"},
      {API::recordAuthenticationDocumentPicBACK, "record_authentication_document_video_back",
       "pictureBackside.png", kPicture, "picture", "picture.png", "image/png"}};
  for (const auto& expected : cases) {
    answers.clear();
    expected.start(makeFile(expected.localName, expected.contents), "K", key, collect());
    ASSERT_TRUE(waitForAnswers(1));
    const auto request = lastRequest();
    EXPECT_EQ(request.target, "/api/v1/authentications/document_files");
    EXPECT_NE(request.head.find("\r\nContent-Type: multipart/form-data; boundary="),
              std::string::npos);
    EXPECT_EQ(request.head.find("Content-type"), std::string::npos);
    EXPECT_EQ(request.parameters, (decltype(request.parameters){
                                      {"api_key", "K"}, {"key", key}, {"step", expected.step}}));
    ASSERT_TRUE(request.upload);
    EXPECT_EQ(request.upload->field, expected.field);
    EXPECT_EQ(request.upload->fileName, expected.fileName);
    EXPECT_EQ(request.upload->contentType, expected.type);
    EXPECT_EQ(FileManager::contents(request.upload->path).value().view(), expected.contents);
  }
  const auto lines = output.lines();
  EXPECT_EQ(std::ranges::count(lines, "multipartFormData: MultipartFormData"), 3);
}

TEST_F(APITest, AFileThatCannotBeReadLeavesAFormOfThreeFields) {
  const auto key = open();
  // Missing, a folder, and one that ends before its announced size.
  for (const char* const path :
       {"/nowhere/picture.png", "/tmp", "/sys/devices/system/cpu/online"}) {
    answers.clear();
    API::recordAuthenticationDocumentPicFRONT(path, "K", key, collect());
    ASSERT_TRUE(waitForAnswers(1)) << path;
    EXPECT_EQ(lastRequest().parameters.size(), 3U);
    EXPECT_FALSE(lastRequest().upload);
  }
}

TEST_F(APITest, AnObjectOfAnyStatusReachesTheHandler) {
  const auto picture = makeFile("picture.png", kPicture);
  for (const char* const fault : {"status-413-object", "status-500-object", "status-404-object"}) {
    play(fault);
    answers.clear();
    API::checkFaceVideo("K", "A", collect());
    ASSERT_TRUE(waitForAnswers(1)) << fault;
    API::recordAuthenticationDocumentPicFRONT(picture, "K", "A", collect());
    ASSERT_TRUE(waitForAnswers(2)) << fault;
    EXPECT_EQ(answers[0].count("error"), 1U);
    server->clearScenarios();
  }
}

TEST_F(APITest, EverythingElseEndsInOneLineAndSilence) {
  const auto picture = makeFile("picture.png", kPicture);
  configuration.idleTimeout = std::chrono::milliseconds(400);
  useTransport();
  std::size_t arrived = 0;
  for (const std::string fault :
       {"status-500-text", "malformed-json", "top-level-array", "empty-body", "no-content", "cut",
        "stall", "never-answers", "refuse"}) {
    play(fault);
    const auto before = output.lines().size();
    API::signupWithEmail("K", "A", "ada@example.com", collect());
    ASSERT_TRUE(waitUntil([&] { return output.lines().size() > before; })) << fault;
    API::recordAuthenticationDocumentPicFRONT(picture, "K", "A", collect());
    ASSERT_TRUE(waitUntil([&] { return output.lines().size() > before + 2; })) << fault;
    const auto lines = output.lines();
    EXPECT_EQ((std::vector(lines.begin() + static_cast<std::ptrdiff_t>(before), lines.end())),
              (std::vector<std::string>{"Could not parse", "multipartFormData: MultipartFormData",
                                        "Could not parse response as JSON"}))
        << fault;
    // Each once, on a kept connection too.
    if (fault != "refuse") arrived += 2;
    EXPECT_EQ(server->requests().size(), arrived) << fault;
    server->clearScenarios();
  }
  EXPECT_TRUE(answers.empty());
}

TEST_F(APITest, OnlyATrustedCertificateOfTheRightNameIsSpokenTo) {
  for (const char* const fault : {"unknown-authority", "expired-certificate", "wrong-host"}) {
    play(fault);
    useTransport();  // certificates are looked at when a connection is made
    const auto before = output.lines().size();
    API::createAuthentication("K", collect());
    ASSERT_TRUE(waitUntil([&] { return output.lines().size() > before; })) << fault;
    EXPECT_EQ(output.lines().back(), "Could not parse") << fault;
    server->clearScenarios();
  }
  EXPECT_TRUE(answers.empty());
  EXPECT_TRUE(server->requests().empty());
}

TEST_F(APITest, ASlowAnswerIsNoIdleOne) {
  configuration.idleTimeout = std::chrono::milliseconds(900);
  useTransport();
  play("slow-bytes");
  const auto begin = DispatchClock::now();
  API::createAuthentication("K", collect());
  EXPECT_TRUE(waitForAnswers(1));
  EXPECT_GT(DispatchClock::now() - begin, configuration.idleTimeout);
}

TEST_F(APITest, AnUploadThatCannotBeEncodedIsReportedAndLeavesNothingBehind) {
  configuration.temporaryDirectory = directory.path() / "missing";
  useTransport();
  const auto picture = makeFile("picture.png", kPicture);
  API::recordAuthenticationDocumentPicFRONT(picture, "K", "A", collect());
  EXPECT_TRUE(
      waitForLine("Error in upload: The temporary file of the upload: "
                  "No such file or directory"));

  // A full disk.
  configuration.temporaryDirectory = directory.path() / "uploads";
  useTransport();
  const auto large = makeFile("large.mov", std::string(3 << 20, 'x'));
  {
    const test::FileSizeLimit full(2 << 20);
    API::recordFaceVideo(large, "K", "A", collect());
    EXPECT_TRUE(waitForLine("Error in upload: The temporary file of the upload: File too large"));
  }
  EXPECT_TRUE(answers.empty());
  EXPECT_TRUE(server->requests().empty());
  EXPECT_TRUE(std::filesystem::is_empty(configuration.temporaryDirectory));
}

TEST_F(APITest, TwoHundredRequestsAtOnceAreEachAnsweredOnceOverFourConnections) {
  const auto key = open();
  for (int i = 0; i < 200; ++i) {
    API::signupWithEmail("K", key, std::to_string(i) + "@example.com", collect());
  }
  ASSERT_TRUE(waitForAnswers(200));
  EXPECT_EQ(server->requests().size(), 201U);
  EXPECT_LE(server->connectionsAccepted(), 4U);
  EXPECT_EQ(answers.size(), 200U);
}

TEST_F(APITest, FailuresAndUploadsLeakNoDescriptor) {
  const auto descriptors = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  };
  const auto movie = makeFile("movie.mov", kMovie);
  const auto round = [&] {
    answers.clear();
    API::recordFaceVideo(movie, "K", "A", collect());
    API::recordFaceVideo("/nowhere", "K", "A", collect());
    EXPECT_TRUE(waitForAnswers(2));
    play("cut");
    const auto before = output.lines().size();
    API::recordFaceVideo(movie, "K", "A", collect());
    EXPECT_TRUE(waitUntil([&] { return output.lines().size() >= before + 2; }));
    server->clearScenarios();
  };
  round();
  BackendTransport::replace(nullptr);
  const auto first = descriptors();
  for (int i = 0; i < 5; ++i) {
    useTransport();
    round();
  }
  BackendTransport::replace(nullptr);
  EXPECT_TRUE(waitUntil([&] { return descriptors() <= first; }));
  EXPECT_TRUE(std::filesystem::is_empty(directory.path() / "uploads"));
}

TEST_F(APITest, WhatAHandlerHoldsIsLetGoOfOnTheMainThread) {
  int ended = 0;
  const auto start = [&] {
    const std::shared_ptr<void> held(nullptr, [&ended](void*) {
      EXPECT_TRUE(isMainThread());
      ++ended;
    });
    API::createAuthentication("K", [held](const JSONDictionary&) {});
    API::recordFaceVideo("/nowhere", "K", "A", [held](const JSONDictionary&) {});
  };
  for (int i = 0; i < 50; ++i) start();
  EXPECT_TRUE(waitUntil([&] { return ended == 50; }));
  configuration.temporaryDirectory = directory.path() / "missing";
  useTransport();
  start();
  EXPECT_TRUE(waitUntil([&] { return ended == 51; }));
}

TEST_F(APITest, ALargeUploadDoesNotAskForLeaveToSend) {
  const auto movie = makeFile("movie.mov", std::string(kMovie) + std::string(3 << 20, 'x'));
  API::recordFaceVideo(movie, "K", "A", collect());
  ASSERT_TRUE(waitForAnswers(1));
  EXPECT_EQ(lastRequest().head.find("Expect"), std::string::npos);
  EXPECT_EQ(lastRequest().upload->size, std::filesystem::file_size(movie));
}

TEST_F(APITest, SocketsAreNotInheritedByProgramsOfTheHost) {
  API::createAuthentication("K", collect());
  ASSERT_TRUE(waitForAnswers(1));
  int connections = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code error;
    const auto target = std::filesystem::read_symlink(entry.path(), error).string();
    sockaddr_in peer{};
    socklen_t size = sizeof peer;
    const int descriptor = std::stoi(entry.path().filename());
    if (error || !target.starts_with("socket:") ||
        ::getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) != 0 ||
        ntohs(peer.sin_port) != server->port()) {
      continue;
    }
    EXPECT_TRUE(::fcntl(descriptor, F_GETFD) & FD_CLOEXEC);
    ++connections;
  }
  EXPECT_EQ(connections, 1);
}

TEST_F(APITest, AProcessCanEndWithRequestsInFlight) {
  play("never-answers");
  const auto program =
      std::filesystem::read_symlink("/proc/self/exe").parent_path() / "exit_in_flight";
  const std::string command = program.string() + " " + configuration.connectTo + " " +
                              configuration.trustedAuthorities.string();
  EXPECT_EQ(std::system(command.c_str()), 0);  // NOLINT
  EXPECT_GE(server->requests().size(), 1U);
}

TEST_F(APITest, TheDefaultsOfTheBuildReachASandboxOnThisMachine) {
  const auto defaults = BackendTransport::defaultConfiguration();
  EXPECT_EQ(defaults.trustedAuthorities, sandbox::defaultStore() / "authority.pem");
  EXPECT_TRUE(defaults.honoursProxy);
  EXPECT_EQ(sandbox::Options().port, 8443);
  EXPECT_STREQ(KESTROVA_BACKEND_HOST, "localhost:8443");
}

}  // namespace
}  // namespace kestrova
