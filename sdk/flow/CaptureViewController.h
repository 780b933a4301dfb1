#pragma once

#include <memory>

#include "platform/uikit/UIViewController.h"
#include "sdk/Platform.h"

namespace kestrova {

class SpinnerView;

// A screen of instructions that opens a camera's screen and sends what was recorded there. When its
// window is hidden, the camera's screen goes, and the user starts again from the instructions. Main
// thread.
class CaptureViewController : public UIViewController {
 public:
  // Shown while the recording is sent.
  std::weak_ptr<UIView> loadingView;
  std::weak_ptr<SpinnerView> spinner;

  void bind(UIBindings& bindings) override;
  void viewDidLoad() override;
  void viewWillDisappear(bool animated) override;

 protected:
  void showLoading(bool shows);

  // A capture consists of asynchronous steps. Each holds the number of its attempt, and does
  // nothing after that attempt has ended: another began, the user left, or the window was hidden.
  std::size_t beginAttempt();
  std::size_t attempt() const { return attempt_; }
  // True from the moment the window was hidden until the next attempt.
  bool wasHidden() const { return wasHidden_; }
  bool isCurrent(std::size_t attempt) const { return attempt == attempt_ && isAppearing(); }

  // Takes the camera's screen away if it is presented, without a motion.
  virtual void closeCamera() = 0;

 private:
  void windowDidHide(const void* window);

  std::size_t attempt_ = 0;
  bool wasHidden_ = false;
};

}  // namespace kestrova
