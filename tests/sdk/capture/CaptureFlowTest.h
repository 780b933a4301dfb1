#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "examples/enduser/UsableButton.h"
#include "platform/capture/CameraConfiguration.h"
#include "platform/capture/CameraSession.h"
#include "platform/capture/UIImagePickerController.h"
#include "platform/foundation/FileManager.h"
#include "platform/liveness/DevelopmentEngine.h"
#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UIAlertController.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIClassRegistry.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UIWindow.h"
#include "sdk/flow/ChooseDocumentTypeViewController.h"
#include "sdk/flow/CongratsViewController.h"
#include "sdk/flow/MoveHeadViewController.h"
#include "sdk/flow/ScanBacksideViewController.h"
#include "sdk/flow/ScanIDInstructionsViewController.h"
#include "sdk/flow/WarningViewController.h"
#include "tests/platform/capture/ScriptedCamera.h"
#include "tests/sdk/flow/FlowTest.h"

namespace kestrova::test {

using Rehearsal = DevelopmentEngine::Rehearsal;

// The moment at which the form of one step is handed to the transport, on whatever thread.
class Sending {
 public:
  explicit Sending(const std::string& step) : field_("step=" + step + "&") {}

  // What is looked at in that moment.
  std::function<bool()> look = [] { return false; };
  bool seen() const { return hasSeen_; }
  bool waitFor(std::chrono::seconds atMost) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, atMost, [this] { return isSent_; });
  }

  void tell(const std::string& body) {
    if ((body + "&").find(field_) == std::string::npos) return;
    hasSeen_ = look();
    {
      const std::lock_guard lock(mutex_);
      isSent_ = true;
    }
    changed_.notify_all();
  }

 private:
  const std::string field_;
  std::atomic<bool> hasSeen_ = false;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool isSent_ = false;
};

// Tells of each form before it is sent.
class TellingTransport : public HTTPTransport {
 public:
  explicit TellingTransport(HTTPTransportConfiguration configuration)
      : HTTPTransport(configuration.temporaryDirectory),
        inner_(HTTPTransport::make(std::move(configuration))) {}
  void send(HTTPRequest request, Completion completion) override {
    for (const auto& each : sendings) each->tell(request.body);
    inner_->send(std::move(request), std::move(completion));
  }

  // Complete before the first request.
  std::vector<std::shared_ptr<Sending>> sendings;

 private:
  std::shared_ptr<HTTPTransport> inner_;
};

// A screen of the flow that tells when a segue has made it.
template <typename Screen>
class Arriving : public Screen {
 public:
  static inline std::function<void()> arrived;
  void viewDidLoad() override {
    arrived();
    Screen::viewDidLoad();
  }
};

// Stands in for a screen as long as it lives.
template <typename Screen>
class ArrivalWatch {
 public:
  ArrivalWatch(std::string name, std::function<void()> arrived) : name_(std::move(name)) {
    Arriving<Screen>::arrived = std::move(arrived);
    UIClassRegistry::registerClass<Arriving<Screen>>(name_);
  }
  ~ArrivalWatch() { UIClassRegistry::registerClass<Screen>(name_); }
  ArrivalWatch(const ArrivalWatch&) = delete;
  ArrivalWatch& operator=(const ArrivalWatch&) = delete;

 private:
  std::string name_;
};

// The flow's screens with a camera: a scripted device unless the test sets another, the development
// engine, and a documents directory of the test's own.
class CaptureFlowTest : public FlowTest {
 protected:
  // NOLINTBEGIN(concurrency-mt-unsafe): the tests are on one thread.
  CaptureFlowTest() {
    ::setenv("XDG_DATA_HOME", (directory.path() / "data").c_str(), 1);
    CameraConfiguration cameras;
    cameras.frontSource = cameras.rearSource = device->maker();
    CameraConfiguration::set(cameras);
  }
  ~CaptureFlowTest() override {
    wrapper->dismiss(false);
    settle();
    bool isReleased = false;
    CameraSession::queue().async([&] { DispatchQueue::main().async([&] { isReleased = true; }); });
    EXPECT_TRUE(waitFor([&] { return isReleased; }));
    CameraConfiguration::set({});
    DevelopmentEngine::shared()->setRehearsal({});
    ::unsetenv("XDG_DATA_HOME");
  }
  // NOLINTEND(concurrency-mt-unsafe)

  // Handles events, and lets time go by where nothing else waits for it, until `condition` holds.
  static bool watchUntil(const std::function<bool()>& condition) {
    return waitFor([&] {
      advance(0.1);
      return condition();
    });
  }
  UIWindow& flowWindow() const { return *navigation()->view()->window(); }
  bool shows(std::string_view text) const {
    return accessibilityTree(flowWindow()).find(text) != std::string::npos;
  }
  // Taps the button as soon as it is there.
  void tap(UIViewController& on, std::string_view label) {
    std::shared_ptr<UIButton> found;
    ASSERT_TRUE(watchUntil([&] { return (found = usableButton(*on.view(), label)) != nullptr; }))
        << label << "\n"
        << accessibilityTree(flowWindow());
    click(*found);
  }

  // From the selfie's screen until the engine's has gone.
  void takeSelfie() {
    const auto screen = top<MoveHeadViewController>();
    tap(*screen, "Start");
    ASSERT_TRUE(watchUntil([&] { return screen->presentedViewController() != nullptr; }));
    ASSERT_TRUE(watchUntil([&] { return screen->presentedViewController() == nullptr; }));
  }
  // From the front's or the back's screen; the picker is up.
  template <typename Screen>
  void openPicker(Screen& screen) {
    tap(screen, "Take photo");
    finishMotion();
    ASSERT_EQ(screen.presentedViewController(), screen.mediaUI);
  }
  template <typename Screen>
  void photograph(Screen& screen) {
    openPicker(screen);
    tap(*screen.mediaUI, "Take photo");
    tap(*screen.mediaUI, "Use photo");
    finishMotion();
  }

  // The close control, and "Leave" of the question that it asks after an upload.
  void closeAndLeave() {
    click(flowWindow(), {345, 28});
    finishMotion();
    const auto flow = wrapper->presentedViewController();
    ASSERT_TRUE(flow && flow->presentedViewController());
    tap(*flow->presentedViewController(), "Leave");
    finishMotion();
    EXPECT_EQ(wrapper->presentedViewController(), nullptr);
  }

  // To be called before the first request.
  std::shared_ptr<Sending> sent(const std::string& step) {
    if (!telling_) {
      telling_ = std::make_shared<TellingTransport>(configuration);
      BackendTransport::replace(telling_);
    }
    return telling_->sendings.emplace_back(std::make_shared<Sending>(step));
  }
  // The screen's animation plays once however often it comes and goes.
  template <typename Screen>
  void expectOneAnimation(Screen& screen, const std::weak_ptr<UIView>& container) {
    EXPECT_EQ(container.lock()->subviews().size(), 1U);
    push<WarningViewController>("Warning");
    finishMotion();
    EXPECT_EQ(container.lock()->subviews().size(), 0U);
    navigation()->popViewController(false);
    finishMotion();
    EXPECT_EQ(top<Screen>().get(), &screen);
    EXPECT_EQ(container.lock()->subviews().size(), 1U);
  }

  // Steps of the requests that arrived, in order.
  std::vector<std::string> steps() const {
    std::vector<std::string> all;
    for (const auto& request : server->requests()) all.push_back(request.step);
    return all;
  }
  std::size_t countOf(std::string_view step) const {
    return std::size_t(std::ranges::count(steps(), step));
  }
  // The last request of that step.
  sandbox::Request requestOf(std::string_view step) const {
    sandbox::Request found;
    for (const auto& request : server->requests()) {
      if (request.step == step) found = request;
    }
    return found;
  }
  static std::vector<std::string> documents() {
    std::vector<std::string> names;
    for (const auto& entry :
         std::filesystem::directory_iterator(FileManager::documentDirectory().value())) {
      names.push_back(entry.path().filename());
    }
    std::ranges::sort(names);
    return names;
  }
  // But for the order of the steps: tests of one screen begin in the middle.
  void expectNoDeviation() const {
    for (const auto& request : server->requests()) {
      for (const auto& deviation : request.deviations) {
        EXPECT_NE(deviation.find(" came before "), std::string::npos)
            << request.step << ": " << deviation;
      }
    }
  }

  std::shared_ptr<ScriptedDevice> device = std::make_shared<ScriptedDevice>();

 private:
  std::shared_ptr<TellingTransport> telling_;
};

}  // namespace kestrova::test
