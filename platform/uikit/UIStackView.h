#pragma once

#include "platform/uikit/UIScrollView.h"

namespace kestrova::platform {

// A view whose storyboard layout is a column of views. While the window is flat there are two
// columns instead: the first view at the left, the others below each other at the right. Margins
// follow the window too: the upper and lower ones, and the distances between the views, shrink
// where little height is visible; those at the sides shrink in a narrow window, and grow in a wide
// one so that the columns stay together. Main thread.
class UIStackView : public UIView {
 public:
  // A window lower than this and wider than high is flat, points.
  static constexpr double kFlat = 600;

  // When true, the first two views stand in the middle of a common row while the window is flat;
  // else the first fills its column.
  bool centersRow() const { return centersRow_; }
  void setCentersRow(bool centers);

  void didMoveToWindow() override { layoutSubviews(); }
  void layoutSubviews() override;

 private:
  // Values as in the storyboard file.
  struct Design {
    UIEdgeInsets margins;
    int spacing;
  };

  bool centersRow_ = false;
  std::optional<Design> design_;
  bool isFlat_ = false;
};

}  // namespace kestrova::platform
