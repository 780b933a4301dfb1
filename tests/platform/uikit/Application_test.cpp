#include <any>
#include <atomic>
#include <thread>
#include <vector>

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

#include "platform/dispatch/DispatchQueue.h"
#include "platform/foundation/NotificationCenter.h"
#include "platform/uikit/UIDevice.h"
#include "platform/uikit/UIKeyboard.h"
#include "platform/uikit/UIScreen.h"
#include "platform/uikit/UITextField.h"
#include "platform/uikit/UIView.h"
#include "platform/uikit/UIViewController.h"
#include "tests/platform/uikit/Interface.h"

namespace kestrova::test {

namespace {

using namespace platform;
using namespace std::chrono_literals;

class ApplicationTest : public Interface {};

TEST_F(ApplicationTest, drainsTheMainQueueInTheToolkitsLoop) {
  std::vector<int> ran;
  const auto main = DispatchQueue::main();
  main.asyncAfter(20ms, [&] { ran.push_back(3); });
  main.async([&] { ran.push_back(1); });
  std::thread worker([&] { EXPECT_TRUE(main.sync([&] { ran.push_back(2); })); });
  EXPECT_TRUE(waitFor([&] { return ran.size() == 3; }));
  worker.join();
  EXPECT_EQ(ran, (std::vector{1, 2, 3}));
}

TEST_F(ApplicationTest, leavesTheLoopItsEventsWhileBlocksPostBlocks) {
  bool timedOut = false;
  QTimer::singleShot(1, [&] { timedOut = true; });
  std::function<void()> again = [&] {
    if (!timedOut) DispatchQueue::main().async(again);
  };
  again();
  EXPECT_TRUE(waitFor([&] { return timedOut; }));
}

TEST_F(ApplicationTest, drainsInALoopThatABlockOpens) {
  QEventLoop nested;
  bool gaveUp = false;
  bool ended = false;
  // Due while the loop runs, with nothing that wakes it again.
  DispatchQueue::main().asyncAfter(50ms, [&] { nested.quit(); });
  DispatchQueue::main().async([&] {
    QTimer::singleShot(10'000, &nested, [&] {
      gaveUp = true;
      nested.quit();
    });
    nested.exec();
    ended = true;
  });
  EXPECT_TRUE(waitFor([&] { return ended; }));
  EXPECT_FALSE(gaveUp);
}

TEST_F(ApplicationTest, refusesASecondApplicationObject) {
  EXPECT_THROW(UIApplication::main(0, nullptr, [] {}), std::logic_error);
}

TEST_F(ApplicationTest, opensPagesAndSettingsByTheHostsHandlers) {
  const auto& application = UIApplication::shared();
  std::vector<std::string> pages;
  application->openPage = [&](std::string_view url) {
    pages.emplace_back(url);
    return pages.size() == 1;
  };
  std::vector<bool> answers;
  const auto note = [&](bool opened) { answers.push_back(opened); };
  application->open("https://localhost/terms/", {}, note);
  answers.push_back(application->openURL("https://localhost/privacy/"));
  ::testing::internal::CaptureStdout();
  application->open(UIApplicationOpenSettingsURLString, {}, note);
  const std::string line = ::testing::internal::GetCapturedStdout();
  EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1);
  application->openSettings = [&] { pages.emplace_back("settings"); };
  application->open(UIApplicationOpenSettingsURLString, {}, note);
  EXPECT_EQ(pages, (std::vector<std::string>{"https://localhost/terms/",
                                             "https://localhost/privacy/", "settings"}));
  EXPECT_EQ(answers, (std::vector{true, false, false, true}));
}

TEST_F(ApplicationTest, opensNothingButWebPages) {
  ::testing::internal::CaptureStdout();
  EXPECT_FALSE(UIApplication::shared()->openURL("file:///etc/hostname"));
  EXPECT_FALSE(UIApplication::shared()->openURL("https://local host/"));
  EXPECT_NE(::testing::internal::GetCapturedStdout().find("file:///etc/hostname"),
            std::string::npos);
}

TEST_F(ApplicationTest, comparesTheSystemVersionByItsFirstNumber) {
  auto& device = UIDevice::current();
  EXPECT_TRUE(device.hasSystemVersion(10));
  device.setSystemVersion("9.3.5");
  EXPECT_FALSE(device.hasSystemVersion(10));
  EXPECT_EQ(device.systemVersion(), "9.3.5");
  device.setSystemVersion("10");
  EXPECT_TRUE(device.hasSystemVersion(10));
  device.setSystemVersion({});
  EXPECT_TRUE(device.hasSystemVersion(10));
}

TEST_F(ApplicationTest, isAPadOnAScreenOf600PointsAndPresentsACardThere) {
  // The offscreen platform has 800 x 800 pixels.
  auto& device = UIDevice::current();
  EXPECT_EQ(device.userInterfaceIdiom(), UIUserInterfaceIdiom::pad);
  device.setUserInterfaceIdiom(UIUserInterfaceIdiom::phone);
  EXPECT_EQ(int(device.userInterfaceIdiom()), 0);
  device.setUserInterfaceIdiom(std::nullopt);
  EXPECT_EQ(UIScreen::main().bounds().size.width, 480);
  UIScreen::main().setBounds(CGRect{{0, 0}, {375, 667}});
  EXPECT_EQ(UIScreen::main().bounds().size, (CGSize{375, 667}));
  UIScreen::main().setBounds(std::nullopt);
}

// Notes what observers hear: "+" and "-" with the keyboard's height.
struct KeyboardObserver : std::enable_shared_from_this<KeyboardObserver> {
  void start() {
    auto& center = NotificationCenter::defaultCenter();
    for (const auto name : {UIKeyboardWillShowNotification, UIKeyboardWillHideNotification}) {
      center.addObserver<KeyboardObserver>(
          shared_from_this(),
          [](KeyboardObserver& self, const Notification& notification) { self.hear(notification); },
          name);
    }
  }
  void hear(const Notification& notification) {
    const auto frame =
        std::any_cast<CGRect>(notification.userInfo.find(UIKeyboardFrameBeginUserInfoKey)->second);
    const bool shows = notification.name == "UIKeyboardWillShowNotification";
    heard += (shows ? "+" : "-") + std::to_string(int(frame.size.height)) + " ";
    if (shows && onShow) onShow();
  }
  std::string heard;
  std::function<void()> onShow;
};

class KeyboardTest : public Interface {
 protected:
  KeyboardTest() { observer->start(); }
  static void report(bool visible, double height) {
    UIKeyboard::shared().inputMethodChanged(visible,
                                            {{0, 667 - height}, {height > 0 ? 375.0 : 0, height}});
  }
  ~KeyboardTest() override { report(false, 0); }
  std::shared_ptr<KeyboardObserver> observer = std::make_shared<KeyboardObserver>();
};

TEST_F(KeyboardTest, isShownOnlyWithARectangleAndHidesWithItsLast) {
  report(true, 0);
  report(false, 200);
  EXPECT_EQ(observer->heard, "");
  report(true, 200);
  report(true, 200);
  report(true, 260);
  report(false, 0);
  report(false, 260);
  EXPECT_EQ(observer->heard, "+200 +260 -260 ");
}

TEST_F(KeyboardTest, reportsOnceTheObserversHaveEndedWhatTheyChangeMeanwhile) {
  observer->onShow = [this] {
    report(false, 0);
    observer->heard += ". ";
  };
  report(true, 200);
  EXPECT_EQ(observer->heard, "+200 . -200 ");
}

// Without the fixture: when the application object comes and goes is what these are about.

std::unique_ptr<QApplication> makeApplication() {
  static int count = 1;
  static char name[] = "test";
  static char* arguments[] = {name, nullptr};
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the tests are on one thread.
  ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
  return std::make_unique<QApplication>(count, arguments);
}

TEST(ApplicationObject, isNeededByViews) {
  EXPECT_FALSE(UIApplication::exists());
  EXPECT_THROW(UIView(), std::logic_error);
  EXPECT_EQ(UIScreen::main().bounds(), CGRect{});
}

TEST(ApplicationObject, drainsWhatWasPostedBeforeItWasMadeAndLetsWaitersGoAsItEnds) {
  bool ran = false;
  DispatchQueue::main().async([&] { ran = true; });
  auto application = makeApplication();
  EXPECT_TRUE(UIApplication::exists());
  for (int round = 0; round < 1000 && !ran; ++round) QCoreApplication::processEvents();
  EXPECT_TRUE(ran);

  std::string order;
  UIApplication::atExit([&] { order += "first "; });
  auto view = std::make_shared<UIView>();
  UIApplication::atExit([&] {
    order += "last ";
    view.reset();
  });
  std::atomic<bool> asked = false;
  std::thread worker([&] {
    asked = true;
    EXPECT_FALSE(DispatchQueue::main().sync([] { ADD_FAILURE() << "ran after the loop"; }));
  });
  while (!asked) std::this_thread::yield();
  application.reset();
  worker.join();
  EXPECT_EQ(order, "last first ");
  EXPECT_FALSE(UIApplication::exists());
}

TEST(ApplicationObject, isMadeAndRunForAHostWithoutOne) {
  static char name[] = "test";
  static char* arguments[] = {name, nullptr};
  // As a host holds it, in its own main().
  std::shared_ptr<UIWindow> window;
  const int status = UIApplication::main(1, arguments, [&window] {
    EXPECT_TRUE(UIApplication::exists());
    window = UIWindow::make({375, 667});
    const auto controller = std::make_shared<UIViewController>();
    controller->view()->addSubview(std::make_shared<UITextField>());
    window->setRootViewController(controller);
    window->makeKeyAndVisible();
    QCoreApplication::exit(7);
  });
  EXPECT_EQ(status, 7);
  EXPECT_FALSE(UIApplication::exists());
  EXPECT_EQ(window->widget(), nullptr);
  window->setFrame({{}, {320, 568}});
  window.reset();
}

TEST(ApplicationObject, endsWithItsLastWindow) {
  static char name[] = "test";
  static char* arguments[] = {name, nullptr};
  std::shared_ptr<UIWindow> window;
  const int status = UIApplication::main(1, arguments, [&window] {
    window = UIWindow::make({375, 667});
    window->setRootViewController(std::make_shared<UIViewController>());
    window->makeKeyAndVisible();
    DispatchQueue::main().async([&window] { window->widget()->close(); });
    DispatchQueue::main().asyncAfter(std::chrono::seconds(10), [] { QCoreApplication::exit(9); });
  });
  EXPECT_EQ(status, 0);
  EXPECT_FALSE(window->rootViewController()->isAppearing());
}

}  // namespace

}  // namespace kestrova::test
