#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/capture/CameraSource.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIView.h"

namespace kestrova::platform {

// The controls below a camera's picture. Main thread.
class CameraControlsView : public UIView {
 public:
  enum class State {
    // The camera is being opened.
    opening,
    live,
    // The photograph is on its way.
    taking,
    // It is shown.
    taken,
    // The camera cannot be used.
    failed
  };

  CameraControlsView();

  // How much of a screen of that height they take, in points.
  static double height(double screen);

  void setState(State state);
  State state() const { return state_; }
  // The switch is there for a camera that has a flash.
  void setFlash(bool hasFlash, CameraFlashMode mode);
  // The main control of the current state; null while the user can only wait.
  std::shared_ptr<UIView> primaryControl() const;

  std::function<void()> onShutter;
  std::function<void()> onCancel;
  std::function<void()> onFlash;
  std::function<void()> onRetake;
  std::function<void()> onUse;

  void layoutSubviews() override;

 private:
  class Shutter;
  class FlashSwitch;

  // What calls `handler` as it is then.
  template <typename Button>
  std::shared_ptr<Button> add(std::function<void()> CameraControlsView::*handler);

  State state_ = State::opening;
  bool hasFlash_ = false;
  std::shared_ptr<UIButton> cancel_;
  std::shared_ptr<Shutter> shutter_;
  std::shared_ptr<FlashSwitch> flash_;
  std::shared_ptr<UIButton> retake_;
  std::shared_ptr<UIButton> use_;
};

}  // namespace kestrova::platform
