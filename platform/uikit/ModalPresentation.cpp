#include "platform/uikit/ModalPresentation.h"

#include <algorithm>
#include <cmath>

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

#include "platform/uikit/Canvas.h"
#include "platform/uikit/Transition.h"
#include "platform/uikit/UIScreen.h"
#include "platform/uikit/UIViewController.h"
#include "platform/uikit/UIWindow.h"

namespace kestrova::platform {

namespace {

constexpr double kWide = 600;
constexpr double kHigh = 600;
constexpr CGSize kCard{480, 760};
constexpr double kCardMargin = 24;
constexpr double kDim = 0.45;
constexpr double kShadowBlur = 24;

// A flat window, as a phone's on its side, has no room for one.
bool isCardIn(CGSize window) {
  return window.width >= kWide && window.height >= kHigh;
}

// Gives the keyboard's focus back to where it was in the widget's window, if that is still there.
std::function<void()> focusToRestore(const QWidget* widget) {
  QWidget* const focused = widget ? widget->window()->focusWidget() : nullptr;
  return [last = QPointer<QWidget>(focused)] {
    if (last && last->isVisible()) last->setFocus(Qt::OtherFocusReason);
  };
}

}  // namespace

CGRect ModalPresentation::placeIn(CGSize window) {
  if (!isCardIn(window)) return {{}, window};
  const double height = std::min(kCard.height, window.height - 2 * kCardMargin);
  const double x = std::round((window.width - kCard.width) / 2);
  return {{x, std::round((window.height - height) / 2)}, {kCard.width, height}};
}

double ModalPresentation::cornerRadiusOf(const UIView& view) {
  const auto window = view.window();
  if (!window || !isCardIn(window->bounds().size)) return 0;
  const CGRect place = placeIn(window->bounds().size);
  return CGRect{view.convert({}, nullptr), view.bounds().size} == place ? kCardRadius : 0;
}

namespace {

// The first visible view of that role in `view`; null if there is none.
const UIView* viewOfRole(const UIView& view, UIAccessibilityRole role) {
  if (view.isHidden()) return nullptr;
  if (view.accessibilityRole() == role) return &view;
  for (const auto& subview : view.subviews()) {
    if (const UIView* const found = viewOfRole(*subview, role)) return found;
  }
  return nullptr;
}

}  // namespace

// The ground of a presentation: dims what lies below beside a card, and holds the screen. It is a
// dialog for assistive technology, named after the heading that shows.
class ModalPresentation::Stage : public UIView {
 public:
  void setScreen(const std::shared_ptr<UIView>& screen) {
    screen_ = screen;
    // An alert has its own role.
    const bool isAlert = viewOfRole(*screen, UIAccessibilityRole::alert) != nullptr;
    setAccessibilityRole(isAlert ? UIAccessibilityRole::none : UIAccessibilityRole::dialog);
    screen->setAutoresizing(UIViewAutoresizing::none, {});
    addSubview(screen);
    setNeedsLayout();
  }
  // Whether this is the lowest one: the host is dimmed around its card.
  bool isLowest = false;
  // Whether the screen stands on a ground of its own.
  bool hasGround = true;
  // Whether the screen takes the whole window where others have a card.
  bool isWhole = false;
  // How far it has come.
  void setShare(double share) {
    share_ = share;
    setNeedsDisplay();
  }

  std::string accessibilityLabel() const override {
    const auto screen = screen_.lock();
    if (!screen || accessibilityRole() != UIAccessibilityRole::dialog) return {};
    const UIView* const heading = viewOfRole(*screen, UIAccessibilityRole::header);
    if (heading) return heading->accessibilityLabel();
    const auto controller = screen->viewController();
    return controller && !screen->isHidden() ? controller->accessibilityTitle() : std::string();
  }

  bool isCard() const { return !isWhole && isCardIn(bounds().size); }
  CGRect place() const { return isCard() ? placeIn(bounds().size) : CGRect{{}, bounds().size}; }

  void layoutSubviews() override {
    if (const auto screen = screen_.lock()) {
      screen->setFrame(place());
      // A ground of the screen's own has the card's corners.
      screen->layer().setCornerRadius(isCard() ? kCardRadius : 0);
    }
    if (isLowest) UIScreen::main().setBounds(place());
  }

 protected:
  void draw(Canvas& canvas) override {
    if (isLowest && isCard()) canvas.fill({{}, bounds().size}, UIColor::white(0, kDim * share_));
    // While it moves the ground moves with the picture.
    if (share_ < 1 || !hasGround) return;
    if (isLowest && isCard()) {
      canvas.shadow(place(), kCardRadius, kShadowBlur, UIColor::white(0, 0.12));
    }
    canvas.fill(place(), UIColor::white(), isCard() ? kCardRadius : 0);
  }

 private:
  std::weak_ptr<UIView> screen_;
  double share_ = 1;
};

ModalPresentation::ModalPresentation(const std::shared_ptr<UIViewController>& presenter,
                                     const std::shared_ptr<UIViewController>& presented,
                                     const std::shared_ptr<UIWindow>& window, bool isOwnWindow)
    : presenter_(presenter),
      ofHost_(isOwnWindow ? presenter : nullptr),
      presented_(presented),
      window_(window),
      ownWindow_(isOwnWindow ? window : nullptr) {}

ModalPresentation::~ModalPresentation() = default;

bool ModalPresentation::coversPresenter() const {
  return presented_->modalPresentationStyle == UIModalPresentationStyle::fullScreen;
}

QWidget* ModalPresentation::windowWidget() const {
  const auto window = window_.lock();
  return window ? window->widget() : nullptr;
}

bool ModalPresentation::isCard() const {
  return stage_->isCard();
}

void ModalPresentation::show(bool animated, std::function<void()> completion) {
  const auto self = shared_from_this();
  const auto presenter = presenter_.lock();
  const auto window = window_.lock();
  isComing_ = true;
  if (ownWindow_) restoreHostFocus_ = focusToRestore(window->widget());
  focusedBefore_ = window->focusedView();
  if (completion) pending_.push_back(std::move(completion));

  stage_ = std::make_shared<Stage>();
  const auto below = presenter->presentedBy_.lock();
  stage_->isLowest = !below;
  stage_->hasGround = coversPresenter();
  // Over the place of the presenter, which fills the window where it is no card itself.
  stage_->isWhole = presented_->fillsWindow() ||
                    (stage_->isLowest && presented_->modalPresentationStyle ==
                                             UIModalPresentationStyle::overCurrentContext);
  stage_->fillSuperview();
  stage_->setFrame({{}, window->bounds().size});
  if (stage_->isLowest) UIScreen::main().setBounds(stage_->place());
  if (ownWindow_) ownWindow_->setPresentedForHost(presented_);
  const auto view = presented_->view();
  view->setFrame(stage_->place());
  // Not seen before everything is in its place.
  stage_->setHidden(true);
  stage_->setScreen(view);
  window->addSubview(stage_);
  stage_->layoutIfNeeded();
  motion_ = window->beginMotion(stage_);

  if (coversPresenter()) presenter->beginAppearance(false, animated);
  presented_->beginAppearance(true, animated);
  if (!window->widget()) return abandon();
  if (isDown_) return;

  const CGRect place = stage_->place();
  if (!animated || !window->widget()->isVisible()) {
    stage_->setHidden(false);
    return showEnded();
  }
  stage_->layoutIfNeeded();
  const CGRect whole{{}, view->bounds().size};
  const auto to = coversPresenter() ? Snapshot::opaque(*view, whole) : Snapshot::of(*view, whole);
  view->setHidden(true);
  stage_->setShare(0);
  stage_->setHidden(false);
  const bool fades = presented_->modalTransitionStyle == UIModalTransitionStyle::crossDissolve;
  transition_ = Transition::run(
      *stage_, place, isCard() ? kCardRadius : 0,
      fades ? Transition::Kind::fadeIn : Transition::Kind::rise, nullptr, to,
      [stage = stage_.get()](double share) { stage->setShare(share * 0.999); },
      [weak = std::weak_ptr<ModalPresentation>(self)] {
        if (const auto alive = weak.lock()) alive->showEnded();
      });
  isComing_ = false;
}

void ModalPresentation::showEnded() {
  const auto self = shared_from_this();
  const auto finished = std::exchange(transition_, nullptr);
  isComing_ = false;
  isTelling_ = true;
  stage_->setShare(1);
  presented_->view()->setHidden(false);
  motion_.reset();
  presented_->endAppearance();
  if (const auto presenter = presenter_.lock(); presenter && coversPresenter()) {
    presenter->endAppearance();
  }
  isTelling_ = false;
  runPending();
  const auto window = window_.lock();
  if (window && !isBeingDismissed_) window->screenAppeared(stage_);
}

void ModalPresentation::dismiss(bool animated, std::function<void()> completion) {
  const auto self = shared_from_this();
  if (isComing_ || isTelling_) {
    pending_.push_back([weak = std::weak_ptr<ModalPresentation>(self), animated,
                        completion = std::move(completion)]() mutable {
      if (const auto alive = weak.lock()) alive->dismiss(animated, std::move(completion));
    });
    return;
  }
  // A motion that is under way ends where it leads.
  if (const auto moving = isBeingDismissed_ ? nullptr : transition_) moving->finish();
  if (completion) pending_.push_back(std::move(completion));
  if (isDown_) return runPending();
  if (isBeingDismissed_) return;
  isBeingDismissed_ = true;
  const auto window = window_.lock();
  const bool visible = windowWidget() && windowWidget()->isVisible();
  const bool moves = animated && visible;
  const CGRect place = stage_->place();
  const auto from = moves ? Snapshot::of(*window, place) : nullptr;
  if (window) motion_ = window->beginMotion(stage_);

  presented_->beginAppearance(false, animated);
  takeAwayAbove();
  const auto presenter = presenter_.lock();
  if (coversPresenter() && presenter) presenter->beginAppearance(true, animated);
  if (!moves || !windowWidget()) return dismissEnded();
  presented_->view()->setHidden(true);
  const bool fades = presented_->modalTransitionStyle == UIModalTransitionStyle::crossDissolve;
  transition_ = Transition::run(
      *stage_, place, isCard() ? kCardRadius : 0,
      fades ? Transition::Kind::fadeOut : Transition::Kind::sink, from, nullptr,
      [stage = stage_.get()](double share) { stage->setShare((1 - share) * 0.999); },
      [weak = std::weak_ptr<ModalPresentation>(self)] {
        if (const auto alive = weak.lock()) alive->dismissEnded();
      });
}

void ModalPresentation::takeAwayAbove() {
  while (const auto above = presented_->presentation_) {
    if (const auto moving = above->transition_) moving->finish();
    if (above->isDown_) continue;
    above->isBeingDismissed_ = true;
    above->presented_->beginAppearance(false, false);
    above->takeAwayAbove();
    above->takeAway();
    above->presented_->endAppearance();
    above->runPending();
  }
}

// The screen leaves the window and its presenter's hands.
void ModalPresentation::takeAway() {
  isDown_ = true;
  stage_->removeFromSuperview();
  presented_->view()->removeFromSuperview();
  presented_->view()->setHidden(false);
  presented_->presentedBy_.reset();
  const auto presenter = presenter_.lock();
  if (presenter && presenter->presentation_.get() == this) presenter->presentation_.reset();
  if (stage_->isLowest) UIScreen::main().setBounds(std::nullopt);
  if (ownWindow_) ownWindow_->close();
  motion_.reset();
  if (restoreHostFocus_) restoreHostFocus_();
  ofHost_.reset();
}

void ModalPresentation::dismissEnded() {
  const auto self = shared_from_this();
  const auto finished = std::exchange(transition_, nullptr);
  takeAway();
  const auto presenter = presenter_.lock();
  if (coversPresenter() && presenter) presenter->endAppearance();
  presented_->endAppearance();
  runPending();
  const auto window = window_.lock();
  if (!window || ownWindow_ || !presenter) return;
  const auto area = presenter->contentScreen()->viewIfLoaded();
  if (area) window->screenAppeared(area, focusedBefore_);
}

void ModalPresentation::abandon() {
  const auto self = shared_from_this();
  if (isDown_) return;
  transition_.reset();
  isComing_ = false;
  isTelling_ = false;
  isBeingDismissed_ = true;
  presented_->beginAppearance(false, false);
  takeAwayAbove();
  takeAway();
  presented_->endAppearance();
  runPending();
}

void ModalPresentation::whenStill(std::function<void()> block) {
  if (!isMoving() && !isBeingDismissed_) return block();
  pending_.push_back(std::move(block));
}

void ModalPresentation::runPending() {
  const auto pending = std::exchange(pending_, {});
  for (const auto& block : pending) block();
  if (!isDown_) return;
  const auto afterwards = std::exchange(afterwards_, {});
  for (const auto& block : afterwards) block();
}

}  // namespace kestrova::platform
