#include <map>
#include <memory>
#include <sstream>
#include <string>

#include <QtGui/QImage>
#include <QtGui/QPixmap>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>
#include <gtest/gtest.h>

#include "examples/gallery/GalleryPage.h"
#include "examples/gallery/GalleryStage.h"
#include "examples/gallery/HostileHost.h"
#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UIViewController.h"
#include "platform/uikit/UIWindow.h"

namespace kestrova::gallery {
namespace {

constexpr CGSize kPhone{375, 667};

// An application that draws into memory, with a clock that stands still.
class Screenless {
 public:
  Screenless() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the tests are on one thread.
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    application_ = std::make_unique<QApplication>(count_, arguments_);
    AnimationClock::shared().useManualTime();
  }
  ~Screenless() { AnimationClock::shared().useSystemTime(); }
  Screenless(const Screenless&) = delete;
  Screenless& operator=(const Screenless&) = delete;

  QApplication& application() { return *application_; }

 private:
  int count_ = 1;
  char name_[5] = "test";
  char* arguments_[2] = {name_, nullptr};
  std::unique_ptr<QApplication> application_;
};

std::map<std::string, QImage> pictures(bool hostile) {
  Screenless screenless;
  if (hostile) makeHostile(screenless.application());
  std::map<std::string, QImage> found;
  for (const auto& page : galleryPages()) {
    GalleryStage stage(kPhone, page.make());
    GalleryStage::settle(page.pictureAfter);
    found[page.name] = stage.window().widget()->grab().toImage();
  }
  return found;
}

TEST(Gallery, LooksTheSameInsideAHostThatRestylesEveryWidget) {
  const auto plain = pictures(false);
  const auto hostile = pictures(true);
  ASSERT_FALSE(plain.empty());
  for (const auto& [name, picture] : plain) {
    EXPECT_EQ(picture, hostile.at(name)) << "page " << name;
  }
}

// The role of a line of the tree: what stands before the name and the states.
std::string roleOf(const std::string& line) {
  const std::string text = line.substr(line.find_first_not_of(' '));
  for (const char* const role : {"text field", "list item"}) {
    if (text.starts_with(role)) return role;
  }
  return text.substr(0, text.find(' '));
}

TEST(Gallery, TellsAssistiveTechnologyTheRoleAndNameOfAllThatCanBeOperated) {
  const Screenless screenless;
  int controls = 0;
  for (const auto& page : galleryPages()) {
    GalleryStage stage(kPhone, page.make());
    GalleryStage::settle(page.pictureAfter);
    std::istringstream tree(accessibilityTree(stage.window()));
    for (std::string line; std::getline(tree, line);) {
      const std::string role = roleOf(line);
      const bool isOperated = line.find(" focusable") != std::string::npos || role == "button" ||
                              role == "link" || role == "list item" || role == "text field";
      if (!isOperated) continue;
      ++controls;
      EXPECT_TRUE(role != "group" && role != "object") << page.name << ": " << line;
      EXPECT_NE(line.find('"'), std::string::npos) << page.name << ": " << line;
    }
  }
  EXPECT_GT(controls, int(galleryPages().size()));
}

}  // namespace
}  // namespace kestrova::gallery
