#pragma once

#include "platform/uikit/UIView.h"

namespace kestrova::platform {

// A view whose storyboard layout is a column that becomes a row where the window is flat, as a
// phone's on its side. A part whose own layout begins with an elastic space stands in the middle of
// the row. Main thread.
class UIStackView : public UIView {
 public:
  // A window lower than this and wider than high is flat, points.
  static constexpr double kFlat = 480;

  void didMoveToWindow() override { layoutSubviews(); }
  void layoutSubviews() override;

 private:
  bool hasDirection_ = false;
};

}  // namespace kestrova::platform
