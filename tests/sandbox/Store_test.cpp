#include "sandbox/Store.h"

#include <fstream>
#include <memory>
#include <string>

#include <sqlite3.h>

#include "sandbox/Files.h"
#include "sandbox/Sql.h"
#include "tests/sandbox/SandboxTest.h"

namespace kestrova::sandbox {
namespace {

namespace fs = std::filesystem;

class StoreTest : public SandboxTest {
 protected:
  Options options() const {
    Options options;
    options.port = 0;
    options.listingPort = 0;
    options.store = directory.path() / "store";
    return options;
  }
  static void expectFailure(const Options& options, std::string_view text) {
    const auto started = Sandbox::start(options);
    ASSERT_FALSE(started);
    EXPECT_NE(started.error().find(text), std::string::npos) << started.error();
    EXPECT_EQ(started.error().find('\n'), std::string::npos);
  }
};

TEST_F(StoreTest, ARestartKeepsTheRecordAndTheRunsUnderWay) {
  const auto key = runUpTo("record_face_video");
  postStep("api_key=k1&key=" + key + "&step=%00%FF");
  const auto before = sandbox->requests();
  const auto listing = sandbox->listing();
  start();
  EXPECT_EQ(sandbox->listing(), listing);
  const auto after = sandbox->requests();
  ASSERT_EQ(after.size(), before.size());
  for (std::size_t i = 0; i < after.size(); ++i) {
    EXPECT_EQ(after[i].head, before[i].head);
    EXPECT_EQ(after[i].body, before[i].body);
    EXPECT_EQ(after[i].parameters, before[i].parameters);
    EXPECT_EQ(after[i].deviations, before[i].deviations);
  }
  EXPECT_EQ(after.back().parameters.back().second, std::string("\0\xff", 2));
  EXPECT_EQ(readFile(after[3].upload->path).value(), videoBytes);
  EXPECT_TRUE(sandbox->waitForRequests(before.size(), std::chrono::milliseconds(0)));
  EXPECT_FALSE(sandbox->waitForRequests(before.size() + 1, std::chrono::milliseconds(0)));
  perform("check_face_video", key);
  EXPECT_TRUE(last().deviations.empty());
}

TEST_F(StoreTest, FilesWithoutARecordedRequestAreRemoved) {
  const auto key = runUpTo("record_face_video");
  const auto kept = last().upload->path;
  const auto orphan = kept.parent_path() / "left-behind.mov";
  std::ofstream(orphan) << "never answered";
  start();
  EXPECT_TRUE(fs::exists(kept));
  EXPECT_FALSE(fs::exists(orphan));
}

TEST_F(StoreTest, AStoreOfTheFirstVersionIsBroughtUpToDate) {
  const auto key = runUpTo("check_authentication_document_video_success");
  assess(key);
  sandbox->setScenario({.fault = Fault::noContent, .step = "signup", .once = true});
  perform("signup", key);
  postStep("api_key=k2&key=" + key + "&step=check_face_video");
  sandbox.reset();
  const auto summary = [&] { return Store::open(options().store).value()->summary(key).value(); };
  const auto before = summary();
  EXPECT_EQ(before.email, "a+b@example.org");
  EXPECT_EQ(before.document, "DRIVERS_LICENSE");
  EXPECT_EQ(before.assessment, "0.99");
  EXPECT_EQ(before.requests, 14);
  EXPECT_EQ(before.deviations, 1);
  EXPECT_EQ(before.faults, 1);
  EXPECT_TRUE(before.finished);
  {
    sqlite3* opened = nullptr;
    ASSERT_EQ(sqlite3_open((options().store / "record.db").c_str(), &opened), SQLITE_OK);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> database(opened, sqlite3_close);
    execute(opened, "DROP INDEX requests_of_step");
    for (const auto* const column :
         {"last_received", "last_step", "email", "country", "document", "assessment", "requests",
          "deviations", "faults", "finished"}) {
      execute(opened, (std::string("ALTER TABLE authentications DROP COLUMN ") + column).c_str());
    }
    execute(opened, "PRAGMA user_version = 1");
  }
  const auto after = summary();
  EXPECT_EQ(after.email, before.email);
  EXPECT_EQ(after.country, before.country);
  EXPECT_EQ(after.document, before.document);
  EXPECT_EQ(after.assessment, before.assessment);
  EXPECT_EQ(after.lastReceived, before.lastReceived);
  EXPECT_EQ(after.lastStep, before.lastStep);
  EXPECT_EQ(after.requests, before.requests);
  EXPECT_EQ(after.deviations, before.deviations);
  EXPECT_EQ(after.faults, before.faults);
  EXPECT_EQ(after.finished, before.finished);
}

TEST_F(StoreTest, ADirectoryServesOneSandboxAtATime) {
  expectFailure(options(), "is in use by another sandbox");
  sandbox.reset();
  EXPECT_TRUE(Sandbox::start(options()));
}

TEST_F(StoreTest, ATakenPortIsNamedAndNothingStaysBehind) {
  auto other = options();
  other.store = directory.path() / "other";
  other.port = sandbox->port();
  expectFailure(other, "port " + std::to_string(sandbox->port()) + " cannot be used");
  other.port = 0;
  other.listingPort = sandbox->listingPort();
  expectFailure(other, "port " + std::to_string(sandbox->listingPort()) + " cannot be used");
  other.listingPort = 0;
  EXPECT_TRUE(Sandbox::start(other));
}

TEST_F(StoreTest, AStoreThatCannotBeOpenedIsNamed) {
  sandbox.reset();
  auto other = options();
  other.store = "/proc/nowhere/store";
  expectFailure(other, "/proc/nowhere/store");
  other.store = directory.path() / "file";
  std::ofstream(other.store) << "not a directory";
  expectFailure(other, "file cannot be opened");
  std::ofstream(options().store / "record.db") << std::string(5000, 'x');
  expectFailure(options(), "record.db");
}

TEST_F(StoreTest, TheStoreIsPrivateToTheUser) {
  initialize();
  const auto store = directory.path() / "store";
  EXPECT_EQ(fs::status(store).permissions(), fs::perms::owner_all);
  EXPECT_EQ(fs::status(store / "record.db").permissions(),
            fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(sandbox->authorityFile(), store / "authority.pem");
}

TEST_F(StoreTest, ARequestThatCannotBeStoredIsNotAnsweredAsIfItWere) {
  const auto key = runUpTo("signup");
  fs::remove_all(directory.path() / "store" / "files");
  const auto count = sandbox->requests().size();
  const auto answer = upload("record_face_video", key);
  EXPECT_EQ(answer.status, 500);
  EXPECT_TRUE(answer.body.starts_with(R"({"error":"the file cannot be stored)")) << answer.body;
  EXPECT_EQ(sandbox->requests().size(), count);
}

}  // namespace
}  // namespace kestrova::sandbox
