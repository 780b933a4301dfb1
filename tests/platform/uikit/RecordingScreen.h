#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/uikit/UIView.h"
#include "platform/uikit/UIViewController.h"

namespace kestrova::test {

using Calls = std::vector<std::string>;

// Writes down what it is told.
class RecordingScreen : public platform::UIViewController {
 public:
  RecordingScreen(std::string name, Calls& calls) : name_(std::move(name)), calls_(calls) {}

  void viewDidLoad() override { note("didLoad"); }
  void viewWillAppear(bool) override {
    widthAtAppearance = view()->bounds().size.width;
    note("willAppear");
    if (onWillAppear) std::exchange(onWillAppear, {})();
  }
  void viewDidAppear(bool) override {
    note("didAppear");
    if (onDidAppear) std::exchange(onDidAppear, {})();
  }
  void viewWillDisappear(bool) override {
    note("willDisappear");
    if (onWillDisappear) std::exchange(onWillDisappear, {})();
  }
  void viewDidDisappear(bool) override { note("didDisappear"); }

  double widthAtAppearance = 0;
  // Called once, after the note.
  std::function<void()> onWillAppear;
  std::function<void()> onDidAppear;
  std::function<void()> onWillDisappear;

 private:
  void note(const char* what) { calls_.push_back(name_ + " " + what); }

  std::string name_;
  Calls& calls_;
};

}  // namespace kestrova::test
