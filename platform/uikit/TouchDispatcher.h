#pragma once

#include <memory>

#include "platform/graphics/CGGeometry.h"
#include "platform/uikit/UITouch.h"

namespace kestrova::platform {

class UIGestureRecognizer;
class UIScrollView;
class UIView;
class UIWindow;

// Decides for each touch in a window who gets it: a control or another view that wants touches, a
// recogniser, or a scroll view that is dragged. One touch at a time. Main thread.
class TouchDispatcher {
 public:
  explicit TouchDispatcher(UIWindow& window) : window_(window) {}

  // Points of the window. `milliseconds` is the time of the event.
  void began(CGPoint point, long long milliseconds);
  void moved(CGPoint point, long long milliseconds);
  void ended(CGPoint point, long long milliseconds);
  void cancelled();
  // Cancel the touch under way if it began in `area`, or on a view that a modal view covers now.
  void cancelIn(const UIView& area);
  void cancelUnreachable();

 private:
  UITouch touch(CGPoint point, const std::shared_ptr<UIView>& view) const;
  void cancelOwner();

  UIWindow& window_;
  CGPoint start_;
  bool isDown_ = false;
  bool isDragging_ = false;
  std::weak_ptr<UIView> touched_;
  std::weak_ptr<UIView> owner_;
  std::weak_ptr<UIGestureRecognizer> recognizer_;
  std::weak_ptr<UIScrollView> scrollView_;
};

}  // namespace kestrova::platform
