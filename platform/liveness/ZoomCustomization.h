#pragma once

#include <memory>

#include "platform/graphics/UIColor.h"
#include "platform/graphics/UIFont.h"
#include "platform/uikit/CAGradientLayer.h"

namespace kestrova::platform {

// How the engine's capture screen looks. Lengths are points. Copies share the gradient layer. Main
// thread.
struct ZoomCustomization {
  struct Frame {
    // Around the frame, where it is smaller than the screen.
    UIColor backgroundColor = UIColor::white();
    // Of the screen's width and height.
    double sizeRatio = 1;
  };
  struct Feedback {
    // Behind the text.
    std::shared_ptr<CAGradientLayer> backgroundColor = std::make_shared<CAGradientLayer>();
    UIColor textColor = UIColor::white();
    // From the screen's upper edge to the text's.
    double topMargin = 0;
    UIFont textFont = UIFont::systemFont(20);
  };
  struct Oval {
    double strokeWidth = 2;
    UIColor strokeColor = UIColor::white();
    // Of the ring that fills while pictures are taken, at its beginning and its end.
    UIColor progressColor1 = UIColor::white();
    UIColor progressColor2 = UIColor::white();
    double progressStrokeWidth = 4;
    // From the oval outwards to the ring.
    double progressRadialOffset = 0;
  };

  // Whether a page of instructions comes first.
  bool showPreEnrollmentScreen = true;
  // Whether the screen helps where there is little light.
  bool enableLowLightMode = false;
  Frame frameCustomization;
  Feedback feedbackCustomization;
  Oval ovalCustomization;
};

}  // namespace kestrova::platform
