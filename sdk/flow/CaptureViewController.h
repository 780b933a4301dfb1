#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/UIViewController.h"
#include "sdk/Platform.h"
#include "sdk/backend/API.h"

namespace kestrova::platform {
class UIButton;
class UILabel;
}  // namespace kestrova::platform

namespace kestrova {

class SpinnerView;

// A screen of instructions that opens a camera screen and uploads the recording. Its button shows
// progress, a notice shows errors. When its window is hidden, the camera screen is closed, and the
// user starts again from the instructions. Main thread.
class CaptureViewController : public UIViewController {
 public:
  // Shown while the recording is sent.
  std::weak_ptr<UIView> loadingView;
  std::weak_ptr<SpinnerView> spinner;
  std::weak_ptr<UILabel> loadingHeading;
  std::weak_ptr<UILabel> loadingText;
  std::weak_ptr<UIButton> captureButton;
  // Above the button; hidden while it has nothing to say.
  std::weak_ptr<UILabel> noticeLabel;

  void bind(UIBindings& bindings) override;
  void viewDidLoad() override;
  void viewWillAppear(bool animated) override;
  void viewWillDisappear(bool animated) override;

 protected:
  // "video" or "photo".
  virtual std::string recordingName() const = 0;
  // Dismisses the camera screen if it is presented, without animation.
  virtual void closeCamera() = 0;
  // Prepares the next attempt after a recording could not be written to this device.
  virtual void recordingNotSaved() {}

  // A capture consists of asynchronous steps. Each holds the number of its attempt, and does
  // nothing after that attempt has ended: another began, the user left, or the window was hidden.
  std::size_t beginAttempt();
  std::size_t attempt() const { return attempt_; }
  bool isCurrent(std::size_t attempt) const { return attempt == attempt_ && isAppearing(); }
  // True from the moment the window was hidden until the next attempt.
  bool wasHidden() const { return wasHidden_; }

  // Shows a text as the button's title and ignores taps on it until setIdle().
  void setBusy(const std::string& text);
  void setIdle();
  bool isBusy() const { return isBusy_; }

  // An empty text hides the notice.
  void showNotice(const std::string& text);
  // Says that the recording could not be written to this device.
  void showNotSaved();

  // Shows the overlay, unless encoding its upload has already failed.
  void showLoading();
  void hideLoading();
  // Failure handler for API's uploads. Does nothing once the user has left the screen.
  API::FailureHandler uploadFailureHandler();

 private:
  void windowDidHide(const void* window);
  void uploadFailed(API::Failure failure);

  std::string buttonTitle_;
  std::string headingOfStoryboard_;
  std::string textOfStoryboard_;
  AnimationClock::Token longWait_;
  std::size_t attempt_ = 0;
  bool wasHidden_ = false;
  bool isBusy_ = false;
  // True after encoding an upload of this attempt has failed.
  bool isNotEncoded_ = false;
  bool isNotSent_ = false;
};

}  // namespace kestrova
