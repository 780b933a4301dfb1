#pragma once

#include <memory>

#include "platform/graphics/CGGeometry.h"

namespace kestrova::platform {

class UIView;

// A finger or a pressed mouse button at a moment. Lasts for a call.
class UITouch {
 public:
  // `point` in the coordinates of `view`, the deepest one under it when the touch began.
  UITouch(std::shared_ptr<UIView> view, CGPoint point) : view_(std::move(view)), point_(point) {}

  const std::shared_ptr<UIView>& view() const { return view_; }
  // In the coordinates of `in`.
  CGPoint location(const UIView& in) const;

 private:
  std::shared_ptr<UIView> view_;
  CGPoint point_;
};

}  // namespace kestrova::platform
