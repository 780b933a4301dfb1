#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/graphics/CGGeometry.h"

namespace kestrova::platform {

class Transition;
class UIView;
class UIViewController;
class UIWindow;

// One screen presented over another: the place it has in the window, its motion, who is told what.
// Owned by the presenting controller. Main thread.
class ModalPresentation : public std::enable_shared_from_this<ModalPresentation> {
 public:
  // Where a screen lies in a window of that size: all of it, or a card in the middle from 600
  // points of width and 480 of height on.
  static CGRect placeIn(CGSize window);
  static constexpr double kCardRadius = 16;

  // That of the card whose place the view takes; 0 elsewhere.
  static double cornerRadiusOf(const UIView& view);

  // `window` covers a host's widget where `isOwnWindow`, and ends with the presentation.
  ModalPresentation(const std::shared_ptr<UIViewController>& presenter,
                    const std::shared_ptr<UIViewController>& presented,
                    const std::shared_ptr<UIWindow>& window, bool isOwnWindow);
  ~ModalPresentation();
  ModalPresentation(const ModalPresentation&) = delete;
  ModalPresentation& operator=(const ModalPresentation&) = delete;

  const std::shared_ptr<UIViewController>& presented() const { return presented_; }
  std::shared_ptr<UIViewController> presenter() const { return presenter_.lock(); }
  const std::shared_ptr<UIWindow>& window() const { return window_; }
  bool isMoving() const { return transition_ != nullptr; }
  bool isBeingDismissed() const { return isBeingDismissed_; }

  void show(bool animated, std::function<void()> completion);
  // With everything that is presented above.
  void dismiss(bool animated, std::function<void()> completion);
  // Ends at once: the window is gone.
  void abandon();
  // Runs when the motion under way has ended, at once where there is none.
  void whenStill(std::function<void()> block);

 private:
  class Stage;

  bool coversPresenter() const;
  bool isCard() const;
  void showEnded();
  void dismissEnded();
  void takeAwayAbove();
  void takeAway();
  void runPending();

  std::weak_ptr<UIViewController> presenter_;
  std::shared_ptr<UIViewController> presented_;
  std::shared_ptr<UIWindow> window_;
  bool isOwnWindow_;
  std::shared_ptr<Stage> stage_;
  std::shared_ptr<Transition> transition_;
  std::vector<std::function<void()>> pending_;
  std::function<void()> restoreFocus_;
  bool isBeingDismissed_ = false;
  bool isDown_ = false;
};

}  // namespace kestrova::platform
