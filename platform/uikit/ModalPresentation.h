#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/graphics/CGGeometry.h"

class QWidget;

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
  // points of width and of height on.
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
  bool isMoving() const { return isComing_ || transition_; }
  bool isBeingDismissed() const { return isBeingDismissed_; }

  void show(bool animated, std::function<void()> completion);
  // With everything that is presented above. While the screens are told that it comes, this waits
  // until they are.
  void dismiss(bool animated, std::function<void()> completion);
  // Ends at once: the window is gone.
  void abandon();
  // Runs when the motion under way has ended, at once where there is none.
  void whenStill(std::function<void()> block);
  // Runs when the screen has gone.
  void whenGone(std::function<void()> block) { afterwards_.push_back(std::move(block)); }

 private:
  class Stage;

  bool coversPresenter() const;
  QWidget* windowWidget() const;
  bool isCard() const;
  void showEnded();
  void dismissEnded();
  void takeAwayAbove();
  void takeAway();
  void runPending();

  std::weak_ptr<UIViewController> presenter_;
  // The controller around a host's widget, which nobody else may keep.
  std::shared_ptr<UIViewController> ofHost_;
  std::shared_ptr<UIViewController> presented_;
  // Null once it is given up.
  std::weak_ptr<UIWindow> window_;
  // The same where it covers a host's widget.
  std::shared_ptr<UIWindow> ownWindow_;
  std::shared_ptr<Stage> stage_;
  std::shared_ptr<Transition> transition_;
  std::vector<std::function<void()>> pending_;
  std::vector<std::function<void()>> afterwards_;
  std::shared_ptr<const void> motion_;
  // The focus before: of a host's window, or the view in a window of ours.
  std::function<void()> restoreHostFocus_;
  std::weak_ptr<UIView> focusedBefore_;
  // While show() arranges everything, and while the end of the motion is told.
  bool isComing_ = false;
  bool isTelling_ = false;
  bool isBeingDismissed_ = false;
  bool isDown_ = false;
};

}  // namespace kestrova::platform
