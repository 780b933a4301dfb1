#pragma once

#include <memory>
#include <string_view>

#include "platform/uikit/UIView.h"

namespace kestrova::platform {

class FocusRing;
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
  // Gives the keyboard's focus to the next focusable view (the one before where not `forward`) of
  // what is on top here, in reading order and round the end.
  bool moveFocus(bool forward);
  // Takes the focus from a view that is no longer reachable; no view has it then.
  void dropUnreachableFocus();

  // Whether keys that nobody here has used go on to the host's form.
  bool isInsideForm() const { return kind_ == Kind::inside; }

  enum class Kind { own, over, inside };
  explicit UIWindow(Kind kind);

 private:
  class HostWatch;
  class VisibilityWatch;

  void visibilityChanged();
  void widgetLost() override;

  Kind kind_;
  std::unique_ptr<TouchDispatcher> touches_;
  std::unique_ptr<HostWatch> watch_;
  std::unique_ptr<VisibilityWatch> visibilityWatch_;
  bool isSeen_ = false;
  std::unique_ptr<FocusRing> focusRing_;
  std::shared_ptr<UIViewController> root_;
  std::weak_ptr<UIViewController> presentedForHost_;
};

}  // namespace kestrova::platform
