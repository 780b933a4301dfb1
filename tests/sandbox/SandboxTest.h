#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "sandbox/Sandbox.h"
#include "tests/sandbox/TestClient.h"

namespace kestrova::sandbox {

inline constexpr std::string_view formType = "application/x-www-form-urlencoded; charset=utf-8";
inline constexpr std::string_view uploadType = "multipart/form-data; boundary=b0";

// A POST request as the SDK would send it.
std::string postBytes(std::string_view path, std::string_view body,
                      std::string_view contentType = formType);

// A body of type uploadType with the text fields and a file part whose head is given; no file part
// where that is empty.
std::string uploadBody(const std::vector<std::pair<std::string, std::string>>& fields,
                       std::string_view fileHead, std::string_view fileBytes);

std::string videoHead();
std::string pictureHead();
inline const std::string videoBytes = std::string("\0\0\0\x14", 4) + "ftypqt  \0\r\n--b-not-yet";
inline const std::string pictureBytes = "\x89PNG\r\n\x1a\n and the rest";

// The text value of a flat JSON object; empty when it is absent.
std::string jsonValue(std::string_view object, std::string_view name);

class TemporaryDirectory {
 public:
  TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory();

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// A sandbox on free ports with a store of its own.
class SandboxTest : public testing::Test {
  // Before the sandbox, which logs until it has stopped.
  mutable std::mutex mutex_;
  std::string log_;

 protected:
  SandboxTest() { start(); }

  // Each deviation that a test provoked can be shown beside what was expected.
  void TearDown() override;

  // Starts anew, with the same store.
  void start(Options options = {});

  TestClient client() const { return TestClient::tls(sandbox->port(), sandbox->authorityFile()); }

  // Over a connection of its own. Status 0 where no whole answer came.
  TestAnswer post(std::string_view path, std::string_view body,
                  std::string_view contentType = formType) const;
  TestAnswer postStep(std::string_view body) const;
  TestAnswer upload(std::string_view step, const std::string& key) const;
  TestAnswer assess(const std::string& key) const;
  // The key of a new authentication.
  std::string initialize() const;
  // An authentication after the steps of a run up to and with the given one.
  std::string runUpTo(std::string_view step, std::string_view document = "DRIVERS_LICENSE") const;
  // Performs one step of a run with right parameters.
  TestAnswer perform(std::string_view step, const std::string& key,
                     std::string_view document = "DRIVERS_LICENSE") const;

  Request last() const { return sandbox->requests().back(); }
  std::string log() const;

  TemporaryDirectory directory;
  std::unique_ptr<Sandbox> sandbox;
};

// The steps of a run that ends with the back of a document.
extern const std::vector<std::string> stepsOfRun;

}  // namespace kestrova::sandbox
