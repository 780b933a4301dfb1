#include "platform/foundation/Bundle.h"

#include <fstream>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "tests/support/TemporaryDirectory.h"

namespace kestrova::platform {
namespace {

namespace fs = std::filesystem;

const int kInThisProgram = 0;

fs::path buildTree() {
  return fs::read_symlink("/proc/self/exe").parent_path().parent_path();
}

TEST(Bundle, FindsResourcesByNameAndType) {
  const kestrova::test::TemporaryDirectory directory;
  std::ofstream(directory.path() / "countries.json") << "[]";
  fs::create_directory(directory.path() / "Scenes.storyboard");
  std::ofstream(directory.path() / "LICENSE") << "text";
  const auto bundle = Bundle::at(directory.path());
  ASSERT_TRUE(bundle);
  EXPECT_EQ(bundle->path("countries", "json"), directory.path() / "countries.json");
  EXPECT_EQ(bundle->path("Scenes", "storyboard"), directory.path() / "Scenes.storyboard");
  EXPECT_EQ(bundle->path("LICENSE", ""), directory.path() / "LICENSE");
  EXPECT_EQ(bundle->path("countries", "png"), std::nullopt);
  EXPECT_EQ(bundle->path("../countries", "json"), std::nullopt);
  EXPECT_EQ(bundle->path("", "json"), std::nullopt);
  EXPECT_EQ(Bundle::at(directory.path() / "missing"), std::nullopt);
}

TEST(Bundle, LooksAtTheFilesAsTheyAre) {
  const kestrova::test::TemporaryDirectory directory;
  const auto bundle = Bundle::at(directory.path());
  EXPECT_FALSE(bundle->path("late", "txt"));
  std::ofstream(directory.path() / "late.txt") << "here";
  EXPECT_TRUE(bundle->path("late", "txt"));
}

TEST(Bundle, OfAProgramIsFoundInTheBuildTree) {
  const auto bundle = Bundle::containing(&kInThisProgram);
  EXPECT_EQ(bundle.bundlePath(), buildTree() / "bin");
  EXPECT_EQ(bundle.path("Kestrova", "bundle"), buildTree() / "share/kestrova/Kestrova.bundle");
}

// The library in lib, in lib/<architecture>, and with its resources beside it, each in a tree that
// is moved after it was made.
TEST(Bundle, OfALibraryIsFoundInAMovedTree) {
  const fs::path library = buildTree() / "lib" / "libkestrova.so";
  struct Layout {
    const char* library;
    const char* resources;
  };
  for (const auto& [inTree, resources] :
       {Layout{"lib", "share/kestrova"}, Layout{"lib/x86_64-linux-gnu", "share/kestrova"},
        Layout{"app", "app"}}) {
    const kestrova::test::TemporaryDirectory directory;
    const auto made = directory.path() / "made";
    const auto moved = directory.path() / "moved";
    fs::create_directories(made / inTree);
    fs::create_directories(made / resources / "Kestrova.bundle");
    fs::copy_file(library, made / inTree / "libkestrova.so");
    fs::rename(made, moved);
    // By a relative name, and then from another folder.
    const auto before = fs::current_path();
    fs::current_path(directory.path().parent_path());
    const auto relative = fs::relative(moved / inTree / "libkestrova.so");
    void* const handle = ::dlopen(relative.c_str(), RTLD_NOW | RTLD_LOCAL);
    fs::current_path(before);
    ASSERT_NE(handle, nullptr) << ::dlerror();  // NOLINT(concurrency-mt-unsafe)
    const void* const symbol = ::dlsym(handle,
                                       "_ZN8kestrova8Kestrova10initializeENSt7__cxx1112basi"
                                       "c_stringIcSt11char_traitsIcESaIcEEE");
    ASSERT_NE(symbol, nullptr);
    EXPECT_EQ(Bundle::containing(symbol).path("Kestrova", "bundle"),
              moved / resources / "Kestrova.bundle");
    // Left open: what the libraries below allocate when they load is not freed when they go.
  }
}

}  // namespace
}  // namespace kestrova::platform
