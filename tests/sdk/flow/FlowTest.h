#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIStoryboardScene.h"
#include "platform/uikit/UIViewController.h"
#include "sdk/core/Kestrova.h"
#include "sdk/flow/Flow.h"
#include "tests/platform/uikit/Interface.h"
#include "tests/support/BackendTest.h"

namespace kestrova::test {

// A host's window of 375 x 667 points over which the flow is presented, the sandbox behind TLS, and
// a clock that stands still.
class FlowTest : public InterfaceOn<BackendTest> {
 protected:
  FlowTest() {
    Kestrova::apiKey.reset();
    Kestrova::authentication_key.reset();
    Kestrova::next_step.reset();
    Kestrova::email.reset();
    host_->resize(375, 667);
    host_->show();
    wrapper = UIViewController::wrapping(*host_);
  }
  ~FlowTest() override {
    wrapper->dismiss(false);
    host_.reset();
    settle();
  }

  // Starts a verification and waits for its keys where `answered`.
  void start(bool answered = true) {
    Kestrova::initialize("K");
    Kestrova::startVerification(wrapper);
    finishMotion();
    if (answered) {
      ASSERT_TRUE(waitFor([] { return Kestrova::authentication_key.has_value(); }));
    }
  }

  std::shared_ptr<UINavigationController> navigation() const {
    const auto flow = wrapper->presentedViewController();
    if (!flow || flow->children().empty()) return nullptr;
    return std::dynamic_pointer_cast<UINavigationController>(flow->children().front());
  }
  // The screen on top of the flow where it is of that class; else null.
  template <typename Screen>
  std::shared_ptr<Screen> top() const {
    const auto stack = navigation();
    return stack ? std::dynamic_pointer_cast<Screen>(stack->topViewController()) : nullptr;
  }
  // Handles events until such a screen is on top and has come to rest.
  template <typename Screen>
  std::shared_ptr<Screen> waitForTop() {
    EXPECT_TRUE(waitFor([this] { return top<Screen>() != nullptr; }));
    finishMotion();
    return top<Screen>();
  }
  // Goes over to another screen without the steps between.
  template <typename Screen>
  std::shared_ptr<Screen> push(const std::string& scene) {
    const auto& from = navigation()->topViewController()->scene();
    const auto made = from->instantiate(scene);
    EXPECT_TRUE(made);
    const auto screen = std::dynamic_pointer_cast<Screen>(made.value());
    navigation()->pushViewController(screen, false);
    // A screen that has just come takes no taps.
    finishMotion();
    return screen;
  }

  static void finishMotion() { advance(1); }

  // The lines printed so far that begin so.
  std::vector<std::string> linesThatBegin(std::string_view begin) const {
    std::vector<std::string> found;
    for (const auto& line : output.lines()) {
      if (line.starts_with(begin)) found.push_back(line);
    }
    return found;
  }
  bool hasLine(std::string_view line) const {
    const auto lines = output.lines();
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  }

  QWidget& host() { return *host_; }
  void destroyHost() { host_.reset(); }

  std::shared_ptr<UIViewController> wrapper;

 private:
  std::unique_ptr<QWidget> host_ = std::make_unique<QWidget>();
};

}  // namespace kestrova::test
