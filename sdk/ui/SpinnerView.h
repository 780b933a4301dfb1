#pragma once

#include <array>
#include <string>
#include <vector>

#include "platform/uikit/CAShapeLayer.h"
#include "platform/uikit/UIView.h"
#include "sdk/Platform.h"

namespace kestrova {

// A blue arc that turns, grows and shrinks for ever while it is in a window and can be seen.
class SpinnerView : public UIView {
 public:
  struct Pose {
    double secondsSincePriorPose;
    // Turns of the ring.
    double start;
    // The fraction of the ring that is drawn.
    double length;
  };
  static constexpr std::array<Pose, 8> poses{{{0.0, 0.0, 0.7},
                                              {0.6, 0.5, 0.5},
                                              {0.6, 1.0, 0.3},
                                              {0.6, 1.5, 0.1},
                                              {0.2, 1.875, 0.1},
                                              {0.2, 2.25, 0.3},
                                              {0.2, 2.625, 0.5},
                                              {0.2, 3.0, 0.7}}};

  SpinnerView() : SpinnerView(CGRect{}) {}
  explicit SpinnerView(const CGRect& frame);

  CAShapeLayer& layer() { return static_cast<CAShapeLayer&>(UIView::layer()); }
  void layoutSubviews() override;
  void didMoveToWindow() override;

  // The ellipse in the view's bounds, the whole line inside.
  void setPath();
  // Starts the two motions anew.
  void animate();
  void animateKeyPath(const std::string& keyPath, double duration, const std::vector<double>& times,
                      const std::vector<double>& values);
};

}  // namespace kestrova
