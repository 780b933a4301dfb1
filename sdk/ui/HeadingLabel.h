#pragma once

#include "platform/uikit/UILabel.h"
#include "sdk/Platform.h"

namespace kestrova {

// The heading of a screen: Exo SemiBold of 26 points, of 22 in a narrow window. Main thread.
class HeadingLabel : public UILabel {
 public:
  // Windows of less width are narrow, points.
  static constexpr double kNarrow = 360;
  static constexpr double kNarrowColumns = 600;

  HeadingLabel();

  UIAccessibilityRole accessibilityRole() const override { return UIAccessibilityRole::header; }
  void didMoveToWindow() override;
  void layoutSubviews() override;

 private:
  void chooseSize();

  double size_ = 0;
};

}  // namespace kestrova
