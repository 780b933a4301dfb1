#include "platform/uikit/UIControl.h"

#include "platform/uikit/UITouch.h"

namespace kestrova::platform {

namespace {

// How far a finger may stray outside and still mean the control, points.
constexpr double kStray = 24;

bool isOver(const UIControl& control, const UITouch& touch) {
  const CGRect bounds{{}, control.bounds().size};
  return bounds.insetBy(-kStray, -kStray).contains(touch.location(control));
}

}  // namespace

void UIControl::setEnabled(bool enabled) {
  if (isEnabled_ == enabled) return;
  isEnabled_ = enabled;
  setHighlighted(false);
  setNeedsDisplay();
}

void UIControl::addAction(UIControlEvents event, Action action) {
  registrations_.push_back({event, std::move(action)});
}

void UIControl::sendActions(UIControlEvents event) {
  const auto self = shared(this);
  const auto registrations = registrations_;
  for (const auto& registration : registrations) {
    if (registration.event == event) registration.action(self);
  }
}

void UIControl::setHighlighted(bool highlighted) {
  if (isHighlighted_ == highlighted) return;
  isHighlighted_ = highlighted;
  setNeedsDisplay();
}

void UIControl::touchesBegan(const UITouch&) {
  if (!isEnabled_) return;
  setHighlighted(true);
  sendActions(UIControlEvents::touchDown);
}

void UIControl::touchesMoved(const UITouch& touch) {
  if (isEnabled_) setHighlighted(isOver(*this, touch));
}

void UIControl::touchesEnded(const UITouch& touch) {
  const bool tapped = isEnabled_ && isHighlighted_ && isOver(*this, touch);
  setHighlighted(false);
  if (tapped) sendActions(UIControlEvents::touchUpInside);
}

void UIControl::touchesCancelled(const UITouch&) {
  setHighlighted(false);
}

bool UIControl::keyPressed(const std::string& key) {
  if (!isEnabled_ || (key != "Space" && key != "Return")) return UIView::keyPressed(key);
  sendActions(UIControlEvents::touchUpInside);
  return true;
}

bool UIControl::accessibilityActivate() {
  if (!isEnabled_) return false;
  sendActions(UIControlEvents::touchUpInside);
  return true;
}

}  // namespace kestrova::platform
