#include "platform/uikit/UIGestureRecognizer.h"

#include "platform/uikit/UITouch.h"
#include "platform/uikit/UIView.h"

namespace kestrova::platform {

CGPoint UITouch::location(const UIView& in) const {
  return view_->convert(point_, &in);
}

CGPoint UIGestureRecognizer::location(const UIView& in) const {
  const auto touched = touched_.lock();
  return touched ? touched->convert(point_, &in) : CGPoint{};
}

bool UIGestureRecognizer::shouldReceive(const UITouch& touch) {
  if (!isEnabled_) return false;
  touched_ = touch.view();
  point_ = touch.location(*touch.view());
  const auto asked = delegate.lock();
  return !asked || asked->gestureRecognizerShouldReceive(*this, touch);
}

void UIGestureRecognizer::recognize(const UITouch& touch) {
  touched_ = touch.view();
  point_ = touch.location(*touch.view());
  perform();
}

}  // namespace kestrova::platform
