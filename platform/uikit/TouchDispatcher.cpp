#include "platform/uikit/TouchDispatcher.h"

#include <cmath>

#include "platform/uikit/UIGestureRecognizer.h"
#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UIWindow.h"

namespace kestrova::platform {

namespace {

// A tap may move this far, points.
constexpr double kSlop = 10;

}  // namespace

UITouch TouchDispatcher::touch(CGPoint point, const std::shared_ptr<UIView>& view) const {
  return {view, window_.convert(point, view.get())};
}

void TouchDispatcher::began(CGPoint point, long long milliseconds) {
  cancelled();
  const auto hit = window_.hitTest(point);
  if (!hit || window_.ignoresTouches(*hit)) return;
  // A screen that has just appeared can be scrolled, but ignores taps.
  const bool isTap = !window_.ignoresTaps(*hit);
  const UITouch start = touch(point, hit);
  start_ = point;
  isDown_ = true;
  isDragging_ = false;
  touched_ = hit;
  bool claimed = false;
  for (auto view = hit; view; view = view->superview()) {
    if (isTap && owner_.expired() && view->wantsTouches()) owner_ = view;
    claimed = claimed || view->claimsTouches();
    if (isTap && !claimed && recognizer_.expired()) {
      const auto recognizers = view->gestureRecognizers();
      for (const auto& recognizer : recognizers) {
        if (!recognizer->shouldReceive(start)) continue;
        recognizer_ = recognizer;
        break;
      }
    }
    auto scrollView = std::dynamic_pointer_cast<UIScrollView>(view);
    if (scrollView && scrollView->canScroll() && scrollView_.expired()) {
      scrollView_ = scrollView;
    }
  }
  const auto scrollView = scrollView_.lock();
  if (scrollView && scrollView->press(point, milliseconds)) {
    owner_.reset();
    recognizer_.reset();
  }
  if (const auto owner = owner_.lock()) owner->touchesBegan(start);
}

void TouchDispatcher::moved(CGPoint point, long long milliseconds) {
  if (!isDown_) return;
  const auto hit = touched_.lock();
  if (!hit) return cancelled();
  if (const auto scrollView = scrollView_.lock()) {
    scrollView->drag(point, milliseconds);
    if (!isDragging_ && scrollView->isDragging()) {
      isDragging_ = true;
      recognizer_.reset();
      cancelOwner();
    }
  }
  if (std::hypot(point.x - start_.x, point.y - start_.y) > kSlop) recognizer_.reset();
  if (const auto owner = owner_.lock()) owner->touchesMoved(touch(point, hit));
}

void TouchDispatcher::ended(CGPoint point, long long milliseconds) {
  if (!isDown_) return;
  isDown_ = false;
  const auto hit = touched_.lock();
  const auto owner = owner_.lock();
  const auto recognizer = recognizer_.lock();
  const auto scrollView = scrollView_.lock();
  touched_.reset();
  owner_.reset();
  recognizer_.reset();
  scrollView_.reset();
  if (scrollView) scrollView->release(point, milliseconds);
  if (!hit || hit->window().get() != &window_) {
    if (owner) owner->touchesCancelled(touch(point, owner));
    return;
  }
  const UITouch end = touch(point, hit);
  if (recognizer && recognizer->isEnabled() && recognizer->view()) {
    if (owner) owner->touchesCancelled(end);
    recognizer->recognize(end);
  } else if (owner) {
    owner->touchesEnded(end);
  }
}

void TouchDispatcher::cancelled() {
  if (!isDown_) return;
  isDown_ = false;
  if (const auto scrollView = scrollView_.lock()) scrollView->release(start_, 0);
  cancelOwner();
  touched_.reset();
  recognizer_.reset();
  scrollView_.reset();
}

void TouchDispatcher::cancelIn(const UIView& area) {
  const auto touched = touched_.lock();
  if (touched && touched->isDescendant(area)) cancelled();
}

void TouchDispatcher::cancelUnreachable() {
  const auto touched = touched_.lock();
  if (touched && !touched->isReachable()) cancelled();
}

void TouchDispatcher::cancelOwner() {
  const auto owner = owner_.lock();
  owner_.reset();
  if (owner) owner->touchesCancelled(touch(start_, owner));
}

}  // namespace kestrova::platform
