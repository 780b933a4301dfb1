#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/uikit/UIView.h"

namespace kestrova::platform {

class FocusRing;
class HostAccessibility;
class TouchDispatcher;
class UIViewController;

// Posted to the default notification centre, with the UIWindow as object, when the window stops or
// starts being visible: it or the host's window is hidden, closed, minimised, or shown again.
inline constexpr std::string_view UIWindowDidBecomeHiddenNotification =
    "UIWindowDidBecomeHiddenNotification";
inline constexpr std::string_view UIWindowDidBecomeVisibleNotification =
    "UIWindowDidBecomeVisibleNotification";

// The top of a tree of views: where touches, keys and focus come in. Main thread.
class UIWindow : public UIView {
 public:
  // A window of its own on the desktop, of that size in points.
  static std::shared_ptr<UIWindow> make(CGSize size);
  // Covers the host's window that `host` belongs to, as a child of it, and follows its size.
  static std::shared_ptr<UIWindow> over(QWidget& host);
  // Fills `placeholder`, a widget in a host's form.
  static std::shared_ptr<UIWindow> inside(QWidget& placeholder);
  ~UIWindow() override;
  UIWindow(const UIWindow&) = delete;
  UIWindow& operator=(const UIWindow&) = delete;

  // Fills the window. Loaded at once; appears when the window is shown.
  const std::shared_ptr<UIViewController>& rootViewController() const { return root_; }
  void setRootViewController(const std::shared_ptr<UIViewController>& controller);
  void makeKeyAndVisible();
  // Takes the window off the screen; its root disappears.
  void close();

  // The controller on top of what is presented here; null where there is none.
  std::shared_ptr<UIViewController> topViewController() const;
  // What a covering window presents for the host below it; by the presentation.
  void setPresentedForHost(const std::weak_ptr<UIViewController>& controller) {
    presentedForHost_ = controller;
  }

  // Called when the toolkit has deleted the window's widget, with a host's window that it was part
  // of. The views are still there then, in no window.
  std::function<void()> onHostGone;

  // An embedded or covering window's responder after it: a controller that the host wrapped around
  // a widget above; else the application.
  std::shared_ptr<UIResponder> next() const override;
  bool keyPressed(const std::string& key) override;

  TouchDispatcher& touches() { return *touches_; }
  // Gives the keyboard's focus to the next focusable view, or to the previous one when `forward` is
  // false, in what is on top here: in reading order and round the end. Does nothing during a
  // motion.
  bool moveFocus(bool forward);
  // The view in this window that has the keyboard's focus or gets it when the desktop activates the
  // window; null for none.
  std::shared_ptr<UIView> focusedView() const;
  // Takes the focus from every view of this window.
  void resignFocus();

  // Begins a motion of `area`: takes the focus from every view and cancels a touch in `area`. Until
  // the result is released, the window ignores every key and `area` ignores touches.
  [[nodiscard]] std::shared_ptr<const void> beginMotion(const std::shared_ptr<UIView>& area);
  // Seconds for which new content ignores taps, Return and Space, because the second tap of a
  // double tap is meant for what was there before.
  static constexpr double kDoubleTapInterval = 0.4;
  void contentChanged(const std::shared_ptr<UIView>& area);
  // Gives the focus to the preferred view of the screen on top, wherever it is; does nothing during
  // a motion.
  void focusPreferredView();
  // After a motion that has brought the screen in `area`: as contentChanged(). Unless a view has
  // the focus already, it goes to `last` or, if that cannot take it, to the preferred view of the
  // screen on top. Does nothing while `area` is covered or another motion is under way.
  void screenAppeared(const std::shared_ptr<UIView>& area, const std::weak_ptr<UIView>& last = {});
  bool ignoresTouches(const UIView& view) const;
  bool ignoresTaps(const UIView& view) const;
  bool ignoresKey(std::string_view key) const;
  // Call when a modal view has appeared or gone: cancels touches on the views it covers and takes
  // their focus, or restores the focus soon.
  void modalityChanged();

  // Whether keys that nobody here has used go on to the host's form.
  bool isInsideForm() const { return kind_ == Kind::inside; }

  enum class Kind { own, over, inside };
  explicit UIWindow(Kind kind);

 private:
  class HostWatch;
  class VisibilityWatch;
  struct Motion {
    std::weak_ptr<UIView> area;
  };

  void visibilityChanged();
  void widgetLost() override;
  bool isMoving() const;
  void focus(const std::shared_ptr<UIView>& view);
  void settleFocus();

  Kind kind_;
  std::unique_ptr<TouchDispatcher> touches_;
  std::unique_ptr<HostWatch> watch_;
  std::unique_ptr<VisibilityWatch> visibilityWatch_;
  bool isSeen_ = false;
  std::unique_ptr<HostAccessibility> hiddenHost_;
  std::unique_ptr<FocusRing> focusRing_;
  std::shared_ptr<UIViewController> root_;
  std::weak_ptr<UIViewController> presentedForHost_;
  std::vector<std::weak_ptr<const Motion>> motions_;
  std::weak_ptr<UIView> changedArea_;
  // The end of the double tap interval, in the animation clock's time.
  double changedUntil_ = 0;
  // The view that gets the focus back.
  std::weak_ptr<UIView> lastFocused_;
};

}  // namespace kestrova::platform
