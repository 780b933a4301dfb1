#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/graphics/CGGeometry.h"

namespace kestrova::platform {

class UIGestureRecognizer;
class UITouch;
class UIView;

class UIGestureRecognizerDelegate {
 public:
  virtual ~UIGestureRecognizerDelegate() = default;
  // Whether the recogniser may look at a touch that begins.
  virtual bool gestureRecognizerShouldReceive(UIGestureRecognizer&, const UITouch&) { return true; }
};

// Sees the touches that begin in its view and in those below, as long as no control has taken
// them. Main thread.
class UIGestureRecognizer {
 public:
  UIGestureRecognizer(const UIGestureRecognizer&) = delete;
  UIGestureRecognizer& operator=(const UIGestureRecognizer&) = delete;
  virtual ~UIGestureRecognizer() = default;

  std::weak_ptr<UIGestureRecognizerDelegate> delegate;

  std::shared_ptr<UIView> view() const { return view_.lock(); }
  bool isEnabled() const { return isEnabled_; }
  void setEnabled(bool enabled) { isEnabled_ = enabled; }
  // Where the touch was last, in the coordinates of `in`.
  CGPoint location(const UIView& in) const;

 protected:
  UIGestureRecognizer() = default;

 private:
  friend class TouchDispatcher;
  friend class UIView;

  bool shouldReceive(const UITouch& touch);
  // Calls the actions.
  void recognize(const UITouch& touch);
  virtual void perform() = 0;

  std::weak_ptr<UIView> view_;
  std::weak_ptr<UIView> touched_;
  CGPoint point_;
  bool isEnabled_ = true;
};

// A press and a release without a move between.
class UITapGestureRecognizer : public UIGestureRecognizer {
 public:
  // `target` is not kept; an action is a member function without a parameter or with the recogniser
  // (`UITapGestureRecognizer&`).
  template <typename Target>
  UITapGestureRecognizer(const std::shared_ptr<Target>& target, void (Target::*action)())
      : action_([weak = std::weak_ptr<Target>(target), action](UITapGestureRecognizer&) {
          if (const auto alive = weak.lock()) ((*alive).*action)();
        }) {}
  template <typename Target>
  UITapGestureRecognizer(const std::shared_ptr<Target>& target,
                         void (Target::*action)(UITapGestureRecognizer&))
      : action_([weak = std::weak_ptr<Target>(target), action](UITapGestureRecognizer& self) {
          if (const auto alive = weak.lock()) ((*alive).*action)(self);
        }) {}
  explicit UITapGestureRecognizer(std::function<void(UITapGestureRecognizer&)> action)
      : action_(std::move(action)) {}

 private:
  void perform() override { action_(*this); }

  std::function<void(UITapGestureRecognizer&)> action_;
};

}  // namespace kestrova::platform
