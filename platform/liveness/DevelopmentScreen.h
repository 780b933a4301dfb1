#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "platform/capture/CameraSession.h"
#include "platform/liveness/DevelopmentEngine.h"
#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/UIViewController.h"

namespace kestrova::platform {

class DevelopmentView;

// The development engine's capture screen: shows what the camera sees, takes eight pictures over
// two seconds by the AnimationClock, and goes. Ends with a time-out where the camera gives no
// picture for too long. Main thread.
class DevelopmentScreen : public UIViewController {
 public:
  // Seconds from the first picture to the first that is taken, of the taking, and after it.
  static constexpr double kPlacing = 1.5;
  static constexpr double kTaking = 2;
  static constexpr double kThanking = 0.5;
  static constexpr std::size_t kPictures = 8;
  // How long it waits for a camera without pictures.
  static constexpr double kPatience = 20;

  struct Run {
    ZoomCustomization customization;
    bool takesAuditTrail;
    DevelopmentEngine::Rehearsal rehearsal;
    std::weak_ptr<ZoomVerificationDelegate> delegate;
  };

  explicit DevelopmentScreen(Run run);

  void loadView() override;
  void viewDidAppear(bool animated) override;
  void viewWillDisappear(bool animated) override;
  // Cancels.
  std::string accessibilityTitle() const override { return "Video selfie"; }
  bool accessibilityPerformEscape() override;
  // No preferred view: the Enter that started the run must not cancel it.
  std::shared_ptr<UIView> preferredFocusView() override { return nullptr; }

 private:
  void openCamera();
  void show(const CameraFrame& frame);
  void waitAgain(const char* text);
  void step(double now);
  void take(double sinceFirst);
  void end(ZoomVerificationStatus status);
  ZoomVerificationStatus rehearsedStatus() const;
  ZoomVerificationResult result(ZoomVerificationStatus status) const;

  Run run_;
  std::shared_ptr<DevelopmentView> capture_;
  // Null where there is no camera, or none any more.
  std::shared_ptr<CameraSession> camera_;
  AnimationClock::Token steps_;
  // The newest picture.
  std::shared_ptr<const CGImage> picture_;
  std::vector<UIImage> trail_;
  bool isDark_ = false;
  bool isOver_ = false;
  // Times of the clock.
  std::optional<double> firstPictureAt_;
  std::optional<double> waitingSince_;
};

}  // namespace kestrova::platform
