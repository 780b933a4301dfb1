#include "platform/foundation/FileManager.h"

#include <cstdlib>
#include <fstream>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/TemporaryDirectory.h"

namespace kestrova::platform {
namespace {

namespace fs = std::filesystem;

class FileManagerTest : public testing::Test {
 protected:
  FileManagerTest() {
    ::setenv("XDG_DATA_HOME", root().c_str(), 1);  // NOLINT(concurrency-mt-unsafe)
  }
  ~FileManagerTest() override { ::unsetenv("XDG_DATA_HOME"); }  // NOLINT(concurrency-mt-unsafe)

  const fs::path& root() const { return directory_.path(); }
  static unsigned mode(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
  }
  std::size_t entries() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(root()), fs::directory_iterator()));
  }

 private:
  kestrova::test::TemporaryDirectory directory_;
};

TEST_F(FileManagerTest, TheDocumentsDirectoryIsTheApplicationsAndPrivate) {
  const auto made = FileManager::documentDirectory();
  ASSERT_TRUE(made) << made.error().localizedDescription;
  EXPECT_EQ(made.value(), root() / "foundation_test" / "Documents");
  EXPECT_EQ(mode(made.value()), 0700U);
  // A directory that others could read is closed to them.
  ::chmod(made.value().c_str(), 0755);
  ASSERT_TRUE(FileManager::documentDirectory());
  EXPECT_EQ(mode(made.value()), 0700U);
}

TEST_F(FileManagerTest, ADocumentsDirectoryThatCannotBeIsAnError) {
  fs::create_directories(root() / "foundation_test");
  std::ofstream(root() / "foundation_test" / "Documents") << "a file in its place";
  EXPECT_FALSE(FileManager::documentDirectory());
}

TEST_F(FileManagerTest, WritesReplaceAtomicallyAndPrivately) {
  const auto path = root() / "picture.png";
  ASSERT_TRUE(FileManager::write("one", path));
  ASSERT_TRUE(FileManager::write("two", path));
  EXPECT_EQ(FileManager::contents(path).value().view(), "two");
  EXPECT_EQ(mode(path), 0600U);
  EXPECT_EQ(entries(), 1U);
}

TEST_F(FileManagerTest, AFailedWriteLeavesNothingBehind) {
  const auto path = root() / "taken";
  fs::create_directories(path / "inner");
  EXPECT_FALSE(FileManager::write("data", path));
  EXPECT_FALSE(FileManager::write("data", root() / "missing" / "file"));
  EXPECT_EQ(entries(), 1U);
}

TEST_F(FileManagerTest, ReadsRegularFilesWholeOrNotAtAll) {
  std::ofstream(root() / "empty");
  EXPECT_EQ(FileManager::contents(root() / "empty").value().view(), "");
  EXPECT_FALSE(FileManager::contents(root() / "missing"));
  EXPECT_FALSE(FileManager::contents(root()));
  ASSERT_EQ(::mkfifo((root() / "pipe").c_str(), 0600), 0);
  EXPECT_FALSE(FileManager::contents(root() / "pipe"));
  // Announces 4096 bytes and gives fewer, as a file does that shrinks while it is read.
  const auto shrunk = FileManager::contents("/sys/devices/system/cpu/online");
  ASSERT_FALSE(shrunk);
  EXPECT_NE(shrunk.error().localizedDescription.find("changed in size"), std::string::npos);
}

TEST_F(FileManagerTest, ExpandsTheHomeDirectory) {
  const std::string home = ::getenv("HOME");  // NOLINT(concurrency-mt-unsafe)
  EXPECT_EQ(FileManager::expandingTilde("~/a/b"), fs::path(home) / "a/b");
  EXPECT_EQ(FileManager::expandingTilde("/a~/b"), "/a~/b");
}

}  // namespace
}  // namespace kestrova::platform
