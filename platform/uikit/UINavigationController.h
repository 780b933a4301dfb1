#pragma once

#include <memory>
#include <vector>

#include "platform/uikit/UIViewController.h"

namespace kestrova::platform {

class SnapshotMemory;
class Transition;
class UINavigationBar;
class UINavigationController;

class UINavigationControllerDelegate {
 public:
  virtual ~UINavigationControllerDelegate() = default;
  // Before and after a screen of the stack comes to the top.
  virtual void navigationControllerWillShow(UINavigationController&, UIViewController&,
                                            bool /*animated*/) {}
  virtual void navigationControllerDidShow(UINavigationController&, UIViewController&,
                                           bool /*animated*/) {}
};

// A stack of screens of which the top one is seen, below a bar with the way back. Main thread.
class UINavigationController : public UIViewController {
 public:
  UINavigationController();
  ~UINavigationController() override;
  UINavigationController(const UINavigationController&) = delete;
  UINavigationController& operator=(const UINavigationController&) = delete;

  std::weak_ptr<UINavigationControllerDelegate> delegate;

  // From the lowest to the top.
  const std::vector<std::shared_ptr<UIViewController>>& viewControllers() const { return stack_; }
  // Before the screen is on display.
  void setViewControllers(const std::vector<std::shared_ptr<UIViewController>>& controllers);
  std::shared_ptr<UIViewController> topViewController() const;
  // The bar exists with the view.
  const std::shared_ptr<UINavigationBar>& navigationBar() const { return bar_; }

  // A screen that is in the stack already stays where it is.
  void pushViewController(const std::shared_ptr<UIViewController>& controller, bool animated);
  // Takes the top screen away and returns it; null where it is the only one.
  std::shared_ptr<UIViewController> popViewController(bool animated);
  // Pops the top screen if it offers Back and shows no modal view.
  bool goBack() override;
  std::shared_ptr<UIViewController> contentScreen() override;
  // The top screen's navigation item is another one.
  void itemChanged();
  void modalViewChanged() override;

  void loadView() override;
  void viewDidLoad() override;
  // A push or pop under way ends.
  void viewDidDisappear(bool animated) override;

 protected:
  std::vector<std::shared_ptr<UIViewController>> childrenOnDisplay() const override;

 private:
  void place(const std::shared_ptr<UIViewController>& controller);
  void exchange(const std::shared_ptr<UIViewController>& from,
                const std::shared_ptr<UIViewController>& to, bool forward, bool animated);
  void leave(const std::shared_ptr<UIViewController>& screen);
  void finishMotion();
  bool isTopBusy() const;

  std::vector<std::shared_ptr<UIViewController>> stack_;
  std::shared_ptr<UIView> content_;
  std::shared_ptr<UINavigationBar> bar_;
  std::shared_ptr<Transition> transition_;
  // Held from the start to the end of a push or pop.
  std::shared_ptr<const void> motion_;
  std::shared_ptr<SnapshotMemory> memory_;
};

}  // namespace kestrova::platform
