#pragma once

#include <memory>
#include <optional>

#include "platform/graphics/CGImage.h"
#include "platform/graphics/UIImage.h"
#include "platform/liveness/ZoomCustomization.h"
#include "platform/uikit/UIView.h"

namespace kestrova::platform {

// The oval of a capture screen: the middle of the camera's picture as in a mirror, on black, with a
// ring round it that fills. Main thread.
class OvalView : public UIView {
 public:
  // The share of a picture's width and height that fills the oval: where a face is that somebody
  // holds before a camera.
  static constexpr double kWidth = 0.8;
  static constexpr double kHeight = 0.75;

  explicit OvalView(const ZoomCustomization::Oval& look);

  void setPicture(const CGImage& picture);
  // From 0 to 1.
  void setProgress(double progress);
  // The view is as much larger than the oval at each side.
  double margin() const;

 protected:
  void draw(Canvas& canvas) override;

 private:
  ZoomCustomization::Oval look_;
  std::optional<UIImage> picture_;
  double progress_ = 0;
};

}  // namespace kestrova::platform
