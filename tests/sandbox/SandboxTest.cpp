#include "tests/sandbox/SandboxTest.h"

#include <cstdlib>
#include <utility>

#include "sandbox/console/DeviationText.h"

namespace kestrova::sandbox {

const std::vector<std::string> stepsOfRun{"set_nationality",
                                          "signup",
                                          "record_face_video",
                                          "check_face_video",
                                          "choose_authentication_document",
                                          "record_authentication_document_video",
                                          "check_authentication_document_video",
                                          "record_authentication_document_video_back",
                                          "check_authentication_document_video_back",
                                          "check_authentication_document_video_success"};

std::string postBytes(std::string_view path, std::string_view body, std::string_view contentType) {
  std::string bytes =
      "POST " + std::string(path) + " HTTP/1.1\r\nHost: localhost\r\nContent-Type: ";
  bytes.append(contentType)
      .append("\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n")
      .append(body);
  return bytes;
}

std::string uploadBody(const std::vector<std::pair<std::string, std::string>>& fields,
                       std::string_view fileHead, std::string_view fileBytes) {
  std::string body;
  for (const auto& [name, value] : fields) {
    body +=
        "--b0\r\nContent-Disposition: form-data; name=\"" + name + "\"\r\n\r\n" + value + "\r\n";
  }
  if (!fileHead.empty()) {
    body.append("--b0\r\n").append(fileHead).append("\r\n\r\n").append(fileBytes).append("\r\n");
  }
  return body + "--b0--\r\n";
}

std::string videoHead() {
  return "Content-Disposition: form-data; name=\"video\"; filename=\"video.mov\"\r\n"
         "Content-Type: video/quicktime";
}

std::string pictureHead() {
  return "Content-Disposition: form-data; name=\"picture\"; filename=\"picture.png\"\r\n"
         "Content-Type: image/png";
}

std::string jsonValue(std::string_view object, std::string_view name) {
  const auto field = '"' + std::string(name) + "\":\"";
  const auto at = object.find(field);
  if (at == object.npos) return {};
  object.remove_prefix(at + field.size());
  return std::string(object.substr(0, object.find('"')));
}

TemporaryDirectory::TemporaryDirectory() {
  auto pattern = (std::filesystem::temp_directory_path() / "sandbox-test-XXXXXX").string();
  path_ = mkdtemp(pattern.data());
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

void SandboxTest::TearDown() {
  if (!sandbox) return;
  for (const auto& request : sandbox->requests()) {
    for (const auto& deviation : request.deviations) {
      const bool counts = deviation.ends_with(" further deviations");
      EXPECT_EQ(readDeviation(deviation).expected.empty(), counts) << deviation;
    }
  }
}

void SandboxTest::start(Options options) {
  sandbox.reset();
  options.port = 0;
  options.listingPort = 0;
  options.store = directory.path() / "store";
  options.dripInterval = std::chrono::milliseconds(1);
  options.log = [this](std::string_view line) {
    const std::lock_guard lock(mutex_);
    log_.append(line).append("\n");
  };
  auto started = Sandbox::start(std::move(options));
  ASSERT_TRUE(started) << started.error();
  sandbox = std::move(started).value();
}

TestAnswer SandboxTest::post(std::string_view path, std::string_view body,
                             std::string_view contentType) const {
  auto connection = client();
  connection.send(postBytes(path, body, contentType));
  return connection.receive().value_or(TestAnswer{});
}

TestAnswer SandboxTest::postStep(std::string_view body) const {
  return post("/api/v1/authentications/steps", body);
}

TestAnswer SandboxTest::upload(std::string_view step, const std::string& key) const {
  const bool video = step == "record_face_video";
  return post("/api/v1/authentications/document_files",
              uploadBody({{"api_key", "k1"}, {"key", key}, {"step", std::string(step)}},
                         video ? videoHead() : pictureHead(), video ? videoBytes : pictureBytes),
              uploadType);
}

TestAnswer SandboxTest::assess(const std::string& key) const {
  return post("/api/v1/authentication_assessments",
              "api_key=k1&authentication_assessments%5B%5D%5Btoken%5D=LIVENESS_FACTOR"
              "&authentication_assessments%5B%5D%5Bvalue%5D=0.99&authentication_key=" +
                  key);
}

std::string SandboxTest::initialize() const {
  return jsonValue(post("/api/v1/authentications", "api_key=k1&step=initialize").body, "key");
}

TestAnswer SandboxTest::perform(std::string_view step, const std::string& key,
                                std::string_view document) const {
  const auto tail = "key=" + key + "&step=" + std::string(step);
  if (step.starts_with("record_")) return upload(step, key);
  if (step == "set_nationality") return postStep("api_key=k1&country_code=de&" + tail);
  if (step == "signup") {
    return postStep("api_key=k1&identifier=a%2Bb%40example.org&identifier_type=email&" + tail);
  }
  if (step == "choose_authentication_document") {
    return postStep("api_key=k1&authentication_method=" + std::string(document) + '&' + tail);
  }
  return postStep("api_key=k1&" + tail);
}

std::string SandboxTest::runUpTo(std::string_view step, std::string_view document) const {
  const auto key = initialize();
  for (const auto& next : stepsOfRun) {
    if (document == "PASSPORT" && next.ends_with("_back")) continue;
    perform(next, key, document);
    if (next == step) break;
  }
  return key;
}

std::string SandboxTest::log() const {
  const std::lock_guard lock(mutex_);
  return log_;
}

}  // namespace kestrova::sandbox
